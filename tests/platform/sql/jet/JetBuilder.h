// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/jet/JetTable.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace Korvane::Testing {

/// Builds a Jet file with one table "T" for tests, page by page, so that values and layouts
/// that no sample file has can be read. Its first page is that of a sample file.
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
    };
    using TCells = QList<std::optional<QByteArray>>; ///< a boolean is true when it has a value

    TJetBuilder(const QByteArray &samplePage, bool isJet3, QList<TColumn> columns);

    void AddRow(const TCells &cells);
    /// Flags go to the row's offset: 0x8000 deleted, 0x4000 moved.
    void AddRawRow(const QByteArray &row, int flags);
    QByteArray PackRow(const TCells &cells) const { return PackRow(FColumns, cells); }
    /// Ends the data page and begins a new one.
    void NextPage();
    /// Writes the table's usage map as a list of map pages.
    void UseMapPages() { FUsesMapPages = true; }
    /// The next data page gets this number: page and row for a row pointer.
    quint32 NextDataPage() const { return FirstDataPage + quint32(FDataPages.size()) - 1; }

    /// Stores a value in a chain of rows, each on a page of its own, and returns what stands
    /// in the column for it.
    QByteArray ChainedValue(const QByteArray &value);
    /// Stores a value in one row of a page.
    QByteArray PagedValue(const QByteArray &value);
    static QByteArray InlineValue(const QByteArray &value);

    QByteArray Build() const;

    static constexpr quint32 FirstDataPage = 8;

    static QByteArray Int(quint64 value, int bytes);
    static QByteArray Utf16(const QString &text);
    static QByteArray DoubleBytes(double value);

private:
    struct TPage
    {
        QList<QByteArray> Rows;
        QList<int> Flags;
        quint32 Owner = 0;
    };

    int PageSize() const { return FIsJet3 ? 2048 : 4096; }
    int RowsOffset() const { return FIsJet3 ? 8 : 12; }
    QByteArray PackRow(const QList<TColumn> &columns, const TCells &cells) const;
    QByteArray Definition(const QList<TColumn> &columns, int rows, int mapRow) const;
    QByteArray DataPage(const TPage &page) const;
    QByteArray Bitmap(const QList<quint32> &pages, int size) const;

    QByteArray FSamplePage;
    bool FIsJet3;
    bool FUsesMapPages = false;
    QList<TColumn> FColumns;
    QList<TPage> FDataPages;
    int FLongPages = 0; ///< among them
    int FRowCount = 0;
};

} // namespace Korvane::Testing
