// SPDX-License-Identifier: MIT
#include "platform/core/Cursor.h"

#include <utility>

namespace Korvane {

namespace {

TCursor CurrentCursor = crDefault;

TCursorHook &Hook()
{
    static TCursorHook hook;
    return hook;
}

} // namespace

TCursor ScreenCursor() { return CurrentCursor; }

void SetScreenCursor(TCursor cursor)
{
    if (std::exchange(CurrentCursor, cursor) != cursor && Hook())
        Hook()(cursor);
}

TCursorHook InstallCursorHook(TCursorHook hook) { return std::exchange(Hook(), std::move(hook)); }

} // namespace Korvane
