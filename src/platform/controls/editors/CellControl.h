// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace Korvane {

/// The kinds of controls in cells.
enum TCellControlKind {
    ckText,      ///< an edit of one line
    ckCheckBox,  ///< "CheckBox;checked;unchecked": the two values, in texts
    ckComboBox,  ///< "ComboBox;item;item…": a list; an item "shown=stored" stores another text
    ckDate,      ///< "DateTimePicker": a calendar
    ckMemo,      ///< "Memo": a window of several lines
    ckCustomEdit ///< "CustomEdit;name;T": the control of that name on the form
};

/// The control of one column, by a line of the control table: a field's name and control data, all
/// joined by semicolons.
struct TCellControl
{
    QString FieldName;
    TCellControlKind Kind = ckText;
    QString Checked = QStringLiteral("Y");   ///< of a check box
    QString Unchecked = QStringLiteral("N"); ///< of a check box
    QStringList Shown;                       ///< texts of a list
    QStringList Stored;                      ///< what they stand for in the field
    QString ControlName;                     ///< of a custom control
    /// Whether a custom control is also painted into the cells on which it doesn't stand, provided
    /// that it can be (TPaintCopy). The closing "T" of its line.
    bool PaintsAll = false;

    /// A line that cannot be read, or of an unknown kind, gives a text control.
    static TCellControl FromText(const QString &line);
};

} // namespace Korvane
