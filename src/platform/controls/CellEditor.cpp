// SPDX-License-Identifier: MIT
#include "platform/controls/CellEditor.h"

#include <QWidget>

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

} // namespace Korvane
