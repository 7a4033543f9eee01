#pragma once

#include "core/dataset.h"
#include "core/results.h"
#include "core/runsettings.h"

#include <QObject>
#include <QString>

#include <optional>

namespace trv5::gallery {

class ChartBoard;
class ModelRun;

// The data set, the modelling run and its results, wired to the charts: a run renews the
// progress chart, drip-feeds it every generation and fills the result charts when it finishes.
// The window and the headless mode drive the same session.
class RunSession : public QObject {
    Q_OBJECT

public:
    RunSession(ChartBoard& pBoard, QObject* pParent = nullptr);
    ~RunSession() override;
    RunSession(const RunSession&) = delete;
    RunSession& operator=(const RunSession&) = delete;

    const Dataset& Data() const { return m_data; }
    // The data file's path, or Dataset::BuiltInWdbcPath() for the built-in data.
    const QString& DataSource() const { return m_dataSource; }
    // Reads the data from pSource (a CSV path or the built-in path). Throws GalleryError with
    // the reader's message and keeps the current data when the file cannot be used.
    void LoadData(const QString& pSource);

    // Starts a run; throws GalleryError for settings or data the run cannot use.
    void Start(const RunSettings& pSettings);
    void Stop();
    // True from Start until the run's finished or failed signal has been handled (the worker
    // itself ends a little earlier).
    bool IsRunning() const;

    // The results of the last finished run; empty before one finished or after data or a
    // project was loaded.
    const std::optional<Results>& LastResults() const { return m_results; }
    void ForgetResults();
    // Moves the threshold of the results and updates the charts that depend on it.
    void SetThreshold(double pThreshold);

signals:
    void generationDone(int pGeneration, int pTotal);
    // The result charts are filled.
    void finished();
    void failed(const QString& pMessage);

private:
    void OnGeneration(int pGeneration, double pBest, double pAverage, double pValidation);
    void OnFinished(const Results& pResults);

    ChartBoard& m_board;
    Dataset m_data;
    QString m_dataSource;
    ModelRun* m_run;
    int m_generations = 0;
    bool m_busy = false;
    std::optional<Results> m_results;
};

} // namespace trv5::gallery
