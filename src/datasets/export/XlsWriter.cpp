// SPDX-License-Identifier: MIT
#include "datasets/export/XlsWriter.h"

#include "datasets/export/XlsTemplates.h"
#include "platform/core/Cp936.h"
#include "platform/core/Exceptions.h"

#include <QFileInfo>
#include <QtEndian>

namespace Korvane {

namespace {

/// Texts up to this length are encoded where they go.
constexpr size_t ShortText = TExportStream::Capacity / 2;

void PutLength(char *record, size_t bytes)
{
    qToLittleEndian(quint16(bytes + 8), record + 2);
    qToLittleEndian(quint16(bytes), record + 10);
}

} // namespace

TXlsWriter::TXlsWriter(const QString &fileName, int columnCount)
    : FFile(fileName), FStream(FFile), FColumnCount(columnCount)
{
    const QFileInfo info(fileName);
    if (info.isFile())
        QFile::remove(fileName);
    if (!FFile.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        throw EFileError(QStringLiteral("创建文件“%1”失败：%2").arg(fileName, FFile.errorString()));
    FStream.Write(arXlsBegin.data(), arXlsBegin.size());
}

TXlsWriter::~TXlsWriter()
{
    try {
        FStream.Flush();
    } catch (const Exception &) {
        // Who wants to know calls Close.
    }
}

/// Copies a record's beginning, with the cell's place, to where it goes.
template <size_t Size> char *TXlsWriter::BeginCell(const std::array<quint8, Size> &record, size_t room)
{
    char *place = FStream.Room(Size + room);
    std::memcpy(place, record.data(), Size);
    qToLittleEndian(quint16(FRow), place + 4);
    qToLittleEndian(quint16(FColumn), place + 6);
    return place;
}

void TXlsWriter::Integer(qint32 value)
{
    char *place = BeginCell(arXlsInteger, 4);
    qToLittleEndian(quint32(value) << 2 | 2, place + arXlsInteger.size());
    FStream.Advance(arXlsInteger.size() + 4);
    Advance();
}

void TXlsWriter::Number(double value)
{
    char *place = BeginCell(arXlsNumber, 8);
    qToLittleEndian(value, place + arXlsNumber.size());
    FStream.Advance(arXlsNumber.size() + 8);
    Advance();
}

void TXlsWriter::Text(std::string_view utf8)
{
    if (utf8.size() > ShortText)
        return Text(QString::fromUtf8(utf8.data(), qsizetype(utf8.size())));
    char *place = BeginCell(arXlsString, utf8.size());
    const size_t length = FEncoder.Encode(utf8, place + arXlsString.size());
    PutLength(place, length);
    FStream.Advance(arXlsString.size() + length);
    Advance();
}

void TXlsWriter::Text(const QString &text)
{
    const QByteArray bytes = Cp936::Encode(text);
    char *place = BeginCell(arXlsString, 0);
    PutLength(place, size_t(bytes.size()));
    FStream.Advance(arXlsString.size());
    FStream.Write(bytes.constData(), size_t(bytes.size()));
    Advance();
}

void TXlsWriter::End() { FStream.Write(arXlsEnd.data(), arXlsEnd.size()); }

void TXlsWriter::Close()
{
    FStream.Flush();
    FFile.close();
    if (FFile.error() != QFileDevice::NoError)
        throw EFileError(QStringLiteral("写文件“%1”失败：%2").arg(FFile.fileName(), FFile.errorString()));
}

} // namespace Korvane
