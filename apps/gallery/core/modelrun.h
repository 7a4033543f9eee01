#pragma once

#include "dataset.h"
#include "evolutionstrategy.h"
#include "results.h"
#include "runsettings.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>

namespace trv5::gallery {

using GenerationCallback = std::function<void(const GenerationStats&)>;

// Runs a whole modelling run on the calling thread: pOnGeneration is called after every
// generation, and a stop request is honoured after the generation in progress (or before the
// first). Throws GalleryError for settings out of range or a data set that cannot be split.
Results ExecuteRun(const Dataset& pData, const RunSettings& pSettings, std::stop_token pStop = {},
                   const GenerationCallback& pOnGeneration = {});

// A modelling run on a worker thread, for a user interface that watches it.
//
// Start checks the settings and the data on the caller's thread (and throws GalleryError for
// what it cannot use), then runs the generations on a worker thread. The signals are emitted
// on the worker thread: with the default (automatic) connection a receiver living on the user
// interface thread gets them queued, in order. After every generation come generationFinished
// and then progress; at the end, finished with the results (also when stopped), or failed with
// a message if the run broke down. Each generation takes at least the settings'
// PaceMilliseconds, so the progress chart can be watched.
class ModelRun : public QObject {
    Q_OBJECT
public:
    explicit ModelRun(QObject* pParent = nullptr);
    // Stops a run in progress and waits for its worker. Not from a slot connected directly to
    // one of its signals (that runs on the worker itself): use deleteLater there.
    ~ModelRun() override;
    ModelRun(const ModelRun&) = delete;
    ModelRun& operator=(const ModelRun&) = delete;

    // Starts a run over a copy of pData. Throws GalleryError when a run is in progress or the
    // settings or data cannot be used.
    void Start(const Dataset& pData, const RunSettings& pSettings);
    // True from Start until just before finished or failed is emitted.
    bool IsRunning() const { return m_running.load(); }
    // Blocks until the worker has ended; the last signals may still be queued for delivery.
    void Wait();
    // The results of the last run that finished; empty before.
    Results LastResults() const;

public slots:
    // Asks the run to end: it finishes the generation in progress, reports it and emits
    // finished with Stopped() set. Harmless when nothing runs; callable from any thread.
    void Stop();

signals:
    void generationFinished(int pGeneration, double pBest, double pAverage, double pValidation);
    void progress(int pGeneration, int pTotal);
    void finished(const trv5::gallery::Results& pResults);
    void failed(const QString& pMessage);

private:
    void Work(std::stop_token pStop, EvolutionStrategy pStrategy, Dataset pData,
              RunSettings pSettings);

    std::atomic<bool> m_running{false};
    mutable std::mutex m_resultsMutex;
    Results m_results;
    std::mutex m_stopMutex;
    std::stop_source m_stopSource{std::nostopstate};
    std::jthread m_worker;
};

} // namespace trv5::gallery
