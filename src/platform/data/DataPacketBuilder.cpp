// SPDX-License-Identifier: MIT
#include "platform/data/DataPacket.h"

#include "platform/core/Exceptions.h"
#include "platform/data/NumberText.h"
#include "platform/data/PacketValidator.h"
#include "platform/data/RowReader.h"

#include <bit>

namespace Korvane {

namespace {

/// Texts longer than this, in characters, make a memo of a field whose type is inferred.
constexpr int MaxStringLength = 255;

bool IsInt32(qint64 value) { return value == qint32(value); }

bool IsInteger(TColumnKind kind) { return kind == TColumnKind::Int32 || kind == TColumnKind::Int64; }

bool HasBytes(TColumnKind kind) { return kind == TColumnKind::Text || kind == TColumnKind::Blob; }

/// The type that a field takes when its column widens to a kind.
TFieldType TypeAfterWidening(TColumnKind kind)
{
    switch (kind) {
    case TColumnKind::Int32:
        return ftInteger;
    case TColumnKind::Int64:
        return ftLargeint;
    case TColumnKind::Double:
        return ftFloat;
    case TColumnKind::Text:
        return ftString;
    case TColumnKind::Blob:
        break;
    }
    return ftBlob;
}

/// The bytes of the texts from begin to end.
std::string_view Run(const TPodBuffer<quint32> &offsets, const TPodBuffer<char> &arena, qsizetype begin,
                     qsizetype end)
{
    const quint32 from = offsets[size_t(begin)];
    return {arena.Data() + from, offsets[size_t(end)] - from};
}

int CharacterCount(std::string_view utf8)
{
    return int(std::count_if(utf8.begin(), utf8.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

} // namespace

TDataPacketBuilder::TDataPacketBuilder(QList<TPacketField> fields, quint32 arenaLimit)
    : FFields(std::move(fields)), FFilling(size_t(FFields.size())), FArenaLimit(arenaLimit)
{
    for (size_t i = 0; i < FFilling.size(); ++i) {
        const TFieldType type = FFields[qsizetype(i)].Type;
        if (type == ftUnknown)
            continue;
        FFilling[i].Column.FKind = ColumnKindOf(type);
        FFilling[i].IsSettled = FFilling[i].IsTypeGiven = true;
        if (HasBytes(FFilling[i].Column.FKind))
            FFilling[i].Column.FOffsets.Append(0);
    }
}

void TDataPacketBuilder::AppendBlob(int field, std::string_view bytes)
{
    TFilling &filling = Prepare(field, TColumnKind::Blob, ftBlob);
    if (filling.Column.FKind != TColumnKind::Blob)
        Widen(field, TColumnKind::Blob);
    AddBytes(field, bytes);
}

void TDataPacketBuilder::AppendCell(int field, const TRowReader &row)
{
    if (row.IsNull(field))
        return AppendNull(field);
    switch (FFilling[size_t(field)].Column.FKind) {
    case TColumnKind::Int32:
    case TColumnKind::Int64:
        return AppendInt(field, row.GetInt(field));
    case TColumnKind::Double:
        return AppendDouble(field, row.GetDouble(field));
    case TColumnKind::Text:
        return AppendText(field, row.GetText(field));
    case TColumnKind::Blob:
        break;
    }
    AppendBlob(field, row.GetText(field));
}

void TDataPacketBuilder::AppendRows(const TDataPacket &packet, qsizetype begin, qsizetype end,
                                    std::span<const int> columns)
{
    if (end - begin > TDataPacket::MaxRowCount - FRowCount)
        RaiseTooManyRows();
    const auto columnOf = [columns](int field) { return columns.empty() ? field : columns[size_t(field)]; };
    for (int i = 0; i < FieldCount(); ++i) {
        if (columnOf(i) < 0)
            continue;
        const TPacketColumn &source = packet.Column(columnOf(i));
        if (HasBytes(source.FKind) &&
            !Fits(FFilling[size_t(i)], Run(source.FOffsets, source.FArena, begin, end)))
            RaiseTooMuchText(i);
    }
    for (int i = 0; i < FieldCount(); ++i)
        if (columnOf(i) >= 0)
            AppendRun(i, packet.Column(columnOf(i)), size_t(begin), size_t(end));
    FRowCount += end - begin;
}

void TDataPacketBuilder::AppendRun(int field, const TPacketColumn &source, size_t begin, size_t end)
{
    TFilling &filling = Prepare(field, source.FKind, TypeAfterWidening(source.FKind));
    TPacketColumn &column = filling.Column;
    Q_ASSERT(column.FKind == source.FKind);
    if (column.FKind == TColumnKind::Int32)
        column.FInt32s.Append(source.FInt32s.Data() + begin, end - begin);
    else if (column.FKind == TColumnKind::Int64)
        column.FInt64s.Append(source.FInt64s.Data() + begin, end - begin);
    else if (column.FKind == TColumnKind::Double)
        column.FDoubles.Append(source.FDoubles.Data() + begin, end - begin);
    else
        AppendTexts(column, source, begin, end);
    if (source.HasNulls())
        AppendNullBits(filling, source, begin, end);
    filling.Length += qsizetype(end - begin);
}

void TDataPacketBuilder::AppendTexts(TPacketColumn &column, const TPacketColumn &source, size_t begin,
                                     size_t end)
{
    // Modulo 2^32, as the bytes may stand further to the front than they did.
    const quint32 shift = quint32(column.FArena.Size()) - source.FOffsets[begin];
    const std::string_view texts = Run(source.FOffsets, source.FArena, qsizetype(begin), qsizetype(end));
    column.FArena.Append(texts.data(), texts.size());
    const size_t at = column.FOffsets.Size();
    column.FOffsets.Append(source.FOffsets.Data() + begin + 1, end - begin);
    for (size_t i = at; i < column.FOffsets.Size(); ++i)
        column.FOffsets[i] += shift;
}

void TDataPacketBuilder::AppendNullBits(TFilling &filling, const TPacketColumn &source, size_t begin,
                                        size_t end)
{
    TPodBuffer<quint64> &nulls = filling.Column.FNulls;
    const size_t at = size_t(filling.Length);
    for (size_t row = begin; row < end;) {
        const quint64 word = source.FNulls[row >> 6] >> (row & 63);
        row += word == 0 ? 64 - (row & 63) : size_t(std::countr_zero(word));
        if (word == 0 || row >= end)
            continue;
        const size_t place = at + row - begin;
        nulls.FillTo(std::max(nulls.Size(), (place + 64) / 64), 0);
        nulls[place >> 6] |= quint64(1) << (place & 63);
        ++row;
    }
}

void TDataPacketBuilder::Expect(qsizetype rows)
{
    rows = std::min(rows, TDataPacket::MaxRowCount);
    if (FRowCount == 0 || rows <= FRowCount)
        return;
    for (TFilling &filling : FFilling) {
        TPacketColumn &column = filling.Column;
        const auto reserve = [rows](auto &values) {
            if (!values.IsEmpty())
                values.Reserve(size_t(rows) + 1);
        };
        reserve(column.FInt32s);
        reserve(column.FInt64s);
        reserve(column.FDoubles);
        reserve(column.FOffsets);
        const double bytes = double(column.FArena.Size()) / double(FRowCount) * double(rows);
        column.FArena.Reserve(size_t(std::min(bytes * 17 / 16, double(FArenaLimit)))); // lengths vary
    }
}

void TDataPacketBuilder::BeginLog(TPacketContent content)
{
    FMarks.Content = content;
    FMarks.Begin = FRowCount;
}

void TDataPacketBuilder::EndLogRow(TUpdateStatus status, quint32 record)
{
    EndRow();
    FMarks.Statuses.Append(quint8(status));
    if (FMarks.Content == TPacketContent::RowsAndLog)
        FMarks.Records.Append(record);
}

void TDataPacketBuilder::AddInt(int field, qint64 value)
{
    const TColumnKind fitting = IsInt32(value) ? TColumnKind::Int32 : TColumnKind::Int64;
    TFilling &filling = Prepare(field, fitting, TypeAfterWidening(fitting));
    TPacketColumn &column = filling.Column;
    if (column.FKind == TColumnKind::Int32 && !IsInt32(value))
        Widen(field, TColumnKind::Int64);
    else if (column.FKind == TColumnKind::Double && !IsExactAsDouble(value))
        WidenToText(field);

    if (HasBytes(column.FKind)) {
        AddBytes(field, TNumberText(value).View());
        return;
    }
    if (column.FKind == TColumnKind::Int32)
        column.FInt32s.Append(qint32(value));
    else if (column.FKind == TColumnKind::Int64)
        column.FInt64s.Append(value);
    else
        column.FDoubles.Append(double(value));
    ++filling.Length;
}

void TDataPacketBuilder::AddDouble(int field, double value)
{
    TFilling &filling = Prepare(field, TColumnKind::Double, ftFloat);
    if (IsInteger(filling.Column.FKind)) {
        if (const auto integer = ExactInt(value)) {
            AddInt(field, *integer);
            return;
        }
        WidenForFraction(field);
    }
    if (HasBytes(filling.Column.FKind)) {
        AddBytes(field, TNumberText(value).View());
        return;
    }
    filling.Column.FDoubles.Append(value);
    ++filling.Length;
}

void TDataPacketBuilder::AddText(int field, std::string_view utf8)
{
    const TFilling &filling = Prepare(field, TColumnKind::Text, ftString);
    if (!HasBytes(filling.Column.FKind))
        WidenToText(field);
    AddBytes(field, utf8);
}

void TDataPacketBuilder::AddBytes(int field, std::string_view bytes)
{
    TFilling &filling = FFilling[size_t(field)];
    if (!Fits(filling, bytes))
        RaiseTooMuchText(field);
    Push(filling, bytes);
}

/// Makes a column ready for its next value: settles its kind if that is open, and fills in
/// the NULLs of the rows that gave it nothing.
TDataPacketBuilder::TFilling &TDataPacketBuilder::Prepare(int field, TColumnKind kind, TFieldType type)
{
    TFilling &filling = FFilling[size_t(field)];
    if (filling.Length > FRowCount)
        RaiseSecondValue(field);
    if (!filling.IsSettled) {
        filling.Column.FKind = kind;
        filling.IsSettled = true;
        FFields[field].Type = type;
        if (HasBytes(kind))
            filling.Column.FOffsets.Append(0);
    }
    PadWithNulls(filling, FRowCount);
    return filling;
}

void TDataPacketBuilder::PadWithNulls(TFilling &filling, qsizetype length)
{
    if (filling.Length == length)
        return;
    TPacketColumn &column = filling.Column;
    const size_t size = size_t(length);
    column.FNulls.FillTo(std::max(column.FNulls.Size(), (size + 63) / 64), 0);
    for (size_t row = size_t(filling.Length); row < size; ++row)
        column.FNulls[row >> 6] |= quint64(1) << (row & 63);
    if (column.FKind == TColumnKind::Int32)
        column.FInt32s.FillTo(size, 0);
    else if (column.FKind == TColumnKind::Int64)
        column.FInt64s.FillTo(size, 0);
    else if (column.FKind == TColumnKind::Double)
        column.FDoubles.FillTo(size, 0);
    else
        column.FOffsets.FillTo(size + 1, quint32(column.FArena.Size()));
    filling.Length = length;
}

/// Carries a column over to a wider kind that holds all of its values.
void TDataPacketBuilder::Widen(int field, TColumnKind kind)
{
    if (kind >= TColumnKind::Text && !HasBytes(FFilling[size_t(field)].Column.FKind))
        WidenToText(field);
    TFilling &filling = FFilling[size_t(field)];
    TPacketColumn &column = filling.Column;
    const size_t length = size_t(filling.Length);
    if (kind == TColumnKind::Int64) {
        TPodBuffer<qint64> wide;
        wide.ResizeForWriting(length);
        std::copy_n(column.FInt32s.Data(), length, wide.Data());
        column.FInt64s = std::move(wide);
        column.FInt32s = {};
    } else if (kind == TColumnKind::Double) {
        TPodBuffer<double> wide;
        wide.ResizeForWriting(length);
        for (size_t row = 0; row < length; ++row)
            wide[row] = double(column.Int(qsizetype(row)));
        column.FDoubles = std::move(wide);
        column.FInt32s = {};
        column.FInt64s = {};
    }
    column.FKind = kind;
    filling.IsTypeGiven = false;
    FFields[field].Type = TypeAfterWidening(kind);
}

void TDataPacketBuilder::WidenToText(int field)
{
    TFilling &filling = FFilling[size_t(field)];
    TPacketColumn &numbers = filling.Column;
    if (numbers.HasNulls())
        numbers.FNulls.FillTo((size_t(filling.Length) + 63) / 64, 0);
    TFilling texts;
    texts.Column.FOffsets.Append(0);
    const auto push = [&](std::string_view text) {
        if (!Fits(texts, text))
            RaiseTooMuchText(field);
        Push(texts, text);
    };
    for (qsizetype row = 0; row < filling.Length; ++row) {
        if (numbers.IsNull(row))
            push({});
        else if (IsInteger(numbers.FKind))
            push(TNumberText(numbers.Int(row)).View());
        else
            push(TNumberText(numbers.FDoubles[size_t(row)]).View());
    }
    texts.Column.FKind = TColumnKind::Text;
    texts.Column.FNulls = std::move(numbers.FNulls);
    texts.Length = filling.Length;
    texts.IsSettled = true;
    filling = std::move(texts);
    FFields[field].Type = ftString;
}

/// An integer column meets a fraction: floats if they hold each of its integers, else text.
void TDataPacketBuilder::WidenForFraction(int field)
{
    const auto values = FFilling[size_t(field)].Column.Int64s();
    if (std::all_of(values.begin(), values.end(), IsExactAsDouble))
        Widen(field, TColumnKind::Double);
    else
        WidenToText(field);
}

TDataPacket TDataPacketBuilder::Build() &&
{
    if (FFields.isEmpty()) {
        FRowCount = FMarks.Begin = 0;
        FMarks.Statuses = {};
        FMarks.Records = {};
    }
    CheckMarkShape(FMarks, FRowCount);
    CheckMarks(FMarks);
    auto table = std::make_shared<TDataPacket::TTable>();
    table->Columns.reserve(FFilling.size());
    for (int i = 0; i < FieldCount(); ++i) {
        Freeze(i);
        table->Columns.push_back(std::move(FFilling[size_t(i)].Column));
    }
    table->RowCount = FRowCount;
    table->Fields = std::exchange(FFields, {});
    FMarks.Statuses.Shrink();
    FMarks.Records.Shrink();
    table->Marks = std::exchange(FMarks, {});
    FFilling.clear();
    FRowCount = 0;
    return TDataPacket(std::move(table));
}

void TDataPacketBuilder::Freeze(int field)
{
    TFilling &filling = FFilling[size_t(field)];
    TPacketColumn &column = filling.Column;
    const size_t rows = size_t(FRowCount);
    if (filling.Length > FRowCount) {
        column.FInt32s.ResizeForWriting(std::min(column.FInt32s.Size(), rows));
        column.FInt64s.ResizeForWriting(std::min(column.FInt64s.Size(), rows));
        column.FDoubles.ResizeForWriting(std::min(column.FDoubles.Size(), rows));
        if (HasBytes(column.FKind)) {
            column.FOffsets.ResizeForWriting(rows + 1);
            column.FArena.ResizeForWriting(column.FOffsets.Last());
        }
        filling.Length = FRowCount;
    }
    Prepare(field, TColumnKind::Text, ftString);
    if (column.HasNulls())
        column.FNulls.FillTo((rows + 63) / 64, 0);
    if (!filling.IsTypeGiven && column.FKind == TColumnKind::Text && HasLongText(column))
        FFields[field].Type = ftMemo;
    column.FInt32s.Shrink();
    column.FInt64s.Shrink();
    column.FDoubles.Shrink();
    column.FOffsets.Shrink();
    column.FArena.Shrink();
    column.FNulls.Shrink();
}

bool TDataPacketBuilder::HasLongText(const TPacketColumn &column) const
{
    for (qsizetype row = 0; row < FRowCount; ++row) {
        const std::string_view text = column.Bytes(row);
        if (text.size() > MaxStringLength && CharacterCount(text) > MaxStringLength)
            return true;
    }
    return false;
}

void TDataPacketBuilder::RaiseSecondValue(int field) const
{
    throw EDatabaseError(QStringLiteral("字段“%1”在同一行中被赋值两次").arg(FFields[field].Name));
}

void TDataPacketBuilder::RaiseTooManyRows() const
{
    throw EOutOfResources(QStringLiteral("数据包的行数超过上限 %1").arg(TDataPacket::MaxRowCount));
}

void TDataPacketBuilder::RaiseTooMuchText(int field) const
{
    throw EOutOfResources(
        QStringLiteral("字段“%1”的数据超过上限 %2 字节").arg(FFields[field].Name).arg(FArenaLimit));
}

} // namespace Korvane
