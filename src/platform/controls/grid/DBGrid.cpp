// SPDX-License-Identifier: MIT
#include "platform/controls/grid/DBGrid.h"

#include "platform/controls/DataSetRows.h"
#include "platform/controls/grid/DBGridAccessible.h"
#include "platform/controls/grid/GridEditing.h"
#include "platform/controls/grid/GridPainter.h"
#include "platform/controls/grid/GridTitles.h"
#include "platform/controls/grid/GridTotals.h"
#include "platform/core/Exceptions.h"
#include "platform/data/dataset/Fields.h"
#include "platform/graphics/ImageList.h"

#include <QEvent>
#include <QGuiApplication>
#include <QInputMethod>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

/// For how long at most the grid fetches rows at a time, so that the user notices nothing.
constexpr std::chrono::milliseconds IdleSlice(8);

} // namespace

TwwDBGrid::TwwDBGrid(QWidget *parent)
    : QAbstractScrollArea(parent), FEditing(std::make_unique<TGridEditing>(*this)),
      FTitles(std::make_unique<TGridTitles>(*this)), FTotals(std::make_unique<TGridTotals>())
{
    setFocusPolicy(Qt::WheelFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    viewport()->setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled);
    InstallGridAccessibility();
    MeasureText();
}

TwwDBGrid::~TwwDBGrid()
{
    FEditing.reset(); // from here on the link does nothing
}

// ---- the data link --------------------------------------------------------------------

void TwwDBGrid::TLink::ActiveChanged()
{
    if (!FGrid.FEditing) // the grid is going
        return;
    FGrid.FEditing->Close();
    FGrid.FBlockEnd = {};
    FGrid.FFailure.clear();
    if (!Active()) {
        FGrid.FLayout.TopRow = 0;
        FGrid.FLayout.Offset = 0;
    }
    FGrid.LinkActive(Active());
    FGrid.RowsChanged();
    FGrid.FetchWhileIdle();
}

void TwwDBGrid::TLink::EditingChanged()
{
    if (!FGrid.FEditing)
        return;
    if (!Editing())
        FGrid.FEditing->Close();
    FGrid.RowsChanged();
}

void TwwDBGrid::TLink::RecordChanged(TField *field)
{
    if (!FGrid.FEditing)
        return;
    if (!field || field == FGrid.FEditing->Field())
        FGrid.FEditing->Reload();
    FGrid.FTotals->Forget();
    CurrentCellChanged(FGrid);
    FGrid.viewport()->update();
}

void TwwDBGrid::TLink::DataSetChanged()
{
    if (!FGrid.FEditing)
        return;
    FGrid.FTotals->Forget();
    FGrid.FBlockEnd = {};
    FGrid.RowsChanged();
}

void TwwDBGrid::TLink::DataSetScrolled(qsizetype)
{
    if (!FGrid.FEditing)
        return;
    FGrid.FEditing->Close();
    FGrid.FBlockEnd = {};
    FGrid.RowsChanged();
    FGrid.OnRowChanged(&FGrid);
}

void TwwDBGrid::TLink::LayoutChanged()
{
    if (!FGrid.FEditing)
        return;
    FGrid.FEditing->Close();
    FGrid.LinkActive(Active());
    FGrid.RowsChanged();
}

void TwwDBGrid::TLink::RowsFetched()
{
    if (!FGrid.FEditing)
        return;
    FGrid.FTotals->Forget();
    FGrid.FLayout.RowCount = FGrid.Rows().Fetched();
    FGrid.UpdateScrollBars();
    FGrid.UpdateCurrent();
}

void TwwDBGrid::TLink::UpdateData()
{
    if (FGrid.FEditing)
        FGrid.FEditing->Store();
}

void TwwDBGrid::TLink::FocusControl(TField *field)
{
    for (int column = 0; FGrid.FEditing && column < FGrid.ColumnCount(); ++column)
        if (FGrid.Columns(column)->Field() == field) {
            FGrid.SetSelectedIndex(column);
            FGrid.setFocus();
            return;
        }
}

TDataSetRows TwwDBGrid::Rows() const { return TDataSetRows(FLink.Active() ? FLink.DataSet() : nullptr); }

void TwwDBGrid::RowsChanged()
{
    const TDataSetRows rows = Rows();
    FLayout.RowCount = rows.Fetched();
    FLayout.TopRow = FLayout.TopRowFor(rows.Current());
    UpdateScrollBars();
    UpdateCurrent();
}

void TwwDBGrid::FetchWhileIdle()
{
    if (FLink.Active() && !DataSet()->IsFetched())
        FFetching.start(0, this);
    else
        FFetching.stop();
}

void TwwDBGrid::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != FFetching.timerId())
        return QAbstractScrollArea::timerEvent(event);
    FFetching.stop(); // what fails is told once
    const QPointer<TwwDBGrid> self(this);
    if (FLink.Active())
        DataSet()->FetchNext(QDeadlineTimer(IdleSlice));
    if (self)
        FetchWhileIdle();
}

void TwwDBGrid::UpdateCurrent()
{
    if (IsUpdating())
        return;
    FEditing->UpdateCustomControl();
    CurrentCellChanged(*this);
    if (hasFocus())
        QGuiApplication::inputMethod()->update(Qt::ImEnabled | Qt::ImCursorRectangle);
    viewport()->update();
}

// ---- properties -----------------------------------------------------------------------

void TwwDBGrid::SetOptions(TwwDBGridOptions options)
{
    FOptions = options;
    UpdateLayout();
}

void TwwDBGrid::SetEditControlOptions(TwwEditControlOptions options)
{
    FEditControlOptions = options;
    ApplySelected();
}

void TwwDBGrid::SetwwMemoAttributes(TwwMemoAttributes attributes)
{
    FMemoAttributes = attributes;
    viewport()->update();
}

void TwwDBGrid::SetPaintOptions(const TwwPaintOptions &options)
{
    FPaintOptions = options;
    viewport()->update();
}

void TwwDBGrid::SetReadOnly(bool readOnly)
{
    if (readOnly)
        CommitEdit();
    WriteReadOnly(readOnly);
}

void TwwDBGrid::WriteReadOnly(bool readOnly)
{
    FReadOnly = readOnly;
    UpdateCurrent();
}

void TwwDBGrid::SetTitleButtons(bool buttons)
{
    FTitleButtons = buttons;
    viewport()->update();
}

TImageList *TwwDBGrid::TitleImageList() const { return qobject_cast<TImageList *>(FTitleImageList.data()); }

void TwwDBGrid::SetTitleImageList(TImageList *images)
{
    FTitleImageList = images;
    viewport()->update();
}

void TwwDBGrid::SetFixedCols(int count)
{
    FLayout.FrozenCount = qMax(0, count);
    UpdateLayout();
}

void TwwDBGrid::SetRowLines(int lines)
{
    const bool isInSight = IsCurrentInSight();
    FRowLines = qBound(1, lines, 20);
    UpdateLayout();
    if (isInSight)
        ShowCurrentCell();
}

// ---- geometry -------------------------------------------------------------------------

QSize TwwDBGrid::sizeHint() const { return {PixelsOf(60), FLayout.TitleHeight + 10 * FLayout.RowHeight}; }

int TwwDBGrid::PixelsOf(double characters) const { return qRound(characters * FCharWidth) + 2 * CellMargin; }

double TwwDBGrid::CharactersOf(int pixels) const { return qMax(0.1, (pixels - 2 * CellMargin) / FCharWidth); }

int TwwDBGrid::RowHeights(qsizetype) const { return FLayout.RowHeight; }

/// A tick box needs little room, its title more: as much as two wide characters take is there.
int TwwDBGrid::WidthOf(const TwwColumn &column) const
{
    const int width = PixelsOf(column.DisplayWidth());
    if (column.Control().Kind != ckCheckBox)
        return width;
    const int title = QFontMetrics(font()).horizontalAdvance(column.DisplayLabel().left(2));
    return qMax(width, title + 2 * CellMargin + 2);
}

void TwwDBGrid::MeasureText()
{
    FCharWidth = qMax<double>(4, QFontMetricsF(font()).horizontalAdvance(u'0'));
    UpdateLayout();
}

void TwwDBGrid::UpdateLayout()
{
    const QFontMetrics metrics(font());
    const int line = metrics.height();
    FLayout.RowHeight = FRowLines * line + 6;
    FLayout.TitleHeight = FOptions.testFlag(dgTitles) ? line + 10 : 0;
    FLayout.FooterHeight = FOptions.testFlag(dgShowFooter) ? line + 8 : 0;
    FLayout.IndicatorWidth = FOptions.testFlag(dgIndicator) ? qMax(16, line) : 0;
    std::vector<int> widths;
    for (int column = 0; column < ColumnCount(); ++column)
        widths.push_back(WidthOf(*Columns(column)));
    FLayout.SetWidths(widths);
    FLayout.Size = viewport()->size();
    UpdateScrollBars();
    UpdateCurrent();
}

void TwwDBGrid::UpdateScrollBars()
{
    FLayout.Clamp();
    const QSignalBlocker vertical(verticalScrollBar()), horizontal(horizontalScrollBar());
    // A bar counts in ints; more rows than that are beyond any dataset in memory.
    verticalScrollBar()->setRange(0, int(FLayout.LastTopRow()));
    verticalScrollBar()->setPageStep(FLayout.FullRows());
    verticalScrollBar()->setValue(int(FLayout.TopRow));
    horizontalScrollBar()->setRange(0, FLayout.LastOffset());
    horizontalScrollBar()->setPageStep(qMax(1, FLayout.ScrollingArea().width()));
    horizontalScrollBar()->setSingleStep(qMax(1, qRound(FCharWidth * 3)));
    horizontalScrollBar()->setValue(FLayout.Offset);
}

void TwwDBGrid::ScrollTo(qsizetype topRow, int offset)
{
    FLayout.TopRow = topRow;
    FLayout.Offset = offset;
    UpdateScrollBars();
    FEditing->Place();
    viewport()->update();
}

void TwwDBGrid::ShowCurrentCell()
{
    const TGridCell cell = CurrentCell();
    if (!cell.IsNull())
        ScrollTo(FLayout.TopRowFor(cell.Row), FLayout.OffsetFor(cell.Column));
}

void TwwDBGrid::scrollContentsBy(int, int)
{
    ScrollTo(verticalScrollBar()->value(), horizontalScrollBar()->value());
}

bool TwwDBGrid::IsCurrentInSight() const
{
    const qsizetype row = CurrentCell().Row;
    return row >= FLayout.TopRow && row < FLayout.TopRow + FLayout.FullRows();
}

void TwwDBGrid::resizeEvent(QResizeEvent *)
{
    const bool isInSight = IsCurrentInSight();
    FLayout.Size = viewport()->size();
    if (isInSight)
        FLayout.TopRow = FLayout.TopRowFor(CurrentCell().Row);
    UpdateScrollBars();
    FEditing->Place();
}

void TwwDBGrid::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        MeasureText();
}

void TwwDBGrid::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    painter.setClipRegion(event->region());
    try {
        if (FOptions.testFlag(dgShowFooter) && OnUpdateFooter)
            OnUpdateFooter(this);
        TGridPainter(*this, painter).Paint();
    } catch (const EAbort &) {
    } catch (const Exception &error) {
        ShowFailure(error.Message());
    } catch (const std::exception &error) {
        ShowFailure(QString::fromUtf8(error.what()));
    }
}

/// What a handler raises while cells are painted must not leave the painting. It is raised again
/// from the event loop, and not a second time as long as it is the same.
void TwwDBGrid::ShowFailure(const QString &message)
{
    if (std::exchange(FFailure, message) == message)
        return;
    QMetaObject::invokeMethod(
        this, [message] { throw Exception(message); }, Qt::QueuedConnection);
}

// ---- overridable notifications --------------------------------------------------------

void TwwDBGrid::ColEnter() { OnColEnter(this); }

void TwwDBGrid::ColExit() { OnColExit(this); }

void TwwDBGrid::DblClick() { OnDblClick(this); }

void TwwDBGrid::DoFieldChanged(TField *field) { OnFieldChanged(this, field); }

bool TwwDBGrid::IsDateField(TField *field) const
{
    return qobject_cast<TDateTimeField *>(field) && field->DataType() != ftTime;
}

void TwwDBGrid::DoTitleButtonClick(const QString &fieldName) { OnTitleButtonClick(this, fieldName); }

// ---- the current cell -----------------------------------------------------------------

TGridCell TwwDBGrid::CurrentCell() const
{
    const qsizetype row = Rows().Current();
    return row < 0 || FColumn >= ColumnCount() ? TGridCell() : TGridCell{row, FColumn};
}

TField *TwwDBGrid::GetActiveField() const
{
    return FColumn < ColumnCount() ? Columns(FColumn)->Field() : nullptr;
}

void TwwDBGrid::SetSelectedIndex(int column)
{
    if (column < 0 || column >= ColumnCount())
        throw EListError(u"没有第%1列"_s.arg(column + 1));
    if (column == FColumn)
        return ShowCurrentCell();
    CommitEdit();
    ColExit();
    if (column >= ColumnCount()) // a handler has changed the columns
        return;
    FColumn = column;
    FBlockEnd = {};
    ColEnter();
    UpdateCurrent();
    ShowCurrentCell();
}

void TwwDBGrid::SetCurrentCell(const TGridCell &cell)
{
    CommitEdit();
    MoveRow(cell.Row);
    SetSelectedIndex(cell.Column);
}

void TwwDBGrid::MoveRow(qsizetype row)
{
    if (row != Rows().Current()) {
        CommitEdit();
        Rows().GoTo(row);
    }
    ShowCurrentCell();
}

TGridBlock TwwDBGrid::SelectedBlock() const
{
    const TGridCell cell = CurrentCell();
    if (cell.IsNull())
        return {};
    const TGridCell end = FBlockEnd.IsNull() ? cell : FBlockEnd;
    return {qMin(cell.Row, end.Row), qMin(cell.Column, end.Column), qMax(cell.Row, end.Row),
            qMax(cell.Column, end.Column)};
}

void TwwDBGrid::SelectTo(const TGridCell &cell)
{
    if (CurrentCell().IsNull() || cell.IsNull())
        return;
    CommitEdit();
    FBlockEnd = {Rows().Nearest(qMax<qsizetype>(0, cell.Row)), qBound(0, cell.Column, ColumnCount() - 1)};
    if (FBlockEnd == CurrentCell())
        FBlockEnd = {};
    else
        ScrollTo(FLayout.TopRowFor(FBlockEnd.Row), FLayout.OffsetFor(FBlockEnd.Column));
    viewport()->update();
}

void TwwDBGrid::ClearSelection()
{
    FBlockEnd = {};
    viewport()->update();
}

// ---- editing --------------------------------------------------------------------------

bool TwwDBGrid::CanEditColumn(int index) const
{
    if (index < 0 || index >= ColumnCount() || !FLink.Active() || FReadOnly || FLink.ReadOnly() ||
        !FOptions.testFlag(dgEditing) || FOptions.testFlag(dgRowSelect))
        return false;
    const TwwColumn &column = *Columns(index);
    TField *field = column.Field();
    if (!field || column.ReadOnly() || field->Calculated() || field->ReadOnly() || !DataSet()->CanModify())
        return false;
    const bool isBeingEdited = DataSet()->State() != dsBrowse;
    if (!isBeingEdited && (!DataSource()->AutoEdit() || Rows().Fetched() == 0))
        return false;
    const TCellControlKind kind = column.Control().Kind;
    return !field->IsBlob() || kind == ckMemo || kind == ckCustomEdit;
}

bool TwwDBGrid::IsEditing() const { return FEditing && FEditing->IsOpen(); }

bool TwwDBGrid::EditCell() { return FEditing->Open(); }

void TwwDBGrid::CommitEdit()
{
    if (FEditing)
        FEditing->Commit();
}

void TwwDBGrid::CancelEdit() { FEditing->Close(); }

bool TwwDBGrid::ToggleCheckBox()
{
    const TGridCell cell = CurrentCell();
    if (cell.IsNull() || !CanEditColumn(cell.Column))
        return false;
    const TwwColumn &column = *Columns(cell.Column);
    const TCellControl control = column.Control();
    if (control.Kind != ckCheckBox)
        return false;
    WriteCell(column, column.Field()->AsString() == control.Checked ? control.Unchecked : control.Checked);
    return true;
}

/// Writes a stored text into the field of the current row, which is being edited then.
void TwwDBGrid::WriteCell(const TwwColumn &column, const QString &text)
{
    const QPointer<TField> field = column.Field();
    if (!FLink.Edit() || !field)
        return;
    field->SetText(text);
    if (field)
        DoFieldChanged(field);
}

} // namespace Korvane
