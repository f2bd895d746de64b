// SPDX-License-Identifier: MIT
#include "DataSetBenchmarks.h"

#include "LargeTable.h"
#include "QtItems.h"
#include "datasets/ExTable.h"
#include "design/DBDFile.h"
#include "platform/sql/sqlite/SqliteDatabase.h"
#include "session/DBSession.h"

#include <QCollator>
#include <QSortFilterProxyModel>

#include <algorithm>
#include <numeric>
#include <optional>

#include <sqlite3.h>

namespace Bench {

using namespace Korvane;

namespace {

constexpr int Lookups = 100'000;
constexpr int PeerLookups = 20;

/// What the comparisons share, each piece made at its first use.
class TItems
{
public:
    explicit TItems(std::shared_ptr<TLargeTable> large) : FLarge(std::move(large)) {}

    TLargeTable &Large() { return *FLarge; }
    QString Statement() { return NewTable(*FLarge)->GetSelectSQL(); }

    const TDataPacket &Packet()
    {
        if (!FPacket)
            FPacket = FLarge->Session().Open(Statement());
        return *FPacket;
    }
    /// A dataset of the rows for each purpose, so that none disturbs the other.
    TClientDataSet &DataSet(const QString &purpose)
    {
        auto &set = FDataSets[purpose];
        if (!set) {
            set = std::make_unique<TClientDataSet>();
            set->SetData(Packet());
        }
        return *set;
    }
    /// The table, not read yet.
    TExTable &Table()
    {
        if (!FTable)
            FTable = NewTable(*FLarge);
        return *FTable;
    }

    TSqliteDatabase &Engine()
    {
        if (!FEngine)
            FEngine = std::make_unique<TSqliteDatabase>(FLarge->File(), TSqliteOpen::ReadOnly);
        return *FEngine;
    }
    const QSqlDatabase &QtDatabase()
    {
        if (!FQtDatabase.isOpen())
            FQtDatabase = OpenQtDatabase(QStringLiteral("items"), FLarge->File());
        return FQtDatabase;
    }
    TQtItems &QtModel()
    {
        if (!FQtModel) {
            FQtModel = std::make_unique<TQtItems>(QtDatabase());
            FQtModel->SelectAll();
        }
        return *FQtModel;
    }
    QSortFilterProxyModel &Proxy(const QString &purpose)
    {
        auto &proxy = FProxies[purpose];
        if (!proxy) {
            proxy = std::make_unique<QSortFilterProxyModel>();
            proxy->setSourceModel(&QtModel());
        }
        return *proxy;
    }
    std::vector<quint32> &Order(const QString &purpose) { return FOrders[purpose]; }

private:
    const std::shared_ptr<TLargeTable> FLarge;
    std::optional<TDataPacket> FPacket;
    std::map<QString, std::unique_ptr<TClientDataSet>> FDataSets;
    std::unique_ptr<TExTable> FTable;
    std::unique_ptr<TSqliteDatabase> FEngine;
    QSqlDatabase FQtDatabase;
    std::unique_ptr<TQtItems> FQtModel;
    std::map<QString, std::unique_ptr<QSortFilterProxyModel>> FProxies;
    std::map<QString, std::vector<quint32>> FOrders;
};

using TItemsPtr = std::shared_ptr<TItems>;

/// The numbers of a dataset's rows in its order, by their keys.
std::vector<quint32> RowNumbers(TDataSet &set)
{
    std::vector<quint32> numbers;
    const TField *code = set.FieldByName(LargeColumns[lcCode]);
    for (set.First(); !set.Eof(); set.Next())
        numbers.push_back(QStringView(code->AsString()).mid(1).toUInt());
    return numbers;
}

std::vector<quint32> RowNumbers(const QSortFilterProxyModel &proxy)
{
    std::vector<quint32> numbers;
    for (int row = 0; row < proxy.rowCount(); ++row)
        numbers.push_back(quint32(proxy.mapToSource(proxy.index(row, 0)).row()));
    return numbers;
}

std::vector<quint32> NaturalOrder()
{
    std::vector<quint32> order(LargeRows);
    std::iota(order.begin(), order.end(), 0);
    return order;
}

// ---- reading --------------------------------------------------------------------------

/// Reads a cell by its type. Gives something of it, so that the reading is not left out.
qint64 ReadCell(sqlite3_stmt *statement, int column)
{
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return sqlite3_column_int64(statement, column);
    case SQLITE_FLOAT:
        return qint64(sqlite3_column_double(statement, column));
    case SQLITE_TEXT:
        return sqlite3_column_text(statement, column)[0] + sqlite3_column_bytes(statement, column);
    default:
        return 0;
    }
}

void StepThroughRows(TSqliteDatabase &database, const QByteArray &sql)
{
    TSqliteStatement rows(database, sql);
    const int columns = rows.ColumnCount();
    qint64 sum = 0;
    while (sqlite3_step(rows.Handle()) == SQLITE_ROW)
        for (int column = 0; column < columns; ++column)
            sum += ReadCell(rows.Handle(), column);
    Use(sum);
}

bool IsSameCell(const TDataPacket &packet, int field, qsizetype row, const TSqliteStatement &rows)
{
    const TPacketColumn &column = packet.Column(field);
    if (column.IsNull(row) || rows.IsNull(field))
        return column.IsNull(row) == rows.IsNull(field);
    switch (column.Kind()) {
    case TColumnKind::Int32:
    case TColumnKind::Int64:
        return column.Int(row) == rows.Int(field);
    case TColumnKind::Double:
        return column.Doubles()[size_t(row)] == rows.Double(field);
    default:
        return column.Bytes(row) == rows.Text(field);
    }
}

bool HoldsTheTable(TExTable &table, TSqliteDatabase &database, const QByteArray &sql)
{
    const TDataPacket packet = table.Data();
    TSqliteStatement rows(database, sql);
    qsizetype row = 0;
    for (; rows.Step(); ++row)
        for (int field = 0; field < packet.FieldCount(); ++field)
            if (row >= packet.RowCount() || !IsSameCell(packet, field, row, rows))
                return false;
    return row == packet.RowCount() && row == LargeRows && table.RecNo() == row;
}

void OpenToTheLastRow(TExTable &table)
{
    table.OpenTable();
    table.Last();
    Use(table.RecNo());
}

QList<TComparison> ReadingComparisons(const TItemsPtr &items)
{
    return {
        {.What =
             QStringLiteral("OpenTable to the last row, 1,000,000 rows of 10 columns and 5 audit columns"),
         .Peer = QStringLiteral("SQLite's C interface reading every column and discarding it"),
         .Goal = AtLeast(0.75),
         .Ours = [items] { OpenToTheLastRow(items->Table()); },
         .Theirs = [items] { StepThroughRows(items->Engine(), items->Statement().toUtf8()); },
         .Prepare = [items] { items->Engine(), items->Table().Close(); },
         .Same =
             [items] {
                 OpenToTheLastRow(items->Table());
                 return HoldsTheTable(items->Table(), items->Engine(), items->Statement().toUtf8());
             }},
        {.What = QStringLiteral("memory of the same rows"),
         .Peer = QStringLiteral("QSqlTableModel fetched to the end"),
         .Goal = AtMost(1.0 / 3),
         .Ours =
             [items] {
                 std::shared_ptr<TExTable> table = NewTable(items->Large());
                 OpenToTheLastRow(*table);
                 return table;
             },
         .Theirs =
             [items] {
                 auto model = std::make_shared<TQtItems>(items->QtDatabase());
                 model->SelectAll();
                 return model;
             },
         .Prepare =
             [items] {
                 items->QtDatabase();
                 // The session keeps what it read last; that of an earlier read would be given
                 // back while this one is measured.
                 Use(items->Large().Session().Open(QStringLiteral("select 1")).RowCount());
             },
         .Repetitions = 1,
         .Same = [items] { return items->QtModel().rowCount() == items->Packet().RowCount(); }},
    };
}

// ---- order ----------------------------------------------------------------------------

const QString ByText = QStringLiteral("text"), ByTwo = QStringLiteral("two"),
              ByPinyin = QStringLiteral("pinyin");

void UnsortProxy(QSortFilterProxyModel &proxy)
{
    proxy.sort(-1);
    Use(proxy.rowCount());
}

using TTwoKeys = std::pair<std::string_view, std::string_view>;

std::vector<TTwoKeys> TwoKeysOf(const TDataPacket &packet)
{
    std::vector<TTwoKeys> keys;
    for (qsizetype row = 0; row < packet.RowCount(); ++row)
        keys.emplace_back(packet.Column(PlaceOf(lcCategory)).Bytes(row),
                          packet.Column(PlaceOf(lcName)).Bytes(row));
    return keys;
}

std::vector<QCollatorSortKey> PinyinKeysOf(const TDataPacket &packet)
{
    const QCollator collator(QLocale(QLocale::Chinese, QLocale::China));
    std::vector<QCollatorSortKey> keys;
    for (qsizetype row = 0; row < packet.RowCount(); ++row)
        keys.push_back(collator.sortKey(packet.Text(PlaceOf(lcName), row)));
    return keys;
}

/// Ready-made keys, and the sort of row numbers by them.
template <class Key, std::vector<Key> (*KeysOf)(const TDataPacket &)> class TKeySort
{
public:
    void Prepare(TItems &items, const QString &purpose)
    {
        if (FKeys.empty())
            FKeys = KeysOf(items.Packet());
        items.Order(purpose) = NaturalOrder();
    }
    void Sort(TItems &items, const QString &purpose) const
    {
        auto &order = items.Order(purpose);
        std::stable_sort(order.begin(), order.end(),
                         [this](quint32 left, quint32 right) { return FKeys[left] < FKeys[right]; });
    }

private:
    std::vector<Key> FKeys;
};

TComparison SortByText(const TItemsPtr &items)
{
    return {.What = QStringLiteral("sort 1,000,000 rows by a text column"),
            .Peer = QStringLiteral("QSortFilterProxyModel over a fetched QSqlTableModel"),
            .Goal = AtLeast(20),
            .Ours = [items] { items->DataSet(ByText).SetIndexFieldNames(LargeColumns[lcName]); },
            .Theirs = [items] { items->Proxy(ByText).sort(PlaceOf(lcName)); },
            .Prepare = [items] { items->DataSet(ByText).SetIndexFieldNames({}); },
            .PreparePeer = [items] { UnsortProxy(items->Proxy(ByText)); },
            .Repetitions = 5,
            .PeerRepetitions = 1,
            .Same =
                [items] {
                    items->DataSet(ByText).SetIndexFieldNames(LargeColumns[lcName]);
                    items->Proxy(ByText).sort(PlaceOf(lcName));
                    return RowNumbers(items->DataSet(ByText)) == RowNumbers(items->Proxy(ByText));
                }};
}

TComparison SortByTwoKeys(const TItemsPtr &items)
{
    const QString fields = LargeColumns[lcCategory] + QLatin1Char(';') + LargeColumns[lcName];
    const auto peer = std::make_shared<TKeySort<TTwoKeys, TwoKeysOf>>();
    const auto ours = [items, fields] { items->DataSet(ByTwo).SetIndexFieldNames(fields); };
    const auto theirs = [items, peer] { peer->Sort(*items, ByTwo); };
    const auto prepare = [items, peer] {
        items->DataSet(ByTwo).SetIndexFieldNames({});
        peer->Prepare(*items, ByTwo);
    };
    return {.What = QStringLiteral("the same by two text columns"),
            .Peer = QStringLiteral("std::stable_sort of row numbers by pairs of string views"),
            .Goal = Within(1.5),
            .Ours = ours,
            .Theirs = theirs,
            .Prepare = prepare,
            .Repetitions = 5,
            .Same = [items, ours, theirs, prepare] {
                prepare(), ours(), theirs();
                return RowNumbers(items->DataSet(ByTwo)) == items->Order(ByTwo);
            }};
}

TComparison SortByPinyin(const TItemsPtr &items)
{
    const auto peer = std::make_shared<TKeySort<QCollatorSortKey, PinyinKeysOf>>();
    const auto ours = [items] {
        items->DataSet(ByPinyin).SetSortLocale(QStringLiteral("zh"));
        items->DataSet(ByPinyin).SetIndexFieldNames(LargeColumns[lcName]);
    };
    const auto theirs = [items, peer] { peer->Sort(*items, ByPinyin); };
    const auto prepare = [items, peer] {
        items->DataSet(ByPinyin).SetIndexFieldNames({});
        items->DataSet(ByPinyin).SetSortLocale({});
        peer->Prepare(*items, ByPinyin);
    };
    return {.What = QStringLiteral("the same by one text column in pinyin order"),
            .Peer = QStringLiteral("std::stable_sort of row numbers by ready-made QCollator keys"),
            .Goal = Within(2),
            .Ours = ours,
            .Theirs = theirs,
            .Prepare = prepare,
            .Repetitions = 3,
            .Same = [items, ours, theirs, prepare] {
                prepare(), ours(), theirs();
                return RowNumbers(items->DataSet(ByPinyin)) == items->Order(ByPinyin);
            }};
}

// ---- filter and search ----------------------------------------------------------------

const QString ByFilter = QStringLiteral("filter"), ByLocate = QStringLiteral("locate");

TComparison FilterText(const TItemsPtr &items)
{
    const auto ours = [items] {
        TClientDataSet &set = items->DataSet(ByFilter);
        set.SetFilter(QStringLiteral("ITEMNAME like '%钢%栓M8%'"));
        set.SetFiltered(true);
        Use(set.RecordCount());
    };
    const auto theirs = [items] {
        QSortFilterProxyModel &proxy = items->Proxy(ByFilter);
        proxy.setFilterRegularExpression(QStringLiteral("钢.*栓M8"));
        Use(proxy.rowCount());
    };
    const auto prepare = [items] { items->DataSet(ByFilter).SetFiltered(false); };
    const auto preparePeer = [items] {
        QSortFilterProxyModel &proxy = items->Proxy(ByFilter);
        proxy.setFilterKeyColumn(PlaceOf(lcName));
        proxy.setFilterRegularExpression(QString());
        Use(proxy.rowCount());
    };
    return {.What = QStringLiteral("filter text over the same rows"),
            .Peer =
                QStringLiteral("QSortFilterProxyModel, regular expression, over a fetched QSqlTableModel"),
            .Goal = AtLeast(10),
            .Ours = ours,
            .Theirs = theirs,
            .Prepare = prepare,
            .PreparePeer = preparePeer,
            .Repetitions = 5,
            .Same = [items, ours, theirs, prepare, preparePeer] {
                prepare(), preparePeer(), ours(), theirs();
                const auto rows = RowNumbers(items->DataSet(ByFilter));
                return !rows.empty() && rows == RowNumbers(items->Proxy(ByFilter));
            }};
}

/// Keys spread evenly over the table, and not in its order.
QString LookupCode(int lookup, int count)
{
    const qint64 mixed = lookup * 7919LL % count;
    return LargeCode(int((mixed * 2 + 1) * LargeRows / (2LL * count)));
}

int RowByMatch(const QAbstractItemModel &model, const QString &code)
{
    const QModelIndexList found =
        model.match(model.index(0, PlaceOf(lcCode)), Qt::DisplayRole, code, 1, Qt::MatchExactly);
    return found.isEmpty() ? -1 : found.first().row();
}

bool FindsTheSame(TItems &items)
{
    bool same = true;
    for (int i = 0; i < PeerLookups; ++i) {
        const QString code = LookupCode(i, PeerLookups);
        same = same && items.DataSet(ByLocate).Locate(LargeColumns[lcCode], code) &&
               items.DataSet(ByLocate).RecNo() == RowByMatch(items.QtModel(), code) + 1;
    }
    return same;
}

TComparison LocateByKey(const TItemsPtr &items)
{
    return {.What = QStringLiteral("Locate by key, 100,000 times"),
            .Peer = QStringLiteral("QAbstractItemModel::match on a fetched QSqlTableModel; 20 times 5,000"),
            .Goal = AtLeast(1000),
            .Ours =
                [items] {
                    qint64 sum = 0;
                    TClientDataSet &set = items->DataSet(ByLocate);
                    for (int i = 0; i < Lookups; ++i)
                        sum += set.Locate(LargeColumns[lcCode], LookupCode(i, Lookups)) ? set.RecNo() : 0;
                    Use(sum);
                },
            .Theirs =
                [items] {
                    qint64 sum = 0;
                    for (int i = 0; i < PeerLookups; ++i)
                        sum += RowByMatch(items->QtModel(), LookupCode(i, PeerLookups));
                    Use(sum);
                },
            // Loaded anew, so that what the first searches build is measured, too.
            .Prepare = [items] { items->QtModel(), items->DataSet(ByLocate).SetData(items->Packet()); },
            .PeerScale = double(Lookups) / PeerLookups,
            .Repetitions = 5,
            .PeerRepetitions = 2,
            .Same = [items] { return FindsTheSame(*items); }};
}

// ---- objects --------------------------------------------------------------------------

std::unique_ptr<TLargeItem> ItemOf(const TDataPacket &packet, qsizetype row)
{
    const auto text = [&](TLargeColumn column) {
        return QString::fromUtf8(packet.Column(PlaceOf(column)).Bytes(row));
    };
    auto item = std::make_unique<TLargeItem>();
    item->ItemCode = text(lcCode);
    item->ItemName = text(lcName);
    item->Category = text(lcCategory);
    item->Qty = int(packet.Column(PlaceOf(lcQty)).Int(row));
    item->LeadDays = int(packet.Column(PlaceOf(lcLeadDays)).Int(row));
    item->Price = packet.Column(PlaceOf(lcPrice)).Doubles()[size_t(row)];
    item->Weight = packet.Column(PlaceOf(lcWeight)).Doubles()[size_t(row)];
    item->IsStopped = packet.Column(PlaceOf(lcStopped)).Bytes(row) == "Y";
    item->MadeDate = text(lcMadeDate);
    item->Note = text(lcNote);
    return item;
}

bool AreEqual(const TLargeItem &left, const TLargeItem &right)
{
    const auto fields = [](const TLargeItem &item) {
        return std::tie(item.ItemCode, item.ItemName, item.Category, item.Qty, item.LeadDays, item.Price,
                        item.Weight, item.IsStopped, item.MadeDate, item.Note);
    };
    return fields(left) == fields(right);
}

/// Visits each row's object, as an application would make it.
template <class Visit> void WalkObjects(TExTable &table, Visit visit)
{
    table.DisableControls();
    for (table.First(); !table.Eof(); table.Next())
        visit(static_cast<const TLargeItem &>(*table.GetCurrentObject()));
    table.EnableControls();
}

TComparison MakeObjects(const TItemsPtr &items)
{
    return {.What = QStringLiteral("GetCurrentObject of the same rows, 10 properties"),
            .Peer = QStringLiteral("hand-written loop over the packet, a new object per row"),
            .Goal = Within(3),
            .Ours =
                [items] {
                    qint64 sum = 0;
                    WalkObjects(items->Table(), [&](const TLargeItem &item) { sum += item.Qty; });
                    Use(sum);
                },
            .Theirs =
                [items] {
                    const TDataPacket &packet = items->Packet();
                    qint64 sum = 0;
                    for (qsizetype row = 0; row < packet.RowCount(); ++row)
                        sum += ItemOf(packet, row)->Qty;
                    Use(sum);
                },
            .Prepare = [items] { items->Table().SetData(items->Packet()); },
            .Repetitions = 5,
            .Same =
                [items] {
                    items->Table().SetData(items->Packet());
                    qsizetype row = 0;
                    bool same = true;
                    WalkObjects(items->Table(), [&](const TLargeItem &item) {
                        same = same && AreEqual(item, *ItemOf(items->Packet(), row++));
                    });
                    return same && row == LargeRows;
                }};
}

} // namespace

QList<TComparison> DataSetComparisons(const std::shared_ptr<TLargeTable> &table)
{
    const auto items = std::make_shared<TItems>(table);
    return ReadingComparisons(items) + QList<TComparison>{SortByText(items),   SortByTwoKeys(items),
                                                          SortByPinyin(items), FilterText(items),
                                                          LocateByKey(items),  MakeObjects(items)};
}

} // namespace Bench
