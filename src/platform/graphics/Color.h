// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>

class QPalette;

namespace Korvane {

/// A colour as properties hold it: 0x00BBGGRR for a fixed one, or one of the values below for a part
/// of the user's colour scheme, which is looked up when something is painted.
enum TColor : quint32 {
    clBlack = 0x000000,
    clMaroon = 0x000080,
    clGreen = 0x008000,
    clOlive = 0x008080,
    clNavy = 0x800000,
    clPurple = 0x800080,
    clTeal = 0x808000,
    clGray = 0x808080,
    clSilver = 0xC0C0C0,
    clRed = 0x0000FF,
    clLime = 0x00FF00,
    clYellow = 0x00FFFF,
    clBlue = 0xFF0000,
    clFuchsia = 0xFF00FF,
    clAqua = 0xFFFF00,
    clWhite = 0xFFFFFF,

    clScrollBar = 0xFF000000,
    clMenu = 0xFF000004,
    clWindow = 0xFF000005,
    clWindowFrame = 0xFF000006,
    clMenuText = 0xFF000007,
    clWindowText = 0xFF000008,
    clHighlight = 0xFF00000D,
    clHighlightText = 0xFF00000E,
    clBtnFace = 0xFF00000F,
    clBtnShadow = 0xFF000010,
    clGrayText = 0xFF000011,
    clBtnText = 0xFF000012,
    clBtnHighlight = 0xFF000014,
    clInfoText = 0xFF000017,
    clInfoBk = 0xFF000018,
    clHotLight = 0xFF00001A,
    clMenuHighlight = 0xFF00001D,

    clNone = 0x1FFFFFFF,   ///< no colour: what lies below shows
    clDefault = 0x20000000 ///< what the control would have without one
};

/// The colour as it is painted with a palette; invalid for clNone and clDefault.
QColor ToQColor(TColor color, const QPalette &palette);
/// The fixed colour, opaque.
TColor ToTColor(const QColor &color);

} // namespace Korvane
