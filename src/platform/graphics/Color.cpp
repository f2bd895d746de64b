// SPDX-License-Identifier: MIT
#include "platform/graphics/Color.h"

#include <QPalette>

namespace Korvane {

namespace {

constexpr quint32 SystemMark = 0xFF000000;

QPalette::ColorRole RoleOf(TColor color)
{
    switch (color) {
    case clWindow:
        return QPalette::Base;
    case clWindowText:
        return QPalette::Text;
    case clMenuText:
        return QPalette::WindowText;
    case clHighlight:
    case clMenuHighlight:
        return QPalette::Highlight;
    case clHighlightText:
        return QPalette::HighlightedText;
    case clBtnShadow:
        return QPalette::Dark;
    case clBtnText:
        return QPalette::ButtonText;
    case clBtnHighlight:
        return QPalette::Light;
    case clGrayText:
        return QPalette::PlaceholderText;
    case clWindowFrame:
        return QPalette::Shadow;
    case clInfoBk:
        return QPalette::ToolTipBase;
    case clInfoText:
        return QPalette::ToolTipText;
    case clHotLight:
        return QPalette::Link;
    default: // clBtnFace, clMenu, clScrollBar
        return QPalette::Button;
    }
}

} // namespace

QColor ToQColor(TColor color, const QPalette &palette)
{
    if (color == clNone || color == clDefault)
        return {};
    if ((color & SystemMark) == SystemMark)
        return palette.color(RoleOf(color));
    return QColor(int(color & 0xFF), int(color >> 8 & 0xFF), int(color >> 16 & 0xFF));
}

TColor ToTColor(const QColor &color)
{
    return TColor(quint32(color.red()) | quint32(color.green()) << 8 | quint32(color.blue()) << 16);
}

} // namespace Korvane
