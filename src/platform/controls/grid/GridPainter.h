// SPDX-License-Identifier: MIT
#pragma once

#include "platform/controls/grid/DBGridTypes.h"
#include "platform/controls/grid/GridLayout.h"

#include <QHash>
#include <QList>
#include <QPalette>

class QPainter;

namespace Korvane {

class TDataSetRows;
class TPaintCopy;
class TwwColumn;
class TwwDBGrid;
struct TCellControl;

/// Paints what is in sight of a grid, row by row, the fields reading each row once.
class TGridPainter
{
public:
    TGridPainter(TwwDBGrid &grid, QPainter &painter);

    void Paint();

private:
    struct TRow
    {
        qsizetype Number;
        bool IsCurrent;
        QColor Fill;
        QColor Text;
    };

    void PaintRows(const TDataSetRows &rows);
    void PaintCell(const TRow &row, int column, const QRect &rect);
    void PaintContent(int column, const QRect &rect, const TCellColors &colors);
    void PaintCheckBox(const QRect &rect, const TwwColumn &column, const TCellControl &control);
    void PaintText(const QRect &rect, const TwwColumn &column, const QString &text);
    void PaintIndicator(const TRow &row);
    void PaintLines(int rowsBottom);
    void PaintTitles();
    void PaintTitle(int column);
    void PaintTitleImage(int column, QRect &rect);
    void PaintDropMark();
    void PaintFooter();
    TRow RowOf(qsizetype number, qsizetype current) const;
    void FindCopies(const QList<int> &columns);
    /// The columns in sight: the frozen ones, and a range of those that scroll.
    QList<int> VisibleColumns() const;

    TwwDBGrid &FGrid;
    QPainter &FPainter;
    const TGridLayout &FLayout;
    const QPalette FPalette;
    const int FPadding;
    QColor FAlternating, FActive, FActiveText;
    QHash<int, TPaintCopy *> FCopies; // by column, of those that controls paint
    TGridBlock FBlock;
    bool FHasBlock = false;
    TGridCell FCurrent;
};

} // namespace Korvane
