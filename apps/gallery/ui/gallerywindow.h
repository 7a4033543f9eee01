#pragma once

#include <QMainWindow>
#include <QSize>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class QLabel;
class QTabWidget;

namespace trv5::gallery {

class ChartBoard;
class ControlPanel;
struct ChartEntry;
class RunSession;

// The gallery's main window: the control panel on the left, the charts on three pages (the run,
// the classification, the distributions), the menus and the status bar. One chart is current at
// a time (the last one clicked or focused, else the first of the page shown); the Chart menu's
// copy, print and preview act on it.
class GalleryWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit GalleryWindow(QWidget* pParent = nullptr);
    ~GalleryWindow() override;
    GalleryWindow(const GalleryWindow&) = delete;
    GalleryWindow& operator=(const GalleryWindow&) = delete;

    ChartBoard& Board() const { return *m_board; }
    RunSession& Session() const { return *m_session; }
    ControlPanel& Panel() const { return *m_panel; }

    // Starts a run with the panel's settings. Throws GalleryError for settings the run cannot
    // use.
    void StartRun();
    // Reads a CSV data set. Throws GalleryError (the reader's message) and keeps the current
    // data when the file cannot be used.
    void OpenData(const QString& pPath);
    // Throws GalleryError when the file cannot be written or read; an open that fails changes
    // nothing. A file name without an extension gets the project extension; returns the path
    // written.
    QString SaveProject(const QString& pPath);
    void OpenProject(const QString& pPath);

    // The name of the current chart.
    const QString& CurrentChart() const { return m_currentChart; }
    void SetCurrentChart(const QString& pName);
    // Shows the page holding the chart.
    void RevealChart(const QString& pName);

    // The size the window opens at on a screen whose available area is pAvailable: roomy on a
    // large screen, within the area on a small one, never below the window's minimum.
    static QSize DefaultSize(const QSize& pAvailable, const QSize& pMinimum);
    // The dark mode: a dark application palette, which the self-drawn charts follow.
    void SetDarkMode(bool pDark);

    // Where errors go instead of a message box (the headless modes print them); null returns
    // to message boxes.
    using ErrorSink = std::function<void(const QString& pTitle, const QString& pMessage)>;
    void SetErrorSink(ErrorSink pSink) { m_errorSink = std::move(pSink); }

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;
    void closeEvent(QCloseEvent* pEvent) override;

private:
    struct Page {
        QString title;
        QStringList charts;
    };

    void BuildPages();
    void BuildMenus();
    void OnOpenData();
    void OnBuiltInData();
    void OnOpenProject();
    void OnSaveProject();
    void OnExportCharts();
    void OnRun();
    void OnStop();
    void OnRunFinished();
    void OnRunFailed(const QString& pMessage);
    void OnThresholdChanged(double pThreshold);
    void OnPageChanged(int pIndex);
    void ShowTopVariables();
    void ShowError(const QString& pTitle, const QString& pMessage);
    void RunCurrentChartCommand(void (*pCommand)(const ChartEntry&));
    // Accessible names, print failure reports and the tab order, again for replaced charts.
    void PrepareChartsForPeople();
    void OnPrintFailed(const QString& pMessage);

    ChartBoard* m_board;
    RunSession* m_session;
    ControlPanel* m_panel;
    QTabWidget* m_pages = nullptr;
    QLabel* m_topVariables = nullptr;
    QLabel* m_currentChartLabel = nullptr;
    std::vector<Page> m_pageCharts;
    QString m_currentChart;
    ErrorSink m_errorSink;
};

} // namespace trv5::gallery
