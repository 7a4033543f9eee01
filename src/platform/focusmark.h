#pragma once

#include <QWidget>

namespace trv5::platform {

// Keyboard use of a chart: a visible mark around the chart while it has the keyboard focus,
// and Shift+F10 opening its context menu as the menu key does (both arrive as the chart's
// contextMenuEvent, or as its customContextMenuRequested under Qt::CustomContextMenu).
//
// The mark is a child drawn over the chart's edges that lets the mouse through; it is hidden
// while the chart's picture is captured, so copies and prints never show it.
class FocusMark final : public QWidget {
    Q_OBJECT

public:
    explicit FocusMark(QWidget* pOwner);

    // Hides the marks of pControl (and its children) while an instance lives: for captures.
    class HiddenDuringCapture {
    public:
        explicit HiddenDuringCapture(QWidget* pControl);
        ~HiddenDuringCapture();
        HiddenDuringCapture(const HiddenDuringCapture&) = delete;
        HiddenDuringCapture& operator=(const HiddenDuringCapture&) = delete;

    private:
        QList<FocusMark*> m_hidden;
    };

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;

private:
    void Follow();

    QWidget* m_owner;
};

} // namespace trv5::platform
