// SPDX-License-Identifier: MIT
#include "platform/forms/Cursors.h"

#include <QGuiApplication>

namespace Korvane {

QCursor ToQCursor(TCursor cursor)
{
    switch (cursor) {
    case crNone:
        return Qt::BlankCursor;
    case crCross:
        return Qt::CrossCursor;
    case crIBeam:
        return Qt::IBeamCursor;
    case crSize:
        return Qt::SizeAllCursor;
    case crSizeNESW:
        return Qt::SizeBDiagCursor;
    case crSizeNS:
        return Qt::SizeVerCursor;
    case crSizeNWSE:
        return Qt::SizeFDiagCursor;
    case crSizeWE:
        return Qt::SizeHorCursor;
    case crUpArrow:
        return Qt::UpArrowCursor;
    case crHourGlass:
    case crSQLWait:
        return Qt::WaitCursor;
    case crDrag:
    case crMultiDrag:
        return Qt::DragMoveCursor;
    case crNoDrop:
    case crNo:
        return Qt::ForbiddenCursor;
    case crHSplit:
        return Qt::SplitHCursor;
    case crVSplit:
        return Qt::SplitVCursor;
    case crAppStart:
        return Qt::BusyCursor;
    case crHelp:
        return Qt::WhatsThisCursor;
    case crHandPoint:
        return Qt::PointingHandCursor;
    default: // crDefault, crArrow
        return Qt::ArrowCursor;
    }
}

void ShowCursor(TCursor cursor)
{
    static bool isOverridden = false;
    if (cursor == crDefault) {
        if (isOverridden)
            QGuiApplication::restoreOverrideCursor();
    } else if (isOverridden) {
        QGuiApplication::changeOverrideCursor(ToQCursor(cursor));
    } else {
        QGuiApplication::setOverrideCursor(ToQCursor(cursor));
    }
    isOverridden = cursor != crDefault;
}

} // namespace Korvane
