#include <trv5charts/rocchart.h>
#include <trv5charts/verticallabel.h>

#include "platform/clipboardaccess.h"
#include "platform/drawingsurface.h"
#include "testsupport.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QFile>
#include <QFontMetricsF>
#include <QLabel>
#include <QMenu>
#include <QRegularExpression>
#include <QSet>
#include <QStyle>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

using trv5::ROCChart;
using trv5::platform::ClipboardAccess;
using trv5::platform::DrawingSurface;

namespace {

constexpr std::int32_t kWhite = 0xFFFFFF;
constexpr std::int32_t kRed = 0x0000FF;
constexpr std::int32_t kBlack = 0x000000;
constexpr std::int32_t kPlum = 0x6A2A8E;

template <class T> T& Child(const QObject& pParent, const char* pName) {
    T* child = pParent.findChild<T*>(QString::fromLatin1(pName));
    if (child == nullptr) {
        ADD_FAILURE() << "no child " << pName;
        std::abort();
    }
    return *child;
}

QString TextOf(const ROCChart& pChart, const char* pName) {
    return Child<QLabel>(pChart, pName).text();
}

bool Shown(const ROCChart& pChart, const char* pName) {
    return !Child<QWidget>(pChart, pName).isHidden();
}

// A chart of a size a host would give it, on a white background.
struct Fixture {
    ROCChart chart;
    DrawingSurface& pic;
    explicit Fixture(int pWidth = 420, int pHeight = 320)
        : pic(Child<DrawingSurface>(chart, "pic")) {
        chart.resize(pWidth, pHeight);
        chart.SetBackColor(kWhite);
    }
};

// Whether the colour appears within one unit of the position (lines snap to whole pixels).
bool ColourNear(const DrawingSurface& pPic, double pX, double pY, std::int32_t pColour) {
    for (double dy = -1.0; dy <= 1.0; dy += 1.0) {
        for (double dx = -1.0; dx <= 1.0; dx += 1.0) {
            if (pPic.Point(pX + dx, pY + dy) == pColour) {
                return true;
            }
        }
    }
    return false;
}

// A point of the segment between two rate pairs, in the plot's pixels, where the curve puts it.
struct Mapped {
    double x;
    double y;
};
Mapped OnSegment(const DrawingSurface& pPic, double pFp1, double pTp1, double pFp2, double pTp2,
                 double pT) {
    const double w = pPic.ScaleWidth();
    const double h = pPic.ScaleHeight();
    const double fp = pFp1 + (pFp2 - pFp1) * pT;
    const double tp = pTp1 + (pTp2 - pTp1) * pT;
    return {w * fp * 0.995, (h - h * tp) * 0.997};
}

// Columns along the diagonal that carry its colour, as a share of the columns looked at.
double DiagonalCoverage(const DrawingSurface& pPic, std::int32_t pColour) {
    const double side = pPic.ScaleWidth();
    int hits = 0;
    int columns = 0;
    for (double x = 6.0; x < side - 6.0; x += 1.0) {
        ++columns;
        for (double dy = -1.0; dy <= 1.0; dy += 1.0) {
            if (pPic.Point(x, side - x + dy) == pColour) {
                ++hits;
                break;
            }
        }
    }
    return columns == 0 ? 0.0 : static_cast<double>(hits) / columns;
}

int CountColour(const QImage& pImage, std::int32_t pColour) {
    const QRgb wanted = qRgb(pColour & 0xFF, (pColour >> 8) & 0xFF, (pColour >> 16) & 0xFF);
    int count = 0;
    for (int y = 0; y < pImage.height(); ++y) {
        for (int x = 0; x < pImage.width(); ++x) {
            count += pImage.pixel(x, y) == wanted ? 1 : 0;
        }
    }
    return count;
}

void OpenMenu(ROCChart& pChart, QContextMenuEvent::Reason pReason) {
    QContextMenuEvent event(pReason, QPoint(20, 20), pChart.mapToGlobal(QPoint(20, 20)));
    QCoreApplication::sendEvent(&pChart, &event);
}

// Member pIndex of a control array: its members share one name, in the order of their index.
template <class T> T& Member(const ROCChart& pChart, const char* pName, int pIndex) {
    const QList<T*> members = pChart.findChildren<T*>(QString::fromLatin1(pName));
    if (pIndex >= members.size()) {
        ADD_FAILURE() << "no member " << pIndex << " of " << pName;
        std::abort();
    }
    return *members[pIndex];
}

QAction& MenuItem(const ROCChart& pChart, int pIndex) {
    return Member<QAction>(pChart, "mnuMain", pIndex);
}

QLabel& Tick(const ROCChart& pChart, const char* pAxis, int pIndex) {
    return Member<QLabel>(pChart, pAxis, pIndex);
}

class AnsweringDialog : public trv5::IPrintDialog {
public:
    explicit AnsweringDialog(QString pFile) : m_file(std::move(pFile)) {}
    bool Exec(trv5::PrintSettings& pSettings) override {
        pSettings.copies = 1;
        pSettings.outputFile = m_file;
        return true;
    }

private:
    QString m_file;
};

} // namespace

TEST(ROCChartTest, StartsWithTheDiagonalTickLabelsAndHiddenFigures) {
    const trv5::test::ScopedLocale german(trv5::test::German());
    Fixture f;
    ROCChart& chart = f.chart;
    EXPECT_EQ(chart.ROCColor(), kRed);
    EXPECT_EQ(chart.DiagonalColor(), kBlack);
    EXPECT_TRUE(chart.ShowTooltip());
    EXPECT_EQ(Child<trv5::VerticalLabel>(chart, "vlLegend").Text(),
              QStringLiteral("TP Rate (Sensitivity)"));
    EXPECT_EQ(TextOf(chart, "lblHLegend"), QStringLiteral("FP Rate (1-Specificity)"));
    EXPECT_EQ(TextOf(chart, "lblROCCurve"), QStringLiteral("ROC Curve"));
    EXPECT_EQ(TextOf(chart, "lblBaseline"), QStringLiteral("Random"));
    EXPECT_EQ(Child<QLabel>(chart, "lblAucLabel").toolTip(),
              QStringLiteral("Area Under the ROC Curve"));
    EXPECT_EQ(Child<QLabel>(chart, "lblRecords").palette().color(QPalette::WindowText),
              QColor(95, 95, 95));
    for (const char* hidden : {"lblAUC", "lblAucLabel", "lbl1MinusAuc", "lbl1MinusAucLabel"}) {
        EXPECT_FALSE(Shown(chart, hidden)) << hidden;
    }
    // Tenths in the user's locale, the vertical ones counting down from the top.
    EXPECT_EQ(Tick(chart, "lblX", 0).text(), QStringLiteral("0"));
    EXPECT_EQ(Tick(chart, "lblX", 3).text(), QStringLiteral("0,3"));
    EXPECT_EQ(Tick(chart, "lblX", 10).text(), QStringLiteral("1"));
    EXPECT_EQ(Tick(chart, "lblY", 0).text(), QStringLiteral("1"));
    EXPECT_EQ(Tick(chart, "lblY", 7).text(), QStringLiteral("0,3"));
    EXPECT_LT(Tick(chart, "lblX", 3).geometry().center().x(),
              Tick(chart, "lblX", 7).geometry().center().x());
    EXPECT_LT(Tick(chart, "lblY", 3).geometry().center().y(),
              Tick(chart, "lblY", 7).geometry().center().y());

    // The diagonal is dotted: roughly every other column along it, nowhere else.
    const double coverage = DiagonalCoverage(f.pic, kBlack);
    EXPECT_GT(coverage, 0.2);
    EXPECT_LT(coverage, 0.8);
    const double side = f.pic.ScaleWidth();
    EXPECT_EQ(f.pic.Point(side * 0.25, side * 0.25), kWhite);
    EXPECT_EQ(f.pic.Point(side * 0.75, side * 0.75), kWhite);
}

TEST(ROCChartTest, DiagonalFollowsItsColourAndOnlyResetOrDataDrawIt) {
    Fixture f;
    f.chart.SetDiagonalColor(kPlum);
    f.chart.SetROCColor(0x00AA00);
    EXPECT_GT(CountColour(Child<DrawingSurface>(f.chart, "lnBaseline").Raster(), kPlum), 0);
    EXPECT_GT(CountColour(Child<DrawingSurface>(f.chart, "lnROCCurve").Raster(), 0x00AA00), 0);
    f.pic.SetToolTipText(QStringLiteral("left alone"));

    // Without data Refresh draws frame and labels only, and leaves the tool tip as it was.
    f.chart.Refresh();
    EXPECT_EQ(DiagonalCoverage(f.pic, kPlum), 0.0);
    EXPECT_EQ(CountColour(f.pic.Raster(), kWhite),
              f.pic.Raster().width() * f.pic.Raster().height());
    EXPECT_EQ(f.pic.ToolTipText(), QStringLiteral("left alone"));
    // The frame on the control's own surface stops short of the corners.
    const auto& surface = Child<DrawingSurface>(f.chart, "surface");
    EXPECT_EQ(surface.Point(10, 0), kBlack);
    EXPECT_EQ(surface.Point(0, 10), kBlack);
    EXPECT_EQ(surface.Point(0, 0), kWhite);
    EXPECT_EQ(surface.Point(surface.ScaleWidth() - 1, surface.ScaleHeight() - 1), kWhite);

    f.chart.Reset();
    EXPECT_GT(DiagonalCoverage(f.pic, kPlum), 0.2);
    // A resize redraws what was shown.
    f.chart.resize(500, 360);
    EXPECT_GT(DiagonalCoverage(f.pic, kPlum), 0.2);
}

TEST(ROCChartTest, CurveRunsThroughThePointsAndABreakSuppressesOnlyTheOutgoingSegment) {
    const std::vector<double> fp = {0.0, 0.5, -1.0, 0.6, 1.0};
    const std::vector<double> tp = {0.0, 0.8, 0.9, 0.95, 1.0};
    for (const double ratio : {1.0, 2.0}) {
        Fixture f;
        f.pic.SetDevicePixelRatioForTesting(ratio);
        f.chart.SetDataSource(fp, tp);
        f.chart.Refresh();
        for (const double t : {0.25, 0.5, 0.75}) {
            const Mapped first = OnSegment(f.pic, 0.0, 0.0, 0.5, 0.8, t);
            EXPECT_TRUE(ColourNear(f.pic, first.x, first.y, kRed)) << ratio << " " << t;
            const Mapped last = OnSegment(f.pic, 0.6, 0.95, 1.0, 1.0, t);
            EXPECT_TRUE(ColourNear(f.pic, last.x, last.y, kRed)) << ratio << " " << t;
        }
        // The segment into the break runs off to the left and is drawn; the one out of it is not.
        const Mapped arriving = OnSegment(f.pic, 0.5, 0.8, -1.0, 0.9, 0.1658);
        EXPECT_TRUE(ColourNear(f.pic, arriving.x, arriving.y, kRed)) << ratio;
        const Mapped leaving = OnSegment(f.pic, -1.0, 0.9, 0.6, 0.95, 0.8134);
        EXPECT_FALSE(ColourNear(f.pic, leaving.x, leaving.y, kRed)) << ratio;
        // A point at rate 1 stays inside the picture.
        EXPECT_TRUE(ColourNear(f.pic, f.pic.ScaleWidth() * 0.995, 1.0, kRed)) << ratio;
        EXPECT_EQ(f.pic.ToolTipText(), QStringLiteral("Points 1 to 4"));
        EXPECT_EQ(TextOf(f.chart, "lblRecords"), QStringLiteral("Points 1 to 4"));
        EXPECT_GT(DiagonalCoverage(f.pic, kBlack), 0.2);
    }
}

TEST(ROCChartTest, ADenseCurveHasNoGaps) {
    // Far more points than pixels, so most segments end in the pixel where the last one ended,
    // with a jump straight up half way (many positives with one score).
    constexpr int kPoints = 50'000;
    const auto rate = [](double pFp) {
        return 0.8 * std::sqrt(pFp) + (pFp > 0.5 ? 0.2 : 0.0);
    };
    std::vector<double> fp;
    std::vector<double> tp;
    for (int i = 0; i <= kPoints; ++i) {
        fp.push_back(static_cast<double>(i) / kPoints);
        tp.push_back(rate(fp.back()));
    }
    for (const double ratio : {1.0, 1.5}) {
        Fixture f;
        f.pic.SetDevicePixelRatioForTesting(ratio);
        f.chart.SetDataSource(fp, tp);
        f.chart.Refresh();
        const double w = f.pic.ScaleWidth();
        const double h = f.pic.ScaleHeight();
        for (double x = w * 0.1; x < w * 0.99; x += 1.0) {
            const double y = (h - h * rate(x / (w * 0.995))) * 0.997;
            ASSERT_TRUE(ColourNear(f.pic, x, y, kRed)) << ratio << " at x " << x;
        }
        const Mapped jump = OnSegment(f.pic, 0.5, rate(0.5), 0.5, rate(0.5) + 0.2, 0.5);
        EXPECT_TRUE(ColourNear(f.pic, jump.x, jump.y, kRed)) << ratio;
    }
}

TEST(ROCChartTest, DegenerateDataDrawsNoCurveAndNeverFails) {
    Fixture f;
    const std::vector<double> one = {0.4};
    f.chart.SetDataSource(one, one);
    f.chart.Refresh();
    EXPECT_EQ(f.pic.ToolTipText(), QStringLiteral("Points 1 to 0"));
    EXPECT_EQ(CountColour(f.pic.Raster(), kRed), 0);
    EXPECT_GT(DiagonalCoverage(f.pic, kBlack), 0.2);

    // TP rates that run out: the plot is left empty and the tool tip unchanged.
    const std::vector<double> fp = {0.0, 0.3, 0.6, 1.0};
    const std::vector<double> shortTp = {0.0, 0.5};
    f.chart.SetDataSource(fp, shortTp);
    f.chart.Refresh();
    EXPECT_EQ(CountColour(f.pic.Raster(), kWhite),
              f.pic.Raster().width() * f.pic.Raster().height());
    EXPECT_EQ(f.pic.ToolTipText(), QStringLiteral("Points 1 to 0"));

    // Non-finite and far-out rates draw what can be drawn.
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const std::vector<double> wild = {nan, inf, -inf, 1e308, -1e308, 0.5};
    f.chart.SetDataSource(wild, wild);
    f.chart.Refresh();
    EXPECT_EQ(f.pic.ToolTipText(), QStringLiteral("Points 1 to 5"));
}

TEST(ROCChartTest, AucFiguresAndTheirVisibility) {
    Fixture f;
    ROCChart& chart = f.chart;
    chart.SetAUC(-1.0);
    EXPECT_EQ(TextOf(chart, "lblAUC"), QStringLiteral("UNDEFINED"));
    EXPECT_EQ(TextOf(chart, "lbl1MinusAuc"), QStringLiteral("UNDEFINED"));
    EXPECT_TRUE(Shown(chart, "lblAUC"));
    EXPECT_TRUE(Shown(chart, "lblAucLabel"));
    EXPECT_FALSE(Shown(chart, "lbl1MinusAuc"));

    chart.SetAUC(0.8123456789);
    EXPECT_EQ(TextOf(chart, "lblAUC"), QStringLiteral("0.812346"));
    EXPECT_EQ(TextOf(chart, "lbl1MinusAuc"), QStringLiteral("0.187654"));
    {
        const trv5::test::ScopedLocale german(trv5::test::German());
        chart.SetAUC(0.75);
        EXPECT_EQ(TextOf(chart, "lblAUC"), QStringLiteral("0,75"));
        EXPECT_EQ(TextOf(chart, "lbl1MinusAuc"), QStringLiteral("0,25"));
    }

    chart.SetInverted(true);
    EXPECT_TRUE(Shown(chart, "lbl1MinusAucLabel"));
    EXPECT_TRUE(Shown(chart, "lbl1MinusAuc"));
    chart.Reset();
    EXPECT_FALSE(Shown(chart, "lblAUC"));
    EXPECT_FALSE(Shown(chart, "lbl1MinusAuc"));
    EXPECT_TRUE(Shown(chart, "lbl1MinusAucLabel"));
    // Refresh brings the pair back as Inverted says.
    chart.Refresh();
    EXPECT_TRUE(Shown(chart, "lbl1MinusAuc"));
    chart.SetInverted(false);
    chart.Refresh();
    EXPECT_FALSE(Shown(chart, "lbl1MinusAuc"));
    EXPECT_FALSE(Shown(chart, "lbl1MinusAucLabel"));
}

TEST(ROCChartTest, MenuHidesPrintingAndShowsTheQuantityEntryOnRequest) {
    Fixture f;
    ROCChart& chart = f.chart;
    chart.show();
    auto& menu = Child<QMenu>(chart, "ctxMain");
    OpenMenu(chart, QContextMenuEvent::Mouse);
    EXPECT_TRUE(menu.isVisible());
    EXPECT_EQ(MenuItem(chart, 0).text(), QStringLiteral("&Copy Chart"));
    EXPECT_EQ(MenuItem(chart, 1).text(), QStringLiteral("Copy Chart Data"));
    EXPECT_TRUE(MenuItem(chart, 2).isSeparator());
    EXPECT_EQ(MenuItem(chart, 3).text(), QStringLiteral("&Print"));
    const bool expectedShown[] = {true, true, false, false, false, false};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(MenuItem(chart, i).isVisible(), expectedShown[i]) << i;
    }
    menu.hide();

    chart.ShowMenuWithQuantity(QStringLiteral("Showing 500 of 2,000 records"));
    OpenMenu(chart, QContextMenuEvent::Keyboard);
    EXPECT_TRUE(menu.isVisible());
    EXPECT_TRUE(MenuItem(chart, 4).isVisible());
    EXPECT_TRUE(MenuItem(chart, 5).isVisible());
    EXPECT_FALSE(MenuItem(chart, 3).isVisible());
    EXPECT_EQ(MenuItem(chart, 5).text(), QStringLiteral("Showing 500 of 2,000 records"));
    MenuItem(chart, 5).trigger();
    EXPECT_TRUE(MenuItem(chart, 5).isChecked());
    EXPECT_FALSE(menu.isVisible());

    chart.HideMenuWithQuantity();
    OpenMenu(chart, QContextMenuEvent::Mouse);
    EXPECT_FALSE(MenuItem(chart, 5).isVisible());
    menu.hide();

    chart.SetShowTooltip(false);
    OpenMenu(chart, QContextMenuEvent::Mouse);
    EXPECT_FALSE(menu.isVisible());
}

TEST(ROCChartTest, CopyChartDataPutsTheExactTextOnTheClipboard) {
    Fixture f;
    const std::vector<double> fp = {0.0, 0.125, -1.0, 1.0};
    const std::vector<double> tp = {0.0, 0.6, 0.7, 1.0};
    f.chart.SetDataSource(fp, tp);
    ClipboardAccess::SetText(QStringLiteral("left over"));
    {
        const trv5::test::ScopedLocale german(trv5::test::German());
        MenuItem(f.chart, 1).trigger();
    }
    EXPECT_EQ(ClipboardAccess::Text(),
              QStringLiteral("FP Rate(1-Specificity)\tTP Rate (Sensitivity)"
                             "\r\n0\t0\r\n0,125\t0,6\r\n-1\t0,7\r\n1\t1"));

    // A shorter TP array leaves its cells empty; no data leaves the header alone.
    const std::vector<double> shortTp = {0.25};
    f.chart.SetDataSource(std::vector<double>{0.5, 0.75}, shortTp);
    MenuItem(f.chart, 1).trigger();
    EXPECT_EQ(ClipboardAccess::Text(),
              QStringLiteral("FP Rate(1-Specificity)\tTP Rate (Sensitivity)"
                             "\r\n0.5\t0.25\r\n0.75\t"));
    f.chart.SetDataSource({}, {});
    MenuItem(f.chart, 1).trigger();
    EXPECT_EQ(ClipboardAccess::Text(),
              QStringLiteral("FP Rate(1-Specificity)\tTP Rate (Sensitivity)"));
}

TEST(ROCChartTest, PictureGoesToTheClipboardAndToAPdf) {
    Fixture f(360, 270);
    f.chart.SetDataSource(std::vector<double>{0.0, 0.2, 1.0}, std::vector<double>{0.0, 0.7, 1.0});
    f.chart.SetAUC(0.75);
    f.chart.Refresh();
    f.chart.show();
    ClipboardAccess::SetText(QStringLiteral("left over"));
    f.chart.EditCopy();
    const QImage picture = ClipboardAccess::Image();
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(picture.size(), QSize(360, 270) * f.chart.devicePixelRatioF());
    EXPECT_GT(CountColour(picture, kRed), 50);

    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("roc.pdf"));
    f.chart.SetPrintDialog(std::make_shared<AnsweringDialog>(file));
    MenuItem(f.chart, 3).trigger();
    QFile pdf(file);
    ASSERT_TRUE(pdf.open(QIODevice::ReadOnly));
    const QString text = QString::fromLatin1(pdf.readAll());
    EXPECT_TRUE(text.startsWith(QStringLiteral("%PDF-")));
    const QRegularExpressionMatch image =
        QRegularExpression(
            QStringLiteral("/Subtype\\s*/Image\\s*/Width\\s+(\\d+)\\s*/Height\\s+(\\d+)"))
            .match(text);
    ASSERT_TRUE(image.hasMatch());
    EXPECT_EQ(image.captured(1).toInt(), picture.width());
    EXPECT_EQ(image.captured(2).toInt(), picture.height());
}

TEST(ROCChartTest, LayoutKeepsASquarePlotAndSurvivesAnySize) {
    Fixture f(600, 450);
    ROCChart& chart = f.chart;
    const int titleHeight = Child<QLabel>(chart, "lblHLegend").height();
    EXPECT_EQ(f.pic.geometry(),
              QRect(f.pic.x(), 20, 450 - titleHeight - 48, 450 - titleHeight - 48));
    // Plot, vertical title, legend and AUC figures do not overlap.
    const QRect plot = f.pic.geometry();
    EXPECT_LT(Child<QWidget>(chart, "vlLegend").geometry().right(), Tick(chart, "lblY", 5).x());
    EXPECT_LT(Tick(chart, "lblY", 5).geometry().right(), plot.left());
    EXPECT_GT(Child<QWidget>(chart, "picLegend").x(), plot.right());
    EXPECT_GT(Child<QLabel>(chart, "lblAUC").x(),
              Child<QLabel>(chart, "lblAucLabel").geometry().right());
    EXPECT_LE(Child<QLabel>(chart, "lblAUC").geometry().right(), 600);

    chart.SetHeightPercent(50.0F);
    EXPECT_EQ(f.pic.height(), (450 - titleHeight - 48) / 2);
    EXPECT_NEAR(f.pic.y(), 450 / 4, 1);
    EXPECT_EQ(f.pic.width(), f.pic.height());

    chart.SetDataSource(std::vector<double>{0.0, 1.0}, std::vector<double>{0.0, 1.0});
    for (const float percent : {0.0F, 150.0F, -20.0F, std::numeric_limits<float>::quiet_NaN()}) {
        chart.SetHeightPercent(percent);
        for (const QSize size : {QSize(0, 0), QSize(1, 1), QSize(12, 9), QSize(90, 600),
                                 QSize(800, 40), QSize(1200, 900)}) {
            chart.resize(size);
            chart.Refresh();
            EXPECT_EQ(f.pic.width(), f.pic.height());
            for (const QWidget* child : chart.findChildren<QWidget*>()) {
                const QRect g = child->geometry();
                EXPECT_TRUE(g.x() >= 0 && g.y() >= 0 && g.width() >= 0 && g.height() >= 0)
                    << child->objectName().toStdString() << " at " << size.width() << "x"
                    << size.height();
            }
        }
    }
}

namespace {

// The box a label's text takes on the chart, as far as the label shows it; empty for a label
// that shows nothing. pFits tells whether the whole text fits the label (nothing is clipped).
QRect TextBox(const ROCChart& pChart, const QLabel& pLabel, bool& pFits) {
    pFits = true;
    if (!pLabel.isVisibleTo(&pChart) || pLabel.text().isEmpty() || pLabel.width() <= 0 ||
        pLabel.height() <= 0) {
        return {};
    }
    const QFontMetricsF metrics(pLabel.font());
    const QSize text(static_cast<int>(std::ceil(metrics.horizontalAdvance(pLabel.text()))),
                     static_cast<int>(std::ceil(metrics.height())));
    pFits = text.width() <= pLabel.width() + 1;
    const QRect inLabel =
        QStyle::alignedRect(Qt::LeftToRight, pLabel.alignment(), text, pLabel.rect()) &
        pLabel.rect();
    return QRect(pLabel.mapTo(&pChart, inLabel.topLeft()), inLabel.size());
}

bool IsLeadingWords(const QString& pText, const QString& pFull) {
    return pText == pFull || (pFull.startsWith(pText) && pFull.at(pText.size()) == u' ');
}

} // namespace

TEST(ROCChartTest, NoTextOverlapsAnotherOrIsCutAtAnySize) {
    ROCChart chart;
    chart.SetBackColor(kWhite);
    chart.SetInverted(true);
    chart.SetDataSource(std::vector<double>{0.0, 0.1, 0.4, 1.0},
                        std::vector<double>{0.0, 0.6, 0.9, 1.0});
    chart.SetAUC(0.8123456789);
    const auto& vertical = Child<trv5::VerticalLabel>(chart, "vlLegend");
    for (int width = 150; width <= 720; width += 30) {
        for (int height = 120; height <= 540; height += 28) {
            chart.resize(width, height);
            chart.Refresh();
            const std::string at = std::to_string(width) + "x" + std::to_string(height);
            std::vector<std::pair<QString, QRect>> boxes{
                {QStringLiteral("pic"), Child<QWidget>(chart, "pic").geometry()}};
            for (const QLabel* label : chart.findChildren<QLabel*>()) {
                bool fits = true;
                const QRect box = TextBox(chart, *label, fits);
                EXPECT_TRUE(fits) << label->objectName().toStdString() << " cut at " << at;
                if (!box.isEmpty()) {
                    boxes.emplace_back(label->objectName() + u' ' + label->text(), box);
                }
            }
            if (!vertical.Text().isEmpty()) {
                const int length = vertical.TextLength(vertical.Text());
                EXPECT_LE(length, vertical.height()) << "vertical title cut at " << at;
                const QRect g = vertical.geometry();
                boxes.emplace_back(QStringLiteral("vlLegend"),
                                   QRect(g.x(), g.center().y() - length / 2, g.width(), length));
            }
            EXPECT_TRUE(IsLeadingWords(vertical.Text(), QStringLiteral("TP Rate (Sensitivity)")))
                << vertical.Text().toStdString();
            EXPECT_TRUE(IsLeadingWords(TextOf(chart, "lblHLegend"),
                                       QStringLiteral("FP Rate (1-Specificity)")));
            for (std::size_t i = 0; i < boxes.size(); ++i) {
                for (std::size_t j = i + 1; j < boxes.size(); ++j) {
                    EXPECT_FALSE(boxes[i].second.intersects(boxes[j].second))
                        << boxes[i].first.toStdString() << " overlaps "
                        << boxes[j].first.toStdString() << " at " << at;
                }
            }
        }
    }
}

TEST(ROCChartTest, SmallChartsThinTheirTicksShortenTitlesAndShrinkTheLegend) {
    const auto shownTicks = [](const ROCChart& pChart, const char* pAxis) {
        QList<int> shown;
        for (int i = 0; i <= 10; ++i) {
            if (!Tick(pChart, pAxis, i).geometry().isEmpty()) {
                shown << i;
            }
        }
        return shown;
    };
    Fixture large(600, 450);
    const QList<int> all{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    EXPECT_EQ(shownTicks(large.chart, "lblX"), all);
    EXPECT_EQ(shownTicks(large.chart, "lblY"), all);
    EXPECT_EQ(Child<trv5::VerticalLabel>(large.chart, "vlLegend").Text(),
              QStringLiteral("TP Rate (Sensitivity)"));
    const QSize fullLegend = Child<QWidget>(large.chart, "picLegend").size();

    // Shrinking the height thins the labels of both axes to every second one, then to none,
    // never leaving odd ones behind.
    const QList<int> even{0, 2, 4, 6, 8, 10};
    QSet<int> seen;
    qsizetype previous = all.size();
    for (int height = 450; height >= 120; height -= 5) {
        large.chart.resize(700, height);
        large.chart.Refresh();
        for (const char* axis : {"lblX", "lblY"}) {
            const QList<int> shown = shownTicks(large.chart, axis);
            EXPECT_TRUE(shown == all || shown == even || shown.isEmpty()) << height;
            seen.insert(static_cast<int>(shown.size()));
        }
        const qsizetype count = shownTicks(large.chart, "lblY").size();
        EXPECT_LE(count, previous);
        previous = count;
    }
    EXPECT_EQ(seen, QSet<int>({11, 6, 0}));

    // A low chart: the titles lose words, not letters.
    large.chart.resize(300, 130);
    large.chart.Refresh();
    EXPECT_EQ(Child<trv5::VerticalLabel>(large.chart, "vlLegend").Text(),
              QStringLiteral("TP Rate"));
    large.chart.resize(120, 300);
    large.chart.Refresh();
    EXPECT_EQ(TextOf(large.chart, "lblHLegend"), QStringLiteral("FP Rate"));

    // A narrow chart: the legend takes smaller fonts instead of squeezing the plot.
    Fixture small(270, 230);
    const QSize legend = Child<QWidget>(small.chart, "picLegend").size();
    EXPECT_LT(legend.width(), fullLegend.width());
    EXPECT_LT(legend.height(), fullLegend.height());
    EXPECT_GT(legend.width(), 0);
    const int titleHeight = Child<QLabel>(small.chart, "lblHLegend").height();
    EXPECT_GE(small.pic.width(), 0.6 * (230 - titleHeight - 48));
}

namespace {

// A host window that opens a menu of its own on a right click.
class HostWindow final : public QWidget {
public:
    int menus = 0;

protected:
    void contextMenuEvent(QContextMenuEvent* pEvent) override {
        ++menus;
        pEvent->accept();
    }
};

} // namespace

TEST(ROCChartTest, ARightClickWithoutTheMenuGoesNowhereElseEither) {
    HostWindow host;
    auto* chart = new ROCChart(&host);
    chart->resize(300, 300);
    host.resize(320, 320);
    host.show();
    chart->SetShowTooltip(false);
    auto& menu = Child<QMenu>(*chart, "ctxMain");
    // On the chart itself and on its plot, whose events go up to the chart.
    for (QWidget* target : {static_cast<QWidget*>(chart), &Child<QWidget>(*chart, "pic")}) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(20, 20),
                                target->mapToGlobal(QPoint(20, 20)));
        QApplication::sendEvent(target, &event);
        EXPECT_FALSE(menu.isVisible());
        EXPECT_EQ(host.menus, 0);
    }
    chart->SetShowTooltip(true);
    OpenMenu(*chart, QContextMenuEvent::Mouse);
    EXPECT_TRUE(menu.isVisible());
    EXPECT_EQ(host.menus, 0);
    menu.hide();
}
