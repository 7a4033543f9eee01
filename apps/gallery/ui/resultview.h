#pragma once

namespace trv5 {
class RTChart;
}

namespace trv5::gallery {

class ChartBoard;
class Results;
struct RunSettings;

// What the gallery shows of a run: the progress chart prepared and fed generation by
// generation, and every result chart filled from the run's results.
namespace resultview {

// The fitness a run aims at, drawn as the progress chart's reference line.
double TargetFitness(const RunSettings& pSettings);

// Axis, three drip-feed series (best, average, validation) sized for the run, and the target
// line.
void PrepareProgress(RTChart& pChart, const RunSettings& pSettings);
void AddGeneration(RTChart& pChart, int pGeneration, double pBest, double pAverage,
                   double pValidation);

// Fills every result chart from pResults.
void ShowResults(ChartBoard& pBoard, const Results& pResults);
// What depends on the threshold: the curve fitting chart's cut-off and rings, the
// classification scatter plot and the accuracy gauges.
void ShowThreshold(ChartBoard& pBoard, const Results& pResults);

} // namespace resultview

} // namespace trv5::gallery
