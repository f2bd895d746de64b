// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/SchemaRowsets.h"

#include "platform/core/DateTime.h"
#include "platform/sql/sqlite/SqliteMetadata.h"

namespace Korvane {

namespace {

/// Takes rows of values and keeps those that meet the restrictions.
class TRowsetBuilder
{
public:
    TRowsetBuilder(QList<TPacketField> fields, QVariantList restrictions)
        : FBuilder(std::move(fields)), FRestrictions(std::move(restrictions))
    {
    }

    void Add(const QVariantList &row)
    {
        for (qsizetype i = 0; i < qMin(row.size(), FRestrictions.size()); ++i) {
            const QString wanted = FRestrictions[i].toString();
            if (!wanted.isEmpty() && wanted.compare(row[i].toString(), Qt::CaseInsensitive) != 0)
                return;
        }
        for (qsizetype i = 0; i < row.size(); ++i)
            AddCell(int(i), row[i]);
        FBuilder.EndRow();
    }

    TDataPacket Build() && { return std::move(FBuilder).Build(); }

private:
    void AddCell(int field, const QVariant &value)
    {
        if (value.isNull())
            return FBuilder.AppendNull(field);
        if (value.typeId() == QMetaType::Double)
            return FBuilder.AppendDouble(field, value.toDouble());
        if (value.typeId() != QMetaType::QString)
            return FBuilder.AppendInt(field, value.toLongLong());
        const QByteArray text = value.toString().toUtf8();
        FBuilder.AppendText(field, {text.constData(), size_t(text.size())});
    }

    TDataPacketBuilder FBuilder;
    const QVariantList FRestrictions;
};

double DateNumber(const QDateTime &time) { return TDateTime(time).Days(); }

/// The length in a declared type's brackets, NULL where there is none.
QVariant DeclaredLength(const QString &declared)
{
    const qsizetype open = declared.indexOf(QLatin1Char('('));
    const int length = open < 0 ? 0
                                : declared.mid(open + 1)
                                      .section(QLatin1Char(')'), 0, 0)
                                      .section(QLatin1Char(','), 0, 0)
                                      .trimmed()
                                      .toInt();
    return length > 0 ? QVariant(length) : QVariant();
}

bool IsSystemTable(const QString &name)
{
    return name.startsWith(QLatin1String("sqlite_")) || name == QLatin1String(MetadataTable);
}

/// The name of an index without its table's name before it (docs/dialects.md).
QString PlainIndexName(const QString &table, const QString &index)
{
    const QString prefix = table + QLatin1Char('.');
    return index.startsWith(prefix, Qt::CaseInsensitive) ? index.mid(prefix.size()) : index;
}

} // namespace

TDataPacket TablesRowset(TSqliteDatabase &database, const QVariantList &restrictions)
{
    TRowsetBuilder rowset({{QStringLiteral("TABLE_NAME"), ftString, 128},
                           {QStringLiteral("TABLE_TYPE"), ftString, 20},
                           {QStringLiteral("DATE_CREATED"), ftDateTime}},
                          restrictions);
    const QHash<QString, QDateTime> created = TablesCreated(database);
    const QDateTime databaseCreated = DatabaseCreated(database);
    TSqliteStatement tables(database, "select 'sqlite_master', 'table', 0 as o union all "
                                      "select name, type, case when name like 'sqlite\\_%' escape '\\' "
                                      "or name='_korvane' then 1 else 2 end "
                                      "from sqlite_master where type in ('table', 'view') order by o, 1");
    while (tables.Step()) {
        const QString name = tables.String(0);
        const bool view = tables.Text(1) == "view";
        const QString type = view                  ? QStringLiteral("VIEW")
                             : IsSystemTable(name) ? QStringLiteral("SYSTEM TABLE")
                                                   : QStringLiteral("TABLE");
        rowset.Add({name, type, DateNumber(created.value(name.toLower(), databaseCreated))});
    }
    return std::move(rowset).Build();
}

TDataPacket ColumnsRowset(TSqliteDatabase &database, const QVariantList &restrictions)
{
    TRowsetBuilder rowset({{QStringLiteral("TABLE_NAME"), ftString, 128},
                           {QStringLiteral("COLUMN_NAME"), ftString, 128},
                           {QStringLiteral("ORDINAL_POSITION"), ftInteger},
                           {QStringLiteral("DATA_TYPE"), ftString, 60},
                           {QStringLiteral("CHARACTER_MAXIMUM_LENGTH"), ftInteger},
                           {QStringLiteral("IS_NULLABLE"), ftString, 1},
                           {QStringLiteral("COLUMN_DEFAULT"), ftString, 255}},
                          restrictions);
    TSqliteStatement columns(database, "select m.name, c.name, c.cid + 1, c.type, c.\"notnull\" or c.pk > 0, "
                                       "c.dflt_value from sqlite_master m, pragma_table_info(m.name) c "
                                       "where m.type in ('table', 'view') order by m.name, c.cid");
    while (columns.Step()) {
        const QString type = columns.String(3).toLower(); // the engine gives some in capitals
        rowset.Add({columns.String(0), columns.String(1), columns.Int(2), type, DeclaredLength(type),
                    columns.Int(4) ? QStringLiteral("N") : QStringLiteral("Y"),
                    columns.IsNull(5) ? QVariant() : QVariant(columns.String(5))});
    }
    return std::move(rowset).Build();
}

TDataPacket IndexesRowset(TSqliteDatabase &database, const QVariantList &restrictions)
{
    TRowsetBuilder rowset({{QStringLiteral("TABLE_NAME"), ftString, 128},
                           {QStringLiteral("INDEX_NAME"), ftString, 128},
                           {QStringLiteral("COLUMN_NAME"), ftString, 128},
                           {QStringLiteral("ORDINAL_POSITION"), ftInteger},
                           {QStringLiteral("UNIQUE"), ftString, 1},
                           {QStringLiteral("PRIMARY_KEY"), ftString, 1}},
                          restrictions);
    TSqliteStatement indexes(
        database, "select m.name, i.name, c.name, c.seqno + 1, i.\"unique\", i.origin = 'pk' "
                  "from sqlite_master m, pragma_index_list(m.name) i, pragma_index_info(i.name) c "
                  "where m.type = 'table' and m.name <> '_korvane' order by m.name, i.name, c.seqno");
    const auto flag = [](bool value) { return value ? QStringLiteral("Y") : QStringLiteral("N"); };
    while (indexes.Step())
        rowset.Add({indexes.String(0), PlainIndexName(indexes.String(0), indexes.String(1)),
                    indexes.String(2), indexes.Int(3), flag(indexes.Int(4) != 0), flag(indexes.Int(5) != 0)});
    return std::move(rowset).Build();
}

TDataPacket UserRosterRowset(const QList<TRosterEntry> &entries)
{
    TRowsetBuilder rowset({{QStringLiteral("COMPUTER_NAME"), ftString, 128},
                           {QStringLiteral("LOGIN_NAME"), ftString, 128},
                           {QStringLiteral("CONNECTED"), ftDateTime},
                           {QStringLiteral("APPLICATION_NAME"), ftString, 128},
                           {QStringLiteral("PROCESS_ID"), ftLargeint}},
                          {});
    for (const TRosterEntry &entry : entries)
        rowset.Add({entry.ComputerName, entry.LoginName, DateNumber(entry.Connected), entry.ApplicationName,
                    entry.ProcessId});
    return std::move(rowset).Build();
}

} // namespace Korvane
