// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace Korvane {

/// Shapes of the mouse cursor.
enum TCursor {
    crDefault = 0,
    crNone = -1,
    crArrow = -2,
    crCross = -3,
    crIBeam = -4,
    crSize = -22,
    crSizeNESW = -6,
    crSizeNS = -7,
    crSizeNWSE = -8,
    crSizeWE = -9,
    crUpArrow = -10,
    crHourGlass = -11,
    crDrag = -12,
    crNoDrop = -13,
    crHSplit = -14,
    crVSplit = -15,
    crMultiDrag = -16,
    crSQLWait = -17,
    crNo = -18,
    crAppStart = -19,
    crHelp = -20,
    crHandPoint = -21
};

/// The cursor over all windows; crDefault leaves it to each control.
TCursor ScreenCursor();
void SetScreenCursor(TCursor cursor);

using TCursorHook = std::function<void(TCursor)>;
/// What shows the cursor; gives back the hook before. Without one the cursor is only remembered.
TCursorHook InstallCursorHook(TCursorHook hook);

/// Shows the hourglass as long as it lives and then the cursor before.
class THourGlass
{
public:
    THourGlass() : FSaved(ScreenCursor()) { SetScreenCursor(crHourGlass); }
    ~THourGlass() { SetScreenCursor(FSaved); }
    THourGlass(const THourGlass &) = delete;
    THourGlass &operator=(const THourGlass &) = delete;

private:
    TCursor FSaved;
};

} // namespace Korvane
