// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/jet/JetTable.h"

#include <QList>
#include <QString>

#include <memory>

namespace Korvane {

enum class TJetTableKind { Table, SystemTable, View };

/// A table or a stored query of the file's catalog.
struct TJetTableInfo
{
    QString Name;
    TJetTableKind Kind = TJetTableKind::Table;
    double Created = 0; ///< date-time number, 0 when the catalog does not tell
    quint32 Page = 0;   ///< of its definition
};

/// A Jet 3, Jet 4 or unencrypted ACE database, open for reading. Nothing is locked: a
/// program that writes at the same time is not held up.
///
/// The file is not trusted. A foreign, cut or damaged one gets an ESqlError that contains
/// its name, from whichever call first meets the damage.
///
///     TJetFile file("orders.dbd");
///     file.ReadTable("Changes", [](std::span<const TJetCell> row) { … });
class TJetFile
{
public:
    explicit TJetFile(const QString &fileName);
    ~TJetFile();
    TJetFile(const TJetFile &) = delete;
    TJetFile &operator=(const TJetFile &) = delete;

    /// Whether a file begins as a Jet or ACE database does; false for what cannot be read.
    static bool IsJetFile(const QString &fileName);

    const QString &FileName() const { return FFileName; }
    bool IsJet3() const;
    /// The database password that is set in the file, empty if there is none.
    const QString &Password() const;

    const QList<TJetTableInfo> &Tables() const { return FTables; }
    /// Names are blind to the case of letters. An unknown table raises ESqlError.
    QList<TJetColumn> Columns(const QString &table);
    /// The table's indexes in the order of the file; those that only serve a relation are left out.
    QList<TJetIndex> Indexes(const QString &table);
    /// How many rows the table's definition counts, which may be behind after a program was killed.
    qint64 RowCount(const QString &table);
    /// Calls for each row of the table in the order of the file.
    void ReadTable(const QString &table, const TJetRowFunction &row);

private:
    template <typename F> void Guarded(F action) const;
    void ReadCatalog();
    const TJetTableInfo &Find(const QString &table) const;

    QString FFileName;
    std::unique_ptr<TJetPages> FPages;
    QList<TJetTableInfo> FTables;
};

} // namespace Korvane
