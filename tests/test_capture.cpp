#include <trv5charts/capture.h>

#include "platform/clipboardaccess.h"
#include "platform/printeraccess.h"
#include "testsupport.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QMenu>
#include <QPaintEvent>
#include <QPainter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QWidget>

#include <climits>
#include <stdexcept>
#include <vector>

namespace {

using trv5::IPrintDialog;
using trv5::PrintSettings;
using trv5::platform::ClipboardAccess;

const QColor Fill(30, 144, 200);
const QColor Marker(250, 20, 40);
constexpr int MarkerSize = 10;

// A widget in a known colour with a marker square at its top-left corner, so that a capture
// that is shifted, cropped or mirrored shows up in the pixels.
class PaintedWidget : public QWidget {
public:
    explicit PaintedWidget(int pWidth, int pHeight) { resize(pWidth, pHeight); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), Fill);
        painter.fillRect(QRect(0, 0, MarkerSize, MarkerSize), Marker);
    }
};

QColor PixelAt(const QImage& pImage, int pX, int pY) {
    return pImage.pixelColor(pX, pY);
}

// Answers the print dialog the way a user would, and writes to PDF so that the output can be
// inspected.
class AnsweringDialog : public IPrintDialog {
public:
    int copies = 1;
    QPageLayout::Orientation orientation = QPageLayout::Portrait;
    bool cancel = false;
    bool fail = false;
    QString outputFile;
    int shown = 0;

    bool Exec(PrintSettings& pSettings) override {
        ++shown;
        if (fail) {
            throw std::runtime_error("printer dialog failed");
        }
        if (cancel) {
            return false;
        }
        pSettings.copies = copies;
        pSettings.orientation = orientation;
        pSettings.outputFile = outputFile;
        return true;
    }
};

// What the tests need to know about a PDF file written by the print command.
struct PdfFacts {
    bool valid = false;
    int pages = 0;
    double mediaWidth = 0;
    double mediaHeight = 0;
    int images = 0;
    int imageWidth = 0;
    int imageHeight = 0;
};

// Reads the page count, page size and embedded pictures of a written PDF file.
PdfFacts ReadPdf(const QString& pPath) {
    PdfFacts facts;
    QFile file(pPath);
    if (!file.open(QIODevice::ReadOnly)) {
        return facts;
    }
    const QByteArray data = file.readAll();
    const QString text = QString::fromLatin1(data);
    facts.valid = data.startsWith("%PDF-") && data.trimmed().endsWith("%%EOF");
    // "/Type /Page" objects, not the "/Type /Pages" tree root.
    facts.pages = static_cast<int>(
        text.count(QRegularExpression(QStringLiteral("/Type\\s*/Page(?![s\\w])"))));
    const QRegularExpressionMatch box =
        QRegularExpression(
            QStringLiteral(
                "/MediaBox\\s*\\[\\s*([-\\d.]+)\\s+([-\\d.]+)\\s+([-\\d.]+)\\s+([-\\d.]+)"))
            .match(text);
    if (box.hasMatch()) {
        facts.mediaWidth = box.captured(3).toDouble() - box.captured(1).toDouble();
        facts.mediaHeight = box.captured(4).toDouble() - box.captured(2).toDouble();
    }
    QRegularExpressionMatchIterator images =
        QRegularExpression(
            QStringLiteral("/Subtype\\s*/Image\\s*/Width\\s+(\\d+)\\s*/Height\\s+(\\d+)"))
            .globalMatch(text);
    while (images.hasNext()) {
        const QRegularExpressionMatch image = images.next();
        ++facts.images;
        facts.imageWidth = image.captured(1).toInt();
        facts.imageHeight = image.captured(2).toInt();
    }
    return facts;
}

QStringList FilesIn(const QTemporaryDir& pDir) {
    return QDir(pDir.path()).entryList(QDir::Files, QDir::Name);
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Capture

TEST(CaptureTest, ControlPictureHasTheWidgetsSizeAndColours) {
    PaintedWidget widget(64, 40);
    widget.show();
    const QImage picture = trv5::CaptureControl(&widget);
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(picture.size(), QSize(64, 40));
    EXPECT_EQ(PixelAt(picture, 0, 0), Marker);
    EXPECT_EQ(PixelAt(picture, MarkerSize - 1, MarkerSize - 1), Marker);
    EXPECT_EQ(PixelAt(picture, MarkerSize, 0), Fill);
    EXPECT_EQ(PixelAt(picture, 63, 39), Fill);
}

TEST(CaptureTest, HiddenWidgetIsStillCapturedFromItsOwnDrawing) {
    PaintedWidget widget(30, 20);
    const QImage picture = trv5::CaptureControl(&widget);
    ASSERT_EQ(picture.size(), QSize(30, 20));
    EXPECT_EQ(PixelAt(picture, 0, 0), Marker);
    EXPECT_EQ(PixelAt(picture, 29, 19), Fill);
}

TEST(CaptureTest, WindowRectangleIsTakenFromTheGivenOrigin) {
    PaintedWidget widget(50, 30);
    const QImage picture = trv5::CaptureWindow(&widget, true, 5, 6, 20, 10);
    ASSERT_EQ(picture.size(), QSize(20, 10));
    // The marker covers widget pixels 0-9, i.e. picture pixels 0-4 across and 0-3 down.
    EXPECT_EQ(PixelAt(picture, 0, 0), Marker);
    EXPECT_EQ(PixelAt(picture, 4, 3), Marker);
    EXPECT_EQ(PixelAt(picture, 5, 0), Fill);
    EXPECT_EQ(PixelAt(picture, 0, 4), Fill);
    EXPECT_EQ(PixelAt(picture, 19, 9), Fill);
}

TEST(CaptureTest, RectangleBeyondTheWidgetIsBlackOutsideIt) {
    PaintedWidget widget(20, 20);
    const QImage picture = trv5::CaptureWindow(&widget, true, -5, 10, 40, 20);
    ASSERT_EQ(picture.size(), QSize(40, 20));
    EXPECT_EQ(PixelAt(picture, 0, 0), QColor(Qt::black));
    EXPECT_EQ(PixelAt(picture, 5, 0), Fill);
    EXPECT_EQ(PixelAt(picture, 24, 9), Fill);
    EXPECT_EQ(PixelAt(picture, 25, 0), QColor(Qt::black));
    EXPECT_EQ(PixelAt(picture, 5, 10), QColor(Qt::black));
}

TEST(CaptureTest, NothingToCaptureGivesANullPicture) {
    EXPECT_TRUE(trv5::CaptureControl(nullptr).isNull());
    PaintedWidget empty(0, 0);
    empty.show();
    EXPECT_TRUE(trv5::CaptureControl(&empty).isNull());
    PaintedWidget widget(10, 10);
    EXPECT_TRUE(trv5::CaptureWindow(&widget, true, 0, 0, 0, 10).isNull());
    EXPECT_TRUE(trv5::CaptureWindow(&widget, true, 0, 0, 10, -1).isNull());
}

TEST(CaptureTest, OriginNearTheIntegerLimitsDoesNotOverflow) {
    PaintedWidget widget(10, 10);
    const QImage farAway = trv5::CaptureWindow(&widget, true, INT_MAX, INT_MAX, 4, 4);
    ASSERT_EQ(farAway.size(), QSize(4, 4));
    EXPECT_EQ(PixelAt(farAway, 3, 3), QColor(Qt::black));
    const QImage before = trv5::CaptureWindow(&widget, true, INT_MIN, INT_MIN, 4, 4);
    ASSERT_EQ(before.size(), QSize(4, 4));
    EXPECT_EQ(PixelAt(before, 0, 0), QColor(Qt::black));
}

// ---------------------------------------------------------------------------------------------
// Copy to the clipboard

TEST(CopyTest, ClipboardReceivesExactlyThePicture) {
    ClipboardAccess::SetText(QStringLiteral("left over"));
    PaintedWidget widget(48, 36);
    widget.show();
    trv5::CopyControlPicture(&widget);
    const QImage copied = ClipboardAccess::Image();
    ASSERT_EQ(copied.size(), QSize(48, 36));
    EXPECT_EQ(PixelAt(copied, 0, 0), Marker);
    EXPECT_EQ(PixelAt(copied, 47, 35), Fill);
    EXPECT_TRUE(ClipboardAccess::Text().isEmpty());
}

TEST(CopyTest, OpenContextMenuIsClosedBeforeCapturing) {
    PaintedWidget widget(40, 40);
    widget.show();
    QMenu menu(&widget);
    menu.addAction(QStringLiteral("&Copy Chart"));
    menu.popup(widget.mapToGlobal(QPoint(1, 1)));
    ASSERT_TRUE(menu.isVisible());
    trv5::CopyControlPicture(&widget, &menu);
    EXPECT_FALSE(menu.isVisible());
    EXPECT_EQ(ClipboardAccess::Image().size(), QSize(40, 40));
}

TEST(CopyTest, EmptyControlLeavesTheClipboardCleared) {
    ClipboardAccess::SetText(QStringLiteral("stale"));
    PaintedWidget empty(0, 0);
    trv5::CopyControlPicture(&empty);
    EXPECT_TRUE(ClipboardAccess::Text().isEmpty());
    EXPECT_TRUE(ClipboardAccess::Image().isNull());

    ClipboardAccess::SetText(QStringLiteral("stale"));
    trv5::CopyControlPicture(nullptr);
    EXPECT_TRUE(ClipboardAccess::Text().isEmpty());
}

class PrintTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        widget.show();
        dialog.outputFile = dir.filePath(QStringLiteral("chart.pdf"));
    }

    QTemporaryDir dir;
    PaintedWidget widget{60, 45};
    AnsweringDialog dialog;
};

TEST_F(PrintTest, EachCopyIsItsOwnLandscapeDocument) {
    dialog.copies = 3;
    dialog.orientation = QPageLayout::Landscape;
    trv5::PrintControlPicture(&widget, dialog);

    EXPECT_EQ(dialog.shown, 1);
    ASSERT_EQ(FilesIn(dir),
              (QStringList{QStringLiteral("chart-1.pdf"), QStringLiteral("chart-2.pdf"),
                           QStringLiteral("chart-3.pdf")}));
    for (const QString& name : FilesIn(dir)) {
        SCOPED_TRACE(name.toStdString());
        const PdfFacts pdf = ReadPdf(dir.filePath(name));
        EXPECT_TRUE(pdf.valid);
        EXPECT_EQ(pdf.pages, 1);
        EXPECT_GT(pdf.mediaWidth, pdf.mediaHeight);
        EXPECT_EQ(pdf.images, 1);
        EXPECT_EQ(pdf.imageWidth, 60);
        EXPECT_EQ(pdf.imageHeight, 45);
    }
}

TEST_F(PrintTest, SingleCopyGoesToTheChosenFileInPortrait) {
    trv5::PrintControlPicture(&widget, dialog);
    ASSERT_EQ(FilesIn(dir), QStringList{QStringLiteral("chart.pdf")});
    const PdfFacts pdf = ReadPdf(dialog.outputFile);
    EXPECT_TRUE(pdf.valid);
    EXPECT_EQ(pdf.pages, 1);
    EXPECT_LT(pdf.mediaWidth, pdf.mediaHeight);
    EXPECT_EQ(pdf.images, 1);
}

TEST_F(PrintTest, CancelledDialogPrintsNothing) {
    dialog.cancel = true;
    dialog.copies = 2;
    QMenu menu(&widget);
    menu.addAction(QStringLiteral("&Print"));
    menu.popup(widget.mapToGlobal(QPoint(1, 1)));
    trv5::PrintControlPicture(&widget, dialog, &menu);
    EXPECT_EQ(dialog.shown, 1);
    EXPECT_TRUE(FilesIn(dir).isEmpty());
    // Cancelling ends the command before anything else happens, the menu included.
    EXPECT_TRUE(menu.isVisible());
}

TEST_F(PrintTest, FailuresEndTheCommandQuietly) {
    dialog.fail = true;
    EXPECT_NO_THROW(trv5::PrintControlPicture(&widget, dialog));
    dialog.fail = false;

    dialog.copies = 2;
    dialog.outputFile = dir.filePath(QStringLiteral("missing/folder/chart.pdf"));
    EXPECT_NO_THROW(trv5::PrintControlPicture(&widget, dialog));
    EXPECT_TRUE(FilesIn(dir).isEmpty());
    EXPECT_FALSE(QDir(dir.filePath(QStringLiteral("missing"))).exists());
}

TEST_F(PrintTest, NoCopiesOrNoPicturePrintsNothing) {
    dialog.copies = 0;
    trv5::PrintControlPicture(&widget, dialog);
    dialog.copies = -4;
    trv5::PrintControlPicture(&widget, dialog);
    dialog.copies = 2;
    PaintedWidget empty(0, 0);
    trv5::PrintControlPicture(&empty, dialog);
    trv5::PrintControlPicture(nullptr, dialog);
    EXPECT_EQ(dialog.shown, 4);
    EXPECT_TRUE(FilesIn(dir).isEmpty());
}
