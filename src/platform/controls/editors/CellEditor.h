// SPDX-License-Identifier: MIT
#pragma once

#include "platform/controls/editors/CellControl.h"
#include "platform/controls/grid/DBGridTypes.h"
#include "platform/core/Event.h"
#include "platform/data/dataset/Field.h"

#include <memory>

class QKeyEvent;
class QLineEdit;
class QWidget;

namespace Korvane {

/// What one cell of a grid is edited with, as long as it is edited. What is typed reaches the field
/// when the grid stores it.
class TCellEditor
{
public:
    TCellEditor() = default;
    virtual ~TCellEditor() = default;
    TCellEditor(const TCellEditor &) = delete;
    TCellEditor &operator=(const TCellEditor &) = delete;

    /// A child of the parent that it was made with. Owned by the editor.
    virtual QWidget *Widget() = 0;
    /// Stands over a cell; both in the parent's pixels.
    virtual void Place(const QRect &cell, const QRect &area);
    /// Shows the field's value, all of it selected.
    virtual void Load(TField &field) = 0;
    /// Writes what is shown into the field. Raises what the field raises.
    virtual void Store(TField &field) = 0;
    /// Begins with a text in the place of the value, the cursor behind it.
    virtual void TypeOver(const QString &text) = 0;
    /// Opens the list or the calendar, if it has one.
    virtual void DropDown() {}
    /// Whether a key is the editor's own; any other goes to the grid, which may leave the cell by it.
    virtual bool KeepsKey(const QKeyEvent &key) const = 0;

    /// The user has changed something.
    TEvent<> OnChange;
    /// The user has chosen: the value is to be stored.
    TEvent<> OnAccept;
};

/// What an editor is made from.
struct TCellEditorRequest
{
    const TCellControl &Control;
    const TField &Field;
    QWidget *Parent;
    TwwMemoAttributes MemoAttributes;
    bool ReadOnly; ///< shows only; memos alone ask for it
};

/// The editor for the kind of control; one without an editor of its own is edited as a text.
std::unique_ptr<TCellEditor> MakeCellEditor(const TCellEditorRequest &request);

/// Whether a line in a cell needs a key itself: the arrows until the text's end is reached, and none
/// by which a grid leaves the cell.
bool LineKeepsKey(const QLineEdit &line, const QKeyEvent &key);

// Each kind, in a file of its own.
std::unique_ptr<TCellEditor> MakeTextEditor(const TCellEditorRequest &request);
std::unique_ptr<TCellEditor> MakeComboEditor(const TCellEditorRequest &request);
std::unique_ptr<TCellEditor> MakeDateEditor(const TCellEditorRequest &request);
std::unique_ptr<TCellEditor> MakeMemoEditor(const TCellEditorRequest &request);

} // namespace Korvane
