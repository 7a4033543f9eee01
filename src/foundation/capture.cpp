#include <trv5charts/capture.h>

#include "platform/clipboardaccess.h"
#include "platform/focusmark.h"
#include "platform/imagecompose.h"
#include "platform/printeraccess.h"

#include <QCoreApplication>
#include <QMenu>
#include <QPixmap>
#include <QPointer>
#include <QRect>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <exception>

namespace trv5 {

namespace {

constexpr double MetresPerInch = 0.0254;

// Hides the chart's context menu and lets the event loop close it, so that a dialog or a
// capture that follows does not find it still open.
void HideMenuAndSettle(QMenu* pMenuToHide) {
    if (pMenuToHide != nullptr && pMenuToHide->isVisible()) {
        pMenuToHide->hide();
    }
    QCoreApplication::processEvents();
}

// Stamps the resolution at which the picture reproduces the widget's on-screen size, so that a
// printer can scale it from its own resolution.
void SetScreenResolution(QImage& pImage, const QWidget& pControl, double pDevicePixelRatio) {
    const auto dotsPerMetre = [&](int pLogicalDpi) {
        return static_cast<int>(std::lround(pLogicalDpi * pDevicePixelRatio / MetresPerInch));
    };
    pImage.setDotsPerMeterX(dotsPerMetre(pControl.logicalDpiX()));
    pImage.setDotsPerMeterY(dotsPerMetre(pControl.logicalDpiY()));
}

} // namespace

QImage CaptureControl(QWidget* pControl) {
    if (pControl == nullptr) {
        return {};
    }
    return CaptureWindow(pControl, true, 0, 0, pControl->width(), pControl->height());
}

QImage CaptureWindow(QWidget* pControl, bool pClient, int pLeft, int pTop, int pWidth,
                     int pHeight) {
    if (pControl == nullptr || pWidth <= 0 || pHeight <= 0) {
        return {};
    }
    // Where the requested rectangle starts in the widget's own coordinates. Only a top-level
    // window has a frame around it; for a child the window and the client area coincide.
    std::int64_t originX = pLeft;
    std::int64_t originY = pTop;
    if (!pClient && pControl->isWindow()) {
        const QPoint frameOffset =
            pControl->frameGeometry().topLeft() - pControl->geometry().topLeft();
        originX += frameOffset.x();
        originY += frameOffset.y();
    }
    // The part of the rectangle that the widget itself covers, in 64 bits because a caller's
    // origin plus size may not fit in an int.
    const std::int64_t left = std::max<std::int64_t>(originX, 0);
    const std::int64_t top = std::max<std::int64_t>(originY, 0);
    const std::int64_t right = std::min<std::int64_t>(originX + pWidth, pControl->width());
    const std::int64_t bottom = std::min<std::int64_t>(originY + pHeight, pControl->height());

    QPixmap covered;
    if (left < right && top < bottom) {
        // The keyboard focus mark belongs to the screen, not to the chart's picture.
        const platform::FocusMark::HiddenDuringCapture noMark(pControl);
        // The widget renders itself rather than the screen being read back, so what lies on
        // top of it (its own context menu, another window) never spoils the picture. There is
        // no palette to carry: true-colour displays have none, unlike 256-colour ones of old.
        covered =
            pControl->grab(QRect(static_cast<int>(left), static_cast<int>(top),
                                 static_cast<int>(right - left), static_cast<int>(bottom - top)));
    }
    const double ratio =
        covered.isNull() ? pControl->devicePixelRatioF() : covered.devicePixelRatio();

    // A fresh image, so the caller owns its pixels outright and they stay valid whatever
    // happens to the widget.
    const QSize pixels(static_cast<int>(std::ceil(pWidth * ratio)),
                       static_cast<int>(std::ceil(pHeight * ratio)));
    QImage picture(pixels, QImage::Format_RGB32);
    if (picture.isNull()) {
        // Too large to hold: like a failed screen copy, nothing rather than an error.
        return {};
    }
    picture.fill(Qt::black);
    picture.setDevicePixelRatio(ratio);
    SetScreenResolution(picture, *pControl, ratio);
    if (!covered.isNull()) {
        platform::ReplacePixels(
            picture,
            QPointF(static_cast<double>(left - originX), static_cast<double>(top - originY)),
            covered);
    }
    return picture;
}

void CopyControlPicture(QWidget* pControl, QMenu* pMenuToHide) {
    // Running the event loop may delete the control; the guard turns that into "nothing to
    // capture" instead of a dangling pointer.
    const QPointer<QWidget> control(pControl);
    HideMenuAndSettle(pMenuToHide);
    const QImage picture = CaptureControl(control.data());
    platform::ClipboardAccess::Clear();
    if (!picture.isNull()) {
        platform::ClipboardAccess::SetImage(picture);
    }
}

PrintResult PrintControlPicture(QWidget* pControl, IPrintDialog& pDialog, QMenu* pMenuToHide) {
    const QPointer<QWidget> control(pControl);
    PrintResult result;
    try {
        PrintSettings settings;
        if (!pDialog.Exec(settings)) {
            return result;
        }
        HideMenuAndSettle(pMenuToHide);
        if (settings.copies <= 0) {
            result.outcome = PrintResult::Outcome::Printed;
            return result;
        }
        const QImage picture = CaptureControl(control.data());
        const int sent = platform::PrinterAccess::PrintCopies(picture, settings, &result.message);
        result.outcome =
            sent == settings.copies ? PrintResult::Outcome::Printed : PrintResult::Outcome::Failed;
    } catch (const std::exception& error) {
        result.outcome = PrintResult::Outcome::Failed;
        result.message = QString::fromLocal8Bit(error.what());
    } catch (...) {
        result.outcome = PrintResult::Outcome::Failed;
        result.message = QStringLiteral("The chart could not be printed.");
    }
    return result;
}

void PreviewControlPicture(QWidget* pControl, QWidget* pParent, QMenu* pMenuToHide) {
    const QPointer<QWidget> control(pControl);
    HideMenuAndSettle(pMenuToHide);
    const QImage picture = CaptureControl(control.data());
    const QString title = control.isNull() || control->accessibleName().isEmpty()
                              ? QStringLiteral("Print Preview")
                              : QStringLiteral("Print Preview - %1").arg(control->accessibleName());
    platform::PrinterAccess::PreviewPicture(picture, pParent != nullptr ? pParent : control.data(),
                                            title);
}

} // namespace trv5
