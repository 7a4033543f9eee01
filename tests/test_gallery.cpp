// The gallery host: its headless mode as a user runs it (a separate process without a display),
// the project round trip, the threshold wiring and the charts' context menus in the window.
#include "core/gallerycore.h"
#include "ui/chartboard.h"
#include "ui/controlpanel.h"
#include "ui/gallerysettings.h"
#include "ui/gallerywindow.h"
#include "ui/headless.h"
#include "ui/runsession.h"

#include <trv5charts/barchart.h>
#include <trv5charts/blockpanel.h>
#include <trv5charts/blockpanelsimple.h>
#include <trv5charts/clscatterplot.h>
#include <trv5charts/hostsettings.h>
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
#include <QImage>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QProcess>
#include <QSet>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

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
QProcess::ExitStatus RunGallery(const QStringList& pArguments, int& pExitCode, QString& pErrors) {
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

} // namespace

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
