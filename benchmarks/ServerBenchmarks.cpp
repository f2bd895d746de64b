// SPDX-License-Identifier: MIT
#include "ServerBenchmarks.h"

#include "LargeTable.h"
#include "ServerTable.h"
#include "datasets/ExTable.h"
#include "design/DBDFile.h"
#include "platform/sql/postgres/PostgresRewriter.h"
#include "session/DBSession.h"

#include <QSqlError>
#include <QSqlQuery>

#include <cstdio>
#include <cstring>
#include <optional>

namespace Bench {

using namespace Korvane;

namespace {

constexpr size_t BlockRows = 200; // the best of 200, 1,000 and 4,000

/// A cell as it stands in a block.
struct TBlockCell
{
    SQLSMALLINT CType;
    const char *Place;
    SQLLEN Length;

    bool IsNull() const { return Length == SQL_NULL_DATA; }
    template <class Number> Number As() const
    {
        Number number;
        std::memcpy(&number, Place, sizeof number);
        return number;
    }
};

/// Reads the rows of a statement in blocks into arrays that are bound once. Each column is bound in the
/// form in which the driver gives it soonest.
class TBlockReader
{
public:
    TBlockReader(TOdbcConnection &connection, const QString &sql) : FStatement(connection)
    {
        FStatement.Execute(sql);
        SQLHSTMT handle = FStatement.Handle();
        FStatement.Check(SQLSetStmtAttr(handle, SQL_ATTR_ROW_ARRAY_SIZE, OdbcNumber(BlockRows), 0));
        FStatement.Check(SQLSetStmtAttr(handle, SQL_ATTR_ROWS_FETCHED_PTR, &FFetched, 0));
        FColumns.resize(size_t(FStatement.ColumnCount()));
        for (size_t i = 0; i < FColumns.size(); ++i)
            Bind(FColumns[i], SQLUSMALLINT(i + 1));
    }

    /// Calls with each cell: the row, the column, what stands there.
    template <class Visit> void ReadAll(Visit visit)
    {
        qsizetype row = 0;
        for (;;) {
            const SQLRETURN result = SQLFetch(FStatement.Handle());
            if (result == SQL_NO_DATA)
                return;
            FStatement.Check(result);
            for (size_t i = 0; i < FFetched; ++i, ++row)
                for (size_t column = 0; column < FColumns.size(); ++column)
                    visit(row, int(column), FColumns[column].At(i));
        }
    }

private:
    struct TColumn
    {
        SQLSMALLINT CType = SQL_C_BINARY;
        size_t Width = 0;
        std::vector<char> Places;
        std::vector<SQLLEN> Lengths;

        TBlockCell At(size_t row) const { return {CType, Places.data() + row * Width, Lengths[row]}; }
    };

    void Bind(TColumn &column, SQLUSMALLINT number)
    {
        SQLSMALLINT length = 0, type = 0, digits = 0, nullable = 0;
        SQLULEN size = 0;
        SQLHSTMT handle = FStatement.Handle();
        FStatement.Check(
            SQLDescribeColW(handle, number, nullptr, 0, &length, &type, &size, &digits, &nullable));
        switch (type) {
        case SQL_SMALLINT:
        case SQL_INTEGER:
            column.CType = SQL_C_SLONG;
            column.Width = sizeof(SQLINTEGER);
            break;
        case SQL_NUMERIC:
        case SQL_FLOAT:
        case SQL_DOUBLE:
            column.CType = SQL_C_DOUBLE;
            column.Width = sizeof(double);
            break;
        default: // the bytes of UTF-8 as the server sends them
            column.Width = size * 4;
        }
        column.Places.resize(column.Width * BlockRows);
        column.Lengths.resize(BlockRows);
        FStatement.Check(SQLBindCol(handle, number, column.CType, column.Places.data(), SQLLEN(column.Width),
                                    column.Lengths.data()));
    }

    TOdbcStatement FStatement;
    SQLULEN FFetched = 0;
    std::vector<TColumn> FColumns;
};

/// The rows on the server, made at the first use, and a dataset of them.
class TServerItems
{
public:
    explicit TServerItems(std::shared_ptr<TLargeTable> large) : FLarge(std::move(large)) {}

    TServerTable &Server()
    {
        if (!FServer)
            FServer.emplace(FLarge->Design());
        return *FServer;
    }
    TExTable &Table()
    {
        if (!FTable) {
            FTable = std::make_unique<TExTable>();
            FTable->SetDBDFile(&FLarge->Design());
            FTable->SetDBSession(&Server().Session());
            FTable->SetTable(LargeTableName);
        }
        return *FTable;
    }
    /// The table's statement in the server's language.
    QString Statement()
    {
        return QString::fromUtf8(RewriteForPostgres(Table().GetSelectSQL()).Steps.first().Sql);
    }

private:
    const std::shared_ptr<TLargeTable> FLarge;
    std::optional<TServerTable> FServer;
    std::unique_ptr<TExTable> FTable;
};

using TServerItemsPtr = std::shared_ptr<TServerItems>;

void OpenToTheLastRow(TServerItems &items)
{
    items.Table().OpenTable();
    items.Table().Last();
    Use(items.Table().RecNo());
}

// ---- the peers ------------------------------------------------------------------------

void FetchBlocks(TServerItems &items, const QString &sql)
{
    qint64 sum = 0;
    TBlockReader(items.Server().Odbc(), sql).ReadAll([&sum](qsizetype, int, const TBlockCell &cell) {
        if (!cell.IsNull())
            sum += cell.Length + *cell.Place;
    });
    Use(sum);
}

/// Calls with each value of a query: the row, the column, the value.
template <class Visit> void WalkQuery(const QSqlDatabase &database, const QString &sql, Visit visit)
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!query.exec(sql))
        qFatal("%s", qUtf8Printable(query.lastError().text()));
    const int columns = PlaceOf(lcNote) + 1;
    for (qsizetype row = 0; query.next(); ++row)
        for (int column = 0; column < columns; ++column)
            visit(row, column, query.value(column));
}

void FetchByQuery(TServerItems &items, const QString &sql)
{
    qint64 sum = 0;
    WalkQuery(items.Server().Qt(), sql,
              [&sum](qsizetype, int, const QVariant &value) { sum += value.isNull() ? 0 : 1; });
    Use(sum);
}

// ---- whether all read the same --------------------------------------------------------

bool IsSameCell(const TDataPacket &packet, qsizetype row, int field, const TBlockCell &cell)
{
    const TPacketColumn &column = packet.Column(field);
    if (cell.IsNull() || column.IsNull(row))
        return cell.IsNull() == column.IsNull(row);
    switch (cell.CType) {
    case SQL_C_SLONG:
        return column.Int(row) == cell.As<SQLINTEGER>();
    case SQL_C_DOUBLE:
        return column.Doubles()[size_t(row)] == cell.As<double>();
    default:
        return column.Bytes(row) == std::string_view(cell.Place, size_t(cell.Length));
    }
}

bool IsSameValue(const TDataPacket &packet, qsizetype row, int field, const QVariant &value)
{
    const TPacketColumn &column = packet.Column(field);
    if (value.isNull() || column.IsNull(row))
        return value.isNull() == column.IsNull(row);
    switch (column.Kind()) {
    case TColumnKind::Int32:
    case TColumnKind::Int64:
        return column.Int(row) == value.toLongLong();
    case TColumnKind::Double:
        return column.Doubles()[size_t(row)] == value.toDouble();
    default:
        return column.Bytes(row) == value.toString().toStdString();
    }
}

/// Whether a walk meets each cell of the dataset's rows.
template <class Walk> bool MeetsAllCells(TServerItems &items, Walk walk)
{
    OpenToTheLastRow(items);
    const TDataPacket packet = items.Table().Data();
    qint64 cells = 0;
    const auto count = [&](qsizetype row, int field, const auto &isSame) {
        cells += row < packet.RowCount() && field < packet.FieldCount() && isSame(packet, row, field);
    };
    walk(count);
    return packet.RowCount() == LargeRows && items.Table().RecNo() == LargeRows &&
           cells == qint64(LargeRows) * packet.FieldCount();
}

bool BlocksAreTheSame(TServerItems &items)
{
    return MeetsAllCells(items, [&items](const auto &count) {
        TBlockReader(items.Server().Odbc(), items.Statement())
            .ReadAll([&count](qsizetype row, int field, const TBlockCell &cell) {
                count(row, field, [&cell](const TDataPacket &packet, qsizetype r, int f) {
                    return IsSameCell(packet, r, f, cell);
                });
            });
    });
}

bool QueryIsTheSame(TServerItems &items)
{
    return MeetsAllCells(items, [&items](const auto &count) {
        WalkQuery(items.Server().Qt(), items.Statement(),
                  [&count](qsizetype row, int field, const QVariant &value) {
                      count(row, field, [&value](const TDataPacket &packet, qsizetype r, int f) {
                          return IsSameValue(packet, r, f, value);
                      });
                  });
    });
}

} // namespace

QList<TComparison> ServerComparisons(const std::shared_ptr<TLargeTable> &table)
{
    if (!TServerTable::HasServer()) {
        std::fprintf(stderr, "KORVANE_POSTGRES names no PostgreSQL server: its comparisons are left out.\n");
        return {};
    }
    const auto items = std::make_shared<TServerItems>(table);
    // Made and connected outside of what is measured, and rid of the rows of the run before.
    const auto prepare = [items] { items->Table().Close(), items->Server().Odbc(), items->Server().Qt(); };
    return {
        {.What = QStringLiteral("OpenTable from PostgreSQL to the last row, 1,000,000 rows of 15 columns"),
         .Peer = QStringLiteral("bare block fetch, same ODBC driver and options, every value discarded"),
         .Goal = AtLeast(0.8),
         .Ours = [items] { OpenToTheLastRow(*items); },
         .Theirs = [items] { FetchBlocks(*items, items->Statement()); },
         .Prepare = prepare,
         .Repetitions = 5,
         .Same = [items] { return BlocksAreTheSame(*items); }},
        {.What = QStringLiteral("the same beside Qt's query"),
         .Peer = QStringLiteral("QSqlQuery over QODBC, forward only, reading every value and discarding it"),
         .Goal = AtLeast(1.5),
         .Ours = [items] { OpenToTheLastRow(*items); },
         .Theirs = [items] { FetchByQuery(*items, items->Statement()); },
         .Prepare = prepare,
         .Repetitions = 5,
         .Same = [items] { return QueryIsTheSame(*items); }}};
}

} // namespace Bench
