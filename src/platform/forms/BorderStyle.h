// SPDX-License-Identifier: MIT
#pragma once

namespace Korvane {

/// The frame of a window or of a control. Controls have the first two only.
enum TBorderStyle {
    bsNone,
    bsSingle,   ///< of a window: the user cannot change its size
    bsSizeable, ///< the user can change its size
    bsDialog    ///< as bsSingle, with nothing but a close button in the frame
};

} // namespace Korvane
