// SPDX-License-Identifier: MIT
#pragma once

#include "platform/controls/editors/CellControl.h"
#include "platform/controls/grid/DBGridTypes.h"
#include "platform/controls/grid/GridColumns.h"
#include "platform/controls/grid/GridLayout.h"
#include "platform/core/Event.h"
#include "platform/data/dataset/DataLink.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>

namespace Korvane {

class TCellEditor;
class TDataSetRows;
class TGridEditing;
class TGridPainter;
class TGridTitles;
class TGridTotals;
class TImageList;

/// A table of the rows that a dataset shows. It reads the rows in sight through a data link and
/// keeps none, so that a million rows cost what ten do; the dataset's current row is the grid's,
/// and scrolling by the bar or the wheel leaves it where it is.
///
///     TwwDBGrid grid;
///     grid.SetDataSource(&source);
///     grid.SetSelectedFields({"CODE\t12\t编号\tT", "STOPPED\t4\t停用", "QTY\t10\t数量"});
///     grid.ControlType() = {"STOPPED;CheckBox;Y;N"};
///     grid.ApplySelected();
///
/// What is typed goes into the field when the cell is left, and the row is posted when the row is.
/// A refusal raises, and leaves the user in the cell or the row with what was typed.
///
/// Keys: the arrows, Home, End, PageUp and PageDown, the last four with Ctrl to the very ends, Tab
/// and Enter (dgTabs, dgEnterToTab) move; with Shift the arrows mark a block of cells. A letter or F2
/// edits, F4 or Alt+Down opens a list, Space ticks, Esc gives up first the cell, then the row. Delete
/// empties cells; Ctrl+C, Ctrl+X and Ctrl+V exchange blocks with spreadsheets.
class TwwDBGrid : public QAbstractScrollArea
{
    Q_OBJECT
    Q_MOC_INCLUDE("platform/graphics/ImageList.h")
    Q_PROPERTY(Korvane::TDataSource *DataSource READ DataSource WRITE SetDataSource)
    Q_PROPERTY(QStringList Selected READ Selected WRITE SetSelected)
    Q_PROPERTY(QStringList ControlType READ ControlType WRITE SetControlType)
    Q_PROPERTY(Korvane::TwwDBGridOptions Options READ Options WRITE SetOptions)
    Q_PROPERTY(Korvane::TwwDBGridKeyOptions KeyOptions READ KeyOptions WRITE SetKeyOptions)
    Q_PROPERTY(
        Korvane::TwwEditControlOptions EditControlOptions READ EditControlOptions WRITE SetEditControlOptions)
    Q_PROPERTY(Korvane::TwwMemoAttributes MemoAttributes READ MemoAttributes WRITE SetwwMemoAttributes)
    Q_PROPERTY(Korvane::TwwPaintOptions PaintOptions READ PaintOptions WRITE SetPaintOptions)
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE SetReadOnly)
    Q_PROPERTY(bool TitleButtons READ TitleButtons WRITE SetTitleButtons)
    Q_PROPERTY(Korvane::TImageList *TitleImageList READ TitleImageList WRITE SetTitleImageList)
    Q_PROPERTY(int FixedCols READ FixedCols WRITE SetFixedCols)
    Q_PROPERTY(int RowLines READ RowLines WRITE SetRowLines)
    Q_PROPERTY(QString Name READ objectName WRITE setObjectName STORED false)
    Q_PROPERTY(qint64 Tag READ Tag WRITE SetTag)

public:
    explicit TwwDBGrid(QWidget *parent = nullptr);
    ~TwwDBGrid() override;

    // ---- data
    TDataSource *DataSource() const { return FLink.DataSource(); }
    TDataSource *GetDataSource() const { return DataSource(); }
    void SetDataSource(TDataSource *source) { FLink.SetDataSource(source); }
    /// Null without a source.
    TDataSet *DataSet() const { return FLink.DataSet(); }

    // ---- columns
    /// The columns as lines, see TSelectedLine; empty for the visible fields of the dataset. What is
    /// changed in the list counts from ApplySelected, or from the end of an update, on.
    QStringList &GetSelectedFields() { return FSelected; }
    const QStringList &Selected() const { return FSelected; }
    void SetSelected(const QStringList &lines);
    /// Lines of the control table, see TCellControl. They count as the columns do.
    QStringList &ControlType() { return FControlType; }
    const QStringList &ControlType() const { return FControlType; }
    void SetControlType(const QStringList &lines);
    void ApplySelected();
    /// Nests: columns are laid out and painted again after as many ends.
    void BeginUpdate() { ++FUpdateCount; }
    /// With repaint at once, otherwise when the event loop comes to it.
    void EndUpdate(bool repaint = true);

    /// The columns shown, in order.
    int ColumnCount() const { return FColumns.Count(); }
    TwwColumn *Columns(int index) const { return FColumns[index]; }
    /// Also of hidden ones; blind to case; null if there is none.
    TwwColumn *ColumnByName(const QString &fieldName) const { return FColumns.Find(fieldName); }
    /// As a drag of its title does.
    void MoveColumn(int from, int to);
    /// As wide as the title and the widest cell in sight.
    void AutoSizeColumn(int index);
    /// Order, widths and hidden columns as a text, for the application to keep.
    QString SaveLayout() const { return FColumns.SaveLayout(); }
    /// The layout also stays for columns that come later. Raises EConvertError for a text that is none.
    void RestoreLayout(const QString &text);
    /// Back to what the selected list says.
    void ResetLayout();

    // ---- the feet of the columns, shown with dgShowFooter
    /// A figure over all rows shown; a field that is no number has a count only. It belongs to the
    /// field's name and stays when columns are built anew.
    TFooterKind FooterKind(const QString &fieldName) const;
    void SetFooterKind(const QString &fieldName, TFooterKind kind);
    /// A text in the place of a figure.
    QString FooterValue(const QString &fieldName) const;
    void SetFooterValue(const QString &fieldName, const QString &text);

    // ---- properties
    TwwDBGridOptions Options() const { return FOptions; }
    void SetOptions(TwwDBGridOptions options);
    TwwDBGridKeyOptions KeyOptions() const { return FKeyOptions; }
    void SetKeyOptions(TwwDBGridKeyOptions options) { FKeyOptions = options; }
    TwwEditControlOptions EditControlOptions() const { return FEditControlOptions; }
    void SetEditControlOptions(TwwEditControlOptions options);
    TwwMemoAttributes MemoAttributes() const { return FMemoAttributes; }
    void SetwwMemoAttributes(TwwMemoAttributes attributes);
    const TwwPaintOptions &PaintOptions() const { return FPaintOptions; }
    void SetPaintOptions(const TwwPaintOptions &options);
    bool ReadOnly() const { return FReadOnly; }
    void SetReadOnly(bool readOnly);
    /// Titles are pressed like buttons and tell OnTitleButtonClick.
    bool TitleButtons() const { return FTitleButtons; }
    void SetTitleButtons(bool buttons);
    TImageList *TitleImageList() const;
    void SetTitleImageList(TImageList *images);
    /// Columns on the left that do not scroll.
    int FixedCols() const { return FLayout.FrozenCount; }
    void SetFixedCols(int count);
    /// Lines of text that a row has room for.
    int RowLines() const { return FRowLines; }
    void SetRowLines(int lines);
    qint64 Tag() const { return FTag; }
    void SetTag(qint64 tag) { FTag = tag; }

    // ---- the current cell
    /// Null without rows or columns.
    TGridCell CurrentCell() const;
    /// Leaves cell and row, which may raise, and makes another one current.
    void SetCurrentCell(const TGridCell &cell);
    int SelectedIndex() const { return FColumn; }
    void SetSelectedIndex(int column);
    TField *GetActiveField() const;
    /// The marked cells; the current cell alone at least, none without one.
    TGridBlock SelectedBlock() const;
    /// Marks the cells from the current one to another.
    void SelectTo(const TGridCell &cell);
    void ClearSelection();

    // ---- editing
    /// Whether cells of the column can be written to now.
    bool CanEditColumn(int column) const;
    bool IsEditing() const;
    /// Opens the editor of the current cell; false if it cannot be edited.
    bool EditCell();
    /// Writes what is typed into the field. Raises what the field raises; the editor then stays.
    void CommitEdit();
    /// Closes the editor and leaves the field as it is.
    void CancelEdit();
    /// Ticks the current cell, or takes the tick away; false if it has no box or cannot be edited.
    bool ToggleCheckBox();
    /// Deletes the current row; asks first with dgConfirmDelete.
    void DeleteRow();

    // ---- the clipboard
    /// The marked cells as text, tab characters between cells and a line for each row.
    void CopyToClipboard() const;
    void CutToClipboard();
    /// Writes a text of that form into the cells from the first marked one on; rows below the last
    /// are appended. Columns that cannot be written are passed over. Raises Exception when there are
    /// fewer columns than in the text, and what a field or a row raises; what stands before stays.
    void PasteFromClipboard();
    /// Empties the marked cells that can be written.
    void EmptyCells();

    // ---- geometry, in pixels of the viewport
    const TGridLayout &Layout() const { return FLayout; }
    int RowHeights(qsizetype row) const;
    QRect CellRect(const TGridCell &cell) const { return FLayout.CellRect(cell); }
    /// Scrolls the current cell into sight.
    void ShowCurrentCell();

    /// What is shown in a cell; the fields must read its row.
    QString CellText(const TwwColumn &column) const;
    /// The text at the foot of a column.
    QString FooterText(int column) const;

    TEvent<TwwDBGrid *> OnColEnter, OnColExit, OnRowChanged, OnDblClick, OnColumnsMoved;
    /// A field was changed by the user in this grid.
    TEvent<TwwDBGrid *, TField *> OnFieldChanged;
    /// (grid, field name)
    TEvent<TwwDBGrid *, const QString &> OnTitleButtonClick;
    TEvent<TwwDBGrid *, TField *, TTitleImageAttributes &> OnCalcTitleImage;
    /// (grid, field, cell, colours): for every cell that is painted.
    TEvent<TwwDBGrid *, TField *, const TGridCell &, TCellColors &> OnCalcCellColors;
    /// The totals are about to be shown anew.
    TEvent<TwwDBGrid *> OnUpdateFooter;
    /// (grid, delta in eighths of a degree, handled)
    TEvent<TwwDBGrid *, int, bool &> OnMouseWheel;

    /// A control of the form by name, for cells; null if there is none.
    QWidget *FindControl(const QString &name) const;

    QSize sizeHint() const override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

protected:
    /// The data link has opened or closed.
    virtual void LinkActive(bool value);
    virtual void ColEnter();
    virtual void ColExit();
    virtual void DblClick();
    /// Scrolls by as many rows as the system's setting has lines for a notch, the current row staying.
    /// False when OnMouseWheel has handled it.
    virtual bool DoMouseWheel(int delta);
    virtual void DoFieldChanged(TField *field);
    /// Whether the cell of a field has a calendar.
    virtual bool IsDateField(TField *field) const;
    virtual void DoTitleButtonClick(const QString &fieldName);
    /// Marks the field by which a client dataset is ordered, and tells OnCalcTitleImage.
    virtual void DoCalcTitleImage(TField *field, TTitleImageAttributes &attributes);
    /// The field of a line of the selected list; null makes no column.
    virtual TField *FieldOfColumn(const QString &name) const;
    /// Whether keys may insert and delete rows, besides what KeyOptions say.
    virtual bool MayChangeRows() const;
    /// Deletes the current row of the dataset.
    virtual void DeleteRecord();

    /// Tells OnMouseWheel; false when it has been handled.
    bool TellMouseWheel(int delta);
    /// The read-only flag alone; columns stay as they are.
    void WriteReadOnly(bool readOnly);
    const TDataLink &DataLink() const { return FLink; }

    bool event(QEvent *event) override;
    bool eventFilter(QObject *object, QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void focusOutEvent(QFocusEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    bool viewportEvent(QEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    friend class TwwColumn;
    friend class TGridEditing;
    friend class TGridPainter;
    friend class TGridTitles;
    friend class TGridTotals;

    /// The grid's end of the data source.
    class TLink : public TDataLink
    {
    public:
        explicit TLink(TwwDBGrid &grid) : FGrid(grid) {}

    protected:
        void ActiveChanged() override;
        void EditingChanged() override;
        void RecordChanged(TField *field) override;
        void DataSetChanged() override;
        void DataSetScrolled(qsizetype distance) override;
        void LayoutChanged() override;
        void RowsFetched() override;
        void UpdateData() override;
        void FocusControl(TField *field) override;

    private:
        TwwDBGrid &FGrid;
    };

    void BuildColumns();
    TCellControl ControlFor(const TwwColumn &column) const;
    static constexpr int CellMargin = 4; ///< pixels left and right of a text, the line beside it included

    TDataSetRows Rows() const;
    bool IsUpdating() const { return FUpdateCount > 0; }
    /// A column looks otherwise, or is shown or not.
    void ColumnsChanged();
    void MeasureText();
    void UpdateLayout();
    void UpdateScrollBars();
    void ScrollTo(qsizetype topRow, int offset);
    /// Rows have come or gone, or another one is current.
    void RowsChanged();
    /// Has the rows fetched that are not there yet, a little whenever nothing else is to be done.
    void FetchWhileIdle();
    void UpdateCurrent();
    bool TakesInputMethod() const;
    bool IsCurrentInSight() const;
    int WidthOf(const TwwColumn &column) const;
    int PixelsOf(double characters) const;
    double CharactersOf(int pixels) const;

    // Keys and the mouse.
    bool HandleKey(QKeyEvent &event);
    bool HandleEditKey(QKeyEvent &event);
    bool HandleRowKey(QKeyEvent &event);
    bool HandleMoveKey(QKeyEvent &event);
    /// Where a moving key leads from a cell; null for any other key.
    TGridCell TargetOf(const QKeyEvent &event, const TGridCell &from) const;
    bool TypeLetter(QKeyEvent &event);
    void MoveRow(qsizetype row);
    void GoToNextCell();
    void GoToPreviousCell();
    bool GoToNewRow();
    bool CanInsert() const;
    void PressCell(const TGridCell &cell, QMouseEvent &event);
    QRect CheckBoxRect(const TGridCell &cell) const;
    TGridCell CellAt(QPoint position) const
    {
        return {FLayout.RowAt(position.y()), FLayout.ColumnAt(position.x())};
    }
    void WriteCells(const QList<QStringList> &rows);
    void WriteCell(const TwwColumn &column, const QString &text);
    void ShowFailure(const QString &message);

    TLink FLink{*this};
    QStringList FSelected;
    QStringList FControlType;
    TGridColumns FColumns;
    TGridLayout FLayout;
    int FUpdateCount = 0;
    bool FIsBuilding = false;
    TwwDBGridOptions FOptions = dgEditing | dgTitles | dgIndicator | dgColumnResize | dgColumnMenu |
                                dgColLines | dgRowLines | dgTabs | dgConfirmDelete;
    TwwDBGridKeyOptions FKeyOptions = dgAllowDelete | dgAllowInsert;
    TwwEditControlOptions FEditControlOptions;
    TwwMemoAttributes FMemoAttributes = mWordWrap;
    TwwPaintOptions FPaintOptions;
    bool FReadOnly = false;
    bool FTitleButtons = false;
    QPointer<QObject> FTitleImageList;
    int FRowLines = 1;
    qint64 FTag = 0;
    int FColumn = 0;     // the current one, among those shown
    TGridCell FBlockEnd; // the far end of the marked block; null for none
    TGridCell FPressed;  // where the mouse went down
    bool FEditOnRelease = false;
    double FCharWidth = 8;
    QBasicTimer FFetching;
    QString FFailure; // shown already, of what painting raised
    std::unique_ptr<TGridEditing> FEditing;
    std::unique_ptr<TGridTitles> FTitles;
    std::unique_ptr<TGridTotals> FTotals;
};

} // namespace Korvane
