// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <memory>

class QRect;

namespace Korvane {

class TBitmap;

// Pictures of the screen, one dot for each of its device-independent pixels. Where the desktop lets no
// program look at the screen, they show this program's windows only.

/// The part of the screen in a rectangle, which may reach over several; what no screen shows is black.
std::unique_ptr<TBitmap> CaptureScreenRect(const QRect &rect);

/// The active window with its frame. Raises Exception if none of the program's windows is active.
std::unique_ptr<TBitmap> CaptureActiveWindow();

/// Saves the picture of the active window as a JPEG file. Raises EFileError if that cannot be written.
void CaptureActiveWindowA(const QString &fileName);

} // namespace Korvane
