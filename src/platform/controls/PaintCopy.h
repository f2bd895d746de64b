// SPDX-License-Identifier: MIT
#pragma once

class QPainter;
class QRect;

namespace Korvane {

class TField;

/// A control that can also be painted as a copy of itself in a cell of a grid.
class TPaintCopy
{
public:
    virtual ~TPaintCopy() = default;

    /// Paints the field's value in the row that it reads now, as the control would show it. Called for
    /// every visible cell on every repaint, hence fast; raises nothing, since it runs inside a paint.
    virtual void PaintCopy(QPainter &painter, const QRect &cell, TField &field) = 0;
};

} // namespace Korvane
