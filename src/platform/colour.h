#pragma once

#include <QColor>

#include <cstdint>
#include <functional>

class QEvent;
class QWidget;

namespace trv5::platform {

// The colour a host means by a 32-bit colour value: 0x00BBGGRR, or a system colour code
// (high bit set, index in the low byte) taken from the application palette.
QColor ToQColor(std::int32_t pColour);
// The same as an opaque QRgb, without building a QColor for a plain colour value: for code that
// converts a colour per pixel.
QRgb ToQRgb(std::int32_t pColour);

// The 32-bit colour value of a colour (its alpha is dropped): what a colour picker hands back.
std::int32_t FromQColor(const QColor& pColour);
// True for a system colour code, whose colour follows the application palette.
bool FollowsPalette(std::int32_t pColour);

// The contrast ratio of two colours as accessibility guidelines define it (WCAG 2): from 1
// (the same luminance) to 21 (black on white).
double ContrastRatio(const QColor& pFirst, const QColor& pSecond);

// Ordinary text needs this contrast against its background to be readable.
inline constexpr double kReadableContrast = 4.5;

// The palette's text colour, which ReadableText falls back on where the background follows the
// palette.
QColor PaletteText();

// The colour to draw text of colour pText in on pBackground: pText itself when it reads there;
// otherwise, on a background that follows the palette, the palette's text colour; otherwise
// black or white, whichever reads better. A dark palette therefore never puts its light text on
// a chart whose background is a fixed white.
QColor ReadableText(std::int32_t pText, std::int32_t pBackground);

// Answers a widget's change event for colours that follow the palette: when pEvent is a palette
// change and pFollows, runs pRecolour (which takes the new palette's colours and redraws).
// pRecolouring guards against the palette changes pRecolour makes itself, which send the event
// again.
void FollowPaletteChange(const QEvent& pEvent, bool pFollows, bool& pRecolouring,
                         const std::function<void()>& pRecolour);

// Gives a label (or any widget that paints text with its palette) the background pBackground
// and text of colour pText made readable on it by ReadableText. Changes nothing, and so repaints
// nothing, when the label has those colours and roles already.
void ColourLabel(QWidget& pLabel, std::int32_t pText, std::int32_t pBackground);

} // namespace trv5::platform
