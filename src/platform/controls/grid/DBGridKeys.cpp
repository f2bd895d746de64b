// SPDX-License-Identifier: MIT
// The keyboard of a grid, and input methods.
#include "platform/controls/DataSetRows.h"
#include "platform/controls/grid/DBGrid.h"
#include "platform/controls/grid/GridEditing.h"
#include "platform/controls/grid/GridTotals.h"
#include "platform/core/ApplicationTitle.h"
#include "platform/core/Prompts.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

bool IsEnter(const QKeyEvent &event) { return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter; }

bool Has(const QKeyEvent &event, Qt::KeyboardModifier modifier)
{
    return event.modifiers().testFlag(modifier);
}

} // namespace

bool TwwDBGrid::event(QEvent *event)
{
    // Keys that a form's short cuts must not take while a cell may use them.
    if (event->type() == QEvent::ShortcutOverride) {
        auto *key = static_cast<QKeyEvent *>(event);
        const bool isUsed = (key->key() == Qt::Key_Escape && (IsEditing() || FLink.Editing())) ||
                            key->matches(QKeySequence::Copy) || key->matches(QKeySequence::Paste) ||
                            key->matches(QKeySequence::Cut);
        if (isUsed)
            key->accept();
    }
    return QAbstractScrollArea::event(event);
}

/// What the editor in the cell does not need is the grid's.
bool TwwDBGrid::eventFilter(QObject *object, QEvent *event)
{
    if (!FEditing || !FEditing->Owns(object))
        return QAbstractScrollArea::eventFilter(object, event);
    if (event->type() == QEvent::KeyPress) {
        auto &key = static_cast<QKeyEvent &>(*event);
        const bool isOwn = FEditing->Editor() ? FEditing->Editor()->KeepsKey(key)
                                              : key.key() != Qt::Key_Tab && key.key() != Qt::Key_Backtab &&
                                                    key.key() != Qt::Key_Up && key.key() != Qt::Key_Down;
        if (!isOwn)
            return HandleKey(key);
    }
    if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape)
        event->accept();
    // The row stays in its edit state, but what was typed is not lost out of sight.
    if (event->type() == QEvent::FocusOut && FEditing->IsOpen() &&
        static_cast<QFocusEvent *>(event)->reason() != Qt::PopupFocusReason &&
        !FEditing->Owns(QApplication::focusWidget()) && QApplication::focusWidget() != this)
        CommitEdit();
    return QAbstractScrollArea::eventFilter(object, event);
}

void TwwDBGrid::keyPressEvent(QKeyEvent *event)
{
    if (!HandleKey(*event))
        QAbstractScrollArea::keyPressEvent(event);
}

bool TwwDBGrid::focusNextPrevChild(bool next)
{
    // NOTE: Tab comes as a key while the grid has the focus; the framework asks here first.
    if (!FOptions.testFlag(dgTabs) || CurrentCell().IsNull())
        return QAbstractScrollArea::focusNextPrevChild(next);
    return false;
}

bool TwwDBGrid::HandleKey(QKeyEvent &event)
{
    // NOTE: rows first, since Ctrl+Insert also means to copy, which it does where no row can be inserted.
    const bool isDone =
        HandleRowKey(event) || HandleEditKey(event) || HandleMoveKey(event) || TypeLetter(event);
    if (isDone)
        event.accept();
    return isDone;
}

/// Keys of the cell.
bool TwwDBGrid::HandleEditKey(QKeyEvent &event)
{
    const bool isPlain = !(event.modifiers() & ~Qt::KeypadModifier);
    if (event.matches(QKeySequence::Copy))
        return CopyToClipboard(), true;
    if (event.matches(QKeySequence::Cut))
        return CutToClipboard(), true;
    if (event.matches(QKeySequence::Paste))
        return PasteFromClipboard(), true;
    switch (event.key()) {
    case Qt::Key_F2:
        if (!IsEditing() && !EditCell() && FEditing->CustomControl())
            FEditing->CustomControl()->setFocus();
        return isPlain;
    case Qt::Key_F4:
    case Qt::Key_Down:
        if ((event.key() == Qt::Key_F4 ? !isPlain : event.modifiers() != Qt::AltModifier) || !EditCell())
            return false;
        FEditing->Editor()->DropDown();
        return true;
    case Qt::Key_Space:
        return isPlain && ToggleCheckBox();
    case Qt::Key_Delete:
        return isPlain && !IsEditing() && (EmptyCells(), true);
    case Qt::Key_Escape:
        if (IsEditing())
            return CancelEdit(), true;
        if (FLink.Active() && (DataSet()->State() == dsEdit || DataSet()->State() == dsInsert))
            return DataSet()->Cancel(), true;
        return false;
    default:
        return false;
    }
}

/// Keys that make and delete rows.
bool TwwDBGrid::HandleRowKey(QKeyEvent &event)
{
    const bool isControl = event.modifiers() == Qt::ControlModifier;
    if (event.key() == Qt::Key_Delete && isControl) {
        if (FKeyOptions.testFlag(dgAllowDelete) && MayChangeRows())
            DeleteRow();
        return true;
    }
    if (event.key() == Qt::Key_Insert && (isControl || event.modifiers() == Qt::NoModifier)) {
        if (!CanInsert())
            return false;
        CommitEdit();
        DataSet()->Insert();
        return true;
    }
    return false;
}

bool TwwDBGrid::CanInsert() const
{
    return FKeyOptions.testFlag(dgAllowInsert) && MayChangeRows() && FLink.Active() &&
           DataSource()->AutoEdit();
}

bool TwwDBGrid::MayChangeRows() const
{
    return !FReadOnly && FOptions.testFlag(dgEditing) && DataSet() && DataSet()->CanModify();
}

void TwwDBGrid::DeleteRecord() { DataSet()->Delete(); }

void TwwDBGrid::DeleteRow()
{
    if (CurrentCell().IsNull() || !DataSet()->CanModify())
        return;
    if (FOptions.testFlag(dgConfirmDelete)) {
        const int answer =
            Prompts::Current().MessageBox(u"确定要删除当前行吗？"_s, ApplicationTitle(),
                                          MB_YESNO + MB_ICONQUESTION + MB_DEFBUTTON2 + MB_TOPMOST);
        if (answer != IDYES || CurrentCell().IsNull())
            return;
    }
    CancelEdit();
    DeleteRecord();
}

/// Appends a row, unless the last one is new and empty already.
bool TwwDBGrid::GoToNewRow()
{
    if (!CanInsert())
        return false;
    CommitEdit();
    if (DataSet()->State() == dsInsert && !DataSet()->Modified())
        return false;
    DataSet()->Append();
    return true;
}

TGridCell TwwDBGrid::TargetOf(const QKeyEvent &event, const TGridCell &from) const
{
    const TDataSetRows rows = Rows();
    const qsizetype page = FLayout.FullRows();
    const int lastColumn = ColumnCount() - 1;
    const bool isControl = Has(event, Qt::ControlModifier);
    const auto down = [&](qsizetype by) {
        return isControl ? rows.Count() - 1 : rows.Nearest(from.Row + by);
    };
    switch (event.key()) {
    case Qt::Key_Left:
        return {from.Row, isControl ? 0 : qMax(0, from.Column - 1)};
    case Qt::Key_Right:
        return {from.Row, isControl ? lastColumn : qMin(lastColumn, from.Column + 1)};
    case Qt::Key_Up:
        return {isControl ? 0 : qMax<qsizetype>(0, from.Row - 1), from.Column};
    case Qt::Key_Down:
        return {down(1), from.Column};
    case Qt::Key_PageUp:
        return {isControl ? 0 : qMax<qsizetype>(0, from.Row - page), from.Column};
    case Qt::Key_PageDown:
        return {down(page), from.Column};
    case Qt::Key_Home:
        return {isControl ? 0 : from.Row, isControl ? from.Column : 0};
    case Qt::Key_End:
        return {down(0), isControl ? from.Column : lastColumn};
    default:
        return {};
    }
}

bool TwwDBGrid::HandleMoveKey(QKeyEvent &event)
{
    const TGridCell cell = CurrentCell();
    if (cell.IsNull()) {
        // On an empty grid the first row can be begun.
        const bool begins = event.key() == Qt::Key_Down && event.modifiers() == Qt::NoModifier;
        return begins && FLink.Active() && GoToNewRow();
    }
    if (event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab) {
        const bool isForward = event.key() == Qt::Key_Tab && !Has(event, Qt::ShiftModifier);
        if (!FOptions.testFlag(dgTabs))
            return false;
        if (Has(event, Qt::ControlModifier)) { // out of the grid
            CommitEdit();
            return QAbstractScrollArea::focusNextPrevChild(isForward);
        }
        isForward ? GoToNextCell() : GoToPreviousCell();
        return true;
    }
    if (IsEnter(event)) {
        if (FKeyOptions.testFlag(dgEnterToTab))
            return (Has(event, Qt::ShiftModifier) ? GoToPreviousCell() : GoToNextCell()), true;
        if (IsEditing())
            return CommitEdit(), true;
        return EditCell();
    }
    if (Has(event, Qt::AltModifier))
        return false;
    const bool marks = Has(event, Qt::ShiftModifier);
    const TGridCell from = marks && !FBlockEnd.IsNull() ? FBlockEnd : cell;
    const TGridCell target = TargetOf(event, from);
    if (target.IsNull())
        return false;
    if (marks)
        return SelectTo(target), true;
    FBlockEnd = {};
    if (event.key() == Qt::Key_Down && target == cell && event.modifiers() == Qt::NoModifier) {
        if (GoToNewRow())
            return true;
    }
    SetCurrentCell(target);
    viewport()->update();
    return true;
}

/// Along the row to the next cell that can be edited, or to the next cell at all where none can;
/// behind the last one to the next row, and behind the last row to a new one.
void TwwDBGrid::GoToNextCell()
{
    CommitEdit();
    const auto firstFrom = [this](int column) {
        bool anyEditable = false;
        for (int each = 0; each < ColumnCount(); ++each)
            anyEditable = anyEditable || CanEditColumn(each);
        while (column < ColumnCount() && anyEditable && !CanEditColumn(column))
            ++column;
        return column;
    };
    const TGridCell cell = CurrentCell();
    const int next = firstFrom(cell.Column + 1);
    if (next < ColumnCount())
        return SetSelectedIndex(next);
    if (Rows().Has(cell.Row + 1))
        MoveRow(cell.Row + 1);
    else if (!GoToNewRow())
        return;
    const int first = firstFrom(0);
    SetSelectedIndex(first < ColumnCount() ? first : 0);
}

void TwwDBGrid::GoToPreviousCell()
{
    CommitEdit();
    const TGridCell cell = CurrentCell();
    if (cell.Column > 0)
        return SetSelectedIndex(cell.Column - 1);
    if (cell.Row > 0)
        SetCurrentCell({cell.Row - 1, ColumnCount() - 1});
}

/// A printing character begins an edit in the place of the value.
bool TwwDBGrid::TypeLetter(QKeyEvent &event)
{
    const QString text = event.text();
    const bool isCommand =
        Has(event, Qt::ControlModifier) || Has(event, Qt::AltModifier) || Has(event, Qt::MetaModifier);
    if (IsEditing() || isCommand || text.isEmpty() || !text[0].isPrint())
        return false;
    TField *field = GetActiveField();
    if (CurrentCell().IsNull() || !field || !CanEditColumn(FColumn))
        return false;
    if (QWidget *custom = FEditing->CustomControl()) {
        custom->setFocus();
        QApplication::sendEvent(custom, &event);
        return true;
    }
    if (!field->IsValidChar(text[0]))
        return true; // a letter in a number is no edit
    return FEditing->OpenBy(text);
}

// ---- input methods --------------------------------------------------------------------

bool TwwDBGrid::TakesInputMethod() const
{
    return CanEditColumn(FColumn) && Columns(FColumn)->Control().Kind != ckCheckBox;
}

void TwwDBGrid::inputMethodEvent(QInputMethodEvent *event)
{
    if (!FEditing->Compose(*event))
        event->ignore();
}

QVariant TwwDBGrid::inputMethodQuery(Qt::InputMethodQuery query) const
{
    if (query == Qt::ImEnabled)
        return TakesInputMethod();
    // While a word is composed the editor knows best where it stands.
    if (FEditing && FEditing->IsComposing() && FEditing->FocusWidget()) {
        const QWidget *editor = FEditing->FocusWidget();
        const QVariant answer = editor->inputMethodQuery(query);
        if (query != Qt::ImCursorRectangle && query != Qt::ImAnchorRectangle)
            return answer;
        const QRect rect = answer.toRect();
        return QRect(editor->mapTo(this, rect.topLeft()), rect.size());
    }
    if (query == Qt::ImCursorRectangle || query == Qt::ImAnchorRectangle) {
        const TGridCell cell = CurrentCell();
        const QRect rect = cell.IsNull() ? QRect() : CellRect(cell);
        return QRect(viewport()->mapTo(this, rect.topLeft()), rect.size());
    }
    return QAbstractScrollArea::inputMethodQuery(query);
}

} // namespace Korvane
