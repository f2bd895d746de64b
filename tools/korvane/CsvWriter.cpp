// SPDX-License-Identifier: MIT
#include "CsvWriter.h"

#include "platform/core/Exceptions.h"

#include <QIODevice>

namespace Korvane {

namespace {
constexpr qsizetype BufferSize = 64 * 1024;
}

void TCsvWriter::Text(std::string_view utf8)
{
    Separate();
    FBuffer += '"';
    for (auto quote = utf8.find('"'); quote != utf8.npos; quote = utf8.find('"')) {
        FBuffer.append(utf8.data(), qsizetype(quote) + 1);
        FBuffer += '"';
        utf8.remove_prefix(quote + 1);
    }
    FBuffer.append(utf8.data(), qsizetype(utf8.size()));
    FBuffer += '"';
}

void TCsvWriter::Text(const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    Text(std::string_view(utf8.constData(), size_t(utf8.size())));
}

void TCsvWriter::Bare(std::string_view ascii)
{
    Separate();
    FBuffer.append(ascii.data(), qsizetype(ascii.size()));
}

void TCsvWriter::EndRow()
{
    FBuffer += "\r\n";
    FInRow = false;
    if (FBuffer.size() >= BufferSize)
        Finish();
}

void TCsvWriter::WriteRow(const QStringList &fields)
{
    for (const QString &field : fields) {
        if (field.isNull())
            Null();
        else
            Text(field);
    }
    EndRow();
}

void TCsvWriter::Finish()
{
    if (FDevice.write(FBuffer) != FBuffer.size())
        throw EFileError(QStringLiteral("写入 CSV 数据失败：") + FDevice.errorString());
    FBuffer.clear();
}

void TCsvWriter::Separate()
{
    if (FInRow)
        FBuffer += ',';
    FInRow = true;
}

} // namespace Korvane
