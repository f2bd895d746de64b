// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/jet/JetTable.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace Korvane::Testing {

/// Builds a Jet file table by table and page by page, so that values, layouts and sizes that
/// no sample file has can be read. Its first page is that of a sample file.
///
///     TJetBuilder builder(samplePage, false);
///     builder.BeginTable("T", {{"Id", TJetType::LongInteger, 4, true}});
///     builder.AddRow({TJetBuilder::Int(1, 4)});
///     QByteArray file = builder.Build();
class TJetBuilder
{
public:
    struct TColumn
    {
        QString Name;
        TJetType Type = TJetType::Text;
        int Size = 0; ///< bytes in the file
        bool IsFixed = false;
        int Precision = 0;
        int Scale = 0;
        bool IsRequired = false;
        bool IsAuto = false;
    };
    enum class TIndexKind { Plain, Unique, Primary, Relation };
    using TCells = QList<std::optional<QByteArray>>; ///< a boolean is true when it has a value

    TJetBuilder(const QByteArray &samplePage, bool isJet3);

    /// All that follows goes to this table.
    void BeginTable(const QString &name, const QList<TColumn> &columns);
    /// Describes an index on columns by their numbers; it has no pages of its own.
    void AddIndex(const QString &name, const QList<int> &columns, TIndexKind kind);
    void AddRow(const TCells &cells) { AddRow(FTables.last(), cells); }
    /// Flags go to the row's offset: 0x8000 deleted, 0x4000 moved.
    void AddRawRow(const QByteArray &row, int flags) { AddRawRow(FTables.last(), row, flags); }
    QByteArray PackRow(const TCells &cells) const { return PackRow(FTables.last().Columns, cells); }
    /// Ends the data page and begins a new one.
    void NextPage() { NextPage(FTables.last()); }
    /// Writes the table's usage map as a list of map pages, even where a bitmap is enough.
    void UseMapPages() { FTables.last().UsesMapPages = true; }

    /// The page of the table's definition.
    quint32 TablePage() const { return FTables.last().Page; }
    /// The page of the latest row, 0 before the first. NextPage makes the page behind the
    /// last one of the file.
    quint32 RowPage() const { return FTables.last().RowPage; }

    /// Stores a value in a chain of rows, each on a page of its own, and returns what stands
    /// in the column for it.
    QByteArray ChainedValue(const QByteArray &value);
    /// Stores a value in one row of a page.
    QByteArray PagedValue(const QByteArray &value);
    static QByteArray InlineValue(const QByteArray &value);

    QByteArray Build() const;

    static QByteArray Int(quint64 value, int bytes);
    static QByteArray Utf16(const QString &text);
    static QByteArray DoubleBytes(double value);

private:
    struct TPage
    {
        quint32 Owner = 0;
        QList<QByteArray> Rows;
        QList<int> Flags;
    };
    struct TIndex
    {
        QString Name;
        QList<int> Columns;
        TIndexKind Kind = TIndexKind::Plain;
    };
    struct TTable
    {
        QList<TColumn> Columns;
        QList<TIndex> Indexes;
        quint32 Page = 0;
        QList<quint32> Pages; ///< of rows and long values
        quint32 RowPage = 0;
        int RowCount = 0;
        bool UsesMapPages = false;
    };

    int PageSize() const { return FIsJet3 ? 2048 : 4096; }
    int RowsOffset() const { return FIsJet3 ? 8 : 12; }
    QByteArray NameBytes(const QString &name) const { return FIsJet3 ? name.toLatin1() : Utf16(name); }
    quint32 AddPage(TTable &table, const TPage &page);
    void NextPage(TTable &table);
    void AddRow(TTable &table, const TCells &cells);
    void AddRawRow(TTable &table, const QByteArray &row, int flags);
    QByteArray PackRow(const QList<TColumn> &columns, const TCells &cells) const;
    QByteArray Definition(const TTable &table, int mapRow) const;
    QByteArray IndexDefinitions(const QList<TIndex> &indexes) const;
    QByteArray DataPage(const TPage &page) const;
    QByteArray UsageMap(const TTable &table, QByteArray &file) const;
    void PutPage(QByteArray &file, quint32 number, const QByteArray &page) const;

    QByteArray FSamplePage;
    bool FIsJet3;
    QList<TPage> FPages;   ///< of the file; those that hold no rows are filled in by Build
    QList<TTable> FTables; ///< the catalog is the first
};

} // namespace Korvane::Testing
