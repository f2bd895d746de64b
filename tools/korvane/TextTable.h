// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace Korvane {

/// Rows of text as an aligned table for a terminal with a font of fixed width:
///
///     CODE | NAME | PRICE
///     -----+------+------
///     P01  | 螺丝 |  0.15
///
/// Chinese and other wide characters take two columns. Line breaks and other characters
/// that would disturb the picture are shown escaped, so that each row is one line.
class TTextTable
{
public:
    enum class Alignment { Left, Right };

    void AddColumn(const QString &header, Alignment alignment = Alignment::Left);

    /// Adds a row with one cell for each column; a null string is shown as NULL. Fails with
    /// Exception when the count of cells is another one.
    void AddRow(const QStringList &cells);

    qsizetype RowCount() const { return FRows.size(); }

    /// The whole table, each line ended by a line feed; empty without columns.
    QString ToText() const;

    /// How many columns of a terminal a text takes: two for each wide character, none for
    /// a mark that combines with the character before it.
    static int DisplayWidth(const QString &text);
    /// The text with control characters, line breaks, changes of writing direction and
    /// halves of characters written as \n, \r, \t, \x1b or \u2028.
    static QString Escaped(const QString &text);

private:
    struct Cell
    {
        QString Text;
        int Width;
    };
    struct Column
    {
        Cell Header;
        Alignment Align;
        int Width;
    };

    static Cell MakeCell(const QString &text);
    void AppendCell(QString &line, const Cell &cell, qsizetype column) const;

    QList<Column> FColumns;
    QList<QList<Cell>> FRows;
};

} // namespace Korvane
