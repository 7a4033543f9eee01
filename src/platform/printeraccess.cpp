#include "platform/printeraccess.h"

#include <QDialog>
#include <QPaintDevice>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QRectF>

#include <algorithm>
#include <cmath>

namespace trv5::platform {

namespace {

constexpr double InchesPerMetre = 1.0 / 0.0254;
// What a picture without a stored resolution is taken to be: the classic screen resolution.
constexpr double FallbackPictureDpi = 96.0;

double PictureDpi(int pDotsPerMetre) {
    return pDotsPerMetre > 0 ? pDotsPerMetre / InchesPerMetre : FallbackPictureDpi;
}

// A printer for one document of a print job: to the PDF file when one is given, otherwise to the
// chosen (or default) printer.
void Configure(QPrinter& pPrinter, const PrintSettings& pSettings, const QString& pOutputFile) {
    if (!pOutputFile.isEmpty()) {
        pPrinter.setOutputFormat(QPrinter::PdfFormat);
        pPrinter.setOutputFileName(pOutputFile);
    } else if (!pSettings.printerName.isEmpty()) {
        pPrinter.setPrinterName(pSettings.printerName);
    }
    pPrinter.setPageOrientation(pSettings.orientation);
    // The copies are separate documents; a printer-side copy count would multiply them.
    pPrinter.setCopyCount(1);
    pPrinter.setDocName(QStringLiteral("Chart"));
}

QString DocumentFile(const PrintSettings& pSettings, int pCopy) {
    return pSettings.outputFile.isEmpty()
               ? QString()
               : PrinterAccess::CopyFileName(pSettings.outputFile, pCopy, pSettings.copies);
}

} // namespace

QRectF PrinterAccess::PlaceOnPage(QSizeF pNatural, QSizeF pPrintable) {
    const double width = pNatural.width();
    const double height = pNatural.height();
    if (!(width > 0.0) || !(height > 0.0) || !std::isfinite(width) || !std::isfinite(height)) {
        return {};
    }
    const double shrink = std::min({1.0, std::max(0.0, pPrintable.width()) / width,
                                    std::max(0.0, pPrintable.height()) / height});
    return {QPointF(0.0, 0.0), QSizeF(width * shrink, height * shrink)};
}

QSizeF PrinterAccess::NaturalSize(const QImage& pImage, const QPaintDevice& pDevice) {
    return {pImage.width() * pDevice.logicalDpiX() / PictureDpi(pImage.dotsPerMeterX()),
            pImage.height() * pDevice.logicalDpiY() / PictureDpi(pImage.dotsPerMeterY())};
}

bool PrinterAccess::PaintPicture(QPaintDevice& pDevice, const QImage& pImage) {
    if (pImage.isNull()) {
        return false;
    }
    // Beginning the painter opens the first page, so no placeholder output is needed to start
    // the document.
    QPainter painter;
    if (!painter.begin(&pDevice)) {
        return false;
    }
    // Without this hint the PDF writer stores pictures as JPEG, which smears thin chart lines
    // and small text.
    painter.setRenderHint(QPainter::LosslessImageRendering);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF target =
        PlaceOnPage(NaturalSize(pImage, pDevice), QSizeF(pDevice.width(), pDevice.height()));
    // The resolution above already accounts for a HiDPI picture; drawing it with its device
    // pixel ratio as well would halve it a second time.
    QImage picture = pImage;
    picture.setDevicePixelRatio(1.0);
    painter.drawImage(target, picture);
    return painter.end();
}

bool PrinterAccess::PrintDocument(const QImage& pImage, const PrintSettings& pSettings,
                                  const QString& pOutputFile) {
    if (pImage.isNull()) {
        return false;
    }
    QPrinter printer(QPrinter::HighResolution);
    Configure(printer, pSettings, pOutputFile);
    return PaintPicture(printer, pImage);
}

int PrinterAccess::PrintCopies(const QImage& pImage, const PrintSettings& pSettings,
                               QString* pError) {
    int sent = 0;
    for (int copy = 1; copy <= pSettings.copies; ++copy) {
        const QString file = DocumentFile(pSettings, copy);
        if (!PrintDocument(pImage, pSettings, file)) {
            if (pError != nullptr) {
                *pError = pImage.isNull() ? QStringLiteral("There is no picture to print.")
                                          : FailureText(pSettings, file);
            }
            break;
        }
        ++sent;
    }
    return sent;
}

void PrinterAccess::PreviewPicture(const QImage& pImage, QWidget* pParent, const QString& pTitle) {
    QPrinter printer(QPrinter::HighResolution);
    QPrintPreviewDialog dialog(&printer, pParent);
    dialog.setObjectName(QStringLiteral("dlgPrintPreview"));
    if (!pTitle.isEmpty()) {
        dialog.setWindowTitle(pTitle);
    }
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [&pImage](QPrinter* pPrinter) { PaintPicture(*pPrinter, pImage); });
    dialog.exec();
}

QString PrinterAccess::FailureText(const PrintSettings& pSettings, const QString& pOutputFile) {
    if (!pOutputFile.isEmpty()) {
        return QStringLiteral("The file \"%1\" could not be written.").arg(pOutputFile);
    }
    if (!pSettings.printerName.isEmpty()) {
        return QStringLiteral("The printer \"%1\" could not start the document.")
            .arg(pSettings.printerName);
    }
    return QStringLiteral("No printer is available.");
}

void PrinterAccess::PrintCopies(const PrintSettings& pSettings,
                                const std::function<void(QPaintDevice&)>& pDraw) {
    for (int copy = 1; copy <= pSettings.copies; ++copy) {
        QPrinter printer(QPrinter::HighResolution);
        Configure(printer, pSettings, DocumentFile(pSettings, copy));
        pDraw(printer);
    }
}

QString PrinterAccess::CopyFileName(const QString& pOutputFile, int pCopy, int pCopies) {
    if (pCopies <= 1) {
        return pOutputFile;
    }
    const QString suffix = QStringLiteral(".pdf");
    QString base = pOutputFile;
    if (base.endsWith(suffix, Qt::CaseInsensitive)) {
        base.chop(suffix.size());
    }
    return QStringLiteral("%1-%2%3").arg(base).arg(pCopy).arg(suffix);
}

bool QtPrintDialog::Exec(PrintSettings& pSettings) {
    QPrinter printer(QPrinter::HighResolution);
    if (!pSettings.outputFile.isEmpty()) {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(pSettings.outputFile);
    } else if (!pSettings.printerName.isEmpty()) {
        printer.setPrinterName(pSettings.printerName);
    }
    printer.setCopyCount(pSettings.copies > 0 ? pSettings.copies : 1);
    printer.setPageOrientation(pSettings.orientation);

    QPrintDialog dialog(&printer, m_parent);
    if (dialog.exec() != QDialog::Accepted) {
        return false;
    }
    pSettings.copies = printer.copyCount();
    pSettings.orientation = printer.pageLayout().orientation();
    if (printer.outputFormat() == QPrinter::PdfFormat) {
        pSettings.outputFile = printer.outputFileName();
        pSettings.printerName.clear();
    } else {
        pSettings.outputFile.clear();
        pSettings.printerName = printer.printerName();
    }
    return true;
}

} // namespace trv5::platform
