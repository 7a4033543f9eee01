#include "ui/controlpanel.h"

#include "core/dataset.h"
#include "core/results.h"

#include <trv5charts/numberformat.h>

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>

#include <cmath>
#include <limits>

namespace trv5::gallery {

namespace {

constexpr int kSliderSteps = 100;

QString Percent(double pShare) {
    return NumberFormat::WithDigits(pShare * 100.0, 1) + QStringLiteral(" %");
}

QLabel* ValueLabel(const QString& pObjectName) {
    auto* label = new QLabel(QStringLiteral("-"));
    label->setObjectName(pObjectName);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

} // namespace

ControlPanel::ControlPanel(QWidget* pParent) : QWidget(pParent) {
    setObjectName(QStringLiteral("controlPanel"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->setSpacing(10);
    layout->addWidget(CreateDataBox());
    layout->addWidget(CreateSettingsBox());
    layout->addWidget(CreateRunBox());
    layout->addWidget(CreateThresholdBox());
    layout->addWidget(CreateMeasuresBox());
    layout->addStretch(1);
    setMinimumWidth(300);
    SetSettings(RunSettings{});
    ShowMeasures(nullptr);
}

QWidget* ControlPanel::CreateDataBox() {
    auto* box = new QGroupBox(QStringLiteral("Data"));
    auto* layout = new QVBoxLayout(box);
    m_dataName = new QLabel;
    m_dataName->setObjectName(QStringLiteral("lblDataName"));
    m_dataName->setWordWrap(true);
    QFont bold = m_dataName->font();
    bold.setBold(true);
    m_dataName->setFont(bold);
    m_dataFacts = new QLabel;
    m_dataFacts->setObjectName(QStringLiteral("lblDataFacts"));
    m_dataFacts->setWordWrap(true);
    layout->addWidget(m_dataName);
    layout->addWidget(m_dataFacts);
    return box;
}

QWidget* ControlPanel::CreateSettingsBox() {
    auto* box = new QGroupBox(QStringLiteral("Run settings"));
    auto* form = new QFormLayout(box);
    m_seed = new QSpinBox;
    m_seed->setObjectName(QStringLiteral("spnSeed"));
    m_seed->setRange(1, std::numeric_limits<int>::max());
    m_generations = new QSpinBox;
    m_generations->setObjectName(QStringLiteral("spnGenerations"));
    m_generations->setRange(1, 100000);
    m_generations->setSingleStep(50);
    m_fitness = new QComboBox;
    m_fitness->setObjectName(QStringLiteral("cboFitness"));
    m_fitness->addItem(QStringLiteral("1 - Brier score"), fmOneMinusBrier);
    m_fitness->addItem(QStringLiteral("Accuracy"), fmAccuracy);
    m_pace = new QSpinBox;
    m_pace->setObjectName(QStringLiteral("spnPace"));
    m_pace->setRange(0, 1000);
    m_pace->setSuffix(QStringLiteral(" ms"));
    m_pace->setToolTip(QStringLiteral("Least time per generation, so the run can be watched"));
    form->addRow(QStringLiteral("Seed"), m_seed);
    form->addRow(QStringLiteral("Generations"), m_generations);
    form->addRow(QStringLiteral("Fitness"), m_fitness);
    form->addRow(QStringLiteral("Pace"), m_pace);
    return box;
}

QWidget* ControlPanel::CreateRunBox() {
    auto* box = new QWidget;
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* buttons = new QHBoxLayout;
    m_run = new QPushButton(QStringLiteral("Run"));
    m_run->setObjectName(QStringLiteral("btnRun"));
    m_run->setDefault(true);
    m_stop = new QPushButton(QStringLiteral("Stop"));
    m_stop->setObjectName(QStringLiteral("btnStop"));
    m_stop->setEnabled(false);
    buttons->addWidget(m_run);
    buttons->addWidget(m_stop);
    m_progress = new QProgressBar;
    m_progress->setObjectName(QStringLiteral("prgRun"));
    m_progress->setFormat(QStringLiteral("Generation %v of %m"));
    m_progress->setValue(0);
    layout->addLayout(buttons);
    layout->addWidget(m_progress);
    // Before a run the bar counts to the generations set, so it never promises another number.
    connect(m_generations, &QSpinBox::valueChanged, this, [this](int pGenerations) {
        if (m_run->isEnabled()) {
            ShowProgress(0, pGenerations);
        }
    });
    connect(m_run, &QPushButton::clicked, this, &ControlPanel::runRequested);
    connect(m_stop, &QPushButton::clicked, this, &ControlPanel::stopRequested);
    return box;
}

QWidget* ControlPanel::CreateThresholdBox() {
    auto* box = new QGroupBox(QStringLiteral("Threshold"));
    auto* layout = new QHBoxLayout(box);
    m_thresholdSlider = new QSlider(Qt::Horizontal);
    m_thresholdSlider->setObjectName(QStringLiteral("sldThreshold"));
    m_thresholdSlider->setRange(0, kSliderSteps);
    m_threshold = new QDoubleSpinBox;
    m_threshold->setObjectName(QStringLiteral("spnThreshold"));
    m_threshold->setRange(0.0, 1.0);
    m_threshold->setDecimals(2);
    m_threshold->setSingleStep(0.01);
    m_threshold->setToolTip(QStringLiteral("Outputs at or above the threshold are positive"));
    layout->addWidget(m_thresholdSlider, 1);
    layout->addWidget(m_threshold);
    connect(m_thresholdSlider, &QSlider::valueChanged, this, &ControlPanel::OnSliderMoved);
    connect(m_threshold, &QDoubleSpinBox::valueChanged, this, &ControlPanel::OnSpinChanged);
    return box;
}

QWidget* ControlPanel::CreateMeasuresBox() {
    auto* box = new QGroupBox(QStringLiteral("Classification"));
    m_measures = new QGridLayout(box);
    m_truePositives = ValueLabel(QStringLiteral("lblTruePositives"));
    m_falsePositives = ValueLabel(QStringLiteral("lblFalsePositives"));
    m_falseNegatives = ValueLabel(QStringLiteral("lblFalseNegatives"));
    m_trueNegatives = ValueLabel(QStringLiteral("lblTrueNegatives"));
    m_auc = ValueLabel(QStringLiteral("lblAUC"));
    m_trainingAccuracy = ValueLabel(QStringLiteral("lblTrainingAccuracy"));
    m_validationAccuracy = ValueLabel(QStringLiteral("lblValidationAccuracy"));
    m_measures->addWidget(new QLabel(QStringLiteral("True positives")), 0, 0);
    m_measures->addWidget(m_truePositives, 0, 1);
    m_measures->addWidget(new QLabel(QStringLiteral("False positives")), 1, 0);
    m_measures->addWidget(m_falsePositives, 1, 1);
    m_measures->addWidget(new QLabel(QStringLiteral("False negatives")), 2, 0);
    m_measures->addWidget(m_falseNegatives, 2, 1);
    m_measures->addWidget(new QLabel(QStringLiteral("True negatives")), 3, 0);
    m_measures->addWidget(m_trueNegatives, 3, 1);
    m_measures->addWidget(new QLabel(QStringLiteral("Area under the ROC curve")), 4, 0);
    m_measures->addWidget(m_auc, 4, 1);
    m_measures->addWidget(new QLabel(QStringLiteral("Training accuracy")), 5, 0);
    m_measures->addWidget(m_trainingAccuracy, 5, 1);
    // Row 6: the training gauge.
    m_measures->addWidget(new QLabel(QStringLiteral("Validation accuracy")), 7, 0);
    m_measures->addWidget(m_validationAccuracy, 7, 1);
    // Row 8: the validation gauge.
    return box;
}

void ControlPanel::PlaceGauges(QWidget* pTraining, QWidget* pValidation) {
    m_measures->addWidget(pTraining, 6, 0, 1, 2);
    m_measures->addWidget(pValidation, 8, 0, 1, 2);
}

RunSettings ControlPanel::Settings() const {
    RunSettings settings = m_settings;
    settings.Seed = static_cast<std::uint64_t>(m_seed->value());
    settings.Generations = m_generations->value();
    settings.Fitness = static_cast<FitnessMeasure>(m_fitness->currentData().toInt());
    settings.PaceMilliseconds = m_pace->value();
    settings.Threshold = m_threshold->value();
    return settings;
}

void ControlPanel::SetSettings(const RunSettings& pSettings) {
    m_settings = pSettings;
    // Seeds beyond the spin box's range stay in m_settings and are shown clamped.
    const bool seedFits = pSettings.Seed <= static_cast<std::uint64_t>(m_seed->maximum());
    m_seed->setValue(seedFits ? static_cast<int>(pSettings.Seed) : m_seed->maximum());
    m_generations->setValue(pSettings.Generations);
    if (m_run->isEnabled()) {
        ShowProgress(0, pSettings.Generations);
    }
    m_fitness->setCurrentIndex(m_fitness->findData(pSettings.Fitness));
    m_pace->setValue(pSettings.PaceMilliseconds);
    const QSignalBlocker blockSpin(m_threshold);
    const QSignalBlocker blockSlider(m_thresholdSlider);
    m_threshold->setValue(pSettings.Threshold);
    m_thresholdSlider->setValue(static_cast<int>(std::lround(pSettings.Threshold * kSliderSteps)));
}

double ControlPanel::Threshold() const {
    return m_threshold->value();
}

void ControlPanel::ShowDataset(const Dataset& pData, const QString& pSource) {
    const bool builtIn = pSource == Dataset::BuiltInWdbcPath();
    m_dataName->setText(builtIn ? QStringLiteral("Breast cancer (Wisconsin diagnostic)")
                                : QFileInfo(pSource).fileName());
    m_dataName->setToolTip(pSource);
    m_dataFacts->setText(QStringLiteral("%1 records, %2 features\n%3 \"%4\" (positive), %5 \"%6\"")
                             .arg(pData.RecordCount())
                             .arg(pData.FeatureCount())
                             .arg(pData.PositiveCount())
                             .arg(pData.PositiveClass())
                             .arg(pData.RecordCount() - pData.PositiveCount())
                             .arg(pData.NegativeClass()));
}

void ControlPanel::SetRunning(bool pRunning) {
    m_run->setEnabled(!pRunning);
    m_stop->setEnabled(pRunning);
    for (QWidget* setting : {static_cast<QWidget*>(m_seed), static_cast<QWidget*>(m_generations),
                             static_cast<QWidget*>(m_fitness), static_cast<QWidget*>(m_pace)}) {
        setting->setEnabled(!pRunning);
    }
}

void ControlPanel::ShowProgress(int pGeneration, int pTotal) {
    m_progress->setMaximum(pTotal);
    m_progress->setValue(pGeneration);
}

void ControlPanel::ShowMeasures(const Results* pResults) {
    if (pResults == nullptr) {
        for (QLabel* label : {m_truePositives, m_falsePositives, m_falseNegatives, m_trueNegatives,
                              m_auc, m_trainingAccuracy, m_validationAccuracy}) {
            label->setText(QStringLiteral("-"));
        }
        return;
    }
    const ConfusionCounts& counts = pResults->Confusion();
    m_truePositives->setText(QString::number(counts.TruePositives));
    m_falsePositives->setText(QString::number(counts.FalsePositives));
    m_falseNegatives->setText(QString::number(counts.FalseNegatives));
    m_trueNegatives->setText(QString::number(counts.TrueNegatives));
    m_auc->setText(pResults->AUC() < 0.0 ? QStringLiteral("undefined")
                                         : NumberFormat::WithDigits(pResults->AUC(), 4));
    m_trainingAccuracy->setText(Percent(pResults->TrainingConfusion().Accuracy()));
    m_validationAccuracy->setText(Percent(pResults->ValidationConfusion().Accuracy()));
}

void ControlPanel::OnSliderMoved(int pValue) {
    const double threshold = static_cast<double>(pValue) / kSliderSteps;
    {
        const QSignalBlocker block(m_threshold);
        m_threshold->setValue(threshold);
    }
    emit thresholdChanged(threshold);
}

void ControlPanel::OnSpinChanged(double pValue) {
    {
        const QSignalBlocker block(m_thresholdSlider);
        m_thresholdSlider->setValue(static_cast<int>(std::lround(pValue * kSliderSteps)));
    }
    emit thresholdChanged(pValue);
}

} // namespace trv5::gallery
