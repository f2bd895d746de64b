// SPDX-License-Identifier: MIT
#include "platform/data/DataPacket.h"

#include "platform/core/Exceptions.h"
#include "platform/data/NumberText.h"
#include "platform/data/PacketValidator.h"

#include <QVariant>

namespace Korvane {

namespace {

QString Decoded(std::string_view utf8) { return QString::fromUtf8(utf8.data(), qsizetype(utf8.size())); }

QMetaType TypeOfValues(TColumnKind kind)
{
    switch (kind) {
    case TColumnKind::Int32:
        return QMetaType::fromType<int>();
    case TColumnKind::Int64:
        return QMetaType::fromType<qlonglong>();
    case TColumnKind::Double:
        return QMetaType::fromType<double>();
    case TColumnKind::Text:
        return QMetaType::fromType<QString>();
    case TColumnKind::Blob:
        break;
    }
    return QMetaType::fromType<QByteArray>();
}

} // namespace

TColumnKind ColumnKindOf(TFieldType type)
{
    switch (type) {
    case ftSmallint:
    case ftInteger:
    case ftWord:
    case ftBoolean:
    case ftAutoInc:
        return TColumnKind::Int32;
    case ftLargeint:
        return TColumnKind::Int64;
    case ftFloat:
    case ftCurrency:
    case ftBCD:
    case ftDate:
    case ftTime:
    case ftDateTime:
        return TColumnKind::Double;
    case ftBytes:
    case ftVarBytes:
    case ftBlob:
    case ftGraphic:
    case ftParadoxOle:
    case ftDBaseOle:
    case ftTypedBinary:
    case ftCursor:
    case ftADT:
    case ftArray:
    case ftReference:
    case ftDataSet:
    case ftOraBlob:
        return TColumnKind::Blob;
    case ftUnknown:
    case ftString:
    case ftMemo:
    case ftFmtMemo:
    case ftFixedChar:
    case ftWideString:
    case ftOraClob:
    case ftVariant:
    case ftGuid:
        break;
    }
    return TColumnKind::Text;
}

qsizetype TPacketColumn::MemoryUsage() const
{
    return qsizetype(sizeof *this + FInt32s.MemoryUsage() + FInt64s.MemoryUsage() + FDoubles.MemoryUsage() +
                     FOffsets.MemoryUsage() + FArena.MemoryUsage() + FNulls.MemoryUsage());
}

TDataPacket::TDataPacket()
{
    static const auto empty = std::make_shared<const TTable>();
    FTable = empty;
}

TDataPacket::TDataPacket(std::shared_ptr<const TTable> table) : FTable(std::move(table)) {}

int TDataPacket::IndexOf(QStringView name) const
{
    for (int i = 0; i < FieldCount(); ++i) {
        const QString &own = FTable->Fields[i].Name;
        if (own.size() == name.size() && own.compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

QVariant TDataPacket::Value(int field, qsizetype row) const
{
    const TPacketColumn &column = Column(field);
    if (column.IsNull(row))
        return QVariant(TypeOfValues(column.Kind()));
    switch (column.Kind()) {
    case TColumnKind::Int32:
        return column.Int32s()[size_t(row)];
    case TColumnKind::Int64:
        return column.Int64s()[size_t(row)];
    case TColumnKind::Double:
        return column.Doubles()[size_t(row)];
    case TColumnKind::Text:
        return Decoded(column.Bytes(row));
    case TColumnKind::Blob:
        break;
    }
    const std::string_view bytes = column.Bytes(row);
    return QByteArray(bytes.data(), qsizetype(bytes.size()));
}

QString TDataPacket::Text(int field, qsizetype row) const
{
    const TPacketColumn &column = Column(field);
    if (column.IsNull(row))
        return {};
    switch (column.Kind()) {
    case TColumnKind::Int32:
    case TColumnKind::Int64:
        return Decoded(TNumberText(column.Int(row)).View());
    case TColumnKind::Double:
        return Decoded(TNumberText(column.Doubles()[size_t(row)]).View());
    case TColumnKind::Text:
    case TColumnKind::Blob:
        break;
    }
    return Decoded(column.Bytes(row));
}

TPacketContent TDataPacket::Content() const { return FTable->Marks.Content; }

qsizetype TDataPacket::LogBegin() const
{
    return Content() == TPacketContent::Rows ? RowCount() : FTable->Marks.Begin;
}

TUpdateStatus TDataPacket::UpdateStatus(qsizetype row) const
{
    const qsizetype begin = LogBegin();
    return row < begin ? usUnmodified : TUpdateStatus(FTable->Marks.Statuses[size_t(row - begin)]);
}

quint32 TDataPacket::LoggedRecord(qsizetype row) const
{
    const bool isLogged = Content() == TPacketContent::RowsAndLog && row >= LogBegin();
    return isLogged && UpdateStatus(row) != usInserted ? FTable->Marks.Records[size_t(row - LogBegin())]
                                                       : NoRecord;
}

quint32 TDataPacket::InsertionPlace(qsizetype row) const
{
    const bool isLogged = Content() == TPacketContent::RowsAndLog && row >= LogBegin();
    return isLogged && UpdateStatus(row) == usInserted ? FTable->Marks.Records[size_t(row - LogBegin())]
                                                       : NoRecord;
}

qsizetype TDataPacket::MemoryUsage() const
{
    const TPacketMarks &marks = FTable->Marks;
    qsizetype usage = qsizetype(sizeof(TTable) + marks.Statuses.MemoryUsage() + marks.Records.MemoryUsage());
    for (const TPacketColumn &column : FTable->Columns)
        usage += column.MemoryUsage();
    for (const TPacketField &field : FTable->Fields)
        usage += qsizetype(sizeof field) + field.Name.capacity() * qsizetype(sizeof(QChar));
    return usage;
}

void TDataPacket::Validate() const
{
    if (FTable->Fields.size() != qsizetype(FTable->Columns.size()))
        throw EDatabaseError(QStringLiteral("数据包已损坏：字段数与列数不一致"));
    if (FTable->RowCount < 0 || FTable->RowCount > (FTable->Columns.empty() ? 0 : MaxRowCount))
        throw EDatabaseError(QStringLiteral("数据包已损坏：行数 %1 无效").arg(FTable->RowCount));
    for (int i = 0; i < FieldCount(); ++i)
        TPacketValidator(Field(i), Column(i), RowCount()).CheckShape();
    CheckMarkShape(FTable->Marks, RowCount());
}

void TDataPacket::ValidateFull() const
{
    Validate();
    for (int i = 0; i < FieldCount(); ++i)
        TPacketValidator(Field(i), Column(i), RowCount()).CheckCells();
    CheckMarks(FTable->Marks);
}

} // namespace Korvane
