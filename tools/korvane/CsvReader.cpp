// SPDX-License-Identifier: MIT
#include "CsvReader.h"

#include "platform/core/Exceptions.h"

#include <QByteArrayView>
#include <QFileDevice>

#include <algorithm>
#include <cstring>

namespace Korvane {

namespace {
constexpr qsizetype ChunkSize = 64 * 1024;
constexpr int AtEnd = -1;
} // namespace

bool TCsvReader::Next()
{
    if (!FStarted)
        SkipByteOrderMark();
    FRow.clear();
    FFields.clear();
    if (Peek() == AtEnd)
        return false;
    FRowLine = FLine;
    do
        ReadField();
    while (ReadSeparator());
    CheckRow();
    return true;
}

bool TCsvReader::IsNull(qsizetype field) const
{
    const Field &at = FFields.at(size_t(field));
    return at.Size == 0 && !at.Quoted;
}

std::string_view TCsvReader::Bytes(qsizetype field) const
{
    const Field &at = FFields.at(size_t(field));
    return std::string_view(FRow).substr(at.Begin, at.Size);
}

QString TCsvReader::Text(qsizetype field) const
{
    if (IsNull(field))
        return QString();
    const std::string_view bytes = Bytes(field);
    return bytes.empty() ? QStringLiteral("") : QString::fromUtf8(bytes.data(), qsizetype(bytes.size()));
}

/// Reads the next piece of the device behind what is still unread; false at the end.
bool TCsvReader::Fill()
{
    FChunk.remove(0, FPosition);
    FPosition = 0;
    const qsizetype kept = FChunk.size();
    FChunk.resize(kept + ChunkSize);
    const qint64 count = FDevice.read(FChunk.data() + kept, ChunkSize);
    FChunk.resize(kept + std::max<qint64>(count, 0));

    // NOTE: a pipe answers -1 at its end, as it does when it fails.
    const auto *file = qobject_cast<const QFileDevice *>(&FDevice);
    if (count < 0 && file && file->error() != QFileDevice::NoError)
        throw EFileError(QStringLiteral("读取 CSV 数据失败：") + FDevice.errorString());
    return count > 0;
}

void TCsvReader::SkipByteOrderMark()
{
    constexpr char mark[] = "\xEF\xBB\xBF";
    FStarted = true;
    while (FChunk.size() < 3 && Fill()) {
    }
    if (FChunk.startsWith(mark))
        FPosition = 3;
}

int TCsvReader::Peek()
{
    if (FPosition == FChunk.size() && !Fill())
        return AtEnd;
    return uchar(FChunk[FPosition]);
}

void TCsvReader::ReadField()
{
    const size_t begin = FRow.size();
    const bool quoted = Peek() == '"';
    if (quoted)
        ReadQuoted();
    else
        ReadPlain();
    FFields.push_back({begin, FRow.size() - begin, quoted});
}

void TCsvReader::ReadQuoted()
{
    const qint64 openingLine = FLine;
    ++FPosition;
    for (;;) {
        if (Peek() == AtEnd)
            Fail(openingLine, QStringLiteral("引号没有结束"));
        const char *const from = FChunk.constData() + FPosition;
        const auto left = size_t(FChunk.size() - FPosition);
        const auto *quote = static_cast<const char *>(std::memchr(from, '"', left));
        const char *const to = quote ? quote : from + left;
        FLine += std::count(from, to, '\n');
        FRow.append(from, to);
        FPosition += to - from;
        if (!quote)
            continue;
        ++FPosition;
        // A doubled quote is a quote of the text.
        if (Peek() != '"')
            return;
        FRow += '"';
        ++FPosition;
    }
}

void TCsvReader::ReadPlain()
{
    constexpr std::string_view stops = ",\"\r\n";
    while (Peek() != AtEnd) {
        const char *const from = FChunk.constData() + FPosition;
        const char *const end = FChunk.constData() + FChunk.size();
        const char *const to = std::find_first_of(from, end, stops.begin(), stops.end());
        FRow.append(from, to);
        FPosition += to - from;
        if (to == end)
            continue;
        if (*to == '"')
            Fail(FLine, QStringLiteral("没有引号的字段中出现了引号"));
        return;
    }
}

/// Steps over what ends a field; true if another field of the row follows.
bool TCsvReader::ReadSeparator()
{
    const int separator = Peek();
    if (separator == AtEnd)
        return false;
    ++FPosition;
    if (separator == ',')
        return true;
    if (separator == '\r') {
        if (Peek() != '\n')
            Fail(FLine, QStringLiteral("回车符后面没有换行符"));
        ++FPosition;
    } else if (separator != '\n') {
        Fail(FLine, QStringLiteral("结束引号后面只能是逗号或换行"));
    }
    ++FLine;
    return false;
}

void TCsvReader::CheckRow()
{
    if (FColumnCount == 0)
        FColumnCount = FFields.size();
    if (FFields.size() != FColumnCount)
        Fail(FRowLine, QStringLiteral("有 %1 个字段，应为 %2 个").arg(FFields.size()).arg(FColumnCount));
    for (qsizetype i = 0; i < FieldCount(); ++i) {
        const std::string_view bytes = Bytes(i);
        if (!QByteArrayView(bytes.data(), qsizetype(bytes.size())).isValidUtf8())
            Fail(FRowLine, QStringLiteral("第 %1 个字段不是有效的 UTF-8").arg(i + 1));
    }
}

void TCsvReader::Fail(qint64 line, const QString &what)
{
    throw EConvertError(QStringLiteral("CSV 第 %1 行：%2").arg(line).arg(what));
}

} // namespace Korvane
