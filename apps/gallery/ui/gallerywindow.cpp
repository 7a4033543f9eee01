#include "ui/gallerywindow.h"

#include "core/dataset.h"
#include "core/galleryerror.h"
#include "core/projectfile.h"
#include "ui/chartboard.h"
#include "ui/chartcommands.h"
#include "ui/chartexport.h"
#include "ui/controlpanel.h"
#include "ui/projectstate.h"
#include "ui/runsession.h"
#include "ui/usagemodeselector.h"

#include <trv5charts/barchart.h>
#include <trv5charts/blockpanel.h>
#include <trv5charts/blockpanelsimple.h>
#include <trv5charts/clscatterplot.h>
#include <trv5charts/curvefitting.h>
#include <trv5charts/numberformat.h>
#include <trv5charts/rocchart.h>
#include <trv5charts/rtchart.h>
#include <trv5charts/scatterplot.h>
#include <trv5charts/stackeddistributionchart.h>
#include <trv5charts/verticallabel.h>

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QFrame>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPalette>
#include <QScreen>
#include <QScrollArea>
#include <QStatusBar>
#include <QStyle>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <exception>
#include <numeric>

namespace trv5::gallery {

namespace {

const QString kProjectFilter = QStringLiteral("Gallery projects (*.trv5gallery);;All files (*)");
const QString kProjectExtension = QStringLiteral("trv5gallery");
// The size the window would like, and the share of a smaller screen it takes.
constexpr QSize kPreferredSize(1440, 900);
constexpr double kScreenShare = 0.9;
// The side panel's width; it scrolls when the window is lower than its boxes.
constexpr int kPanelWidth = 300;

// A card's background: the palette's colour for text fields (white in a light palette), which
// the charts on it take as well.
void ColourCard(QWidget& pCard) {
    QPalette palette = pCard.palette();
    palette.setColor(QPalette::Window, QApplication::palette().color(QPalette::Base));
    palette.setColor(QPalette::WindowText, QApplication::palette().color(QPalette::Text));
    pCard.setPalette(palette);
}

// A card with a title above its chart, so that the pages read as a dashboard; its texts read
// in the light and the dark mode alike.
QFrame* Card(const QString& pTitle, QWidget* pContent, QLabel* pFootnote = nullptr) {
    auto* card = new QFrame;
    card->setObjectName(QStringLiteral("card"));
    card->setFrameShape(QFrame::StyledPanel);
    card->setAutoFillBackground(true);
    ColourCard(*card);
    auto* layout = new QVBoxLayout(card);
    layout->setContentsMargins(10, 8, 10, 10);
    layout->setSpacing(6);
    auto* title = new QLabel(pTitle);
    title->setObjectName(QStringLiteral("lblCardTitle"));
    QFont font = title->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.1);
    title->setFont(font);
    layout->addWidget(title);
    layout->addWidget(pContent, 1);
    if (pFootnote != nullptr) {
        layout->addWidget(pFootnote);
    }
    return card;
}

// A dark palette for the dark mode, with the contrast of the light one.
QPalette DarkPalette() {
    QPalette palette;
    const QColor window(45, 45, 48);
    const QColor base(30, 30, 32);
    const QColor text(232, 232, 232);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, window);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::ToolTipBase, base);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, QColor(160, 160, 160));
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::Highlight, QColor(90, 150, 230));
    palette.setColor(QPalette::HighlightedText, Qt::black);
    palette.setColor(QPalette::Link, QColor(120, 170, 240));
    palette.setColor(QPalette::Light, QColor(80, 80, 84));
    palette.setColor(QPalette::Midlight, QColor(65, 65, 68));
    palette.setColor(QPalette::Mid, QColor(100, 100, 104));
    palette.setColor(QPalette::Dark, QColor(20, 20, 22));
    palette.setColor(QPalette::Shadow, Qt::black);
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(150, 150, 150));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(150, 150, 150));
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(150, 150, 150));
    return palette;
}

// The focusable widgets under pLayout in the order its items stand: top to bottom and left to
// right, as the layouts place them.
void CollectInLayoutOrder(QLayout* pLayout, QList<QWidget*>& pOut) {
    if (pLayout == nullptr) {
        return;
    }
    for (int i = 0; i < pLayout->count(); ++i) {
        QLayoutItem* item = pLayout->itemAt(i);
        if (QWidget* widget = item->widget()) {
            if ((widget->focusPolicy() & Qt::TabFocus) != 0) {
                pOut << widget;
            }
            CollectInLayoutOrder(widget->layout(), pOut);
        } else {
            CollectInLayoutOrder(item->layout(), pOut);
        }
    }
}

} // namespace

GalleryWindow::GalleryWindow(QWidget* pParent)
    : QMainWindow(pParent), m_board(new ChartBoard(this)),
      m_session(new RunSession(*m_board, this)), m_panel(new ControlPanel) {
    setWindowTitle(QStringLiteral("TRV5Charts Gallery"));
    BuildPages();
    BuildMenus();

    m_currentChartLabel = new QLabel;
    statusBar()->addPermanentWidget(m_currentChartLabel);
    m_panel->ShowDataset(m_session->Data(), m_session->DataSource());

    connect(m_panel, &ControlPanel::runRequested, this, &GalleryWindow::OnRun);
    connect(m_panel, &ControlPanel::stopRequested, this, &GalleryWindow::OnStop);
    connect(m_panel, &ControlPanel::thresholdChanged, this, &GalleryWindow::OnThresholdChanged);
    connect(m_session, &RunSession::generationDone, m_panel, &ControlPanel::ShowProgress);
    connect(m_session, &RunSession::finished, this, &GalleryWindow::OnRunFinished);
    connect(m_session, &RunSession::failed, this, &GalleryWindow::OnRunFailed);
    connect(m_board, &ChartBoard::chartReplaced, this, [this](const QString& pName) {
        if (pName == m_currentChart) {
            SetCurrentChart(pName);
        }
        PrepareChartsForPeople();
    });
    PrepareChartsForPeople();
    qApp->installEventFilter(this);

    SetCurrentChart(QString::fromLatin1(chartname::kProgress));
    statusBar()->showMessage(QStringLiteral("Ready: press Run to train a classifier on the data"));
    const QScreen* display = screen() != nullptr ? screen() : QGuiApplication::primaryScreen();
    resize(DefaultSize(display != nullptr ? display->availableGeometry().size() : kPreferredSize,
                       minimumSizeHint()));
}

QSize GalleryWindow::DefaultSize(const QSize& pAvailable, const QSize& pMinimum) {
    const QSize share(static_cast<int>(pAvailable.width() * kScreenShare),
                      static_cast<int>(pAvailable.height() * kScreenShare));
    return kPreferredSize.boundedTo(share).expandedTo(pMinimum);
}

GalleryWindow::~GalleryWindow() {
    qApp->removeEventFilter(this);
}

void GalleryWindow::BuildPages() {
    ChartBoard& board = *m_board;
    m_pages = new QTabWidget;
    m_pages->setObjectName(QStringLiteral("tabCharts"));
    m_pages->setDocumentMode(true);

    // The run: progress on top, what the best model uses below.
    auto* runPage = new QWidget;
    auto* runLayout = new QVBoxLayout(runPage);
    auto* usage = new QWidget;
    auto* usageLayout = new QHBoxLayout(usage);
    usageLayout->setContentsMargins(0, 0, 0, 0);
    usageLayout->setSpacing(2);
    usageLayout->addWidget(&board.UsageCaption());
    usageLayout->addWidget(&board.Usage(), 1);
    m_topVariables = new QLabel;
    m_topVariables->setObjectName(QStringLiteral("lblTopVariables"));
    m_topVariables->setWordWrap(true);
    runLayout->addWidget(Card(QStringLiteral("Run progress"), &board.Progress()), 3);
    runLayout->addWidget(
        Card(QStringLiteral("Variable usage of the best model"), usage, m_topVariables), 2);
    // How many individuals of the last generation lean on each variable, coloured as chosen.
    auto* population = new QWidget;
    auto* populationLayout = new QVBoxLayout(population);
    populationLayout->setContentsMargins(0, 0, 0, 0);
    auto* modeSelector = new UsageModeSelector(board);
    connect(modeSelector, &UsageModeSelector::failed, this,
            [this](const QString& pMessage) { statusBar()->showMessage(pMessage); });
    populationLayout->addWidget(modeSelector, 0, Qt::AlignLeft);
    populationLayout->addWidget(&board.UsageBlocks(), 1);
    runLayout->addWidget(
        Card(QStringLiteral("Variable usage across the last generation"), population), 2);
    m_pages->addTab(runPage, QStringLiteral("Run"));
    m_pageCharts.push_back(
        {QStringLiteral("Run"),
         {QString::fromLatin1(chartname::kProgress), QString::fromLatin1(chartname::kUsage),
          QString::fromLatin1(chartname::kUsageBlocks)}});

    // The classifier: ROC curve and outcome scatter side by side, the fit by record below.
    auto* classPage = new QWidget;
    auto* classLayout = new QGridLayout(classPage);
    classLayout->addWidget(Card(QStringLiteral("ROC curve"), &board.Roc()), 0, 0);
    classLayout->addWidget(Card(QStringLiteral("Outcomes by model output"), &board.Classes()), 0,
                           1);
    classLayout->addWidget(
        Card(QStringLiteral("Model output and target, records ordered by output"), &board.Curve()),
        1, 0, 1, 2);
    classLayout->addWidget(
        Card(QStringLiteral("Predicted class of every record"), &board.Tapestry()), 2, 0, 1, 2);
    classLayout->setColumnStretch(0, 2);
    classLayout->setColumnStretch(1, 3);
    m_pages->addTab(classPage, QStringLiteral("Classification"));
    m_pageCharts.push_back(
        {QStringLiteral("Classification"),
         {QString::fromLatin1(chartname::kRoc), QString::fromLatin1(chartname::kClasses),
          QString::fromLatin1(chartname::kCurve), QString::fromLatin1(chartname::kTapestry)}});

    // The distributions of outputs and targets.
    auto* distributionPage = new QWidget;
    auto* distributionLayout = new QHBoxLayout(distributionPage);
    distributionLayout->addWidget(
        Card(QStringLiteral("Model output against target"), &board.Scatter()));
    distributionLayout->addWidget(
        Card(QStringLiteral("Distributions of target and output"), &board.Stacked()));
    m_pages->addTab(distributionPage, QStringLiteral("Distributions"));
    m_pageCharts.push_back(
        {QStringLiteral("Distributions"),
         {QString::fromLatin1(chartname::kScatter), QString::fromLatin1(chartname::kStacked)}});

    m_panel->PlaceGauges(&board.TrainingGauge(), &board.ValidationGauge());

    auto* central = new QWidget;
    auto* layout = new QHBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* panelScroll = new QScrollArea;
    panelScroll->setObjectName(QStringLiteral("scrControlPanel"));
    panelScroll->setWidget(m_panel);
    panelScroll->setWidgetResizable(true);
    panelScroll->setFrameShape(QFrame::NoFrame);
    panelScroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    panelScroll->setFixedWidth(kPanelWidth +
                               panelScroll->style()->pixelMetric(QStyle::PM_ScrollBarExtent));
    layout->addWidget(panelScroll);
    layout->addWidget(m_pages, 1);
    setCentralWidget(central);
    connect(m_pages, &QTabWidget::currentChanged, this, &GalleryWindow::OnPageChanged);
}

void GalleryWindow::BuildMenus() {
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    file->addAction(QStringLiteral("&Open CSV..."), QKeySequence::Open, this,
                    &GalleryWindow::OnOpenData);
    file->addAction(QStringLiteral("Use &Built-in Data"), this, &GalleryWindow::OnBuiltInData);
    file->addSeparator();
    file->addAction(QStringLiteral("Open &Project..."),
                    QKeySequence(QStringLiteral("Ctrl+Shift+O")), this,
                    &GalleryWindow::OnOpenProject);
    file->addAction(QStringLiteral("&Save Project..."), QKeySequence::Save, this,
                    &GalleryWindow::OnSaveProject);
    file->addSeparator();
    file->addAction(QStringLiteral("&Export Charts..."), this, &GalleryWindow::OnExportCharts);
    file->addSeparator();
    file->addAction(QStringLiteral("&Quit"), QKeySequence::Quit, this, &QWidget::close);

    QMenu* run = menuBar()->addMenu(QStringLiteral("&Run"));
    run->addAction(QStringLiteral("&Run"), QKeySequence(Qt::Key_F5), this, &GalleryWindow::OnRun);
    run->addAction(QStringLiteral("&Stop"), QKeySequence(Qt::SHIFT | Qt::Key_F5), this,
                   &GalleryWindow::OnStop);

    QMenu* chart = menuBar()->addMenu(QStringLiteral("&Chart"));
    chart->setObjectName(QStringLiteral("mnuChart"));
    chart->addAction(QStringLiteral("&Copy Chart"), QKeySequence(QStringLiteral("Ctrl+Shift+C")),
                     this, [this] { RunCurrentChartCommand(&chartcommands::CopyChart); });
    chart->addAction(QStringLiteral("Copy Chart &Data"),
                     QKeySequence(QStringLiteral("Ctrl+Shift+D")), this,
                     [this] { RunCurrentChartCommand(&chartcommands::CopyData); });
    chart->addSeparator();
    chart->addAction(QStringLiteral("&Print..."), QKeySequence::Print, this,
                     [this] { RunCurrentChartCommand(&chartcommands::Print); });
    chart->addAction(QStringLiteral("Print Pre&view..."), this, [this] {
        if (const auto entry = m_board->Entry(m_currentChart)) {
            try {
                chartcommands::PrintPreview(*entry, this);
            } catch (const std::exception& error) {
                ShowError(QStringLiteral("Print Preview"), QString::fromLocal8Bit(error.what()));
            }
        }
    });

    QMenu* view = menuBar()->addMenu(QStringLiteral("&View"));
    QAction* dark = view->addAction(QStringLiteral("&Dark Mode"));
    dark->setObjectName(QStringLiteral("actDarkMode"));
    dark->setCheckable(true);
    connect(dark, &QAction::toggled, this, &GalleryWindow::SetDarkMode);

    QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
    help->addAction(QStringLiteral("&About"), this, [this] {
        QMessageBox::about(
            this, QStringLiteral("About the gallery"),
            QStringLiteral("<b>TRV5Charts Gallery</b><p>Every chart of the TRV5Charts library on "
                           "a real modelling run: a logistic regression trained by an evolution "
                           "strategy. Right-click a chart (or press the menu key) for its "
                           "commands.</p><p>Licensed under the GPL, version 3 or later.</p>"));
    });
}

void GalleryWindow::SetDarkMode(bool pDark) {
    // The self-drawn charts take their backgrounds from the palette and choose their text
    // colours against them; the cards follow it too.
    QApplication::setPalette(pDark ? DarkPalette() : QApplication::style()->standardPalette());
    for (QFrame* card : findChildren<QFrame*>(QStringLiteral("card"))) {
        ColourCard(*card);
    }
}

void GalleryWindow::PrepareChartsForPeople() {
    for (const ChartEntry& entry : m_board->Entries()) {
        // The window's name for a chart is what a screen reader says; the chart describes its
        // data itself.
        entry.widget->setAccessibleName(entry.title);
        // A print failure of a self-drawn chart's own menu is told here; the Chart menu's
        // commands report theirs through ShowError as well.
        if (auto* progress = qobject_cast<RTChart*>(entry.widget)) {
            connect(progress, &RTChart::PrintFailed, this, &GalleryWindow::OnPrintFailed,
                    Qt::UniqueConnection);
        } else if (auto* bars = qobject_cast<BarChart*>(entry.widget)) {
            connect(bars, &BarChart::PrintFailed, this, &GalleryWindow::OnPrintFailed,
                    Qt::UniqueConnection);
        } else if (auto* roc = qobject_cast<ROCChart*>(entry.widget)) {
            connect(roc, &ROCChart::PrintFailed, this, &GalleryWindow::OnPrintFailed,
                    Qt::UniqueConnection);
        } else if (auto* blocks = qobject_cast<BlockPanel*>(entry.widget)) {
            connect(blocks, &BlockPanel::PrintFailed, this, &GalleryWindow::OnPrintFailed,
                    Qt::UniqueConnection);
        } else if (auto* tapestry = qobject_cast<BlockPanelSimple*>(entry.widget)) {
            connect(tapestry, &BlockPanelSimple::PrintFailed, this, &GalleryWindow::OnPrintFailed,
                    Qt::UniqueConnection);
        }
    }
    // Tab goes through the side panel top to bottom, then the page tabs, then each page's
    // charts in reading order, whatever order the widgets were made in.
    QList<QWidget*> order;
    CollectInLayoutOrder(m_panel->layout(), order);
    order << m_pages->tabBar();
    for (const Page& page : m_pageCharts) {
        for (const QString& name : page.charts) {
            if (const auto entry = m_board->Entry(name)) {
                order << entry->widget;
            }
        }
    }
    for (qsizetype i = 1; i < order.size(); ++i) {
        QWidget::setTabOrder(order[i - 1], order[i]);
    }
}

void GalleryWindow::OnPrintFailed(const QString& pMessage) {
    const auto entry = m_board->EntryContaining(qobject_cast<QWidget*>(sender()));
    ShowError(entry ? entry->title : QStringLiteral("Print"), pMessage);
}

void GalleryWindow::RunCurrentChartCommand(void (*pCommand)(const ChartEntry&)) {
    if (const auto entry = m_board->Entry(m_currentChart)) {
        try {
            pCommand(*entry);
        } catch (const std::exception& error) {
            ShowError(entry->title, QString::fromLocal8Bit(error.what()));
        }
    }
}

void GalleryWindow::StartRun() {
    const RunSettings settings = m_panel->Settings();
    m_session->Start(settings);
    m_panel->SetRunning(true);
    m_panel->ShowProgress(0, settings.Generations);
    m_panel->ShowMeasures(nullptr);
    m_topVariables->clear();
    statusBar()->showMessage(QStringLiteral("Running..."));
}

void GalleryWindow::OpenData(const QString& pPath) {
    m_session->LoadData(pPath);
    m_panel->ShowDataset(m_session->Data(), m_session->DataSource());
    m_panel->ShowMeasures(nullptr);
    m_topVariables->clear();
}

QString GalleryWindow::SaveProject(const QString& pPath) {
    QString path = pPath;
    if (QFileInfo(path).suffix().isEmpty()) {
        path += u'.' + kProjectExtension;
    }
    projectstate::Capture(*m_board, m_panel->Settings(), m_session->DataSource()).Save(path);
    return path;
}

void GalleryWindow::OpenProject(const QString& pPath) {
    const ProjectFile project = ProjectFile::Load(pPath);
    // The data first: when it cannot be read, nothing of the project is taken over.
    OpenData(project.DatasetSource());
    m_panel->SetSettings(project.Settings());
    projectstate::RestoreCharts(*m_board, project);
}

void GalleryWindow::SetCurrentChart(const QString& pName) {
    const auto entry = m_board->Entry(pName);
    if (!entry) {
        return;
    }
    m_currentChart = pName;
    m_currentChartLabel->setText(QStringLiteral("Current chart: %1").arg(entry->title));
}

void GalleryWindow::RevealChart(const QString& pName) {
    for (std::size_t i = 0; i < m_pageCharts.size(); ++i) {
        if (m_pageCharts[i].charts.contains(pName)) {
            m_pages->setCurrentIndex(static_cast<int>(i));
        }
    }
    // A layout request climbs one widget level per pass of the posted events (a word-wrapped
    // label's new height reaches its card, then the page): enough passes for the window's depth
    // leave the chart at the size it keeps, which export measures and gives back.
    constexpr int kLayoutLevels = 8;
    for (int level = 0; level < kLayoutLevels; ++level) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }
    QApplication::processEvents();
}

bool GalleryWindow::eventFilter(QObject* pWatched, QEvent* pEvent) {
    // A click on a chart or the focus moving into one makes it the current chart.
    if ((pEvent->type() == QEvent::MouseButtonPress || pEvent->type() == QEvent::FocusIn) &&
        pWatched->isWidgetType()) {
        if (const auto entry = m_board->EntryContaining(static_cast<QWidget*>(pWatched))) {
            SetCurrentChart(entry->name);
        }
    }
    return QMainWindow::eventFilter(pWatched, pEvent);
}

void GalleryWindow::closeEvent(QCloseEvent* pEvent) {
    m_session->Stop();
    pEvent->accept();
}

void GalleryWindow::OnPageChanged(int pIndex) {
    if (pIndex >= 0 && static_cast<std::size_t>(pIndex) < m_pageCharts.size()) {
        SetCurrentChart(m_pageCharts[static_cast<std::size_t>(pIndex)].charts.front());
    }
}

void GalleryWindow::OnOpenData() {
    const QString path =
        QFileDialog::getOpenFileName(this, QStringLiteral("Open CSV"), QString(),
                                     QStringLiteral("CSV files (*.csv);;All files (*)"));
    if (path.isEmpty()) {
        return;
    }
    try {
        OpenData(path);
        statusBar()->showMessage(QStringLiteral("Loaded %1").arg(QFileInfo(path).fileName()));
    } catch (const GalleryError& error) {
        ShowError(QStringLiteral("Open CSV"), error.Text());
    }
}

void GalleryWindow::OnBuiltInData() {
    try {
        OpenData(Dataset::BuiltInWdbcPath());
    } catch (const GalleryError& error) {
        ShowError(QStringLiteral("Built-in data"), error.Text());
    }
}

void GalleryWindow::OnOpenProject() {
    const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Open Project"),
                                                      QString(), kProjectFilter);
    if (path.isEmpty()) {
        return;
    }
    try {
        OpenProject(path);
        statusBar()->showMessage(
            QStringLiteral("Opened %1: press Run to compute the result charts again")
                .arg(QFileInfo(path).fileName()));
    } catch (const GalleryError& error) {
        ShowError(QStringLiteral("Open Project"), error.Text());
    }
}

void GalleryWindow::OnSaveProject() {
    QString path =
        QFileDialog::getSaveFileName(this, QStringLiteral("Save Project"),
                                     QStringLiteral("gallery.trv5gallery"), kProjectFilter);
    if (path.isEmpty()) {
        return;
    }
    try {
        path = SaveProject(path);
        statusBar()->showMessage(QStringLiteral("Saved %1").arg(QFileInfo(path).fileName()));
    } catch (const GalleryError& error) {
        ShowError(QStringLiteral("Save Project"), error.Text());
    }
}

void GalleryWindow::OnExportCharts() {
    const QString directory =
        QFileDialog::getExistingDirectory(this, QStringLiteral("Export Charts"));
    if (directory.isEmpty()) {
        return;
    }
    const QString current = m_currentChart;
    const int page = m_pages->currentIndex();
    try {
        ExportCharts(m_board->Entries(), directory,
                     [this](const ChartEntry& pChart) { RevealChart(pChart.name); });
        statusBar()->showMessage(QStringLiteral("Exported the charts to %1").arg(directory));
    } catch (const GalleryError& error) {
        ShowError(QStringLiteral("Export Charts"), error.Text());
    }
    m_pages->setCurrentIndex(page);
    SetCurrentChart(current);
}

void GalleryWindow::OnRun() {
    if (m_session->IsRunning()) {
        return;
    }
    try {
        StartRun();
    } catch (const GalleryError& error) {
        ShowError(QStringLiteral("Run"), error.Text());
    }
}

void GalleryWindow::OnStop() {
    m_session->Stop();
}

void GalleryWindow::OnRunFinished() {
    m_panel->SetRunning(false);
    const auto& results = m_session->LastResults();
    if (!results) {
        return;
    }
    // The run used the threshold it started with; the panel may have moved since.
    m_session->SetThreshold(m_panel->Threshold());
    m_panel->ShowMeasures(&*results);
    ShowTopVariables();
    statusBar()->showMessage(
        QStringLiteral("%1 after %2 generations: best fitness %3, AUC %4")
            .arg(results->Stopped() ? QStringLiteral("Stopped") : QStringLiteral("Finished"))
            .arg(results->GenerationsRun())
            .arg(NumberFormat::WithDigits(results->BestFitness(), 4))
            .arg(NumberFormat::WithDigits(results->AUC(), 4)));
}

void GalleryWindow::OnRunFailed(const QString& pMessage) {
    m_panel->SetRunning(false);
    statusBar()->showMessage(QStringLiteral("The run failed"));
    ShowError(QStringLiteral("Run"), pMessage);
}

void GalleryWindow::OnThresholdChanged(double pThreshold) {
    try {
        m_session->SetThreshold(pThreshold);
    } catch (const std::exception& error) {
        ShowError(QStringLiteral("Threshold"), QString::fromLocal8Bit(error.what()));
        return;
    }
    if (const auto& results = m_session->LastResults()) {
        m_panel->ShowMeasures(&*results);
    }
}

void GalleryWindow::ShowTopVariables() {
    const auto& results = m_session->LastResults();
    if (!results) {
        m_topVariables->clear();
        return;
    }
    const auto usage = results->VariableUsage();
    const QStringList& names = results->FeatureNames();
    std::vector<std::size_t> order(
        std::min<std::size_t>(usage.size(), static_cast<std::size_t>(names.size())));
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return usage[a] > usage[b]; });
    QStringList top;
    for (std::size_t i = 0; i < std::min<std::size_t>(order.size(), 4); ++i) {
        top << QStringLiteral("%1 (%2 %)")
                   .arg(names[static_cast<qsizetype>(order[i])],
                        NumberFormat::WithDigits(usage[order[i]], 1));
    }
    m_topVariables->setText(
        QStringLiteral("One bar per input variable, in data set order; the top of the chart is "
                       "%1 %. Leaned on most: %2.")
            .arg(QString::number(std::lround(m_board->Usage().MaxValue())),
                 top.join(QStringLiteral(", "))));
}

void GalleryWindow::ShowError(const QString& pTitle, const QString& pMessage) {
    if (m_errorSink) {
        m_errorSink(pTitle, pMessage);
        return;
    }
    QMessageBox::critical(this, pTitle, pMessage);
}

} // namespace trv5::gallery
