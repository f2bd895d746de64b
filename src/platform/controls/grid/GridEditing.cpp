// SPDX-License-Identifier: MIT
#include "platform/controls/grid/GridEditing.h"

#include "platform/controls/DataSetRows.h"
#include "platform/controls/grid/DBGrid.h"
#include "platform/core/Exceptions.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QScopeGuard>

namespace Korvane {

TGridEditing::~TGridEditing()
{
    if (FCustom)
        FCustom->hide();
}

QWidget *TGridEditing::FocusWidget() const
{
    if (!FEditor)
        return FCustom;
    QWidget *proxy = FEditor->Widget()->focusProxy();
    return proxy ? proxy : FEditor->Widget();
}

bool TGridEditing::Owns(const QObject *object) const
{
    const auto isBelow = [object](const QWidget *top) {
        const auto *widget = qobject_cast<const QWidget *>(object);
        return top && widget && (top == widget || top->isAncestorOf(widget));
    };
    return isBelow(FCustom) || (FEditor && isBelow(FEditor->Widget()));
}

bool TGridEditing::Open()
{
    if (FEditor)
        return true;
    const TGridCell cell = FGrid.CurrentCell();
    if (cell.IsNull())
        return false;
    const TwwColumn &column = *FGrid.Columns(cell.Column);
    const TCellControl &control = column.Control();
    const bool canEdit = FGrid.CanEditColumn(cell.Column);
    // A memo that cannot be written can still be read as a whole.
    if (control.Kind == ckCheckBox || control.Kind == ckCustomEdit || (!canEdit && control.Kind != ckMemo))
        return false;
    FGrid.ShowCurrentCell();
    TField &field = *column.Field();
    const bool viewOnly = !canEdit || (control.Kind == ckMemo && FGrid.MemoAttributes().testFlag(mViewOnly));
    FEditor = MakeCellEditor({control, field, FGrid.viewport(), FGrid.MemoAttributes(), viewOnly});
    FField = &field;
    FIsModified = false;
    FEditor->Load(field);
    FEditor->OnChange = [this] { Changed(); };
    FEditor->OnAccept = [this] { Accept(); };
    QWidget *widget = FEditor->Widget();
    widget->setFont(FGrid.font());
    for (QWidget *child : widget->findChildren<QWidget *>())
        child->installEventFilter(&FGrid);
    widget->installEventFilter(&FGrid);
    Place();
    widget->show();
    if (!FIsComposing)
        FocusWidget()->setFocus();
    return true;
}

bool TGridEditing::OpenBy(const QString &text)
{
    const bool wasOpen = IsOpen();
    if (!Open())
        return false;
    if (!wasOpen) {
        FEditor->TypeOver(text);
        Changed();
    }
    return IsOpen();
}

/// The first change begins the edit of the row; when that is refused, nothing is typed.
void TGridEditing::Changed()
{
    if (FIsModified || !FEditor)
        return;
    FIsModified = true; // NOTE: before the edit begins, which shows all values anew
    bool mayWrite = false;
    try {
        mayWrite = FGrid.FLink.Edit();
    } catch (...) {
        Close();
        throw;
    }
    if (!mayWrite)
        Close();
}

void TGridEditing::Accept()
{
    Changed();
    Commit();
    FGrid.setFocus();
}

void TGridEditing::Store()
{
    if (!FEditor || !FIsModified || !FField || FIsStoring)
        return;
    FIsStoring = true;
    const auto end = qScopeGuard([this] { FIsStoring = false; });
    const QPointer<TField> field = FField;
    try {
        FEditor->Store(*field);
    } catch (...) {
        if (FEditor)
            FocusWidget()->setFocus();
        throw;
    }
    FIsModified = false;
    if (field)
        FGrid.DoFieldChanged(field);
}

void TGridEditing::Commit()
{
    Store();
    Close();
}

void TGridEditing::Close()
{
    if (!FEditor)
        return;
    const bool hadFocus = Owns(QApplication::focusWidget());
    FIsComposing = false;
    FIsModified = false;
    FField = nullptr;
    // NOTE: the editor may be what called; it goes when the event is over.
    TCellEditor *editor = FClosed.emplace_back(std::move(FEditor)).get();
    editor->OnChange = nullptr;
    editor->OnAccept = nullptr;
    QWidget *widget = editor->Widget();
    widget->removeEventFilter(&FGrid);
    for (QWidget *child : widget->findChildren<QWidget *>())
        child->removeEventFilter(&FGrid);
    if (hadFocus)
        FGrid.setFocus();
    widget->hide();
    QMetaObject::invokeMethod(
        &FGrid, [this] { FClosed.clear(); }, Qt::QueuedConnection);
    FGrid.viewport()->update();
}

void TGridEditing::Reload()
{
    if (FEditor && FField && !FIsModified && !FIsStoring)
        FEditor->Load(*FField);
}

void TGridEditing::Place()
{
    const TGridCell cell = FGrid.CurrentCell();
    if (cell.IsNull())
        return;
    const TGridLayout &layout = FGrid.Layout();
    const QRect area = layout.ClipOf(cell.Column, layout.RowsArea());
    QRect rect = layout.CellRect(cell);
    rect.adjust(0, 0, FGrid.Options().testFlag(dgColLines) ? -1 : 0,
                FGrid.Options().testFlag(dgRowLines) ? -1 : 0);
    if (FEditor)
        FEditor->Place(rect, area);
    if (FCustom) {
        const QRect seen = rect & area;
        FCustom->setVisible(!seen.isEmpty());
        FCustom->setGeometry(
            QRect(FGrid.viewport()->mapTo(FCustom->parentWidget(), seen.topLeft()), seen.size()));
    }
}

void TGridEditing::UpdateCustomControl()
{
    const TGridCell cell = FGrid.CurrentCell();
    QWidget *custom = nullptr;
    if (!cell.IsNull() && FGrid.isVisible()) {
        const TCellControl &control = FGrid.Columns(cell.Column)->Control();
        if (control.Kind == ckCustomEdit)
            custom = FGrid.FindControl(control.ControlName);
    }
    if (custom != FCustom && FCustom) {
        FCustom->removeEventFilter(&FGrid);
        if (FCustom->hasFocus())
            FGrid.setFocus();
        FCustom->hide();
    }
    if (custom && custom != FCustom) {
        custom->installEventFilter(&FGrid);
        custom->raise();
    }
    FCustom = custom;
    Place();
}

bool TGridEditing::Compose(QInputMethodEvent &event)
{
    const bool commits = !event.commitString().isEmpty(), composes = !event.preeditString().isEmpty();
    if (!commits && !composes && !FIsComposing)
        return false;
    if (!IsOpen()) {
        FIsComposing = composes;
        if (!OpenBy({})) {
            FIsComposing = false;
            return false;
        }
    }
    QWidget *target = FocusWidget();
    QCoreApplication::sendEvent(target, &event);
    if (!FIsComposing || composes)
        return true;
    FIsComposing = false; // committed, or given up
    if (commits)
        target->setFocus();
    else
        Close();
    return true;
}

} // namespace Korvane
