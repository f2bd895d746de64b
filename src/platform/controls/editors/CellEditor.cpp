// SPDX-License-Identifier: MIT
#include "platform/controls/editors/CellEditor.h"

#include <QKeyEvent>
#include <QLineEdit>

namespace Korvane {

void TCellEditor::Place(const QRect &cell, const QRect &area)
{
    // A cell narrower than what can be typed in gets room to its right.
    constexpr int Narrowest = 60;
    QRect place = cell;
    place.setWidth(qMax(place.width(), qMin(Narrowest, area.right() - place.left() + 1)));
    Widget()->setGeometry(place & area);
}

std::unique_ptr<TCellEditor> MakeCellEditor(const TCellEditorRequest &request)
{
    switch (request.Control.Kind) {
    case ckComboBox:
        return MakeComboEditor(request);
    case ckDate:
        return MakeDateEditor(request);
    case ckMemo:
        return MakeMemoEditor(request);
    default:
        return MakeTextEditor(request);
    }
}

bool LineKeepsKey(const QLineEdit &line, const QKeyEvent &key)
{
    const bool isPlain = !(key.modifiers() & ~Qt::KeypadModifier) && !line.hasSelectedText();
    switch (key.key()) {
    case Qt::Key_Left:
        return !isPlain || line.cursorPosition() > 0;
    case Qt::Key_Right:
        return !isPlain || line.cursorPosition() < line.text().size();
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape:
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_F2:
    case Qt::Key_F4:
        return false;
    case Qt::Key_Insert:
    case Qt::Key_Delete:
        return !(key.modifiers() & Qt::ControlModifier);
    default:
        return true;
    }
}

} // namespace Korvane
