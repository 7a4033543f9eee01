#pragma once

#include <trv5charts/capture.h>

#include <QImage>
#include <QRectF>
#include <QSizeF>
#include <QString>

#include <functional>

class QPaintDevice;
class QWidget;

namespace trv5::platform {

// Sending pictures to a printer or to PDF files. Each document gets a printer of its own, so
// every copy is a separate job in the print queue, as hosts have always received them.
class PrinterAccess {
public:
    // Where a picture of pNatural size goes on a page whose printable area is pPrintable large
    // (both in the device's units): at the printable area's top-left corner, at its natural size
    // when it fits and scaled down keeping its proportions when it does not. A picture is never
    // enlarged, so a small chart prints as large as it looked on screen.
    static QRectF PlaceOnPage(QSizeF pNatural, QSizeF pPrintable);

    // The size pImage takes on pDevice at its natural size: the image's own resolution
    // converted to the device's, so a 96-dpi screen picture prints as large as it looked on
    // screen instead of a speck at 1200 dpi.
    static QSizeF NaturalSize(const QImage& pImage, const QPaintDevice& pDevice);

    // Draws pImage on a page of pDevice (a printer, or the page of a print preview) placed by
    // PlaceOnPage, without lossy compression: a PDF keeps the chart's pixels exactly. Returns
    // false when the device cannot be painted on (no printer, a file that cannot be written)
    // or the picture is null.
    static bool PaintPicture(QPaintDevice& pDevice, const QImage& pImage);

    // Prints pImage as one single-page document to pSettings' printer or to pOutputFile when it
    // is not empty (PDF), painted by PaintPicture. Returns false when the printer could not start
    // the document or the picture is null; nothing is sent then.
    static bool PrintDocument(const QImage& pImage, const PrintSettings& pSettings,
                              const QString& pOutputFile);

    // One document per copy (none for zero or fewer copies). Stops at the first document that
    // fails, since the next one would fail the same way, and then says why in pError (when
    // given). Returns the number of documents sent.
    static int PrintCopies(const QImage& pImage, const PrintSettings& pSettings,
                           QString* pError = nullptr);

    // A modal print preview of pImage, named "dlgPrintPreview", whose pages are painted by
    // PaintPicture: the preview shows exactly what printing the picture puts on the page.
    static void PreviewPicture(const QImage& pImage, QWidget* pParent, const QString& pTitle);

    // Why a document for pSettings could not be started, in words for the user.
    static QString FailureText(const PrintSettings& pSettings, const QString& pOutputFile);

    // One document per copy, each drawn by pDraw on a printer set up from pSettings as above
    // (vector output for charts that can paint themselves). What pDraw throws ends the job.
    static void PrintCopies(const PrintSettings& pSettings,
                            const std::function<void(QPaintDevice&)>& pDraw);

    // The file that copy pCopy (1-based) of pCopies goes to: the name itself for a single copy,
    // "<name without .pdf>-<copy>.pdf" for several.
    static QString CopyFileName(const QString& pOutputFile, int pCopy, int pCopies);
};

// The standard Qt print dialog. Cancelling it returns false; otherwise the chosen printer (or
// output file), number of copies and orientation are written back into the settings.
class QtPrintDialog final : public IPrintDialog {
public:
    explicit QtPrintDialog(QWidget* pParent = nullptr) : m_parent(pParent) {}
    bool Exec(PrintSettings& pSettings) override;

private:
    QWidget* m_parent;
};

} // namespace trv5::platform
