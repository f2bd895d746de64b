// SPDX-License-Identifier: MIT
#include "support/Packets.h"

#include "platform/core/Exceptions.h"

namespace Korvane {

namespace {

void AppendValue(TDataPacketBuilder &builder, int field, const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        return builder.AppendNull(field);
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::LongLong:
        return builder.AppendInt(field, value.toLongLong());
    case QMetaType::Double:
        return builder.AppendDouble(field, value.toDouble());
    case QMetaType::QString:
        return builder.AppendText(field, value.toString().toStdString());
    case QMetaType::QByteArray:
        return builder.AppendBlob(field, value.toByteArray().toStdString());
    default:
        throw Exception(QStringLiteral("no literal of a packet: %1").arg(QLatin1String(value.typeName())));
    }
}

QString CellText(const TDataPacket &packet, int field, qsizetype row)
{
    const TPacketColumn &column = packet.Column(field);
    if (column.IsNull(row))
        return QStringLiteral("~");
    if (column.Kind() != TColumnKind::Blob)
        return packet.Text(field, row);
    return QStringLiteral("0x") + QString::fromLatin1(packet.Value(field, row).toByteArray().toHex());
}

QString RowText(const TDataPacket &packet, qsizetype row)
{
    QStringList cells;
    for (int i = 0; i < packet.FieldCount(); ++i)
        cells += CellText(packet, i, row);
    return cells.join(u'|');
}

QString MarkText(const TDataPacket &packet, qsizetype row)
{
    static const char *const names[] = {"unmodified", "modified", "inserted", "deleted"};
    const QString name = QString::fromLatin1(names[packet.UpdateStatus(row)]);
    if (packet.Content() == TPacketContent::Delta)
        return name + QStringLiteral(": ");
    const quint32 record = packet.LoggedRecord(row);
    return QStringLiteral("%1 %2: ").arg(name).arg(
        record == TDataPacket::NoRecord ? packet.InsertionPlace(row) : record);
}

QString FieldText(const TPacketField &field)
{
    QString text = field.Name + u':' + NameOf(field.Type);
    if (field.Precision != 0)
        text += QStringLiteral("(%1,%2)").arg(field.Size).arg(field.Precision);
    else if (field.Size != 0)
        text += QStringLiteral("(%1)").arg(field.Size);
    return text;
}

} // namespace

TDataPacket PacketOf(const QList<TPacketField> &fields, const QList<QVariantList> &rows)
{
    TDataPacketBuilder builder(fields);
    for (const QVariantList &row : rows) {
        if (row.size() != fields.size())
            throw Exception(QStringLiteral("a packet's row has %1 values for %2 fields")
                                .arg(row.size())
                                .arg(fields.size()));
        for (int i = 0; i < fields.size(); ++i)
            AppendValue(builder, i, row[i]);
        builder.EndRow();
    }
    return std::move(builder).Build();
}

QString TextOf(const TDataPacket &packet)
{
    QStringList fields;
    for (const TPacketField &field : packet.Fields())
        fields += FieldText(field);
    QString text = fields.join(u'|') + u'\n';
    for (qsizetype row = 0; row < packet.LogBegin(); ++row)
        text += RowText(packet, row) + u'\n';
    if (packet.Content() != TPacketContent::Rows)
        text += packet.Content() == TPacketContent::Delta ? u"-- delta\n" : u"-- log\n";
    for (qsizetype row = packet.LogBegin(); row < packet.RowCount(); ++row)
        text += MarkText(packet, row) + RowText(packet, row) + u'\n';
    return text;
}

QString TextOfRows(const TDataPacket &packet, const std::vector<quint32> &rows)
{
    QString text;
    for (const quint32 row : rows)
        text += RowText(packet, row) + u'\n';
    return text;
}

QString NameOf(TFieldType type)
{
    static const char *const names[] = {
        "unknown",     "string",  "smallint",  "integer",    "word",     "boolean",    "float",
        "currency",    "bcd",     "date",      "time",       "datetime", "bytes",      "varbytes",
        "autoinc",     "blob",    "memo",      "graphic",    "fmtmemo",  "paradoxole", "dbaseole",
        "typedbinary", "cursor",  "fixedchar", "widestring", "largeint", "adt",        "array",
        "reference",   "dataset", "orablob",   "oraclob",    "variant",  "guid"};
    return QString::fromLatin1(names[type]);
}

QString RaisedBy(const std::function<void()> &call)
{
    try {
        call();
    } catch (const EOutOfResources &error) {
        return QStringLiteral("EOutOfResources: ") + error.Message();
    } catch (const EFileError &error) {
        return QStringLiteral("EFileError: ") + error.Message();
    } catch (const EConvertError &error) {
        return QStringLiteral("EConvertError: ") + error.Message();
    } catch (const EDatabaseError &error) {
        return QStringLiteral("EDatabaseError: ") + error.Message();
    } catch (const Exception &error) {
        return QStringLiteral("Exception: ") + error.Message();
    }
    return QStringLiteral("nothing");
}

} // namespace Korvane
