// SPDX-License-Identifier: MIT
#include "ImportBenchmarks.h"

#include "LargeDesign.h"
#include "LargeTable.h"
#include "Programs.h"
#include "design/DBDFile.h"
#include "import/DatabaseImport.h"
#include "platform/sql/sqlite/DatabaseFile.h"
#include "session/DBSession.h"

#include <QDir>
#include <QFile>

namespace Bench {

using namespace Korvane;

namespace {

constexpr int OldRows = 200'000;

/// The first rows of the large table in a Jet file, and the database that they are imported into.
class TOldItems
{
public:
    /// price: what stands in the old file as the price.
    TOldItems(std::shared_ptr<TLargeTable> large, const QString &folder, const QString &name,
              const QString &price)
        : FLarge(std::move(large)), FPrice(price), FOldFile(QDir(folder).filePath(name)),
          FNewFile(QDir(folder).filePath(QStringLiteral("imported.db"))),
          FExported(QDir(folder).filePath(QStringLiteral("exported.txt")))
    {
    }

    void Prepare()
    {
        if (!FIsMade)
            WriteJetFile(FOldFile, {{LargeTableName, Rows(FLarge->Session(), FPrice)}});
        FIsMade = true;
        RemoveDatabaseFile(FNewFile);
    }
    void Import()
    {
        TDBSession session;
        session.SetDBType(dbtAccess);
        session.SetDBName(FNewFile);
        TDatabaseImport import;
        import.SetFileName(FOldFile);
        import.SetDBDFile(&FLarge->Design());
        import.SetDBSession(&session);
        import.SetBoolAsChar(true);
        import.Run();
    }
    void Export() const { ExportJetTable(FOldFile, LargeTableName, {}, QProcess::nullDevice()); }

    /// Whether the new database has what the exporter writes, cell by cell.
    bool IsImportedWhole()
    {
        Prepare();
        Import();
        ExportJetTable(FOldFile, LargeTableName,
                       {QStringLiteral("-HQ"), QStringLiteral("-d"), QStringLiteral("|"),
                        QStringLiteral("-0"), QStringLiteral("~")},
                       FExported);
        QFile file(FExported);
        if (!file.open(QIODevice::ReadOnly))
            return false;
        const TDataPacket rows = Rows(*ConnectTo(FNewFile), LargeColumns[lcPrice]);
        qsizetype row = 0;
        for (; row < rows.RowCount() && !file.atEnd(); ++row)
            if (!IsSameRow(rows, row, file.readLine().chopped(1).split('|')))
                return false;
        return row == OldRows && rows.RowCount() == OldRows && file.atEnd();
    }

private:
    static TDataPacket Rows(TDBSession &session, const QString &price)
    {
        QStringList columns = LargeColumns;
        columns[lcPrice] = price;
        return session.Open(QStringLiteral("select CREATOR, CREATEDATE, MODIFIER, MODIFYDATE, CREATORGROUP, "
                                           "%1 from LARGEITEM where ITEMCODE<'%2' order by ITEMCODE")
                                .arg(columns.join(QLatin1Char(',')), LargeCode(OldRows)));
    }
    static bool IsSameRow(const TDataPacket &rows, qsizetype row, const QByteArrayList &cells)
    {
        if (cells.size() != rows.FieldCount())
            return false;
        for (int i = 0; i < rows.FieldCount(); ++i)
            if (!IsSameCell(rows.Column(i), row, cells[i]))
                return false;
        return true;
    }
    static bool IsSameCell(const TPacketColumn &column, qsizetype row, const QByteArray &cell)
    {
        if (column.IsNull(row))
            return cell == "~";
        switch (column.Kind()) {
        case TColumnKind::Int32:
        case TColumnKind::Int64:
            return column.Int(row) == cell.toLongLong();
        case TColumnKind::Double:
            return column.Doubles()[size_t(row)] == cell.toDouble();
        default:
            return column.Bytes(row) == cell.toStdString();
        }
    }

    const std::shared_ptr<TLargeTable> FLarge;
    const QString FPrice, FOldFile, FNewFile, FExported;
    bool FIsMade = false;
};

TComparison ImportBesideExport(const std::shared_ptr<TOldItems> &items, const QString &what)
{
    return {.What = what,
            .Peer = QStringLiteral("mdb-export of its table to /dev/null"),
            .Goal = Within(2),
            .Ours = [items] { items->Import(); },
            .Theirs = [items] { items->Export(); },
            .Prepare = [items] { items->Prepare(); },
            .Repetitions = 5,
            .Same = [items] { return items->IsImportedWhole(); }};
}

} // namespace

QList<TComparison> ImportComparisons(const std::shared_ptr<TLargeTable> &table, const QString &folder)
{
    const auto decimals = std::make_shared<TOldItems>(table, folder, QStringLiteral("old-decimals.mdb"),
                                                      QStringLiteral("PRICE"));
    // The exporter spends more than half of its time on the decimals.
    const auto floats = std::make_shared<TOldItems>(table, folder, QStringLiteral("old-floats.mdb"),
                                                    QStringLiteral("PRICE+0.0 as PRICE"));
    return {
        ImportBesideExport(decimals,
                           QStringLiteral("import a Jet file, 200,000 rows of 15 columns, into a new "
                                          "database: checked, committed, read back")),
        ImportBesideExport(floats, QStringLiteral("the same with the decimals as floats in the old file"))};
}

} // namespace Bench
