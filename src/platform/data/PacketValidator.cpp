// SPDX-License-Identifier: MIT
#include "platform/data/PacketValidator.h"

#include "platform/core/Exceptions.h"

#include <algorithm>
#include <cstring>

namespace Korvane {

namespace {

/// Skips bytes below 0x80, eight at a time.
const unsigned char *SkipAscii(const unsigned char *at, const unsigned char *end)
{
    quint64 word;
    while (end - at >= 8) {
        std::memcpy(&word, at, 8);
        if ((word & 0x8080808080808080u) != 0)
            break;
        at += 8;
    }
    while (at != end && *at < 0x80)
        ++at;
    return at;
}

/// Length of the well-formed sequence of over one byte that starts here; 0 if there is none.
/// Table 3-7 of the Unicode Standard.
size_t MultibyteLength(const unsigned char *at, const unsigned char *end)
{
    const unsigned char lead = *at;
    const size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    if (length == 0 || size_t(end - at) < length)
        return 0;
    const unsigned char low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned char high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (at[1] < low || at[1] > high)
        return 0;
    for (size_t i = 2; i < length; ++i)
        if ((at[i] & 0xC0) != 0x80)
            return 0;
    return length;
}

[[noreturn]] void RaiseBadMarks(const char *fault)
{
    throw EDatabaseError(QStringLiteral("数据包已损坏，变更日志：%1").arg(QString::fromUtf8(fault)));
}

/// Each number that is taken must be below the limit, and taken once.
class TTakenOnce
{
public:
    explicit TTakenOnce(size_t limit) : FTaken(limit) {}

    bool Take(quint32 number)
    {
        if (number >= FTaken.size() || FTaken[number])
            return false;
        FTaken[number] = true;
        return true;
    }

private:
    std::vector<bool> FTaken;
};

void CheckLog(const TPacketMarks &marks)
{
    const auto statuses = marks.Statuses.Values();
    const auto insertions = size_t(std::count(statuses.begin(), statuses.end(), usInserted));
    TTakenOnce records{size_t(marks.Begin)};
    TTakenOnce places(size_t(marks.Begin) + insertions);
    for (size_t i = 0; i < statuses.size(); ++i) {
        if (statuses[i] == usUnmodified || statuses[i] > usDeleted)
            RaiseBadMarks("状态无效");
        if (statuses[i] == usInserted ? !places.Take(marks.Records[i]) : !records.Take(marks.Records[i]))
            RaiseBadMarks("记录无效");
    }
}

void CheckDelta(const TPacketMarks &marks)
{
    quint8 before = usInserted;
    for (const quint8 status : marks.Statuses.Values()) {
        if (status > usDeleted)
            RaiseBadMarks("状态无效");
        if ((before == usUnmodified) != (status == usModified))
            RaiseBadMarks("修改与原值不成对");
        before = status;
    }
    if (before == usUnmodified)
        RaiseBadMarks("修改与原值不成对");
}

} // namespace

void CheckMarkShape(const TPacketMarks &marks, qsizetype rowCount)
{
    const auto count = [&marks](TPacketContent content, qsizetype rows) {
        return marks.Content == content ? size_t(rows) : 0;
    };
    const qsizetype marked = rowCount - marks.Begin;
    if (marks.Begin < 0 || marked < 0 || (marks.Content != TPacketContent::RowsAndLog && marks.Begin != 0) ||
        marks.Content > TPacketContent::Delta)
        RaiseBadMarks("起始行无效");
    if (marks.Statuses.Size() !=
            count(TPacketContent::RowsAndLog, marked) + count(TPacketContent::Delta, marked) ||
        marks.Records.Size() != count(TPacketContent::RowsAndLog, marked))
        RaiseBadMarks("长度不符");
}

void CheckMarks(const TPacketMarks &marks)
{
    if (marks.Content == TPacketContent::RowsAndLog)
        CheckLog(marks);
    else if (marks.Content == TPacketContent::Delta)
        CheckDelta(marks);
}

bool IsUtf8(std::string_view bytes)
{
    const auto *at = reinterpret_cast<const unsigned char *>(bytes.data());
    const auto *const end = at + bytes.size();
    while ((at = SkipAscii(at, end)) != end) {
        const size_t length = MultibyteLength(at, end);
        if (length == 0)
            return false;
        at += length;
    }
    return true;
}

TPacketValidator::TPacketValidator(const TPacketField &field, const TPacketColumn &column, qsizetype rowCount)
    : FField(field), FColumn(column), FRowCount(size_t(rowCount))
{
}

void TPacketValidator::CheckShape() const
{
    if (FField.Type == ftUnknown || ColumnKindOf(FField.Type) != FColumn.FKind)
        Raise("字段类型与数据不符");
    CheckLengths();
    if (FColumn.HasNulls() && FColumn.FNulls.Size() != (FRowCount + 63) / 64)
        Raise("空值表长度不符");
}

void TPacketValidator::CheckLengths() const
{
    const TColumnKind kind = FColumn.FKind;
    const bool hasBytes = kind == TColumnKind::Text || kind == TColumnKind::Blob;
    const auto expected = [this](bool used) { return used ? FRowCount : 0; };
    if (FColumn.FInt32s.Size() != expected(kind == TColumnKind::Int32) ||
        FColumn.FInt64s.Size() != expected(kind == TColumnKind::Int64) ||
        FColumn.FDoubles.Size() != expected(kind == TColumnKind::Double) ||
        FColumn.FOffsets.Size() != (hasBytes ? FRowCount + 1 : 0))
        Raise("数据长度不符");
    if (hasBytes ? FColumn.FOffsets[0] != 0 || FColumn.FOffsets.Last() != FColumn.FArena.Size()
                 : !FColumn.FArena.IsEmpty())
        Raise("文本长度不符");
}

void TPacketValidator::CheckCells() const
{
    if (!FColumn.FOffsets.IsEmpty())
        CheckOffsets();
    if (FColumn.FKind == TColumnKind::Text)
        CheckTexts();
    if (FColumn.HasNulls())
        CheckNulls();
}

void TPacketValidator::CheckOffsets() const
{
    for (size_t i = 0; i < FRowCount; ++i)
        if (FColumn.FOffsets[i] > FColumn.FOffsets[i + 1])
            Raise("文本位置不递增");
}

void TPacketValidator::CheckTexts() const
{
    // The whole arena at once is quick; that no text begins inside a character is then all
    // that is left to look at.
    if (!IsUtf8({FColumn.FArena.Data(), FColumn.FArena.Size()}))
        Raise("文本不是 UTF-8");
    for (size_t i = 0; i < FRowCount; ++i) {
        const size_t begin = FColumn.FOffsets[i];
        if (begin < FColumn.FArena.Size() && (FColumn.FArena[begin] & 0xC0) == 0x80)
            Raise("文本在字符中间断开");
    }
}

void TPacketValidator::CheckNulls() const
{
    if (FRowCount % 64 != 0 && FColumn.FNulls.Last() >> (FRowCount % 64) != 0)
        Raise("空值表超出行数");
    for (size_t word = 0; word < FColumn.FNulls.Size(); ++word) {
        if (FColumn.FNulls[word] == 0)
            continue;
        for (size_t row = word * 64; row < std::min(FRowCount, word * 64 + 64); ++row)
            if (FColumn.IsNull(qsizetype(row)) && !IsBlank(qsizetype(row)))
                Raise("空值带有数据");
    }
}

bool TPacketValidator::IsBlank(qsizetype row) const
{
    switch (FColumn.FKind) {
    case TColumnKind::Int32:
    case TColumnKind::Int64:
        return FColumn.Int(row) == 0;
    case TColumnKind::Double:
        return FColumn.FDoubles[size_t(row)] == 0;
    case TColumnKind::Text:
    case TColumnKind::Blob:
        break;
    }
    return FColumn.Bytes(row).empty();
}

void TPacketValidator::Raise(const char *fault) const
{
    throw EDatabaseError(
        QStringLiteral("数据包已损坏，字段“%1”：%2").arg(FField.Name, QString::fromUtf8(fault)));
}

} // namespace Korvane
