#include "core/csvreader.h"
#include "core/gallerycore.h"

#include "testsupport.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <string>
#include <vector>

using namespace trv5::gallery;

namespace {

// Runs pAction and returns the GalleryError it throws; fails the test if it throws none.
template <typename Action> GalleryError ErrorOf(Action pAction) {
    try {
        pAction();
    } catch (const GalleryError& error) {
        return error;
    }
    ADD_FAILURE() << "expected a GalleryError";
    return GalleryError(QString(), QString());
}

RunSettings QuickSettings(std::uint64_t pSeed = 7) {
    RunSettings settings;
    settings.Seed = pSeed;
    settings.Generations = 40;
    settings.ParentCount = 8;
    settings.OffspringCount = 40;
    settings.PaceMilliseconds = 0;
    return settings;
}

const Dataset& Wdbc() {
    static const Dataset data = Dataset::BuiltInWdbc();
    return data;
}

} // namespace

TEST(GalleryDataset, DamagedCsvNamesFileLineAndColumn) {
    struct Case {
        const char* text;
        int line;
        int column;
        const char* message;
    };
    const Case cases[] = {
        {"", 0, 0, "empty"},
        {"\xEF\xBB\xBF \n\t\n", 0, 0, "empty"},
        {"a,b\n", 1, 0, "no records"},
        {"x\n1\n", 1, 1, "one column"},
        {"a,a,c\n1,2,y\n", 1, 2, "'a' appears twice"},
        {"a,b,c\n1,2,yes\n3,x4,no\n", 3, 2, "'x4' in column 'b' is not a number"},
        {"a,b,c\n1,2,yes\n3,no\n", 3, 3, "the row has 2 cells, the header has 3"},
        {"a,b,c\n1,2,yes,7\n", 2, 4, "the row has 4 cells"},
        {"a,c\n1,yes\n2,yes\n", 0, 0, "only the class 'yes'"},
        {"a,c\n1,yes\n2,no\n3,maybe\n", 4, 2, "third class 'maybe'"},
        {"a,c\n1,yes\n2, \n", 3, 2, "class in column 'c' is missing"},
        {"a,c\n\"1,yes\n2,no\n", 2, 1, "never closed"},
        {"a,c\n\"1\"x,yes\n", 2, 1, "after a closing quote"},
        {"a,c\n1,yes\nnan,no\n", 3, 1, "not a finite number"},
        {"a,c\n1,yes\n-inf,no\n", 3, 1, "not a finite number"},
        {"a,c\n1e999,yes\n", 2, 1, "out of range"},
        {"a,c\n0x10,yes\n", 2, 1, "not a number"},
        {"a,c\n1 2,yes\n", 2, 1, "not a number"},
        {"a,c\n,yes\n", 2, 1, "'' in column 'a' is not a number"},
        // Blank lines and CR LF ends still count as lines.
        {"a,c\r\n\r\n1,yes\r\n\r\n2,zz,3\r\n", 5, 3, "3 cells"},
        // A quoted cell over two lines moves the following rows down one line.
        {"\"a\nb\",c\n1,yes\n2,no\nq,no\n", 5, 1, "column 'a\nb'"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const GalleryError error = ErrorOf([&] { Dataset::FromText(c.text, "damaged.csv"); });
        EXPECT_EQ(error.Source(), "damaged.csv");
        EXPECT_EQ(error.Line(), c.line);
        EXPECT_EQ(error.Column(), c.column);
        EXPECT_TRUE(error.Message().contains(QString::fromUtf8(c.message))) << error.what();
    }
    const GalleryError located =
        ErrorOf([] { Dataset::FromText("a,b,c\n1,2,yes\n3,x4,no\n", "/tmp/x.csv"); });
    EXPECT_TRUE(located.Text().startsWith("/tmp/x.csv:3:2: ")) << located.what();

    // Options that do not fit the file.
    EXPECT_TRUE(ErrorOf([] {
                    Dataset::FromText("a,c\n1,y\n2,n\n", "f", {"target", {}});
                })
                    .Message()
                    .contains("no column is named 'target'"));
    EXPECT_TRUE(ErrorOf([] {
                    Dataset::FromText("a,c\n1,y\n2,n\n", "f", {{}, "maybe"});
                })
                    .Message()
                    .contains("'maybe' is neither 'y' nor 'n'"));
    const GalleryError missing =
        ErrorOf([] { Dataset::FromFile("/nonexistent/gallery/data.csv"); });
    EXPECT_EQ(missing.Source(), "/nonexistent/gallery/data.csv");
}

TEST(GalleryDataset, WideHeadersAndLongRowsAreCheckedWithoutKeepingThem) {
    // 100,000 distinct column names load (checked against each other, this took minutes), and
    // a repeat is still found where it is.
    std::string header = "f0";
    std::string row = "1";
    for (int i = 1; i < 100'000; ++i) {
        header.append(",f").append(std::to_string(i));
        row.append(",1");
    }
    row.resize(row.size() - 1);
    std::string text = header;
    text.append("\n").append(row).append("y\n").append(row).append("n\n");
    const Dataset wide =
        Dataset::FromText(QByteArrayView(text.data(), qsizetype(text.size())), "w");
    EXPECT_EQ(wide.FeatureNames().size(), 99'999);

    std::string repeated = header.substr(0, header.find(",f50000"));
    repeated.append(",f37777\n");
    const GalleryError twice = ErrorOf([&] { Dataset::FromText(repeated.c_str(), "w"); });
    EXPECT_EQ(twice.Column(), 50'001);
    EXPECT_TRUE(twice.Message().contains("'f37777' appears twice")) << twice.what();

    std::string tooWide(200'000, ',');
    const GalleryError columns = ErrorOf([&] { Dataset::FromText(tooWide.c_str(), "w"); });
    EXPECT_TRUE(columns.Message().contains("more than 100000 columns")) << columns.what();

    // A row of ten million cells is counted, not kept.
    std::string longRow = "a,c\n1,y\n";
    longRow.append(10'000'000, ',').append("\n");
    const GalleryError cells = ErrorOf(
        [&] { Dataset::FromText(QByteArrayView(longRow.data(), qsizetype(longRow.size())), "l"); });
    EXPECT_EQ(cells.Line(), 3);
    EXPECT_EQ(cells.Column(), 3);
    EXPECT_TRUE(cells.Message().contains("the row has 10000001 cells, the header has 2"))
        << cells.what();

    CsvReader reader("a,\"b,\"\"c\",d , e\n", "r");
    ASSERT_TRUE(reader.NextRow(2));
    EXPECT_EQ(reader.CellCount(), 4U);
    ASSERT_EQ(reader.Cells().size(), 2U);
    EXPECT_EQ(reader.Cells()[0], "a");
    EXPECT_EQ(reader.Cells()[1], "b,\"c");
    EXPECT_FALSE(reader.NextRow(2));
}

TEST(GalleryDataset, ReadsQuotedNamesAnyColumnAndChoosesThePositiveClass) {
    const Dataset data = Dataset::FromText("\xEF\xBB\xBF"
                                           " \"size, mm\" ,label,\"say \"\"hi\"\"\"\r\n"
                                           "+1.5 , no,-2e-3\r\n"
                                           "\n"
                                           "3,yes,4\r\n"
                                           "5,no,.5",
                                           "ok.csv", {"label", {}});
    ASSERT_EQ(data.RecordCount(), 3);
    EXPECT_EQ(data.FeatureNames(), QStringList({"size, mm", "say \"hi\""}));
    EXPECT_EQ(data.TargetName(), "label");
    EXPECT_EQ(data.PositiveClass(), "yes");
    EXPECT_EQ(data.NegativeClass(), "no");
    EXPECT_EQ(data.PositiveCount(), 1);
    EXPECT_EQ(std::vector<double>(data.Targets().begin(), data.Targets().end()),
              (std::vector<double>{0, 1, 0}));
    EXPECT_EQ(std::vector<double>(data.AllFeatures().begin(), data.AllFeatures().end()),
              (std::vector<double>{1.5, -2e-3, 3, 4, 5, 0.5}));
    EXPECT_EQ(std::vector<std::int32_t>(data.RecordIds().begin(), data.RecordIds().end()),
              (std::vector<std::int32_t>{1, 2, 3}));
    EXPECT_CHART_ERROR(data.Features(3), 9);

    // Numeric classes compare as numbers (10 > 2, although "2" sorts after "10"), and the
    // options can name either class.
    EXPECT_EQ(Dataset::FromText("a,c\n1,2\n2,10\n", "n").PositiveClass(), "10");
    EXPECT_EQ(Dataset::FromText("a,c\n1,2\n2,10\n", "n", {{}, "2"}).PositiveClass(), "2");
    EXPECT_EQ(Dataset::FromText("a,c\n1,B\n2,M\n", "n").PositiveClass(), "M");
}

TEST(GalleryDataset, BuiltInWdbcAndDamagedCopiesOfIt) {
    const Dataset& data = Wdbc();
    ASSERT_EQ(data.RecordCount(), 569);
    ASSERT_EQ(data.FeatureCount(), 30);
    EXPECT_EQ(data.PositiveCount(), 212);
    EXPECT_EQ(data.PositiveClass(), "malignant");
    EXPECT_EQ(data.TargetName(), "diagnosis");
    EXPECT_EQ(data.FeatureNames().front(), "mean radius");
    EXPECT_EQ(data.FeatureNames().back(), "worst fractal dimension");
    EXPECT_EQ(data.Features(0)[0], 17.99);
    EXPECT_EQ(data.Features(0)[29], 0.1189);
    EXPECT_EQ(data.Features(568)[0], 7.76);
    EXPECT_EQ(data.Targets()[0], 1.0);
    EXPECT_EQ(data.Targets()[568], 0.0);
    EXPECT_EQ(data.RecordIds()[568], 569);

    // Cut short or scribbled on anywhere, the file either still loads or reports an error.
    QFile file(Dataset::BuiltInWdbcPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    std::uint64_t state = 12345;
    for (int i = 0; i < 300; ++i) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        QByteArray damaged =
            text.left(static_cast<qsizetype>(state % static_cast<std::uint64_t>(text.size())));
        if (i % 2 == 1 && !damaged.isEmpty()) {
            damaged[static_cast<qsizetype>((state >> 20) %
                                           static_cast<std::uint64_t>(damaged.size()))] =
                static_cast<char>(state >> 56);
        }
        try {
            const Dataset partial = Dataset::FromText(damaged, "damaged.csv");
            EXPECT_LE(partial.RecordCount(), 569);
        } catch (const GalleryError&) {
        }
    }
}

TEST(GalleryClassification, RocWithTiesAgainstHandComputedCurve) {
    // Positives score 0.9, 0.8, 0.6; negatives 0.8, 0.6, 0.6, 0.3. Mann-Whitney: 9.5 of 12
    // pairs ranked right (ties count half), so AUC = 19/24.
    const std::vector<double> outputs = {0.6, 0.3, 0.8, 0.9, 0.6, 0.8, 0.6};
    const std::vector<double> targets = {0, 0, 1, 1, 1, 0, 0};
    const RocCurve roc = ComputeRoc(outputs, targets);
    const std::vector<double> fp = {0, 0, 0.25, 0.75, 1};
    const std::vector<double> tp = {0, 1.0 / 3.0, 2.0 / 3.0, 1, 1};
    ASSERT_EQ(roc.FPRates.size(), fp.size());
    for (std::size_t i = 0; i < fp.size(); ++i) {
        EXPECT_DOUBLE_EQ(roc.FPRates[i], fp[i]) << i;
        EXPECT_DOUBLE_EQ(roc.TPRates[i], tp[i]) << i;
    }
    EXPECT_DOUBLE_EQ(roc.AUC, 19.0 / 24.0);

    // All outputs tied: one diagonal step, AUC one half; NaN ranks below everything.
    const RocCurve tied =
        ComputeRoc(std::vector<double>{0.4, 0.4, 0.4}, std::vector<double>{1, 0, 1});
    EXPECT_EQ(tied.FPRates, (std::vector<double>{0, 1}));
    EXPECT_EQ(tied.TPRates, (std::vector<double>{0, 1}));
    EXPECT_DOUBLE_EQ(tied.AUC, 0.5);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_DOUBLE_EQ(
        ComputeRoc(std::vector<double>{nan, 0.2, 0.7}, std::vector<double>{0, 0, 1}).AUC, 1.0);
    // One class only: the rates are undefined.
    const RocCurve single = ComputeRoc(std::vector<double>{0.1, 0.9}, std::vector<double>{1, 1});
    EXPECT_EQ(single.AUC, -1.0);
    EXPECT_EQ(single.FPRates, (std::vector<double>{0, 1}));
}

TEST(GalleryClassification, OutcomeTypesFollowTheThreshold) {
    const std::vector<double> outputs = {0.2, 0.5, 0.7, 0.4};
    const std::vector<double> targets = {0, 1, 0, 1};
    EXPECT_EQ(ClassifyOutcomes(outputs, targets, 0.5),
              (std::vector<std::int32_t>{otTrueNegative, otTruePositive, otFalsePositive,
                                         otFalseNegative}));
    EXPECT_EQ(ClassifyOutcomes(outputs, targets, 0.3),
              (std::vector<std::int32_t>{otTrueNegative, otTruePositive, otFalsePositive,
                                         otTruePositive}));
    const std::vector<std::int32_t> high = ClassifyOutcomes(outputs, targets, 0.8);
    EXPECT_EQ(high, (std::vector<std::int32_t>{otTrueNegative, otFalseNegative, otTrueNegative,
                                               otFalseNegative}));
    EXPECT_EQ(CountOutcomes(high), (ConfusionCounts{2, 2, 0, 0}));
    const std::vector<std::uint8_t> mask = {1, 1, 0, 0};
    EXPECT_EQ(CountOutcomes(high, mask, 1), (ConfusionCounts{1, 1, 0, 0}));
    // Arrays of different lengths use the shorter one.
    EXPECT_EQ(ClassifyOutcomes(outputs, std::vector<double>{1}, 0.5).size(), 1u);
}

TEST(GalleryRun, ImprovesAndFillsEveryResult) {
    Results results = ExecuteRun(Wdbc(), QuickSettings());
    const auto& history = results.History();
    ASSERT_EQ(results.GenerationsRun(), 40);
    EXPECT_FALSE(results.Stopped());
    for (std::size_t i = 0; i < history.size(); ++i) {
        EXPECT_EQ(history[i].Generation, static_cast<std::int32_t>(i) + 1);
        EXPECT_LE(history[i].Average, history[i].Best);
        if (i > 0) {
            EXPECT_GE(history[i].Best, history[i - 1].Best);
        }
    }
    EXPECT_GT(history.back().Best, history.front().Best + 0.1);
    EXPECT_GT(history.back().Validation, 0.9);
    EXPECT_EQ(results.BestFitness(), history.back().Best);

    ASSERT_EQ(results.RecordCount(), 569);
    EXPECT_EQ(results.Weights().size(), 31u);
    EXPECT_EQ(results.RecordIds()[0], 1);
    EXPECT_TRUE(std::all_of(results.Outputs().begin(), results.Outputs().end(),
                            [](double p) { return p >= 0.0 && p <= 1.0; }));
    // Each class split 70/30: round(0.3 * 212) + round(0.3 * 357) records held out.
    EXPECT_EQ(std::count(results.InValidation().begin(), results.InValidation().end(), 1),
              64 + 107);
    EXPECT_EQ(results.ValidationConfusion().Total(), 171);
    EXPECT_EQ(results.TrainingConfusion().Total() + 171, results.Confusion().Total());
    EXPECT_EQ(results.Confusion().TruePositives + results.Confusion().FalseNegatives, 212);
    EXPECT_GT(results.Confusion().Accuracy(), 0.9);

    const RocCurve& roc = results.Roc();
    ASSERT_EQ(roc.FPRates.size(), roc.TPRates.size());
    EXPECT_EQ(roc.FPRates.front(), 0.0);
    EXPECT_EQ(roc.TPRates.back(), 1.0);
    EXPECT_TRUE(std::is_sorted(roc.FPRates.begin(), roc.FPRates.end()));
    EXPECT_TRUE(std::is_sorted(roc.TPRates.begin(), roc.TPRates.end()));
    EXPECT_GT(results.AUC(), 0.95);

    const auto usage = results.VariableUsage();
    ASSERT_EQ(usage.size(), 30u);
    EXPECT_NEAR(std::accumulate(usage.begin(), usage.end(), 0.0), 100.0, 1e-9);
    // Every individual of the last generation leans on its own largest weight, so the counts
    // (at most the 40 offspring each) add up to at least one per individual.
    const auto population = results.PopulationUsage();
    ASSERT_EQ(population.size(), 30u);
    EXPECT_TRUE(std::all_of(population.begin(), population.end(),
                            [](std::int32_t pCount) { return pCount >= 0 && pCount <= 40; }));
    EXPECT_GE(std::accumulate(population.begin(), population.end(), 0), 40);

    // Output on a 0/1 target: the slope is the gap between the classes' mean outputs.
    double positiveSum = 0.0;
    double negativeSum = 0.0;
    for (std::int32_t i = 0; i < results.RecordCount(); ++i) {
        (results.Targets()[i] > 0.5 ? positiveSum : negativeSum) += results.Outputs()[i];
    }
    EXPECT_NEAR(results.RegressionSlope(), positiveSum / 212 - negativeSum / 357, 1e-9);
    EXPECT_NEAR(results.RegressionIntercept(), negativeSum / 357, 1e-9);

    // Raising the threshold trades false positives for false negatives.
    const ConfusionCounts atHalf = results.Confusion();
    results.SetThreshold(0.95);
    EXPECT_LE(results.Confusion().FalsePositives, atHalf.FalsePositives);
    EXPECT_GT(results.Confusion().FalseNegatives, atHalf.FalseNegatives);
    EXPECT_EQ(
        std::vector<std::int32_t>(results.OutcomeTypes().begin(), results.OutcomeTypes().end()),
        ClassifyOutcomes(results.Outputs(), results.Targets(), 0.95));
    EXPECT_THROW(results.SetThreshold(std::numeric_limits<double>::quiet_NaN()), GalleryError);
}

TEST(GalleryRun, SameSeedSameRunAndUnusableInputsAreRefused) {
    const Results first = ExecuteRun(Wdbc(), QuickSettings(11));
    const Results second = ExecuteRun(Wdbc(), QuickSettings(11));
    const Results other = ExecuteRun(Wdbc(), QuickSettings(12));
    ASSERT_EQ(first.History().size(), second.History().size());
    for (std::size_t i = 0; i < first.History().size(); ++i) {
        EXPECT_EQ(first.History()[i].Best, second.History()[i].Best);
        EXPECT_EQ(first.History()[i].Average, second.History()[i].Average);
        EXPECT_EQ(first.History()[i].Validation, second.History()[i].Validation);
    }
    EXPECT_TRUE(
        std::equal(first.Outputs().begin(), first.Outputs().end(), second.Outputs().begin()));
    EXPECT_NE(first.History().back().Average, other.History().back().Average);

    RunSettings bad = QuickSettings();
    bad.OffspringCount = bad.ParentCount - 1;
    EXPECT_TRUE(ErrorOf([&] { ExecuteRun(Wdbc(), bad); }).Message().contains("OffspringCount"));
    bad = QuickSettings();
    bad.ValidationFraction = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(ErrorOf([&] { ExecuteRun(Wdbc(), bad); }).Message().contains("ValidationFraction"));
    const Dataset tiny = Dataset::FromText("a,c\n1,y\n2,n\n3,n\n", "tiny.csv");
    EXPECT_TRUE(ErrorOf([&] { ExecuteRun(tiny, QuickSettings()); })
                    .Message()
                    .contains("positive class has 1 records"));
}

TEST(GalleryRun, ModelRunReportsEachGenerationFromItsWorkerAndStops) {
    ModelRun run;
    std::vector<int> generations;
    std::vector<std::pair<int, int>> progress;
    std::vector<Results> finished;
    // Receivers on this (the user interface) thread: the signals arrive queued.
    QObject::connect(
        &run, &ModelRun::generationFinished, &run,
        [&](int pGeneration, double, double, double) { generations.push_back(pGeneration); });
    QObject::connect(&run, &ModelRun::progress, &run,
                     [&](int pDone, int pTotal) { progress.emplace_back(pDone, pTotal); });
    QObject::connect(&run, &ModelRun::finished, &run,
                     [&](const Results& pResults) { finished.push_back(pResults); });

    // A whole run, delivered through the event queue once the worker has ended.
    run.Start(Wdbc(), QuickSettings(3));
    run.Wait();
    QCoreApplication::sendPostedEvents();
    ASSERT_EQ(finished.size(), 1u);
    EXPECT_FALSE(run.IsRunning());
    std::vector<int> expected(40);
    std::iota(expected.begin(), expected.end(), 1);
    EXPECT_EQ(generations, expected);
    EXPECT_EQ(progress.front(), std::make_pair(0, 40));
    EXPECT_EQ(progress.back(), std::make_pair(40, 40));
    const Results direct = ExecuteRun(Wdbc(), QuickSettings(3));
    EXPECT_TRUE(std::equal(direct.Outputs().begin(), direct.Outputs().end(),
                           finished[0].Outputs().begin()));
    EXPECT_EQ(run.LastResults().AUC(), direct.AUC());

    // A stop asked for while generation 5 is reported ends the run right after it.
    generations.clear();
    QMetaObject::Connection stopAtFive = QObject::connect(
        &run, &ModelRun::generationFinished, &run,
        [&](int pGeneration, double, double, double) {
            if (pGeneration == 5) {
                run.Stop();
            }
        },
        Qt::DirectConnection);
    run.Start(Wdbc(), QuickSettings(3));
    run.Wait();
    QCoreApplication::sendPostedEvents();
    QObject::disconnect(stopAtFive);
    ASSERT_EQ(finished.size(), 2u);
    EXPECT_TRUE(finished[1].Stopped());
    EXPECT_EQ(finished[1].GenerationsRun(), 5);
    EXPECT_EQ(generations.size(), 5u);
    EXPECT_EQ(finished[1].RecordCount(), 569);

    // A stop from the user interface thread ends a long paced run, waiting or computing.
    RunSettings endless = QuickSettings(3);
    endless.Generations = 1'000'000;
    endless.PaceMilliseconds = 1000;
    QEventLoop loop;
    QObject::connect(&run, &ModelRun::progress, &loop, [&](int pDone, int) {
        if (pDone == 1) {
            run.Stop();
        }
    });
    QObject::connect(&run, &ModelRun::finished, &loop, &QEventLoop::quit);
    run.Start(Wdbc(), endless);
    EXPECT_TRUE(run.IsRunning());
    EXPECT_TRUE(ErrorOf([&] { run.Start(Wdbc(), endless); }).Message().contains("in progress"));
    loop.exec();
    ASSERT_EQ(finished.size(), 3u);
    EXPECT_TRUE(finished[2].Stopped());
    EXPECT_GE(finished[2].GenerationsRun(), 1);

    // Destroying a run in progress stops it instead of waiting a million generations.
    auto abandoned = std::make_unique<ModelRun>();
    abandoned->Start(Wdbc(), endless);
    abandoned.reset();
    RunSettings bad = QuickSettings();
    bad.Generations = 0;
    EXPECT_THROW(run.Start(Wdbc(), bad), GalleryError);
    EXPECT_FALSE(run.IsRunning());
}

namespace {

ProjectFile SampleProject() {
    ProjectFile project;
    RunSettings settings;
    settings.Seed = std::numeric_limits<std::uint64_t>::max();
    settings.InitialStepSize = 0.1 + 0.2; // 0.30000000000000004 must survive the text
    settings.Threshold = 0.35;
    settings.Fitness = fmAccuracy;
    project.SetSettings(settings);
    project.SetDatasetSource(Dataset::BuiltInWdbcPath());
    project.SetChart("rtchart",
                     "<rtchart version='1'><axis name=\"Fitness &amp; more\"/></rtchart>");
    project.SetChart("roc", QString::fromUtf8("<roc caption=\"Größe\">\n\t<x/>\\</roc>"));
    project.SetChart("empty", "");
    return project;
}

} // namespace

TEST(GalleryProjectFile, RoundTripWritesTheSameBytes) {
    const ProjectFile project = SampleProject();
    const QByteArray bytes = project.ToBytes();
    const ProjectFile loaded = ProjectFile::FromBytes(bytes, "p.json");
    EXPECT_TRUE(loaded == project);
    EXPECT_EQ(loaded.Settings().InitialStepSize, 0.1 + 0.2);
    EXPECT_EQ(loaded.Chart("roc"), project.Chart("roc"));
    EXPECT_EQ(loaded.ToBytes(), bytes);
    {
        const trv5::test::ScopedLocale german(trv5::test::German());
        EXPECT_EQ(loaded.ToBytes(), bytes);
    }

    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString first = dir.filePath("first.trv5gallery");
    const QString second = dir.filePath("second.trv5gallery");
    project.Save(first);
    ProjectFile::Load(first).Save(second);
    QFile a(first);
    QFile b(second);
    ASSERT_TRUE(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly));
    EXPECT_EQ(a.readAll(), b.readAll());
    EXPECT_THROW(project.Save(dir.filePath("missing/dir/p.trv5gallery")), GalleryError);
    EXPECT_THROW(ProjectFile::Load(dir.filePath("absent.trv5gallery")), GalleryError);
}

TEST(GalleryProjectFile, DamagedFilesAreReportedNeverHalfLoaded) {
    const ProjectFile project = SampleProject();
    const QByteArray bytes = project.ToBytes();
    // Every truncation either is the whole document (only the final line end cut) or fails.
    for (qsizetype length = 0; length < bytes.size(); ++length) {
        try {
            EXPECT_TRUE(ProjectFile::FromBytes(bytes.left(length), "p.json") == project) << length;
        } catch (const GalleryError& error) {
            EXPECT_EQ(error.Source(), "p.json");
        }
    }

    const auto messageFor = [](const QByteArray& pText) {
        return ErrorOf([&] { ProjectFile::FromBytes(pText, "p.json"); }).Message();
    };
    const auto replaced = [&](const char* pFrom, const char* pTo) {
        QByteArray text = bytes;
        EXPECT_TRUE(text.contains(pFrom)) << pFrom;
        return messageFor(text.replace(pFrom, pTo));
    };
    EXPECT_TRUE(messageFor("").contains("empty"));
    EXPECT_TRUE(messageFor("[1, 2]").contains("no object"));
    EXPECT_TRUE(messageFor("{}").contains("not a gallery project"));
    EXPECT_TRUE(replaced("\"version\": 1", "\"version\": 2").contains("version 2"));
    EXPECT_TRUE(replaced("\"generations\": 250", "\"generations\": \"many\"")
                    .contains("'generations' must be a number"));
    EXPECT_TRUE(replaced("\"generations\": 250", "\"generations\": 2.5").contains("whole number"));
    EXPECT_TRUE(
        replaced("\"generations\": 250", "\"generations\": 0").contains("Generations must be 1"));
    EXPECT_TRUE(replaced("\"generations\": 250", "\"generationz\": 250")
                    .contains("unknown entry 'generationz'"));
    EXPECT_TRUE(replaced("\"seed\": \"18446744073709551615\"", "\"seed\": \"18446744073709551616\"")
                    .contains("seed"));
    EXPECT_TRUE(
        replaced("\"seed\": \"18446744073709551615\"", "\"seed\": \"-1\"").contains("seed"));
    EXPECT_TRUE(replaced("\"fitness\": \"accuracy\"", "\"fitness\": \"luck\"").contains("'luck'"));
    EXPECT_TRUE(replaced("\"empty\": \"\"", "\"empty\": 3")
                    .contains("charts: the entry 'empty' must be a text"));
    EXPECT_TRUE(replaced("\"dataset\"", "\"datasets\"").contains("unknown entry 'datasets'"));

    // Syntax errors are located by line and column.
    const GalleryError syntax =
        ErrorOf([] { ProjectFile::FromBytes("{\n    \"format\": x\n}", "p.json"); });
    EXPECT_EQ(syntax.Line(), 2);
    EXPECT_GT(syntax.Column(), 10);
}
