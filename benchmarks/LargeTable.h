// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBObject.h"

#include <QStringList>

#include <memory>

namespace Korvane {
class TDBDFile;
class TDBSession;
class TExTable;
} // namespace Korvane

namespace Bench {

inline constexpr int LargeRows = 1'000'000;

/// A row of the large table.
class TLargeItem : public Korvane::TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString ItemCode MEMBER ItemCode)
    Q_PROPERTY(QString ItemName MEMBER ItemName)
    Q_PROPERTY(QString Category MEMBER Category)
    Q_PROPERTY(int Qty MEMBER Qty)
    Q_PROPERTY(int LeadDays MEMBER LeadDays)
    Q_PROPERTY(double Price MEMBER Price)
    Q_PROPERTY(double Weight MEMBER Weight)
    Q_PROPERTY(bool IsStopped MEMBER IsStopped)
    Q_PROPERTY(QString MadeDate MEMBER MadeDate)
    Q_PROPERTY(QString Note MEMBER Note)

public:
    QString ItemCode, ItemName, Category;
    int Qty = 0, LeadDays = 0;
    double Price = 0, Weight = 0;
    bool IsStopped = false;
    QString MadeDate, Note;
};

inline const QString LargeTableName = QStringLiteral("LARGEITEM");

/// The columns of the design, in its order.
inline const QStringList LargeColumns = {QStringLiteral("ITEMCODE"), QStringLiteral("ITEMNAME"),
                                         QStringLiteral("CATEGORY"), QStringLiteral("QTY"),
                                         QStringLiteral("LEADDAYS"), QStringLiteral("PRICE"),
                                         QStringLiteral("WEIGHT"),   QStringLiteral("STOPPED"),
                                         QStringLiteral("MADEDATE"), QStringLiteral("NOTE")};
enum TLargeColumn {
    lcCode,
    lcName,
    lcCategory,
    lcQty,
    lcLeadDays,
    lcPrice,
    lcWeight,
    lcStopped,
    lcMadeDate,
    lcNote
};

/// Where a column stands in what the table's select statement returns: behind the audit columns.
constexpr int PlaceOf(TLargeColumn column) { return 5 + column; }

/// The key of a row by its number, "P0000001234".
QString LargeCode(int row);

// What the names of the rows are put together of.
QStringList LargeMaterials();
QStringList LargeThings();

/// A design with one table of ten columns and five audit columns, and its database: an SQLite
/// file with a million rows, of mixed types, in Chinese, and the same in every run. Each is made
/// at its first use, and opened once.
class TLargeTable
{
public:
    explicit TLargeTable(const QString &folder);
    ~TLargeTable();
    TLargeTable(const TLargeTable &) = delete;
    TLargeTable &operator=(const TLargeTable &) = delete;

    Korvane::TDBDFile &Design();
    /// The database's file. Nobody writes into it.
    const QString &File();
    /// A connection to it.
    Korvane::TDBSession &Session();
    /// A copy of the file under another name, for writing.
    QString CopyAs(const QString &name);

private:
    void MakeDesign(const QString &fileName) const;
    void MakeDatabase(const QString &fileName);

    const QString FFolder;
    QString FFile;
    std::unique_ptr<Korvane::TDBDFile> FDesign;
    std::unique_ptr<Korvane::TDBSession> FSession;
};

/// The table as a dataset, not read yet.
std::unique_ptr<Korvane::TExTable> NewTable(TLargeTable &large);

/// An open connection to a database of the Access dialect.
std::unique_ptr<Korvane::TDBSession> ConnectTo(const QString &file);

} // namespace Bench
