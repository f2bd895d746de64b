// SPDX-License-Identifier: MIT
#include "platform/controls/grid/GridPainter.h"

#include "platform/controls/DataSetRows.h"
#include "platform/controls/PaintCopy.h"
#include "platform/controls/grid/DBGrid.h"
#include "platform/controls/grid/GridEditing.h"
#include "platform/controls/grid/GridTitles.h"
#include "platform/data/dataset/Fields.h"
#include "platform/graphics/ImageList.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionHeader>

namespace Korvane {

namespace {

/// Dark text on light fills, light text on dark ones.
QColor ReadableOn(const QColor &fill, const QPalette &palette)
{
    const QColor text = palette.color(QPalette::Text), light = palette.color(QPalette::HighlightedText);
    const auto distance = [&](const QColor &color) { return qAbs(qGray(color.rgb()) - qGray(fill.rgb())); };
    return distance(text) >= distance(light) ? text : light;
}

} // namespace

TGridPainter::TGridPainter(TwwDBGrid &grid, QPainter &painter)
    : FGrid(grid), FPainter(painter), FLayout(grid.Layout()), FPalette(grid.palette()),
      FPadding(grid.style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, &grid) + 1),
      FAlternating(ToQColor(grid.PaintOptions().AlternatingRowColor, FPalette)),
      FActive(ToQColor(grid.PaintOptions().ActiveRecordColor, FPalette)), FBlock(grid.SelectedBlock()),
      FHasBlock(!grid.FBlockEnd.IsNull()), FCurrent(grid.CurrentCell())
{
    if (!FActive.isValid() && grid.Options().testFlag(dgRowSelect))
        FActive = FPalette.color(QPalette::Highlight);
    if (FActive.isValid())
        FActiveText = ReadableOn(FActive, FPalette);
}

QList<int> TGridPainter::VisibleColumns() const
{
    QList<int> columns;
    const QRect area = FLayout.ScrollingArea();
    for (int column = 0; column < FLayout.ColumnCount(); ++column) {
        const QRect rect = FLayout.ColumnRect(column, 0, 1);
        if (column < FLayout.FrozenCount || (rect.right() >= area.left() && rect.left() <= area.right()))
            columns += column;
    }
    return columns;
}

void TGridPainter::Paint()
{
    FPainter.fillRect(QRect({}, FLayout.Size), FPalette.color(QPalette::Base));
    const TDataSetRows rows = FGrid.Rows();
    PaintRows(rows);
    if (FLayout.TitleHeight > 0)
        PaintTitles();
    if (FLayout.FooterHeight > 0)
        PaintFooter();
    PaintDropMark();
}

TGridPainter::TRow TGridPainter::RowOf(qsizetype number, qsizetype current) const
{
    TRow row{number, number == current, {}, FPalette.color(QPalette::Text)};
    if (row.IsCurrent && FActive.isValid()) {
        row.Fill = FActive;
        row.Text = FActiveText;
    } else if (number % 2 == 1 && FAlternating.isValid()) {
        row.Fill = FAlternating;
    }
    return row;
}

void TGridPainter::PaintRows(const TDataSetRows &rows)
{
    const qsizetype current = rows.Current(), end = FLayout.EndRow();
    const QList<int> columns = VisibleColumns();
    FindCopies(columns);
    for (const bool isFrozen : {false, true}) {
        const int sample = isFrozen ? 0 : FLayout.FrozenCount;
        if (isFrozen && FLayout.FrozenCount == 0)
            break;
        QRect clip = FLayout.ClipOf(sample, FLayout.RowsArea());
        clip.setRight(
            qMin(clip.right(), FLayout.TotalWidth() - FLayout.Offset - 1)); // the last column's edge
        FPainter.setClipRect(clip);
        for (qsizetype number = FLayout.TopRow; number < end; ++number) {
            const TDataSetRows::TReading reading(rows, number);
            const TRow row = RowOf(number, current);
            if (row.Fill.isValid())
                FPainter.fillRect(FLayout.RowRect(number) & clip, row.Fill);
            for (const int column : columns)
                if ((column < FLayout.FrozenCount) == isFrozen)
                    PaintCell(row, column, FLayout.CellRect({number, column}));
        }
    }
    FPainter.setClipRect(FLayout.RowsArea());
    if (FLayout.IndicatorWidth > 0)
        for (qsizetype number = FLayout.TopRow; number < end; ++number)
            PaintIndicator(RowOf(number, current));
    PaintLines(end > FLayout.TopRow ? FLayout.RowRect(end - 1).bottom() : FLayout.TitleHeight - 1);
    FPainter.setClipping(false);
}

void TGridPainter::PaintCell(const TRow &row, int index, const QRect &rect)
{
    const TwwColumn &column = *FGrid.Columns(index);
    if (!column.Field())
        return;
    const TGridCell cell{row.Number, index};
    TCellColors colors{row.Fill, row.Text, FPainter.font()};
    const bool isMarked = FHasBlock && FBlock.Contains(cell) && cell != FCurrent;
    const bool isCurrent = cell == FCurrent && !FGrid.Options().testFlag(dgRowSelect);
    if (isMarked || (isCurrent && !row.Fill.isValid())) {
        colors.Fill = FPalette.color(QPalette::Highlight);
        if (isMarked)
            colors.Fill = row.IsCurrent && FActive.isValid() ? colors.Fill.lighter(140) : colors.Fill;
        colors.Text = ReadableOn(colors.Fill, FPalette);
    }
    if (FGrid.OnCalcCellColors)
        FGrid.OnCalcCellColors(&FGrid, column.Field(), cell, colors);
    if (colors.Fill.isValid() && colors.Fill != row.Fill)
        FPainter.fillRect(rect, colors.Fill);
    PaintContent(index, rect, colors);
    if (isCurrent && !FGrid.IsEditing()) {
        FPainter.setPen(QPen(colors.Text, 1, FGrid.hasFocus() ? Qt::SolidLine : Qt::DotLine));
        FPainter.setBrush(Qt::NoBrush);
        FPainter.drawRect(rect.adjusted(0, 0, -2, -2));
    }
}

void TGridPainter::FindCopies(const QList<int> &columns)
{
    for (const int column : columns) {
        const TCellControl &control = FGrid.Columns(column)->Control();
        if (control.Kind == ckCustomEdit && control.PaintsAll)
            if (auto *copy = dynamic_cast<TPaintCopy *>(FGrid.FindControl(control.ControlName)))
                FCopies.insert(column, copy);
    }
}

void TGridPainter::PaintContent(int index, const QRect &rect, const TCellColors &colors)
{
    const TwwColumn &column = *FGrid.Columns(index);
    if (column.Control().Kind == ckCheckBox)
        return PaintCheckBox(rect, column, column.Control());
    if (TPaintCopy *copy = FCopies.value(index)) {
        if (column.Field()->IsNull())
            return; // the row's own colour
        FPainter.save();
        copy->PaintCopy(FPainter, rect.adjusted(0, 0, -1, -1), *column.Field());
        FPainter.restore();
        return;
    }
    const QString text = FGrid.CellText(column);
    if (text.isEmpty())
        return;
    FPainter.setPen(colors.Text);
    const QFont plain = FPainter.font();
    if (colors.Font != plain)
        FPainter.setFont(colors.Font);
    PaintText(rect, column, text);
    if (colors.Font != plain)
        FPainter.setFont(plain);
}

/// What does not fit in one line ends in an ellipsis, so that no number looks like another one.
void TGridPainter::PaintText(const QRect &rect, const TwwColumn &column, const QString &text)
{
    const QRect inner = rect.adjusted(FPadding, 0, -FPadding - 1, 0);
    const int alignment = int(column.Field()->Alignment() & Qt::AlignHorizontal_Mask);
    const QFontMetrics metrics = FPainter.fontMetrics();
    const bool hasLines = FGrid.RowLines() > 1 && rect.height() >= 2 * metrics.height();
    if (!hasLines || qobject_cast<const TNumericField *>(column.Field())) {
        const bool fits = metrics.horizontalAdvance(text) <= inner.width();
        FPainter.drawText(inner, alignment | Qt::AlignVCenter | Qt::TextSingleLine,
                          fits ? text : metrics.elidedText(text, Qt::ElideRight, inner.width()));
        return;
    }
    const int wrapping = alignment | Qt::TextWordWrap;
    const bool fits = FPainter.boundingRect(inner, wrapping, text).height() <= inner.height();
    FPainter.drawText(inner.adjusted(0, 1, 0, -1), wrapping | int(fits ? Qt::AlignVCenter : Qt::AlignTop),
                      text);
}

void TGridPainter::PaintCheckBox(const QRect &rect, const TwwColumn &column, const TCellControl &control)
{
    QStyleOptionButton option;
    option.initFrom(&FGrid);
    option.palette.setCurrentColorGroup(FGrid.isActiveWindow() ? QPalette::Active : QPalette::Inactive);
    const int width = FGrid.style()->pixelMetric(QStyle::PM_IndicatorWidth, &option, &FGrid);
    const int height = FGrid.style()->pixelMetric(QStyle::PM_IndicatorHeight, &option, &FGrid);
    option.rect = QRect(rect.center() - QPoint(width / 2, height / 2), QSize(width, height));
    option.state = QStyle::State_Enabled |
                   (column.Field()->AsString() == control.Checked ? QStyle::State_On : QStyle::State_Off);
    FGrid.style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, &FPainter, &FGrid);
}

/// An arrow on the current row; a pen while it is edited, a star while it is new.
void TGridPainter::PaintIndicator(const TRow &row)
{
    QStyleOptionHeader option;
    option.initFrom(&FGrid);
    option.rect = FLayout.RowRect(row.Number);
    option.rect.setWidth(FLayout.IndicatorWidth);
    option.orientation = Qt::Vertical;
    option.section = int(row.Number - FLayout.TopRow);
    option.position = QStyleOptionHeader::Middle;
    option.state = QStyle::State_Enabled | QStyle::State_Raised;
    FGrid.style()->drawControl(QStyle::CE_HeaderSection, &option, &FPainter, &FGrid);
    if (!row.IsCurrent)
        return;
    const QRectF box = QRectF(option.rect).marginsRemoved({4, 4, 4, 4});
    const QPointF center = box.center();
    const qreal size = qMin(box.width(), box.height()) / 2;
    FPainter.save();
    FPainter.setRenderHint(QPainter::Antialiasing);
    FPainter.setPen(Qt::NoPen);
    FPainter.setBrush(FPalette.color(QPalette::ButtonText));
    const TDataSetState state = FGrid.DataSet()->State();
    if (state == dsInsert) {
        FPainter.setPen(QPen(FPalette.color(QPalette::ButtonText), qMax<qreal>(1.2, size / 4)));
        for (const QPointF arm : {QPointF(0, 1), QPointF(0.87, 0.5), QPointF(0.87, -0.5)})
            FPainter.drawLine(center - arm * size, center + arm * size);
    } else if (state == dsEdit) {
        FPainter.translate(center);
        FPainter.rotate(45);
        FPainter.drawRect(QRectF(-size * 0.28, -size, size * 0.56, size * 1.35));
        FPainter.drawPolygon(QPolygonF({{-size * 0.28, size * 0.45}, {size * 0.28, size * 0.45}, {0, size}}));
    } else {
        FPainter.drawPolygon(
            QPolygonF({center + QPointF(-size * 0.5, -size * 0.9), center + QPointF(size * 0.7, 0),
                       center + QPointF(-size * 0.5, size * 0.9)}));
    }
    FPainter.restore();
}

void TGridPainter::PaintLines(int bottom)
{
    QStyleOption option;
    option.initFrom(&FGrid);
    const int hint = FGrid.style()->styleHint(QStyle::SH_Table_GridLineColor, &option, &FGrid);
    FPainter.setPen(QColor::fromRgba(QRgb(hint)));
    QList<QLine> lines;
    const QList<int> columns = VisibleColumns();
    if (FGrid.Options().testFlag(dgColLines))
        for (const int column : columns) {
            const int x = FLayout.ColumnRect(column, 0, 1).right();
            if (column < FLayout.FrozenCount || x >= FLayout.FrozenEdge())
                lines += QLine(x, FLayout.TitleHeight, x, bottom);
        }
    if (FGrid.Options().testFlag(dgRowLines) && !columns.isEmpty()) {
        const int right =
            qMin(FLayout.Size.width(), FLayout.ColumnRect(FLayout.ColumnCount() - 1, 0, 1).right());
        for (qsizetype row = FLayout.TopRow; row < FLayout.EndRow(); ++row) {
            const int y = FLayout.RowRect(row).bottom();
            lines += QLine(FLayout.IndicatorWidth, y, right, y);
        }
    }
    FPainter.drawLines(lines);
}

void TGridPainter::PaintTitles()
{
    for (const int column : VisibleColumns()) {
        FPainter.setClipRect(FLayout.ClipOf(column, QRect(0, 0, FLayout.Size.width(), FLayout.TitleHeight)));
        PaintTitle(column);
    }
    FPainter.setClipping(false);
    // What is left and right of the columns looks like titles without a text.
    QStyleOptionHeader option;
    option.initFrom(&FGrid);
    option.state = QStyle::State_Enabled | QStyle::State_Raised;
    option.rect = QRect(0, 0, FLayout.IndicatorWidth, FLayout.TitleHeight);
    if (!option.rect.isEmpty())
        FGrid.style()->drawControl(QStyle::CE_HeaderSection, &option, &FPainter, &FGrid);
    const int behind = FLayout.TotalWidth() - FLayout.Offset;
    if (behind < FLayout.Size.width()) {
        option.rect = QRect(behind, 0, FLayout.Size.width() - behind, FLayout.TitleHeight);
        FGrid.style()->drawControl(QStyle::CE_HeaderEmptyArea, &option, &FPainter, &FGrid);
    }
}

void TGridPainter::PaintTitle(int index)
{
    const TwwColumn &column = *FGrid.Columns(index);
    QStyleOptionHeader option;
    option.initFrom(&FGrid);
    option.rect = FLayout.TitleRect(index);
    option.section = index;
    option.text = column.DisplayLabel();
    option.textAlignment = Qt::AlignCenter;
    option.position = QStyleOptionHeader::Middle;
    option.state = QStyle::State_Enabled;
    option.state |= FGrid.FTitles->PressedColumn() == index && FGrid.TitleButtons() ? QStyle::State_Sunken
                                                                                    : QStyle::State_Raised;
    if (index == FCurrent.Column)
        option.state |= QStyle::State_On;
    FGrid.style()->drawControl(QStyle::CE_HeaderSection, &option, &FPainter, &FGrid);
    QRect text = option.rect.adjusted(FPadding, 0, -FPadding, 0);
    PaintTitleImage(index, text);
    FPainter.setPen(FPalette.color(QPalette::ButtonText));
    const QFontMetrics metrics = FPainter.fontMetrics();
    const bool fits = metrics.horizontalAdvance(option.text) <= text.width();
    FPainter.drawText(text, Qt::AlignCenter | Qt::TextSingleLine,
                      fits ? option.text : metrics.elidedText(option.text, Qt::ElideRight, text.width()));
}

/// Takes the picture's place from the text's.
void TGridPainter::PaintTitleImage(int index, QRect &rect)
{
    TImageList *images = FGrid.TitleImageList();
    TTitleImageAttributes attributes;
    FGrid.DoCalcTitleImage(FGrid.Columns(index)->Field(), attributes);
    const bool hasImage = images && attributes.ImageIndex >= 0 && attributes.ImageIndex < images->Count();
    if (!hasImage && !attributes.SortMark)
        return;
    const int mark = FGrid.style()->pixelMetric(QStyle::PM_HeaderMarkSize, nullptr, &FGrid);
    const QSize size = hasImage ? QSize(images->Width(), images->Height()) : QSize(mark, mark);
    QRect place(QPoint(rect.left(), rect.center().y() - size.height() / 2 + 1), size);
    if (attributes.Alignment.testFlag(Qt::AlignLeft)) {
        rect.setLeft(place.right() + 3);
    } else {
        place.moveRight(rect.right());
        rect.setRight(place.left() - 3);
    }
    if (hasImage)
        return images->Icon(attributes.ImageIndex).paint(&FPainter, place);
    QStyleOptionHeader option;
    option.initFrom(&FGrid);
    option.rect = place;
    option.state = QStyle::State_Enabled;
    option.sortIndicator = *attributes.SortMark == Qt::AscendingOrder ? QStyleOptionHeader::SortDown
                                                                      : QStyleOptionHeader::SortUp;
    FGrid.style()->drawPrimitive(QStyle::PE_IndicatorHeaderArrow, &option, &FPainter, &FGrid);
}

/// Where a dragged column will go.
void TGridPainter::PaintDropMark()
{
    const int target = FGrid.FTitles->DropColumn();
    if (target < 0)
        return;
    const int count = FLayout.ColumnCount();
    const QRect next = FLayout.ColumnRect(qMin(target, count - 1), 0, FLayout.TitleHeight);
    const int x = target < count ? next.left() : next.right();
    FPainter.fillRect(QRect(x - 1, 0, 3, FLayout.TitleHeight), FPalette.color(QPalette::Highlight));
}

void TGridPainter::PaintFooter()
{
    const int top = FLayout.Size.height() - FLayout.FooterHeight;
    FPainter.fillRect(QRect(0, top, FLayout.Size.width(), FLayout.FooterHeight),
                      FPalette.color(QPalette::Button));
    FPainter.setPen(FPalette.color(QPalette::Mid));
    FPainter.drawLine(0, top, FLayout.Size.width(), top);
    for (const int column : VisibleColumns()) {
        FPainter.setClipRect(
            FLayout.ClipOf(column, QRect(0, top, FLayout.Size.width(), FLayout.FooterHeight)));
        const QRect rect = FLayout.FooterRect(column);
        FPainter.setPen(FPalette.color(QPalette::Mid));
        FPainter.drawLine(rect.right(), top, rect.right(), rect.bottom());
        const QString text = FGrid.FooterText(column);
        if (text.isEmpty() || !FGrid.Columns(column)->Field())
            continue;
        FPainter.setPen(FPalette.color(QPalette::ButtonText));
        PaintText(rect, *FGrid.Columns(column), text);
    }
    FPainter.setClipping(false);
}

} // namespace Korvane
