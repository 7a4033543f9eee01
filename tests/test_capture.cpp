#include <trv5charts/capture.h>

#include "platform/clipboardaccess.h"
#include "platform/printeraccess.h"
#include "testsupport.h"

#include <QApplication>
#include <QColor>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QMenu>
#include <QPaintEvent>
#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>
#include <QTransform>
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

TEST_F(PrintTest, FailuresComeBackWithAMessageAndCancelDoesNot) {
    dialog.fail = true;
    trv5::PrintResult result = trv5::PrintControlPicture(&widget, dialog);
    EXPECT_TRUE(result.Failed());
    EXPECT_FALSE(result.message.isEmpty());
    dialog.fail = false;

    dialog.copies = 2;
    dialog.outputFile = dir.filePath(QStringLiteral("missing/folder/chart.pdf"));
    result = trv5::PrintControlPicture(&widget, dialog);
    EXPECT_TRUE(result.Failed());
    EXPECT_TRUE(result.message.contains(QStringLiteral("missing/folder/chart-1.pdf")))
        << result.message.toStdString();
    EXPECT_TRUE(FilesIn(dir).isEmpty());
    EXPECT_FALSE(QDir(dir.filePath(QStringLiteral("missing"))).exists());

    dialog.cancel = true;
    result = trv5::PrintControlPicture(&widget, dialog);
    EXPECT_EQ(result.outcome, trv5::PrintResult::Outcome::Cancelled);
    EXPECT_TRUE(result.message.isEmpty());
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

// Where the pictures stand on the first page of a PDF written by the print command, in points
// from the page's top-left corner: the content streams are followed through their q, Q and cm
// operators up to each image's Do, whose unit square the current matrix maps onto the page.
struct PdfPlacement {
    QSizeF media;
    std::vector<QRectF> images;
    bool jpeg = false;
};

PdfPlacement ReadPlacement(const QString& pPath) {
    PdfPlacement placement;
    const PdfFacts facts = ReadPdf(pPath);
    placement.media = QSizeF(facts.mediaWidth, facts.mediaHeight);
    QFile file(pPath);
    if (!file.open(QIODevice::ReadOnly)) {
        return placement;
    }
    const QByteArray data = file.readAll();
    placement.jpeg = data.contains("/DCTDecode");
    for (qsizetype at = data.indexOf("stream"); at >= 0; at = data.indexOf("stream", at + 6)) {
        if (at >= 3 && data.mid(at - 3, 3) == "end") {
            continue;
        }
        const qsizetype dictionaryStart = data.lastIndexOf("<<", at);
        const QByteArray dictionary = data.mid(dictionaryStart, at - dictionaryStart);
        qsizetype begin = at + 6;
        begin += data.mid(begin, 2) == "\r\n" ? 2 : 1;
        const qsizetype end = data.indexOf("endstream", begin);
        if (end < 0 || dictionary.contains("/Image")) {
            continue;
        }
        QByteArray content = data.mid(begin, end - begin);
        if (dictionary.contains("/FlateDecode")) {
            // qUncompress wants the expected size in front of a zlib stream.
            QByteArray sized(4, '\0');
            sized[1] = '\x10'; // 1 MiB, enough for a page of a picture
            content = qUncompress(sized + content);
        }
        std::vector<QTransform> saved;
        QTransform matrix;
        std::vector<double> operands;
        for (const QByteArray& token : content.simplified().split(' ')) {
            bool number = false;
            const double value = token.toDouble(&number);
            if (number) {
                operands.push_back(value);
                continue;
            }
            if (token == "q") {
                saved.push_back(matrix);
            } else if (token == "Q" && !saved.empty()) {
                matrix = saved.back();
                saved.pop_back();
            } else if (token == "cm" && operands.size() >= 6) {
                const auto* m = &operands[operands.size() - 6];
                matrix = QTransform(m[0], m[1], m[2], m[3], m[4], m[5]) * matrix;
            } else if (token == "Do") {
                const QRectF square = matrix.mapRect(QRectF(0, 0, 1, 1));
                placement.images.push_back(QRectF(square.left(),
                                                  placement.media.height() - square.bottom(),
                                                  square.width(), square.height()));
            }
            operands.clear();
        }
    }
    return placement;
}

// The printable area of the page the print command uses, in points from the top-left corner.
QRectF PrintableArea(QPageLayout::Orientation pOrientation) {
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setPageOrientation(pOrientation);
    return printer.pageLayout().paintRect(QPageLayout::Point);
}

TEST_F(PrintTest, PicturesStandAtTheTopLeftAtNaturalSizeOrShrunkToThePage) {
    // 60 x 45 pixels at 96 dpi is 45 x 33.75 points; 1500 x 1300 pixels (1125 x 975 points)
    // is too wide for a portrait page and too high for a landscape one.
    PaintedWidget large(1500, 1300);
    large.show();
    for (const auto orientation : {QPageLayout::Portrait, QPageLayout::Landscape}) {
        const QRectF page = PrintableArea(orientation);
        dialog.orientation = orientation;
        for (QWidget* chart : {static_cast<QWidget*>(&widget), static_cast<QWidget*>(&large)}) {
            SCOPED_TRACE(testing::Message()
                         << "orientation " << orientation << ", width " << chart->width());
            dialog.outputFile =
                dir.filePath(QStringLiteral("%1-%2.pdf").arg(int{orientation}).arg(chart->width()));
            ASSERT_EQ(trv5::PrintControlPicture(chart, dialog).outcome,
                      trv5::PrintResult::Outcome::Printed);
            const PdfPlacement pdf = ReadPlacement(dialog.outputFile);
            EXPECT_FALSE(pdf.jpeg) << "pictures are stored without loss";
            ASSERT_EQ(pdf.images.size(), 1U);
            const QRectF image = pdf.images.front();
            EXPECT_NEAR(image.left(), page.left(), 0.5);
            EXPECT_NEAR(image.top(), page.top(), 0.5);
            EXPECT_LE(image.width(), page.width() + 0.5);
            EXPECT_LE(image.height(), page.height() + 0.5);
            if (chart == &widget) {
                EXPECT_NEAR(image.width(), 45.0, 0.2);
                EXPECT_NEAR(image.height(), 33.75, 0.2);
            } else {
                EXPECT_NEAR(image.width() / image.height(), 1500.0 / 1300.0, 0.005);
                // Shrunk just enough: the side that was too long fills the printable area.
                const double fill = orientation == QPageLayout::Portrait
                                        ? image.width() / page.width()
                                        : image.height() / page.height();
                EXPECT_NEAR(fill, 1.0, 0.002);
            }
        }
    }
}

TEST_F(PrintTest, ThePreviewShowsThePrintedPage) {
    trv5::PrintControlPicture(&widget, dialog);
    const PdfPlacement printed = ReadPlacement(dialog.outputFile);
    ASSERT_EQ(printed.images.size(), 1U);

    // The preview's own page, printed from the preview as it shows it.
    const QString previewFile = dir.filePath(QStringLiteral("preview.pdf"));
    bool found = false;
    // Answers the preview once it is open: prints what it shows, then closes it.
    QTimer answer;
    answer.setInterval(10);
    QObject::connect(&answer, &QTimer::timeout, [&] {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            auto* preview = qobject_cast<QPrintPreviewDialog*>(window);
            if (preview == nullptr || !preview->isVisible() ||
                preview->objectName() != QLatin1String("dlgPrintPreview")) {
                continue;
            }
            found = true;
            answer.stop();
            preview->printer()->setOutputFormat(QPrinter::PdfFormat);
            preview->printer()->setOutputFileName(previewFile);
            if (auto* page = preview->findChild<QPrintPreviewWidget*>()) {
                page->print();
            }
            preview->reject();
        }
    });
    answer.start();
    trv5::PreviewControlPicture(&widget);
    ASSERT_TRUE(found);
    const PdfPlacement previewed = ReadPlacement(previewFile);
    EXPECT_EQ(previewed.media, printed.media);
    ASSERT_EQ(previewed.images.size(), 1U);
    EXPECT_NEAR(previewed.images.front().left(), printed.images.front().left(), 0.01);
    EXPECT_NEAR(previewed.images.front().top(), printed.images.front().top(), 0.01);
    EXPECT_NEAR(previewed.images.front().width(), printed.images.front().width(), 0.01);
    EXPECT_NEAR(previewed.images.front().height(), printed.images.front().height(), 0.01);
}
