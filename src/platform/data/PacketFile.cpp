// SPDX-License-Identifier: MIT
// The versioned binary form of a data packet: docs/data-packet.md.
#include "platform/core/Exceptions.h"
#include "platform/data/Crc32.h"
#include "platform/data/DataPacket.h"

#include <QBuffer>
#include <QFile>
#include <QSaveFile>
#include <QtEndian>

namespace Korvane {

namespace {

constexpr char Magic[4] = {'K', 'V', 'P', 'K'};
constexpr quint16 RowsVersion = 1;
constexpr quint16 MarksVersion = 2; // has marks behind the columns
constexpr qsizetype HeaderSize = 24;
constexpr qsizetype FieldSize = 16; // without the name
constexpr qsizetype MarksBeginSize = 4;
constexpr qsizetype ChecksumSize = 4;
constexpr quint8 HasNullsFlag = 1;

[[noreturn]] void RaiseBad(const QString &fault)
{
    throw EDatabaseError(QStringLiteral("数据包格式错误：%1").arg(fault));
}

[[noreturn]] void RaiseFile(const QString &text, const QFileDevice &file)
{
    throw EFileError(text.arg(file.fileName(), file.errorString()));
}

} // namespace

/// Writes a packet to a device and sums up its checksum.
class TPacketWriter
{
public:
    explicit TPacketWriter(QIODevice &device) : FDevice(device) {}

    static qint64 SizeOf(const TDataPacket &packet)
    {
        qint64 size = HeaderSize + ChecksumSize;
        for (int i = 0; i < packet.FieldCount(); ++i)
            size += FieldSize + packet.Field(i).Name.toUtf8().size() + SizeOf(packet.Column(i));
        return size + SizeOf(packet.FTable->Marks);
    }

    /// Whether the device took all of it.
    bool Write(const TDataPacket &packet)
    {
        Bytes(Magic, sizeof Magic);
        Number(packet.Content() == TPacketContent::Rows ? RowsVersion : MarksVersion);
        Number(quint16(packet.Content()));
        Number(quint32(packet.FieldCount()));
        Number(quint32(packet.RowCount()));
        Number(quint64(SizeOf(packet)));
        for (int i = 0; i < packet.FieldCount(); ++i)
            Field(packet.Field(i), packet.Column(i));
        for (int i = 0; i < packet.FieldCount(); ++i)
            Column(packet.Column(i));
        Marks(packet.FTable->Marks);
        Number(FChecksum.Value());
        return FWell;
    }

private:
    static qint64 SizeOf(const TPacketColumn &column)
    {
        return qint64(column.FNulls.Size() * 8 + column.FInt32s.Size() * 4 + column.FInt64s.Size() * 8 +
                      column.FDoubles.Size() * 8 + column.FOffsets.Size() * 4 + column.FArena.Size());
    }
    static qint64 SizeOf(const TPacketMarks &marks)
    {
        return (marks.Content == TPacketContent::RowsAndLog ? MarksBeginSize : 0) +
               qint64(marks.Statuses.Size() + marks.Records.Size() * 4);
    }

    void Field(const TPacketField &field, const TPacketColumn &column)
    {
        const QByteArray name = field.Name.toUtf8();
        Number(quint16(field.Type));
        Number(quint8(column.Kind()));
        Number(quint8(column.HasNulls() ? HasNullsFlag : 0));
        Number(qint32(field.Size));
        Number(qint32(field.Precision));
        Number(quint32(name.size()));
        Bytes(name.constData(), size_t(name.size()));
    }

    void Column(const TPacketColumn &column)
    {
        Array(column.FNulls);
        Array(column.FInt32s);
        Array(column.FInt64s);
        Array(column.FDoubles);
        Array(column.FOffsets);
        Bytes(column.FArena.Data(), column.FArena.Size());
    }

    void Marks(const TPacketMarks &marks)
    {
        if (marks.Content == TPacketContent::RowsAndLog)
            Number(quint32(marks.Begin));
        Array(marks.Statuses);
        Array(marks.Records);
    }

    template <class T> void Array(const TPodBuffer<T> &values)
    {
        if constexpr (std::endian::native == std::endian::little) {
            Bytes(values.Data(), values.Size() * sizeof(T));
        } else {
            for (const T value : values.Values())
                Number(value);
        }
    }
    template <class T> void Number(T value)
    {
        const T little = qToLittleEndian(value);
        Bytes(&little, sizeof little);
    }
    void Bytes(const void *bytes, size_t count)
    {
        if (count == 0 || !FWell)
            return;
        FChecksum.Add(bytes, count);
        FWell = FDevice.write(static_cast<const char *>(bytes), qint64(count)) == qint64(count);
    }

    QIODevice &FDevice;
    TCrc32 FChecksum;
    bool FWell = true;
};

/// Reads a packet from a device of known size. No count is believed before the bytes that
/// it announces are known to be there.
class TPacketReader
{
public:
    explicit TPacketReader(QIODevice &device) : FDevice(device), FLeft(device.size()) {}

    TDataPacket Read()
    {
        auto table = std::make_shared<TDataPacket::TTable>();
        const quint32 fieldCount = Header(*table);
        for (quint32 i = 0; i < fieldCount; ++i)
            Field(*table);
        for (size_t i = 0; i < fieldCount; ++i)
            Column(table->Columns[i], size_t(table->RowCount), FHasNulls[i]);
        if (table->Marks.Content != TPacketContent::Rows)
            Marks(table->Marks, table->RowCount);
        const quint32 checksum = FChecksum.Value();
        if (Number<quint32>() != checksum)
            RaiseBad(QStringLiteral("校验和不符"));
        TDataPacket packet(std::move(table));
        packet.ValidateFull();
        return packet;
    }

private:
    quint32 Header(TDataPacket::TTable &table)
    {
        const qint64 size = FLeft;
        char magic[sizeof Magic];
        Bytes(magic, sizeof magic);
        if (std::memcmp(magic, Magic, sizeof Magic) != 0)
            RaiseBad(QStringLiteral("不是数据包"));
        const quint16 version = Number<quint16>();
        if (version != RowsVersion && version != MarksVersion)
            RaiseBad(QStringLiteral("不支持的版本 %1").arg(version));
        const quint16 content = Number<quint16>();
        if (content > quint16(TPacketContent::Delta) || (content == 0) != (version == RowsVersion))
            RaiseBad(QStringLiteral("文件头无效"));
        table.Marks.Content = TPacketContent(content);
        const quint32 fieldCount = Number<quint32>();
        table.RowCount = Number<quint32>();
        if (Number<quint64>() != quint64(size))
            RaiseBad(QStringLiteral("长度不符"));
        if (qint64(fieldCount) > FLeft / FieldSize || table.RowCount > TDataPacket::MaxRowCount)
            RaiseBad(QStringLiteral("文件头无效"));
        return fieldCount;
    }

    void Field(TDataPacket::TTable &table)
    {
        TPacketField field;
        TPacketColumn column;
        const quint16 type = Number<quint16>();
        const quint8 kind = Number<quint8>();
        const quint8 flags = Number<quint8>();
        field.Size = Number<qint32>();
        field.Precision = Number<qint32>();
        QByteArray name;
        const quint32 nameSize = Number<quint32>();
        Claim(1, nameSize);
        name.resize(nameSize);
        Bytes(name.data(), nameSize);
        field.Name = QString::fromUtf8(name);
        if (type > ftGuid || kind > quint8(TColumnKind::Blob) || (flags & ~HasNullsFlag) != 0)
            RaiseBad(QStringLiteral("字段“%1”无效").arg(field.Name));
        field.Type = TFieldType(type);
        column.FKind = TColumnKind(kind);
        FHasNulls.push_back((flags & HasNullsFlag) != 0);
        table.Fields.append(field);
        table.Columns.push_back(std::move(column));
    }

    void Column(TPacketColumn &column, size_t rows, bool hasNulls)
    {
        if (hasNulls)
            Array(column.FNulls, (rows + 63) / 64);
        switch (column.FKind) {
        case TColumnKind::Int32:
            return Array(column.FInt32s, rows);
        case TColumnKind::Int64:
            return Array(column.FInt64s, rows);
        case TColumnKind::Double:
            return Array(column.FDoubles, rows);
        case TColumnKind::Text:
        case TColumnKind::Blob:
            break;
        }
        Array(column.FOffsets, rows + 1);
        Array(column.FArena, column.FOffsets.Last());
    }

    void Marks(TPacketMarks &marks, qsizetype rows)
    {
        if (marks.Content == TPacketContent::RowsAndLog)
            marks.Begin = Number<quint32>();
        if (marks.Begin > rows)
            RaiseBad(QStringLiteral("变更日志无效"));
        const size_t marked = size_t(rows - marks.Begin);
        Array(marks.Statuses, marked);
        if (marks.Content == TPacketContent::RowsAndLog)
            Array(marks.Records, marked);
    }

    template <class T> void Array(TPodBuffer<T> &values, size_t count)
    {
        Claim(sizeof(T), count);
        values.ResizeForWriting(count);
        if constexpr (std::endian::native == std::endian::little || sizeof(T) == 1) {
            Bytes(values.Data(), count * sizeof(T));
        } else {
            for (size_t i = 0; i < count; ++i)
                values[i] = Number<T>();
        }
    }
    template <class T> T Number()
    {
        T value;
        Bytes(&value, sizeof value);
        return qFromLittleEndian(value);
    }
    void Bytes(void *bytes, size_t count)
    {
        Claim(1, count);
        if (count == 0)
            return;
        if (FDevice.read(static_cast<char *>(bytes), qint64(count)) != qint64(count))
            RaiseBad(QStringLiteral("数据不完整"));
        FChecksum.Add(bytes, count);
        FLeft -= qint64(count);
    }
    /// Makes sure that so many bytes are left, before memory is taken for them.
    void Claim(size_t size, size_t count) const
    {
        if (count > size_t(FLeft) / size)
            RaiseBad(QStringLiteral("数据不完整"));
    }

    QIODevice &FDevice;
    qint64 FLeft;
    std::vector<bool> FHasNulls; // per field; read in before any of the columns
    TCrc32 FChecksum;
};

void TDataPacket::SaveToFile(const QString &fileName) const
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || !TPacketWriter(file).Write(*this) || !file.commit())
        RaiseFile(QStringLiteral("写文件“%1”失败：%2"), file);
}

TDataPacket TDataPacket::LoadFromFile(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        RaiseFile(QStringLiteral("打开文件“%1”失败：%2"), file);
    try {
        return TPacketReader(file).Read();
    } catch (const EDatabaseError &error) {
        throw EFileError(QStringLiteral("读文件“%1”失败：%2").arg(fileName, error.Message()));
    }
}

QByteArray TDataPacket::ToBytes() const
{
    QByteArray bytes;
    bytes.reserve(qsizetype(TPacketWriter::SizeOf(*this)));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    TPacketWriter(buffer).Write(*this);
    return bytes;
}

TDataPacket TDataPacket::FromBytes(const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return TPacketReader(buffer).Read();
}

} // namespace Korvane
