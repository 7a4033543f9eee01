// The gallery host: its headless mode as a user runs it (a separate process without a display),
// the project round trip, the threshold wiring and the charts' context menus in the window.
#include "core/gallerycore.h"
#include "platform/colour.h"
#include "ui/chartboard.h"
#include "ui/chartexport.h"
#include "ui/controlpanel.h"
#include "ui/gallerysettings.h"
#include "ui/gallerywindow.h"
#include "ui/headless.h"
#include "ui/runsession.h"

#include <trv5charts/barchart.h>
#include <trv5charts/blockpanel.h>
#include <trv5charts/blockpanelsimple.h>
#include <trv5charts/clscatterplot.h>
#include <trv5charts/curvefitting.h>
#include <trv5charts/hostsettings.h>
#include <trv5charts/rocchart.h>
#include <trv5charts/rtchart.h>
#include <trv5charts/scatterplot.h>
#include <trv5charts/stackeddistributionchart.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDoubleSpinBox>
#include <QEventLoop>
#include <QFile>
#include <QHelpEvent>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QProcess>
#include <QProgressBar>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QSet>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>

namespace {

using trv5::gallery::ChartEntry;
using trv5::gallery::GalleryWindow;

class Margin final : public trv5::IConfig {
public:
    QVariantMap Settings() const override {
        return {{QStringLiteral("Run.CurveFitting.Margin"), QStringLiteral("0.05")}};
    }
};

QByteArray ReadAll(const QString& pPath) {
    QFile file(pPath);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Runs the window's model flat out and waits for the result charts.
void RunToEnd(GalleryWindow& pWindow) {
    auto settings = pWindow.Panel().Settings();
    settings.PaceMilliseconds = 0;
    pWindow.Panel().SetSettings(settings);
    QEventLoop loop;
    bool finished = false;
    QObject::connect(&pWindow.Session(), &trv5::gallery::RunSession::finished, &loop, [&] {
        finished = true;
        loop.quit();
    });
    QTimer::singleShot(60000, &loop, &QEventLoop::quit);
    pWindow.StartRun();
    loop.exec();
    ASSERT_TRUE(finished);
    ASSERT_TRUE(pWindow.Session().LastResults().has_value());
}

// The program run as a user runs it: no display and no platform chosen, so it must pick the
// offscreen platform itself.
QProcess::ExitStatus RunGallery(const QStringList& pArguments, int& pExitCode, QString& pErrors,
                                QString* pOutput = nullptr) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(TRV5_GALLERY_EXE), pArguments);
    process.waitForFinished(120000);
    pExitCode = process.exitCode();
    pErrors = QString::fromLocal8Bit(process.readAllStandardError());
    if (pOutput != nullptr) {
        *pOutput = QString::fromLocal8Bit(process.readAllStandardOutput());
    }
    return process.exitStatus();
}

std::size_t DistinctColours(const QImage& pImage) {
    QSet<QRgb> colours;
    for (int y = 0; y < pImage.height(); y += 2) {
        for (int x = 0; x < pImage.width(); x += 2) {
            colours.insert(pImage.pixel(x, y));
        }
    }
    return static_cast<std::size_t>(colours.size());
}

TEST(Gallery, HeadlessModeWritesEveryChartsPictureDataAndState) {
    QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    int exitCode = -1;
    QString errors;
    ASSERT_EQ(RunGallery({QStringLiteral("--output"), directory.path()}, exitCode, errors),
              QProcess::NormalExit);
    ASSERT_EQ(exitCode, 0) << errors.toStdString();

    // The names and sizes come from the window's own chart list.
    GalleryWindow window;
    const std::vector<ChartEntry> charts = window.Board().Entries();
    ASSERT_EQ(charts.size(), 11U);
    const QMap<QString, QString> headers = {
        {QStringLiteral("progress"),
         QStringLiteral("Generation\tBest fitness\tAverage fitness\tValidation fitness")},
        {QStringLiteral("usage"), QStringLiteral("Share of weights (%)")},
        {QStringLiteral("trainingAccuracy"), QStringLiteral("Accuracy (%)")},
        {QStringLiteral("validationAccuracy"), QStringLiteral("Accuracy (%)")},
        {QStringLiteral("roc"), QStringLiteral("FP Rate(1-Specificity)\tTP Rate (Sensitivity)")},
        {QStringLiteral("curvefitting"),
         QStringLiteral("Target\tModel output\tThreshold\tMisclassifications")},
        {QStringLiteral("clscatter"), QStringLiteral("Record ID\tModel\tDummy Variable\tType")},
        {QStringLiteral("scatter"), QStringLiteral("Record ID\tModel output\tTarget")},
        {QStringLiteral("stacked"), QStringLiteral("Record ID\tDummyVar\tTarget")},
        {QStringLiteral("usageBlocks"), QStringLiteral("Item\tIndividuals")},
        {QStringLiteral("tapestry"), QStringLiteral("Record ID\tClass")}};
    for (const ChartEntry& chart : charts) {
        SCOPED_TRACE(chart.name.toStdString());
        const QString base = directory.filePath(chart.name);
        const QImage picture(base + QStringLiteral(".png"));
        ASSERT_FALSE(picture.isNull());
        EXPECT_EQ(picture.size(), chart.exportSize);
        // A blank or single-colour picture means the chart drew nothing.
        EXPECT_GE(DistinctColours(picture), 3U);

        const QString text = QString::fromUtf8(ReadAll(base + QStringLiteral(".txt")));
        EXPECT_EQ(text.section(QStringLiteral("\r\n"), 0, 0), headers.value(chart.name));
        EXPECT_GE(text.count(QStringLiteral("\r\n")), 1);

        const QString state = QString::fromUtf8(ReadAll(base + QStringLiteral(".xml")));
        if (chart.state == nullptr) {
            EXPECT_FALSE(QFile::exists(base + QStringLiteral(".xml")));
            continue;
        }
        EXPECT_TRUE(chart.state->IsTypeOf(state));
    }
    // The run progress chart's state holds the whole run: a fresh chart reads it back to the
    // same data text.
    trv5::RTChart restored;
    restored.FromString(QString::fromUtf8(ReadAll(directory.filePath("progress.xml"))));
    EXPECT_EQ(restored.GetChartDataAsString(),
              QString::fromUtf8(ReadAll(directory.filePath("progress.txt"))));
    EXPECT_EQ(restored.LastGenerationForCopy(), 250);

    const auto project = trv5::gallery::ProjectFile::Load(
        directory.filePath(QString::fromLatin1(trv5::gallery::headless::kProjectFileName)));
    EXPECT_EQ(project.Settings().PaceMilliseconds, 0);
    EXPECT_EQ(project.Charts().size(), 5U);
    EXPECT_EQ(project.Chart(QStringLiteral("usage")),
              QString::fromUtf8(ReadAll(directory.filePath("usage.xml"))));
    EXPECT_EQ(project.Chart(QStringLiteral("usageBlocks")),
              QString::fromUtf8(ReadAll(directory.filePath("usageBlocks.xml"))));
    // One block per variable of the data set, one tapestry line per record.
    EXPECT_TRUE(project.Chart(QStringLiteral("usageBlocks"))
                    .startsWith(QStringLiteral("<BlockPanel chartmode='0' count='30'>")));
    EXPECT_EQ(QString::fromUtf8(ReadAll(directory.filePath("tapestry.txt")))
                  .count(QStringLiteral("\r\n")),
              569);

    // A directory that cannot be made fails with a message.
    const QString blocked = directory.filePath("usage.txt") + QStringLiteral("/charts");
    ASSERT_EQ(RunGallery({QStringLiteral("--output"), blocked}, exitCode, errors),
              QProcess::NormalExit);
    EXPECT_NE(exitCode, 0);
    EXPECT_TRUE(errors.contains(blocked)) << errors.toStdString();
}

TEST(Gallery, SavingAnOpenedProjectWritesTheSameBytes) {
    trv5::Globals::StoreConfig(std::make_shared<Margin>());
    QTemporaryDir directory;
    const QString first = directory.filePath("first.trv5gallery");
    const QString second = directory.filePath("second.trv5gallery");
    QString progressData;
    {
        GalleryWindow window;
        RunToEnd(window);
        window.SaveProject(first);
        progressData = window.Board().Progress().GetChartDataAsString();
    }
    GalleryWindow reopened;
    reopened.OpenProject(first);
    reopened.SaveProject(second);
    EXPECT_EQ(ReadAll(second), ReadAll(first));
    EXPECT_EQ(reopened.Board().UsageBlocks().ItemCount(), 30);
    // The charts were really restored, not passed through.
    EXPECT_EQ(reopened.Board().Progress().GetChartDataAsString(), progressData);
    EXPECT_EQ(reopened.Board().Usage().DoubleData().size(), 30U);
    EXPECT_EQ(reopened.Board().ValidationGauge().ChartType(), trv5::ctSingleHorizontal);

    // A damaged project changes nothing and says where it is damaged.
    QFile damaged(directory.filePath("damaged.trv5gallery"));
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
    damaged.write("{\"format\": ");
    damaged.close();
    try {
        reopened.OpenProject(damaged.fileName());
        ADD_FAILURE() << "a damaged project opened";
    } catch (const trv5::gallery::GalleryError& error) {
        EXPECT_TRUE(error.Text().startsWith(damaged.fileName())) << error.what();
    }
    reopened.SaveProject(second);
    EXPECT_EQ(ReadAll(second), ReadAll(first));
    trv5::Globals::StoreConfig(nullptr);
}

TEST(Gallery, ThresholdMovesTheOutcomesAndChartsFollow) {
    trv5::Globals::StoreConfig(std::make_shared<Margin>());
    GalleryWindow window;
    RunToEnd(window);
    const auto& results = window.Session().LastResults();
    auto* threshold = window.Panel().findChild<QDoubleSpinBox*>(QStringLiteral("spnThreshold"));
    ASSERT_NE(threshold, nullptr);

    // At 0 every record is called positive: no negatives anywhere.
    threshold->setValue(0.0);
    EXPECT_EQ(results->Threshold(), 0.0);
    EXPECT_EQ(results->Confusion().TrueNegatives + results->Confusion().FalseNegatives, 0);
    const QString outcomes = window.Board().Classes().GetChartDataAsString();
    EXPECT_FALSE(outcomes.contains(QStringLiteral("\tTN\r\n")));
    EXPECT_EQ(outcomes.count(QStringLiteral("\tFP\r\n")), results->Confusion().FalsePositives);
    EXPECT_EQ(window.Board().Classes().RoundingThreshold(), 0.0);

    // The tapestry follows: every record is predicted high.
    const QString classes = window.Board().Tapestry().GetChartDataAsString();
    EXPECT_EQ(classes.count(QStringLiteral("\t1")), results->RecordCount());

    threshold->setValue(0.5);
    EXPECT_GT(results->Confusion().TrueNegatives, 300);
    const QString atHalf = window.Board().Tapestry().GetChartDataAsString();
    EXPECT_EQ(atHalf.count(QStringLiteral("\t0")),
              results->Confusion().TrueNegatives + results->Confusion().FalseNegatives);
    EXPECT_EQ(window.Board().Classes().GetChartDataAsString().count(QStringLiteral("\tTN\r\n")),
              results->Confusion().TrueNegatives);
    trv5::Globals::StoreConfig(nullptr);
}

TEST(Gallery, EveryChartOpensItsContextMenuByMouseAndKeyboard) {
    GalleryWindow window;
    window.show();
    for (const ChartEntry& chart : window.Board().Entries()) {
        SCOPED_TRACE(chart.name.toStdString());
        window.RevealChart(chart.name);
        auto* menu =
            chart.widget->findChild<QMenu*>(QStringLiteral("ctxMain"), Qt::FindDirectChildrenOnly);
        ASSERT_NE(menu, nullptr);
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(5, 5),
                                chart.widget->mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(chart.widget, &event);
        EXPECT_TRUE(menu->isVisible());
        menu->hide();

        // A right click lands on whatever child is under the pointer (the plot, a label) and
        // must reach the chart's menu from there.
        const QPoint centre = chart.widget->rect().center();
        QWidget* target = chart.widget->childAt(centre);
        ASSERT_NE(target, nullptr);
        const QPoint local = target->mapFrom(chart.widget, centre);
        const QPoint global = target->mapToGlobal(local);
        QMouseEvent press(QEvent::MouseButtonPress, local, global, Qt::RightButton, Qt::RightButton,
                          Qt::NoModifier);
        QApplication::sendEvent(target, &press);
        QContextMenuEvent click(QContextMenuEvent::Mouse, local, global);
        QApplication::sendEvent(target, &click);
        EXPECT_TRUE(menu->isVisible()) << target->metaObject()->className();
        menu->hide();
        EXPECT_EQ(chart.widget->focusPolicy(), Qt::StrongFocus);
    }
}

QAction* ChartMenuAction(GalleryWindow& pWindow, const QString& pText) {
    auto* menu = pWindow.menuBar()->findChild<QMenu*>(QStringLiteral("mnuChart"));
    for (QAction* action : menu != nullptr ? menu->actions() : QList<QAction*>{}) {
        if (action->text() == pText) {
            return action;
        }
    }
    return nullptr;
}

TEST(Gallery, ChartMenuActsOnTheChartLastClicked) {
    trv5::Globals::StoreConfig(std::make_shared<Margin>());
    GalleryWindow window;
    window.show();
    RunToEnd(window);
    QAction* copyData = ChartMenuAction(window, QStringLiteral("Copy Chart &Data"));
    ASSERT_NE(copyData, nullptr);

    window.RevealChart(QStringLiteral("roc"));
    QWidget* roc = window.Board().Entry(QStringLiteral("roc"))->widget;
    QWidget* plot = roc->childAt(roc->rect().center());
    ASSERT_NE(plot, nullptr);
    const QPoint at = plot->rect().center();
    QMouseEvent press(QEvent::MouseButtonPress, at, plot->mapToGlobal(at), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(plot, &press);
    EXPECT_EQ(window.CurrentChart(), QStringLiteral("roc"));
    copyData->trigger();
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith(QStringLiteral("FP Rate")));

    // Another page makes its first chart current.
    window.findChild<QTabWidget*>(QStringLiteral("tabCharts"))->setCurrentIndex(2);
    EXPECT_EQ(window.CurrentChart(), QStringLiteral("scatter"));
    copyData->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(),
              window.Board().Entry(QStringLiteral("scatter"))->hosted->GetChartDataAsString());
    trv5::Globals::StoreConfig(nullptr);
}

TEST(Gallery, OwnDataRunsThroughEveryChartAndBadDataChangesNothing) {
    trv5::Globals::StoreConfig(std::make_shared<Margin>());
    QTemporaryDir directory;
    const QString bad = directory.filePath("bad.csv");
    QFile badFile(bad);
    ASSERT_TRUE(badFile.open(QIODevice::WriteOnly));
    badFile.write("size,age,class\n1.5,30,yes\n2.5,abc,no\n");
    badFile.close();

    GalleryWindow window;
    try {
        window.OpenData(bad);
        ADD_FAILURE() << "a damaged CSV loaded";
    } catch (const trv5::gallery::GalleryError& error) {
        EXPECT_TRUE(error.Text().startsWith(bad + QStringLiteral(":3:2:"))) << error.what();
    }
    EXPECT_EQ(window.Session().DataSource(), trv5::gallery::Dataset::BuiltInWdbcPath());

    // Forty records, two features: every chart takes data of another shape.
    const QString good = directory.filePath("good.csv");
    QFile goodFile(good);
    ASSERT_TRUE(goodFile.open(QIODevice::WriteOnly));
    goodFile.write("size,age,class\n");
    for (int i = 0; i < 40; ++i) {
        goodFile.write(QStringLiteral("%1,%2,%3\n")
                           .arg(i % 2 == 0 ? 1.0 + i * 0.1 : 3.0 + i * 0.1)
                           .arg(20 + (i * 7) % 30)
                           .arg(i % 2 == 0 ? QStringLiteral("no") : QStringLiteral("yes"))
                           .toUtf8());
    }
    goodFile.close();
    window.OpenData(good);
    auto settings = window.Panel().Settings();
    settings.Generations = 30;
    window.Panel().SetSettings(settings);
    RunToEnd(window);
    EXPECT_EQ(window.Board().Usage().DoubleData().size(), 2U);
    EXPECT_EQ(window.Board().Progress().LastGenerationForCopy(), 30);
    EXPECT_EQ(window.Board().Classes().EndAt(), 40);
    EXPECT_EQ(window.Board().Stacked().EndAt(), 40);
    trv5::Globals::StoreConfig(nullptr);
}

TEST(Gallery, StopEndsTheRunAndFillsTheChartsWithWhatItHas) {
    trv5::Globals::StoreConfig(std::make_shared<Margin>());
    GalleryWindow window;
    auto settings = window.Panel().Settings();
    settings.Generations = 100000;
    settings.PaceMilliseconds = 5;
    window.Panel().SetSettings(settings);
    QEventLoop loop;
    QObject::connect(&window.Session(), &trv5::gallery::RunSession::generationDone, &loop,
                     [&](int pGeneration) {
                         if (pGeneration == 3) {
                             window.Session().Stop();
                         }
                     });
    QObject::connect(&window.Session(), &trv5::gallery::RunSession::finished, &loop,
                     &QEventLoop::quit);
    QTimer::singleShot(60000, &loop, &QEventLoop::quit);
    window.StartRun();
    loop.exec();
    const auto& results = window.Session().LastResults();
    ASSERT_TRUE(results.has_value());
    EXPECT_TRUE(results->Stopped());
    EXPECT_LT(results->GenerationsRun(), 1000);
    EXPECT_EQ(window.Board().Progress().LastGenerationForCopy(), results->GenerationsRun());
    EXPECT_FALSE(window.Session().IsRunning());
    EXPECT_EQ(window.Board().Scatter().EndAt(), 569);
    trv5::Globals::StoreConfig(nullptr);
}

// A point of a colour on a chart's picture, in the coordinates of pWidget; with pInside one whose
// neighbours have the colour too (inside a bar, not on its edge). Null when there is none.
QPoint WhereColour(QWidget& pWidget, const QColor& pColour, bool pInside = false) {
    const QImage picture = pWidget.grab().toImage();
    const auto is = [&](int pX, int pY) {
        return picture.pixelColor(pX, pY) == pColour;
    };
    for (int y = 1; y + 1 < picture.height(); ++y) {
        for (int x = 1; x + 1 < picture.width(); ++x) {
            if (is(x, y) &&
                (!pInside || (is(x - 1, y) && is(x + 1, y) && is(x, y - 1) && is(x, y + 1)))) {
                return QPoint(x, y) / picture.devicePixelRatio();
            }
        }
    }
    return {};
}

void ExpectNoRunShown(GalleryWindow& pWindow) {
    const trv5::gallery::ChartBoard& board = pWindow.Board();
    EXPECT_EQ(board.Progress().SeriesCount(), 0);
    EXPECT_TRUE(board.Progress().GetChartDataAsString().isEmpty());
    for (const trv5::BarChart* bars :
         {&board.Usage(), &board.TrainingGauge(), &board.ValidationGauge()}) {
        EXPECT_EQ(bars->HasData(), 0) << bars->objectName().toStdString();
        EXPECT_TRUE(bars->DoubleData().empty() && bars->LongData().empty());
    }
    EXPECT_EQ(board.UsageBlocks().ItemCount(), 0);
    EXPECT_TRUE(board.UsageBlocks().GetChartDataAsString().isEmpty());
    EXPECT_EQ(board.Tapestry().RecordCount(), 0);
    for (const QLabel* label : board.Roc().findChildren<QLabel*>()) {
        if (label->objectName() == QStringLiteral("lblRecords") ||
            label->objectName().startsWith(QStringLiteral("lblAUC")) ||
            label->objectName() == QStringLiteral("lbl1MinusAuc")) {
            EXPECT_TRUE(label->text().isEmpty() || label->isHidden())
                << label->objectName().toStdString() << ": " << label->text().toStdString();
        }
    }
    EXPECT_EQ(board.Classes().EndAt() - board.Classes().StartAt(), 0);
}

} // namespace

TEST(Gallery, LoadingDataOrAProjectLeavesNothingOfThePreviousRun) {
    trv5::Globals::StoreConfig(std::make_shared<Margin>());
    QTemporaryDir directory;
    GalleryWindow window;
    const QString project = window.SaveProject(directory.filePath("empty.trv5gallery"));
    RunToEnd(window);
    EXPECT_GT(window.Board().Progress().SeriesCount(), 0);
    window.OpenData(trv5::gallery::Dataset::BuiltInWdbcPath());
    ExpectNoRunShown(window);

    RunToEnd(window);
    window.OpenProject(project);
    ExpectNoRunShown(window);
    trv5::Globals::StoreConfig(nullptr);
}

TEST(Gallery, ExportGivesEveryChartItsSizeBack) {
    trv5::Globals::StoreConfig(std::make_shared<Margin>());
    QTemporaryDir directory;
    GalleryWindow window;
    window.resize(1200, 800);
    window.show();
    RunToEnd(window);
    std::map<QString, QSize> sizes;
    for (const ChartEntry& chart : window.Board().Entries()) {
        window.RevealChart(chart.name);
        sizes[chart.name] = chart.widget->size();
    }
    trv5::gallery::ExportCharts(
        window.Board().Entries(), directory.path(),
        [&window](const ChartEntry& pChart) { window.RevealChart(pChart.name); });
    for (const ChartEntry& chart : window.Board().Entries()) {
        window.RevealChart(chart.name);
        EXPECT_EQ(chart.widget->size(), sizes[chart.name]) << chart.name.toStdString();
        EXPECT_NE(chart.widget->size(), chart.exportSize) << chart.name.toStdString();
    }
    trv5::Globals::StoreConfig(nullptr);
}

TEST(Gallery, WindowFitsASmallScreenAndItsPanelScrolls) {
    GalleryWindow window;
    // A 1024 x 640 screen less a title bar and a panel of the desktop.
    const QSize available(1024, 600);
    EXPECT_TRUE(available.expandedTo(window.minimumSizeHint()) == available)
        << window.minimumSizeHint().width() << "x" << window.minimumSizeHint().height();
    const QSize small = GalleryWindow::DefaultSize(available, window.minimumSizeHint());
    EXPECT_TRUE(available.expandedTo(small) == available);
    EXPECT_EQ(GalleryWindow::DefaultSize(QSize(2560, 1400), window.minimumSizeHint()),
              QSize(1440, 900));

    window.resize(small);
    window.show();
    QApplication::processEvents();
    EXPECT_EQ(window.size(), small);
    auto* panel = window.findChild<QScrollArea*>(QStringLiteral("scrControlPanel"));
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->widget(), &window.Panel());
    EXPECT_GT(panel->verticalScrollBar()->maximum(), 0);
}

TEST(Gallery, ProgressBarCountsToTheGenerationsSet) {
    GalleryWindow window;
    auto* bar = window.Panel().findChild<QProgressBar*>(QStringLiteral("prgRun"));
    auto* generations = window.Panel().findChild<QSpinBox*>(QStringLiteral("spnGenerations"));
    ASSERT_TRUE(bar != nullptr && generations != nullptr);
    EXPECT_EQ(bar->text(),
              QStringLiteral("Generation 0 of %1").arg(window.Panel().Settings().Generations));
    auto settings = window.Panel().Settings();
    settings.Generations = 250;
    window.Panel().SetSettings(settings);
    EXPECT_EQ(bar->text(), QStringLiteral("Generation 0 of 250"));
    generations->setValue(300);
    EXPECT_EQ(bar->text(), QStringLiteral("Generation 0 of 300"));
}

TEST(Gallery, HelpNeedsNoDisplayAndProjectsGetTheirExtension) {
    int exitCode = -1;
    QString errors;
    QString output;
    ASSERT_EQ(RunGallery({QStringLiteral("--help")}, exitCode, errors, &output),
              QProcess::NormalExit);
    EXPECT_EQ(exitCode, 0) << errors.toStdString();
    EXPECT_TRUE(output.contains(QStringLiteral("--output"))) << output.toStdString();

    QTemporaryDir directory;
    GalleryWindow window;
    const QString bare = directory.filePath("mine");
    EXPECT_EQ(window.SaveProject(bare), bare + QStringLiteral(".trv5gallery"));
    EXPECT_TRUE(QFile::exists(bare + QStringLiteral(".trv5gallery")));
    EXPECT_FALSE(QFile::exists(bare));
    // A name the user gave an extension keeps it.
    const QString named = directory.filePath("mine.project");
    EXPECT_EQ(window.SaveProject(named), named);
    EXPECT_TRUE(QFile::exists(named));
}

TEST(Gallery, ToolTipsNameTheLineAndTheVariable) {
    trv5::Globals::StoreConfig(std::make_shared<Margin>());
    GalleryWindow window;
    window.resize(1200, 800);
    window.show();
    RunToEnd(window);
    const auto hover = [](QWidget& pTarget, const QPoint& pAt) {
        QMouseEvent move(QEvent::MouseMove, pAt, pTarget.mapToGlobal(pAt), Qt::NoButton,
                         Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&pTarget, &move);
        QHelpEvent help(QEvent::ToolTip, pAt, pTarget.mapToGlobal(pAt));
        QApplication::sendEvent(&pTarget, &help);
        return pTarget.toolTip();
    };

    window.RevealChart(QStringLiteral("progress"));
    auto* progress = window.Board().Progress().findChild<QWidget*>(QStringLiteral("pic"));
    ASSERT_NE(progress, nullptr);
    const QPoint onBest = WhereColour(*progress, QColor(31, 119, 180));
    ASSERT_FALSE(onBest.isNull());
    const QString lineTip = hover(*progress, onBest);
    EXPECT_TRUE(lineTip.startsWith(QStringLiteral("Best fitness, Point ")))
        << lineTip.toStdString();

    auto* usage = window.Board().Usage().findChild<QWidget*>(QStringLiteral("pic"));
    ASSERT_NE(usage, nullptr);
    const QPoint onBar = WhereColour(*usage, QColor(70, 130, 180), true);
    ASSERT_FALSE(onBar.isNull());
    const QString barTip = hover(*usage, onBar);
    const QRegularExpressionMatch match =
        QRegularExpression(QStringLiteral("^(.+): (\\d+(\\.\\d)?) % of the weights$"))
            .match(barTip);
    ASSERT_TRUE(match.hasMatch()) << barTip.toStdString();
    EXPECT_TRUE(window.Session().LastResults()->FeatureNames().contains(match.captured(1)));
    trv5::Globals::StoreConfig(nullptr);
}

TEST(Gallery, KeyboardReachesEveryChartInReadingOrderAndOpensItsMenu) {
    GalleryWindow window;
    window.show();
    QApplication::processEvents();
    for (const ChartEntry& chart : window.Board().Entries()) {
        SCOPED_TRACE(chart.name.toStdString());
        window.RevealChart(chart.name);
        EXPECT_EQ(chart.widget->accessibleName(), chart.title);
        window.activateWindow();
        chart.widget->setFocus(Qt::TabFocusReason);
        QApplication::processEvents();
        ASSERT_TRUE(chart.widget->hasFocus());
        auto* mark = chart.widget->findChild<QWidget*>(QStringLiteral("focusMark"));
        ASSERT_NE(mark, nullptr);
        EXPECT_TRUE(mark->isVisible());
        auto* menu =
            chart.widget->findChild<QMenu*>(QStringLiteral("ctxMain"), Qt::FindDirectChildrenOnly);
        ASSERT_NE(menu, nullptr);
        QKeyEvent shiftF10(QEvent::KeyPress, Qt::Key_F10, Qt::ShiftModifier);
        QApplication::sendEvent(chart.widget, &shiftF10);
        EXPECT_TRUE(menu->isVisible());
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(menu, &escape);
        EXPECT_FALSE(menu->isVisible());
        QApplication::processEvents();
    }

    // After the page tabs, Tab visits the pages' charts as they read; the gauges sit in the side
    // panel, which comes first.
    QWidget* tabs = window.findChild<QTabWidget*>(QStringLiteral("tabCharts"))->tabBar();
    QStringList visited;
    for (QWidget* widget = tabs->nextInFocusChain(); widget != tabs && visited.size() < 11;
         widget = widget->nextInFocusChain()) {
        if (const auto entry = window.Board().EntryContaining(widget);
            entry && entry->widget == widget && (widget->focusPolicy() & Qt::TabFocus) != 0) {
            visited << entry->name;
        }
    }
    EXPECT_EQ(visited, (QStringList{"progress", "usage", "usageBlocks", "roc", "clscatter",
                                    "curvefitting", "tapestry", "scatter", "stacked",
                                    "trainingAccuracy", "validationAccuracy"}));
}

TEST(Gallery, DarkModeKeepsEveryTextReadable) {
    GalleryWindow window;
    window.show();
    auto* dark = window.findChild<QAction*>(QStringLiteral("actDarkMode"));
    ASSERT_NE(dark, nullptr);
    dark->trigger();
    QApplication::processEvents();
    EXPECT_LT(QApplication::palette().color(QPalette::Base).lightness(), 80);
    window.RevealChart(QStringLiteral("progress"));
    QApplication::processEvents();
    const QImage screen = window.grab().toImage();
    int checked = 0;
    for (QLabel* label : window.findChildren<QLabel*>()) {
        const bool onCard = label->objectName() == QLatin1String("lblCardTitle");
        const bool onChart = window.Board().EntryContaining(label).has_value();
        if (!(onCard || onChart) || !label->isVisible() || label->text().isEmpty() ||
            label->geometry().isEmpty()) {
            continue;
        }
        const QPoint at = label->mapTo(&window, QPoint(1, 1)) * screen.devicePixelRatio();
        const QColor background = screen.pixelColor(at);
        const QColor text = label->palette().color(label->foregroundRole());
        EXPECT_GE(trv5::platform::ContrastRatio(text, background), 4.5)
            << label->objectName().toStdString() << " \"" << label->text().toStdString() << "\"";
        ++checked;
    }
    EXPECT_GE(checked, 3);
    dark->trigger();
    EXPECT_GT(QApplication::palette().color(QPalette::Base).lightness(), 200);
}

TEST(Gallery, PrintFailuresOfEveryKindOfChartAreToldToTheUser) {
    class Unwritable final : public trv5::IPrintDialog {
    public:
        bool Exec(trv5::PrintSettings& pSettings) override {
            pSettings.outputFile = QStringLiteral("/nonexistent-folder/chart.pdf");
            return true;
        }
    };
    GalleryWindow window;
    QStringList told;
    window.SetErrorSink(
        [&](const QString& pTitle, const QString& pMessage) { told << pTitle + ": " + pMessage; });
    QAction* print = ChartMenuAction(window, QStringLiteral("&Print..."));
    ASSERT_NE(print, nullptr);
    const auto dialog = std::make_shared<Unwritable>();
    window.Board().Progress().SetPrintDialog(dialog);
    window.Board().Roc().SetPrintDialog(dialog);
    window.Board().Curve().SetPrintDialog(dialog);
    for (const char* name : {"progress", "roc", "curvefitting"}) {
        SCOPED_TRACE(name);
        told.clear();
        window.SetCurrentChart(QString::fromLatin1(name));
        print->trigger();
        ASSERT_EQ(told.size(), 1);
        EXPECT_TRUE(
            told.front().startsWith(window.Board().Entry(QString::fromLatin1(name))->title));
    }
    // The self-drawn charts' own context menus report too, and so does a renewed chart.
    window.Board().RenewProgress().SetPrintDialog(dialog);
    window.Board().UsageBlocks().SetPrintDialog(dialog);
    window.Board().Tapestry().SetPrintDialog(dialog);
    for (const char* name : {"progress", "usageBlocks", "tapestry"}) {
        SCOPED_TRACE(name);
        told.clear();
        window.Board()
            .Entry(QString::fromLatin1(name))
            ->widget->findChildren<QAction*>(QStringLiteral("mnuMain"))[3]
            ->trigger();
        ASSERT_EQ(told.size(), 1);
        EXPECT_TRUE(told.front().contains(QStringLiteral("/nonexistent-folder/chart.pdf")));
    }
}

TEST(Gallery, UsageModeIsTheUsersChoiceAndAProjectKeepsIt) {
    trv5::Globals::StoreConfig(std::make_shared<Margin>());
    QTemporaryDir directory;
    const QString file = directory.filePath("modes.trv5gallery");
    {
        GalleryWindow window;
        RunToEnd(window);
        auto* mode = window.findChild<QComboBox*>(QStringLiteral("cboUsageMode"));
        ASSERT_NE(mode, nullptr);
        EXPECT_EQ(window.Board().UsageBlocks().ChartMode(), trv5::umHeatMap);
        mode->setCurrentIndex(1);
        EXPECT_EQ(window.Board().UsageBlocks().ChartMode(), trv5::umRandomColour);
        window.SaveProject(file);
    }
    GalleryWindow reopened;
    reopened.OpenProject(file);
    EXPECT_EQ(reopened.Board().UsageBlocks().ChartMode(), trv5::umRandomColour);
    EXPECT_EQ(reopened.findChild<QComboBox*>(QStringLiteral("cboUsageMode"))->currentIndex(), 1);
    trv5::Globals::StoreConfig(nullptr);
}

TEST(Gallery, SettingsFileHoldsEveryKeyAndAnIncompleteOneIsRefused) {
    // The shipped defaults answer every key the charts read.
    const auto defaults = trv5::gallery::settings::Load(QString());
    const QVariantMap values = defaults->Settings();
    for (const QString& key : trv5::gallery::settings::RequiredKeys()) {
        EXPECT_TRUE(values.contains(key)) << key.toStdString();
    }
    EXPECT_EQ(trv5::gallery::settings::RequiredKeys().size(), 21);

    QTemporaryDir directory;
    const QString incomplete = directory.filePath("incomplete.ini");
    QFile ini(incomplete);
    ASSERT_TRUE(ini.open(QIODevice::WriteOnly));
    ini.write("[Run]\nCurveFitting.Margin=0.1\n");
    ini.close();
    int exitCode = -1;
    QString errors;
    ASSERT_EQ(RunGallery({QStringLiteral("--settings"), incomplete, QStringLiteral("--output"),
                          directory.filePath("out")},
                         exitCode, errors),
              QProcess::NormalExit);
    EXPECT_EQ(exitCode, 2);
    EXPECT_TRUE(errors.contains(QStringLiteral("Run.UsageChart.HeatMap.H")))
        << errors.toStdString();
    EXPECT_FALSE(QFile::exists(directory.filePath("out")));
    trv5::gallery::settings::Load(QString());
}
