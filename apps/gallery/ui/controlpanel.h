#pragma once

#include "core/runsettings.h"

#include <QWidget>

class QComboBox;
class QDoubleSpinBox;
class QGridLayout;
class QLabel;
class QProgressBar;
class QPushButton;
class QSlider;
class QSpinBox;

namespace trv5::gallery {

class Dataset;
class Results;

// The panel beside the charts: the data set, the run settings, Run and Stop with the progress
// bar, the threshold and the confusion counts with the two accuracy gauges.
class ControlPanel : public QWidget {
    Q_OBJECT

public:
    explicit ControlPanel(QWidget* pParent = nullptr);

    // The settings as edited; the ones the panel does not show keep the values last set.
    RunSettings Settings() const;
    void SetSettings(const RunSettings& pSettings);
    double Threshold() const;

    void ShowDataset(const Dataset& pData, const QString& pSource);
    void SetRunning(bool pRunning);
    void ShowProgress(int pGeneration, int pTotal);
    // The confusion counts, accuracies and AUC; null empties them.
    void ShowMeasures(const Results* pResults);
    // The accuracy gauges go into the panel's measures box.
    void PlaceGauges(QWidget* pTraining, QWidget* pValidation);

signals:
    void runRequested();
    void stopRequested();
    void thresholdChanged(double pThreshold);

private:
    QWidget* CreateDataBox();
    QWidget* CreateSettingsBox();
    QWidget* CreateRunBox();
    QWidget* CreateThresholdBox();
    QWidget* CreateMeasuresBox();
    void OnSliderMoved(int pValue);
    void OnSpinChanged(double pValue);

    RunSettings m_settings;
    QLabel* m_dataName = nullptr;
    QLabel* m_dataFacts = nullptr;
    QSpinBox* m_seed = nullptr;
    QSpinBox* m_generations = nullptr;
    QComboBox* m_fitness = nullptr;
    QSpinBox* m_pace = nullptr;
    QPushButton* m_run = nullptr;
    QPushButton* m_stop = nullptr;
    QProgressBar* m_progress = nullptr;
    QSlider* m_thresholdSlider = nullptr;
    QDoubleSpinBox* m_threshold = nullptr;
    QGridLayout* m_measures = nullptr;
    QLabel* m_truePositives = nullptr;
    QLabel* m_falsePositives = nullptr;
    QLabel* m_falseNegatives = nullptr;
    QLabel* m_trueNegatives = nullptr;
    QLabel* m_trainingAccuracy = nullptr;
    QLabel* m_validationAccuracy = nullptr;
    QLabel* m_auc = nullptr;
};

} // namespace trv5::gallery
