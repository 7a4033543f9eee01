// A small host: what a modelling application does with the run progress chart during and
// after a run. It drip-feeds a simulated evolutionary run into the chart, prints the chart's
// saved state and its data as tab-separated text, then restores the state into a fresh chart
// and checks that it reads back the same.

#include <trv5charts/trv5charts.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>

#include <cmath>
#include <memory>
#include <random>

namespace {

struct Generation {
    double best;
    double average;
    double diversity;
};

// A population whose best fitness climbs with diminishing returns, whose average trails it
// with noise, and whose diversity decays as the search converges.
class SimulatedRun {
public:
    explicit SimulatedRun(unsigned pSeed) : m_random(pSeed) {}

    Generation Next() {
        std::normal_distribution<double> noise(0.0, 1.0);
        ++m_generation;
        const double progress = 1.0 - std::exp(-m_generation / 60.0);
        const double candidate = 0.55 + 0.4 * progress + 0.004 * noise(m_random);
        m_best = std::max(m_best, candidate);
        const double average =
            m_best - 0.08 - 0.05 * std::exp(-m_generation / 90.0) + 0.01 * noise(m_random);
        const double diversity =
            std::max(0.0, 40.0 * std::exp(-m_generation / 120.0) + 1.5 * noise(m_random));
        return {m_best, average, diversity};
    }

private:
    std::mt19937 m_random;
    int m_generation = 0;
    double m_best = 0.0;
};

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("trv5_example_host"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Feeds a simulated run into a run progress "
                                                    "chart, saves it and restores it."));
    parser.addHelpOption();
    const QCommandLineOption generationsOption(
        QStringList{QStringLiteral("g"), QStringLiteral("generations")},
        QStringLiteral("Number of generations (1-100000)."), QStringLiteral("count"),
        QStringLiteral("300"));
    parser.addOption(generationsOption);
    parser.process(app);

    QTextStream out(stdout);
    QTextStream err(stderr);
    bool ok = false;
    const int generations = parser.value(generationsOption).toInt(&ok);
    if (!ok || generations < 1 || generations > 100000) {
        err << "error: --generations takes a whole number from 1 to 100000\n";
        return 2;
    }

    try {
        trv5::RTChart chart;
        auto fitnessAxis = std::make_shared<trv5::Axis>();
        fitnessAxis->Init(0.0, 1.0, false);
        fitnessAxis->SetName(QStringLiteral("Fitness"));
        auto diversityAxis = std::make_shared<trv5::Axis>();
        diversityAxis->Init(0.0, 50.0, true);
        diversityAxis->SetName(QStringLiteral("Diversity"));
        diversityAxis->SetFormat(QStringLiteral("percent"));
        chart.SetMainYAxis(fitnessAxis);
        chart.SetSecondaryYAxis(diversityAxis);

        const struct {
            const char* name;
            bool secondary;
            std::int32_t colour;
        } lines[] = {{"Best fitness", false, trv5::ColorConverter::RGBToLong(0, 90, 200)},
                     {"Average fitness", false, trv5::ColorConverter::RGBToLong(230, 120, 0)},
                     {"Diversity", true, trv5::ColorConverter::RGBToLong(40, 160, 60)}};
        for (const auto& line : lines) {
            const std::int32_t index =
                chart.AddSeries(nullptr, line.secondary, QString::fromUtf8(line.name));
            const std::shared_ptr<trv5::Series> series = chart.GetSeries(index);
            series->Init(generations, 0.0, line.secondary ? 50.0 : 1.0, trv5::DripFeed,
                         line.secondary);
            series->SetColour(line.colour);
        }
        chart.AddHorizontalLine(0.9, QStringLiteral("Target fitness"),
                                QStringLiteral("Show target"));

        SimulatedRun run(20261122U);
        for (int g = 1; g <= generations; ++g) {
            const Generation values = run.Next();
            chart.AddPoint(0, values.best);
            chart.AddPoint(1, values.average);
            chart.AddPoint(2, values.diversity);
            chart.SetLastGenerationForCopy(g);
            chart.Refresh();
            QCoreApplication::processEvents();
        }

        const QString state = chart.ToString();
        const QString data = chart.GetChartDataAsString();
        out << "== Saved state (" << state.size() << " characters)\n" << state << "\n\n";
        out << "== Data as tab-separated text\n" << data << "\n";

        // A drip-feed ring saves one mirror slot more than a restored series keeps, so the
        // first save after a restore is the fixed point: it must hold the same data and read
        // back to itself.
        trv5::RTChart restored;
        restored.FromString(state);
        const QString restoredState = restored.ToString();
        trv5::RTChart again;
        again.FromString(restoredState);
        const bool sameData = restored.GetChartDataAsString() == data;
        const bool stable = again.ToString() == restoredState;
        out << "== Restored into a fresh chart: " << restored.SeriesCount()
            << " series, last generation " << restored.LastGenerationForCopy() << ", data "
            << (sameData ? "identical" : "DIFFERENT") << ", saved state "
            << (stable ? "stable across save and restore" : "NOT STABLE") << "\n";
        out.flush();
        return sameData && stable ? 0 : 1;
    } catch (const trv5::ChartError& error) {
        err << "error " << error.number() << ": " << error.description() << "\n";
        return 1;
    }
}
