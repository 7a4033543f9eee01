#include "ui/runsession.h"

#include "core/galleryerror.h"
#include "core/modelrun.h"
#include "ui/chartboard.h"
#include "ui/resultview.h"

#include <trv5charts/rtchart.h>

#include <exception>

namespace trv5::gallery {

RunSession::RunSession(ChartBoard& pBoard, QObject* pParent)
    : QObject(pParent), m_board(pBoard), m_data(Dataset::BuiltInWdbc()),
      m_dataSource(Dataset::BuiltInWdbcPath()), m_run(new ModelRun(this)) {
    connect(m_run, &ModelRun::generationFinished, this, &RunSession::OnGeneration);
    connect(m_run, &ModelRun::finished, this, &RunSession::OnFinished);
    connect(m_run, &ModelRun::failed, this, [this](const QString& pMessage) {
        m_busy = false;
        emit failed(pMessage);
    });
}

RunSession::~RunSession() = default;

void RunSession::LoadData(const QString& pSource) {
    Dataset data =
        pSource == Dataset::BuiltInWdbcPath() ? Dataset::BuiltInWdbc() : Dataset::FromFile(pSource);
    m_data = std::move(data);
    m_dataSource = pSource;
    ForgetResults();
}

void RunSession::Start(const RunSettings& pSettings) {
    if (m_busy) {
        throw GalleryError(QStringLiteral("run"), QStringLiteral("a run is in progress"));
    }
    pSettings.Validate();
    ForgetResults();
    m_generations = pSettings.Generations;
    resultview::PrepareProgress(m_board.RenewProgress(), pSettings);
    m_run->Start(m_data, pSettings);
    m_busy = true;
}

void RunSession::Stop() {
    m_run->Stop();
}

bool RunSession::IsRunning() const {
    return m_busy;
}

void RunSession::ForgetResults() {
    m_results.reset();
    m_board.ClearResults();
}

void RunSession::SetThreshold(double pThreshold) {
    if (!m_results || m_results->Threshold() == pThreshold) {
        return;
    }
    m_results->SetThreshold(pThreshold);
    resultview::ShowThreshold(m_board, *m_results);
}

void RunSession::OnGeneration(int pGeneration, double pBest, double pAverage, double pValidation) {
    // Nothing may leave a slot that the event loop calls: a chart error ends the run instead.
    try {
        resultview::AddGeneration(m_board.Progress(), pGeneration, pBest, pAverage, pValidation);
    } catch (const std::exception& error) {
        m_run->Stop();
        emit failed(QString::fromLocal8Bit(error.what()));
        return;
    }
    emit generationDone(pGeneration, m_generations);
}

void RunSession::OnFinished(const Results& pResults) {
    m_busy = false;
    m_results = pResults;
    try {
        resultview::ShowResults(m_board, *m_results);
    } catch (const std::exception& error) {
        emit failed(QString::fromLocal8Bit(error.what()));
        return;
    }
    emit finished();
}

} // namespace trv5::gallery
