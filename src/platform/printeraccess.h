#pragma once

#include <trv5charts/capture.h>

#include <QImage>
#include <QString>

#include <functional>

class QPaintDevice;
class QWidget;

namespace trv5::platform {

// Sending pictures to a printer or to PDF files. Each document gets a printer of its own, so
// every copy is a separate job in the print queue, as hosts have always received them.
class PrinterAccess {
public:
    // Prints pImage as one single-page document to pSettings' printer or to pOutputFile when it
    // is not empty (PDF). The picture sits at the top-left corner of the printable area at its
    // natural size: the image's own resolution converted to the printer's, so a 96-dpi screen
    // picture prints as large as it looked on screen instead of a speck at 1200 dpi.
    // Returns false when the printer could not start the document (no printer, a file that
    // cannot be written) or the picture is null; nothing is sent then.
    static bool PrintDocument(const QImage& pImage, const PrintSettings& pSettings,
                              const QString& pOutputFile);

    // One document per copy (none for zero or fewer copies). Stops at the first document that
    // fails, since the next one would fail the same way. Returns the number of documents sent.
    static int PrintCopies(const QImage& pImage, const PrintSettings& pSettings);

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
