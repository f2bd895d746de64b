// SPDX-License-Identifier: MIT
#pragma once

#include "platform/controls/editors/CellEditor.h"
#include "platform/controls/grid/DBGridTypes.h"

#include <QPointer>

class QInputMethodEvent;

namespace Korvane {

class TwwDBGrid;

/// The editor that stands over a grid's current cell: opened, filled, stored and closed here. At
/// most one is open. A custom control of the form is no editor of the grid's own: it is shown over
/// its cell while that is the current one, and writes its field by itself.
class TGridEditing
{
public:
    explicit TGridEditing(TwwDBGrid &grid) : FGrid(grid) {}
    ~TGridEditing();

    bool IsOpen() const { return FEditor != nullptr; }
    /// The field that is being edited; null when none is.
    TField *Field() const { return FField; }
    TCellEditor *Editor() const { return FEditor.get(); }
    /// The widget that has, or will have, the keys; null when nothing is open.
    QWidget *FocusWidget() const;
    /// Whether a widget is the editor's, or the shown custom control's.
    bool Owns(const QObject *object) const;

    /// Opens the editor of the current cell; false if it cannot be edited.
    bool Open();
    /// The same, the value replaced by what is typed.
    bool OpenBy(const QString &text);
    /// Writes what was changed into the field and closes. Raises what the field raises, the editor
    /// staying open with the text selected.
    void Commit();
    /// Writes it and stays open: for when the row is about to be posted.
    void Store();
    /// Closes and drops what was changed.
    void Close();
    /// Shows the field's value anew, unless something was changed.
    void Reload();
    /// The place of the cell has changed.
    void Place();

    /// Shows the custom control of the current cell, or none.
    void UpdateCustomControl();
    QWidget *CustomControl() const { return FCustom; }

    /// The first word of an input method is composed in the editor while the grid keeps the focus: a
    /// change of focus would end the composition and lose its first letter.
    bool Compose(QInputMethodEvent &event);
    bool IsComposing() const { return FIsComposing; }

private:
    void Changed();
    void Accept();

    TwwDBGrid &FGrid;
    std::unique_ptr<TCellEditor> FEditor;
    std::vector<std::unique_ptr<TCellEditor>> FClosed; // which may still be running
    QPointer<TField> FField;
    bool FIsModified = false;
    bool FIsStoring = false;
    bool FIsComposing = false;
    QPointer<QWidget> FCustom;
};

} // namespace Korvane
