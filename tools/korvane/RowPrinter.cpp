// SPDX-License-Identifier: MIT
#include "RowPrinter.h"

#include "CsvWriter.h"
#include "TextTable.h"

#include "platform/data/NumberText.h"
#include "platform/data/ReadCursor.h"

namespace Korvane {

namespace {

bool IsDate(TFieldType type) { return type == ftDate || type == ftTime || type == ftDateTime; }

bool IsNumber(const TDataPacket &packet, int field)
{
    return packet.Column(field).Kind() <= TColumnKind::Double && !IsDate(packet.Field(field).Type);
}

QString CellText(const TReadCursor &cursor, int field)
{
    const TFieldHandle value = cursor.Field(field);
    if (value.IsNull())
        return {};
    const TPacketColumn &column = cursor.Packet().Column(field);
    if (column.Kind() == TColumnKind::Blob)
        return QStringLiteral("(%1 字节)").arg(column.Bytes(cursor.RowIndex()).size());
    const QString text = value.AsString();
    return text.isNull() ? QStringLiteral("") : text;
}

void WriteCell(TCsvWriter &csv, const TReadCursor &cursor, int field)
{
    const TPacketColumn &column = cursor.Packet().Column(field);
    const qsizetype row = cursor.RowIndex();
    if (column.IsNull(row))
        return csv.Null();
    switch (column.Kind()) {
    case TColumnKind::Int32:
    case TColumnKind::Int64:
        return csv.Bare(TNumberText(column.Int(row)).View());
    case TColumnKind::Double:
        if (IsDate(cursor.Packet().Field(field).Type))
            return csv.Text(cursor.Field(field).AsString());
        return csv.Bare(TNumberText(column.Doubles()[size_t(row)]).View());
    case TColumnKind::Text:
        return csv.Text(column.Bytes(row));
    case TColumnKind::Blob: {
        const QByteArray hex = cursor.Field(field).AsBytes().toHex();
        return csv.Text(std::string_view(hex.constData(), size_t(hex.size())));
    }
    }
}

} // namespace

QString RowsAsTable(const TDataPacket &packet)
{
    TTextTable table;
    for (int field = 0; field < packet.FieldCount(); ++field)
        table.AddColumn(packet.Field(field).Name,
                        IsNumber(packet, field) ? TTextTable::Alignment::Right : TTextTable::Alignment::Left);
    TReadCursor cursor(packet);
    for (qsizetype left = cursor.RecordCount(); left > 0; --left, cursor.Next()) {
        QStringList cells;
        cells.reserve(packet.FieldCount());
        for (int field = 0; field < packet.FieldCount(); ++field)
            cells.append(CellText(cursor, field));
        table.AddRow(cells);
    }
    return table.ToText();
}

void WriteRowsAsCsv(const TDataPacket &packet, QIODevice &device)
{
    TCsvWriter csv(device);
    for (int field = 0; field < packet.FieldCount(); ++field)
        csv.Text(packet.Field(field).Name);
    csv.EndRow();
    TReadCursor cursor(packet);
    for (qsizetype left = cursor.RecordCount(); left > 0; --left, cursor.Next()) {
        for (int field = 0; field < packet.FieldCount(); ++field)
            WriteCell(csv, cursor, field);
        csv.EndRow();
    }
    csv.Finish();
}

} // namespace Korvane
