#include <trv5charts/verticallabel.h>

#include "platform/colour.h"
#include "platform/drawingsurface.h"

#include <trv5charts/colorconverter.h>

#include <QEvent>
#include <QFont>
#include <QFontMetrics>
#include <QPalette>
#include <QResizeEvent>

namespace trv5 {

namespace {

// The classic button-face system colour: a caption blends into the form around it.
constexpr std::int32_t kButtonFace = static_cast<std::int32_t>(0x8000000FU);

constexpr int kCaptionPixelHeight = 13;
constexpr double kCounterClockwise = 90.0;

QFont CaptionFont(const QString& pFamily) {
    QFont font(pFamily);
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(kCaptionPixelHeight);
    font.setWeight(QFont::Normal);
    font.setItalic(false);
    font.setUnderline(false);
    font.setStrikeOut(false);
    return font;
}

} // namespace

VerticalLabel::VerticalLabel(QWidget* pParent)
    : QWidget(pParent), pic(new platform::DrawingSurface(this)), m_backColor(kButtonFace) {
    QFont surfaceFont(QStringLiteral("Tahoma"));
    surfaceFont.setStyleHint(QFont::SansSerif);
    setFont(surfaceFont);
    pic->setObjectName(QStringLiteral("pic"));
    // The picture measures with its own face at the caption's pixel height, so the measured
    // width is the drawn one whenever the two faces resolve to the same font.
    QFont pictureFont(QStringLiteral("Arial"));
    pictureFont.setStyleHint(QFont::SansSerif);
    pictureFont.setPixelSize(kCaptionPixelHeight);
    pic->setFont(pictureFont);
    pic->setGeometry(rect());
    setAccessibleDescription(QStringLiteral("Vertical caption"));
    SetBackColor(m_backColor);
}

VerticalLabel::~VerticalLabel() = default;

void VerticalLabel::SetBackColor(std::int32_t pColour) {
    m_backColor = pColour;
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, platform::ToQColor(pColour));
    setPalette(palette);
    setBackgroundRole(QPalette::Window);
    setAutoFillBackground(true);
    pic->SetBackColor(pColour);
    // A new background colour clears the picture, as it always has on a picture box.
    pic->Cls();
    if (!m_text.isEmpty()) {
        RedrawText();
    }
}

QColor VerticalLabel::BackQColor() const {
    return platform::ToQColor(m_backColor);
}

void VerticalLabel::SetBackQColor(const QColor& pColour) {
    SetBackColor(platform::FromQColor(pColour));
}

void VerticalLabel::SetText(const QString& pText) {
    m_text = pText;
    // A caption is read out as what it says.
    setAccessibleName(pText);
    RedrawText();
}

QSize VerticalLabel::sizeHint() const {
    const QFontMetrics metrics(CaptionFont(font().family()), this);
    return {metrics.height(), metrics.horizontalAdvance(m_text)};
}

int VerticalLabel::TextLength(const QString& pText) const {
    return QFontMetrics(CaptionFont(font().family()), this).horizontalAdvance(pText);
}

void VerticalLabel::changeEvent(QEvent* pEvent) {
    QWidget::changeEvent(pEvent);
    // A background that follows the palette takes a new palette's colour.
    platform::FollowPaletteChange(*pEvent, platform::FollowsPalette(m_backColor), m_recolouring,
                                  [this] { SetBackColor(m_backColor); });
}

void VerticalLabel::resizeEvent(QResizeEvent* pEvent) {
    QWidget::resizeEvent(pEvent);
    RedrawText();
}

void VerticalLabel::RedrawText() {
    // A hidden control gets its resize event only when it is shown; the picture must fill it
    // before that, for a caption drawn and captured while hidden.
    if (pic->geometry() != rect()) {
        pic->setGeometry(rect());
    }
    pic->Cls();
    // Plain text colour where it reads on the background; on a background that follows the
    // palette, the palette's text colour when black does not read there.
    const QColor text = platform::ReadableText(0, m_backColor);
    pic->SetForeColor(ColorConverter::RGBToLong(text.red(), text.green(), text.blue()));
    const double height = pic->ScaleHeight();
    const double width = pic->TextWidth(m_text);
    // The rotated text runs upward from its start, so starting half its length below the middle
    // centres it; a non-finite measure (a picture without area) draws nothing.
    pic->PrintRotated(m_text, 0.0, width / 2.0 + height / 2.0, kCounterClockwise,
                      CaptionFont(font().family()));
}

} // namespace trv5
