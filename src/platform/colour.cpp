#include "platform/colour.h"

#include <QApplication>
#include <QEvent>
#include <QPalette>
#include <QWidget>

#include <algorithm>
#include <cmath>

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

// The relative luminance of an sRGB colour.
double Luminance(const QColor& pColour) {
    const auto linear = [](double pChannel) {
        return pChannel <= 0.04045 ? pChannel / 12.92 : std::pow((pChannel + 0.055) / 1.055, 2.4);
    };
    const QColor rgb = pColour.toRgb();
    return 0.2126 * linear(rgb.redF()) + 0.7152 * linear(rgb.greenF()) +
           0.0722 * linear(rgb.blueF());
}

} // namespace

std::int32_t FromQColor(const QColor& pColour) {
    const QColor rgb = pColour.toRgb();
    return rgb.red() | (rgb.green() << 8) | (rgb.blue() << 16);
}

bool FollowsPalette(std::int32_t pColour) {
    return (static_cast<std::uint32_t>(pColour) & 0x80000000U) != 0U;
}

double ContrastRatio(const QColor& pFirst, const QColor& pSecond) {
    const double first = Luminance(pFirst);
    const double second = Luminance(pSecond);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

QColor PaletteText() {
    return QApplication::palette().color(QPalette::WindowText);
}

QColor ReadableText(std::int32_t pText, std::int32_t pBackground) {
    const QColor background = ToQColor(pBackground);
    const QColor text = ToQColor(pText);
    if (ContrastRatio(text, background) >= kReadableContrast) {
        return text;
    }
    if (FollowsPalette(pBackground)) {
        const QColor paletteText = PaletteText();
        if (ContrastRatio(paletteText, background) >= kReadableContrast) {
            return paletteText;
        }
    }
    const QColor black(Qt::black);
    const QColor white(Qt::white);
    return ContrastRatio(black, background) >= ContrastRatio(white, background) ? black : white;
}

void FollowPaletteChange(const QEvent& pEvent, bool pFollows, bool& pRecolouring,
                         const std::function<void()>& pRecolour) {
    if (pEvent.type() != QEvent::PaletteChange || !pFollows || pRecolouring) {
        return;
    }
    pRecolouring = true;
    try {
        pRecolour();
    } catch (...) {
        pRecolouring = false;
        throw;
    }
    pRecolouring = false;
}

void ColourLabel(QWidget& pLabel, std::int32_t pText, std::int32_t pBackground) {
    const QColor background = ToQColor(pBackground);
    const QColor text = ReadableText(pText, pBackground);
    QPalette palette = pLabel.palette();
    if (palette.color(QPalette::Window) != background ||
        palette.color(QPalette::WindowText) != text) {
        palette.setColor(QPalette::Window, background);
        palette.setColor(QPalette::WindowText, text);
        pLabel.setPalette(palette);
    }
    // Roles are inherited from the parent when not set: a host that gives its container another
    // role (a card in the text-field colour) must not turn the label to other palette entries.
    // Setting a role sends the label a palette change, which repaints it, even when the role is
    // the same: only a different one is set.
    if (pLabel.backgroundRole() != QPalette::Window) {
        pLabel.setBackgroundRole(QPalette::Window);
    }
    if (pLabel.foregroundRole() != QPalette::WindowText) {
        pLabel.setForegroundRole(QPalette::WindowText);
    }
    pLabel.setAutoFillBackground(true);
}

QColor ToQColor(std::int32_t pColour) {
    const auto bits = static_cast<std::uint32_t>(pColour);
    if (FollowsPalette(pColour)) {
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
