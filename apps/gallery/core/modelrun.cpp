#include "modelrun.h"

#include "galleryerror.h"

#include <chrono>
#include <condition_variable>
#include <utility>

namespace trv5::gallery {

namespace {

Results RunGenerations(EvolutionStrategy& pStrategy, const Dataset& pData,
                       const RunSettings& pSettings, const std::stop_token& pStop,
                       const GenerationCallback& pOnGeneration) {
    std::vector<GenerationStats> history;
    history.reserve(static_cast<std::size_t>(pSettings.Generations));
    while (pStrategy.Generation() < pSettings.Generations && !pStop.stop_requested()) {
        history.push_back(pStrategy.Step());
        if (pOnGeneration) {
            pOnGeneration(history.back());
        }
    }
    const bool stopped = pStrategy.Generation() < pSettings.Generations;
    return Results::Compute(pData, pSettings, pStrategy, std::move(history), stopped);
}

} // namespace

Results ExecuteRun(const Dataset& pData, const RunSettings& pSettings, std::stop_token pStop,
                   const GenerationCallback& pOnGeneration) {
    EvolutionStrategy strategy(pData, pSettings);
    return RunGenerations(strategy, pData, pSettings, pStop, pOnGeneration);
}

ModelRun::ModelRun(QObject* pParent) : QObject(pParent) {
    qRegisterMetaType<trv5::gallery::Results>();
}

ModelRun::~ModelRun() {
    Stop();
    Wait();
}

void ModelRun::Start(const Dataset& pData, const RunSettings& pSettings) {
    if (m_running.load()) {
        throw GalleryError(QStringLiteral("model run"), QStringLiteral("a run is in progress"));
    }
    Wait();
    // Built here so that unusable settings or data are reported to the caller, not the worker.
    EvolutionStrategy strategy(pData, pSettings);
    std::stop_source stopSource;
    {
        const std::lock_guard lock(m_stopMutex);
        m_stopSource = stopSource;
    }
    m_running.store(true);
    m_worker = std::jthread([this, token = stopSource.get_token(), strategy = std::move(strategy),
                             data = pData, settings = pSettings]() mutable {
        Work(token, std::move(strategy), std::move(data), settings);
    });
}

void ModelRun::Stop() {
    // A copy of the stop source, so that a stop from the worker thread (a directly connected
    // slot) never touches the thread object that the caller's thread may be replacing.
    std::stop_source source{std::nostopstate};
    {
        const std::lock_guard lock(m_stopMutex);
        source = m_stopSource;
    }
    source.request_stop();
}

void ModelRun::Wait() {
    if (m_worker.joinable() && m_worker.get_id() != std::this_thread::get_id()) {
        m_worker.join();
    }
}

Results ModelRun::LastResults() const {
    const std::lock_guard lock(m_resultsMutex);
    return m_results;
}

void ModelRun::Work(std::stop_token pStop, EvolutionStrategy pStrategy, Dataset pData,
                    RunSettings pSettings) {
    using Clock = std::chrono::steady_clock;
    const std::chrono::milliseconds pace(pSettings.PaceMilliseconds);
    std::mutex paceMutex;
    std::condition_variable_any paceWait;
    auto generationStart = Clock::now();
    const auto onGeneration = [&](const GenerationStats& pStats) {
        emit generationFinished(pStats.Generation, pStats.Best, pStats.Average, pStats.Validation);
        emit progress(pStats.Generation, pSettings.Generations);
        if (pace.count() > 0) {
            std::unique_lock lock(paceMutex);
            // Returns early when a stop is requested.
            paceWait.wait_until(lock, pStop, generationStart + pace, [] { return false; });
        }
        generationStart = Clock::now();
    };
    try {
        emit progress(0, pSettings.Generations);
        Results results = RunGenerations(pStrategy, pData, pSettings, pStop, onGeneration);
        {
            const std::lock_guard lock(m_resultsMutex);
            m_results = results;
        }
        m_running.store(false);
        emit finished(results);
    } catch (const GalleryError& error) {
        m_running.store(false);
        emit failed(error.Text());
    } catch (const std::exception& error) {
        m_running.store(false);
        emit failed(QString::fromLocal8Bit(error.what()));
    }
}

} // namespace trv5::gallery
