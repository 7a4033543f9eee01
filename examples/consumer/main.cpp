// Uses TRV5Charts as an installed package: feeds a short run into a run progress chart, saves
// the chart's state, restores it into a second chart and checks that both hold the same data.
// Exits 0 when they do, 1 otherwise.

#include <trv5charts/trv5charts.h>

#include <QApplication>
#include <QTextStream>

#include <cmath>
#include <memory>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QTextStream err(stderr);
    try {
        auto fitness = std::make_shared<trv5::Axis>();
        fitness->Init(0.0, 1.0, false);
        fitness->SetName(QStringLiteral("Fitness"));

        trv5::RTChart chart;
        chart.SetMainYAxis(fitness);
        const int best = chart.AddSeries(nullptr, false, QStringLiteral("Best fitness"));
        constexpr int kGenerations = 50;
        chart.GetSeries(best)->Init(kGenerations, 0.0, 1.0, trv5::DripFeed, false);
        for (int generation = 1; generation <= kGenerations; ++generation) {
            chart.AddPoint(best, 0.95 - 0.4 * std::exp(-generation / 15.0));
            chart.SetLastGenerationForCopy(generation);
        }
        chart.Refresh();

        const QString state = chart.ToString();
        trv5::RTChart restored;
        restored.FromString(state);

        // The values, the series' name and the generation count must come back; the table of
        // values compares every point in the text the host would export.
        const QString table = chart.GetChartDataAsString();
        const std::shared_ptr<trv5::Series> series =
            restored.SeriesCount() == 1 ? restored.GetSeries(0) : nullptr;
        if (state.isEmpty() || table.isEmpty() || series == nullptr ||
            series->Name() != QStringLiteral("Best fitness") ||
            restored.LastGenerationForCopy() != kGenerations ||
            restored.GetChartDataAsString() != table) {
            err << "the restored chart differs from the saved one\nsaved state: " << state
                << "\nsaved data:\n"
                << table << "\nrestored data:\n"
                << restored.GetChartDataAsString() << '\n';
            return 1;
        }
        QTextStream(stdout) << "TRV5Charts package works: " << kGenerations
                            << " generations saved and restored (" << state.size()
                            << " characters of state)\n";
        return 0;
    } catch (const trv5::ChartError& error) {
        err << "ChartError " << error.number() << ": " << error.description() << '\n';
        return 1;
    }
}
