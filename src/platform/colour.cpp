#include "platform/colour.h"

#include <QApplication>
#include <QPalette>

namespace trv5::platform {

namespace {

constexpr std::uint32_t kGreyText = 17;

QPalette::ColorRole RoleOfSystemColour(std::uint32_t pIndex) {
    switch (pIndex) {
    case 5: // window background
        return QPalette::Base;
    case 6:  // window frame
    case 16: // button shadow
        return QPalette::Dark;
    case 7: // menu text
    case 8: // window text
        return QPalette::Text;
    case 9:  // caption text
    case 14: // highlight text
        return QPalette::HighlightedText;
    case 13: // highlight
        return QPalette::Highlight;
    case 18: // button text
        return QPalette::ButtonText;
    case 20: // 3D highlight
        return QPalette::Light;
    case 23: // tooltip text
        return QPalette::ToolTipText;
    case 24: // tooltip background
        return QPalette::ToolTipBase;
    default: // button face and the rest of the chrome
        return QPalette::Button;
    }
}

} // namespace

QColor ToQColor(std::int32_t pColour) {
    const auto bits = static_cast<std::uint32_t>(pColour);
    if ((bits & 0x80000000U) != 0U) {
        const std::uint32_t index = bits & 0xFFU;
        // Grey text is the colour of disabled text, which a palette keeps in its disabled group.
        if (index == kGreyText) {
            return QApplication::palette().color(QPalette::Disabled, QPalette::Text);
        }
        return QApplication::palette().color(RoleOfSystemColour(index));
    }
    return QColor(ToQRgb(pColour));
}

QRgb ToQRgb(std::int32_t pColour) {
    const auto bits = static_cast<std::uint32_t>(pColour);
    if ((bits & 0x80000000U) != 0U) {
        return ToQColor(pColour).rgb();
    }
    return qRgb(static_cast<int>(bits & 0xFFU), static_cast<int>((bits >> 8) & 0xFFU),
                static_cast<int>((bits >> 16) & 0xFFU));
}

} // namespace trv5::platform
