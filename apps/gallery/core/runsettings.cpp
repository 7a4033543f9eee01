#include "runsettings.h"

#include "galleryerror.h"

#include <cmath>

namespace trv5::gallery {

namespace {

constexpr std::int32_t kMaxGenerations = 1'000'000;
constexpr std::int32_t kMaxOffspring = 10'000;
constexpr double kMaxStepSize = 100.0;

[[noreturn]] void OutOfRange(const QString& pName, const QString& pRange) {
    throw GalleryError(QStringLiteral("run settings"),
                       QStringLiteral("%1 must be %2").arg(pName, pRange));
}

bool Within(double pValue, double pLow, double pHigh) {
    return std::isfinite(pValue) && pValue >= pLow && pValue <= pHigh;
}

} // namespace

void RunSettings::Validate() const {
    if (Generations < 1 || Generations > kMaxGenerations) {
        OutOfRange(QStringLiteral("Generations"), QStringLiteral("1 to %1").arg(kMaxGenerations));
    }
    if (ParentCount < 1 || ParentCount > kMaxOffspring) {
        OutOfRange(QStringLiteral("ParentCount"), QStringLiteral("1 to %1").arg(kMaxOffspring));
    }
    if (OffspringCount < ParentCount || OffspringCount > kMaxOffspring) {
        OutOfRange(QStringLiteral("OffspringCount"),
                   QStringLiteral("ParentCount (%1) to %2").arg(ParentCount).arg(kMaxOffspring));
    }
    if (!Within(InitialStepSize, 0.0, kMaxStepSize) || InitialStepSize == 0.0) {
        OutOfRange(QStringLiteral("InitialStepSize"), QStringLiteral("above 0 and at most 100"));
    }
    if (!Within(ValidationFraction, 0.05, 0.9)) {
        OutOfRange(QStringLiteral("ValidationFraction"), QStringLiteral("0.05 to 0.9"));
    }
    if (!Within(Threshold, 0.0, 1.0)) {
        OutOfRange(QStringLiteral("Threshold"), QStringLiteral("0 to 1"));
    }
    if (Fitness != fmOneMinusBrier && Fitness != fmAccuracy) {
        OutOfRange(QStringLiteral("Fitness"), QStringLiteral("a known fitness measure"));
    }
    if (PaceMilliseconds < 0 || PaceMilliseconds > 1000) {
        OutOfRange(QStringLiteral("PaceMilliseconds"), QStringLiteral("0 to 1000"));
    }
}

QString FitnessMeasureName(FitnessMeasure pMeasure) {
    return pMeasure == fmAccuracy ? QStringLiteral("accuracy") : QStringLiteral("one-minus-brier");
}

bool FitnessMeasureFromName(const QString& pName, FitnessMeasure& pMeasure) {
    if (pName == QLatin1String("one-minus-brier")) {
        pMeasure = fmOneMinusBrier;
        return true;
    }
    if (pName == QLatin1String("accuracy")) {
        pMeasure = fmAccuracy;
        return true;
    }
    return false;
}

} // namespace trv5::gallery
