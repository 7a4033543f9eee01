#pragma once

#include <QImage>
#include <QPageLayout>
#include <QString>

class QMenu;
class QWidget;

namespace trv5 {

// What the user chose in a print dialog. A host or a test that answers the dialog itself fills
// this in; the print command only reads it.
struct PrintSettings {
    // Each copy is sent as a document of its own; zero or fewer prints nothing.
    int copies = 1;
    QPageLayout::Orientation orientation = QPageLayout::Portrait;
    // Non-empty: print to PDF. With one copy the file is written as named; with several, each
    // copy goes to "<name without .pdf>-<n>.pdf", n counting from 1, so no copy overwrites
    // another.
    QString outputFile;
    // The printer chosen in the dialog when printing to paper; empty means the default printer.
    QString printerName;
};

// The print dialog as the print command sees it. Lives in the public header so that a host can
// answer it in its own way (a remembered choice, an automated run) without pulling in the
// printing module; the Qt dialog behind it is internal.
class IPrintDialog {
public:
    virtual ~IPrintDialog() = default;
    // Shows the dialog starting from pSettings and writes the user's choice back.
    // Returns false when the user cancelled.
    virtual bool Exec(PrintSettings& pSettings) = 0;

protected:
    IPrintDialog() = default;
    IPrintDialog(const IPrintDialog&) = default;
    IPrintDialog& operator=(const IPrintDialog&) = default;
};

// The picture of a widget as it is drawn, rendered by the widget itself. The image is the
// caller's own (no sharing with the widget), in 32-bit RGB, and carries the widget's device pixel
// ratio and a resolution that makes its natural printed size the widget's on-screen size.
// A null widget or one without area gives a null image. Displays with 256-colour palettes are
// gone, so unlike screen-copy code of old there is no palette to carry along.
QImage CaptureControl(QWidget* pControl);

// A rectangle of a widget in logical pixels. pClient true measures from the widget's own
// top-left; false measures from the outer corner of its window frame (for a child widget the
// two are the same). Pixels the widget does not draw itself, such as the window manager's frame
// or anything outside the widget, come out black. A rectangle without area gives a null image.
QImage CaptureWindow(QWidget* pControl, bool pClient, int pLeft, int pTop, int pWidth, int pHeight);

// The chart's copy command: hides pMenuToHide if it is showing, lets pending events run so that
// the menu is gone from the screen, captures pControl and replaces the clipboard's content with
// the picture. A null or empty control leaves the clipboard cleared.
void CopyControlPicture(QWidget* pControl, QMenu* pMenuToHide = nullptr);

// How a print command ended. A failure carries a message for the user: which printer could not
// start the document, or which file could not be written.
struct PrintResult {
    enum class Outcome { Printed, Cancelled, Failed };
    Outcome outcome = Outcome::Cancelled;
    QString message;
    bool Failed() const { return outcome == Outcome::Failed; }
};

// The chart's print command: shows pDialog; on cancel nothing else happens. Otherwise hides the
// menu, captures pControl once and prints the picture, one document per copy, in the chosen
// orientation. The picture stands at the top-left corner of the printable area at its natural
// (on-screen) size, or scaled down keeping its proportions when it does not fit the page; PDF
// output keeps its pixels exactly. Nothing is thrown: a dialog that fails, a printer that cannot
// start or a file that cannot be written comes back as a failed result with its message, which
// the chart's menu passes on as its PrintFailed signal so that the host can tell the user.
PrintResult PrintControlPicture(QWidget* pControl, IPrintDialog& pDialog,
                                QMenu* pMenuToHide = nullptr);

// The print preview of a chart: a modal dialog (object name "dlgPrintPreview", parent pParent)
// whose page shows the picture exactly as PrintControlPicture prints it. The picture is taken
// once, with pMenuToHide closed first, when the dialog opens.
void PreviewControlPicture(QWidget* pControl, QWidget* pParent = nullptr,
                           QMenu* pMenuToHide = nullptr);

} // namespace trv5
