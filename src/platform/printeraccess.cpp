#include "platform/printeraccess.h"

#include <QDialog>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QRectF>

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

bool PrinterAccess::PrintDocument(const QImage& pImage, const PrintSettings& pSettings,
                                  const QString& pOutputFile) {
    if (pImage.isNull()) {
        return false;
    }
    QPrinter printer(QPrinter::HighResolution);
    Configure(printer, pSettings, pOutputFile);

    // Beginning the painter opens the first page, so no placeholder output is needed to start
    // the document.
    QPainter painter;
    if (!painter.begin(&printer)) {
        return false;
    }
    const double printerDpi = printer.resolution();
    const QSizeF target(pImage.width() * printerDpi / PictureDpi(pImage.dotsPerMeterX()),
                        pImage.height() * printerDpi / PictureDpi(pImage.dotsPerMeterY()));
    // The resolution above already accounts for a HiDPI picture; drawing it with its device
    // pixel ratio as well would halve it a second time.
    QImage picture = pImage;
    picture.setDevicePixelRatio(1.0);
    painter.drawImage(QRectF(QPointF(0.0, 0.0), target), picture);
    return painter.end();
}

int PrinterAccess::PrintCopies(const QImage& pImage, const PrintSettings& pSettings) {
    int sent = 0;
    for (int copy = 1; copy <= pSettings.copies; ++copy) {
        if (!PrintDocument(pImage, pSettings, DocumentFile(pSettings, copy))) {
            break;
        }
        ++sent;
    }
    return sent;
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
