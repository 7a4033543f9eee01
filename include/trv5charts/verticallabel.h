#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

#include <cstdint>

namespace trv5 {

namespace platform {
class DrawingSurface;
}

// One line of text turned 90 degrees counter-clockwise (read from bottom to top) against a
// chosen background: the caption beside a chart's vertical axis. The text sits against the left
// edge and is centred vertically; text longer than the control is cut off at both ends.
//
// The caption is drawn with a font of the control's own font family at a pixel height of 13,
// normal weight; the centring measures the text with the font of the picture it is drawn on
// (Arial at the same pixel height), so set the family with setFont if the caption should use
// another face.
class VerticalLabel : public QWidget {
    Q_OBJECT
    // The integer colour is the hosts'; form designers edit the same colour as QColor.
    Q_PROPERTY(int BackColor READ BackColor WRITE SetBackColor DESIGNABLE false)
    Q_PROPERTY(QColor backColor READ BackQColor WRITE SetBackQColor)
    Q_PROPERTY(QString Text READ Text WRITE SetText)

public:
    explicit VerticalLabel(QWidget* pParent = nullptr);
    ~VerticalLabel() override;
    VerticalLabel(const VerticalLabel&) = delete;
    VerticalLabel& operator=(const VerticalLabel&) = delete;

    // 0x00BBGGRR or a system colour code. Setting it clears the picture to the new colour and
    // draws the caption again.
    std::int32_t BackColor() const { return m_backColor; }
    void SetBackColor(std::int32_t pColour);
    QColor BackQColor() const;
    void SetBackQColor(const QColor& pColour);

    // The caption; an empty text leaves a plain background.
    const QString& Text() const { return m_text; }
    void SetText(const QString& pText);

    // The caption's line height across and its length down.
    QSize sizeHint() const override;
    // The length pText would take as the caption.
    int TextLength(const QString& pText) const;

protected:
    void resizeEvent(QResizeEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;

private:
    void RedrawText();

    platform::DrawingSurface* pic;
    QString m_text;
    std::int32_t m_backColor;
    bool m_recolouring = false;
};

} // namespace trv5
