// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

struct sqlite3;

namespace Korvane::Testing {

/// The rarer properties of a field or an index of a DesignStore. Texts that are left out are
/// NULL in the file, save where a default is told.
struct DesignField
{
    QString Name = {}; ///< the code, if left out
    QString Prop = {}; ///< the code, if left out
    bool Key = false;
    bool NotNull = false;
    bool Auto = false;
    QString Default = {};
    QString Remark = {};
};

/// A design file from literals: an SQLite file with the seven tables, written at once by each
/// call. Table, Query begin what the calls behind them add to.
///
///     DesignStore store(dir.filePath("a.dbd"));
///     store.Table("T", "TThing", "东西")
///         .Field("A", "varchar(10)", {.Key = true})
///         .Field("PRICE", "decimal(12,2)")
///         .Index("IX_T", "A;PRICE", "u");
class DesignStore
{
public:
    explicit DesignStore(const QString &fileName);
    DesignStore(const DesignStore &) = delete;
    DesignStore &operator=(const DesignStore &) = delete;
    ~DesignStore();

    const QString &FileName() const { return FFileName; }

    DesignStore &Table(const QString &code, const QString &className = {}, const QString &name = {});
    /// The type with its size, as "int", "varchar(10)" or "decimal(12,2)".
    DesignStore &Field(const QString &code, const QString &type, const DesignField &options = {});
    /// The flags: "c" for clustered, "u" for unique.
    DesignStore &Index(const QString &code, const QString &fields, const QString &flags = {});
    /// The text behind "from"; both dialects get the same if the second is left out.
    DesignStore &Query(const QString &code, const QString &tables, const QString &access,
                       const QString &mssql = {});
    DesignStore &Column(const QString &expression, const QString &alias, const QString &tableField,
                        const QString &name = {});
    DesignStore &Command(const QString &code, const QString &access, const QString &mssql = {});
    DesignStore &Change(int number, const QString &access, const QString &mssql = {});
    /// Any statement or script of the engine.
    DesignStore &Run(const QString &sql);

private:
    void Insert(const QString &table, const QStringList &values);

    QString FFileName;
    sqlite3 *FHandle = nullptr;
    QString FTable, FQuery;
    int FFieldNo = 0, FColumnNo = 0;
};

/// Runs an SQLite script into a file, which is made if it is not there.
void RunScriptFile(const QString &scriptName, const QString &databaseName);

/// Makes the orders design as an SQLite file, from its script.
void OrdersStore(const QString &fileName);

} // namespace Korvane::Testing
