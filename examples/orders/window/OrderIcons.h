// SPDX-License-Identifier: MIT
#pragma once

class QIcon;

namespace Korvane {
class TImageList;
}

/// The pictures of the window's actions, by their place in the image list.
enum TOrderIcon {
    oiFirst,
    oiPrior,
    oiNext,
    oiLast,
    oiInsert,
    oiUpdate,
    oiHead,
    oiDelete,
    oiSave,
    oiCancel,
    oiRefresh,
    oiExport,
    oiAddLine,
    oiDeleteLine,
    oiUp,
    oiDown,
    oiOrders,
    oiItems,
    oiCount
};

/// A picture that is drawn in the size and at the scale it is shown in, so that it is always sharp.
QIcon OrderIcon(TOrderIcon icon);
/// Puts all of them into an empty list.
void FillOrderIcons(Korvane::TImageList &images);
