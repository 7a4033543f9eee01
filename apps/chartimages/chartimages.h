#pragma once

#include <QImage>
#include <QString>

#include <cmath>
#include <cstdint>
#include <functional>
#include <numbers>
#include <vector>

namespace trv5::images {

// One picture of the gallery: a file name (without directory) and a function that builds the
// chart, feeds it its data and returns what the chart shows on screen.
struct ImageJob {
    QString fileName;
    std::function<QImage()> render;
};

std::vector<ImageJob>& Jobs();

// A small fixed generator (not the standard distributions, whose output differs between
// standard libraries), so that every picture is the same on every machine.
class FixedRandom {
public:
    explicit FixedRandom(std::uint64_t pSeed) : m_state(pSeed) {}
    double Uniform() {
        m_state = m_state * 6364136223846793005ULL + 1442695040888963407ULL;
        return (static_cast<double>(m_state >> 11) + 0.5) / 9007199254740992.0;
    }
    double Normal(double pMean, double pSpread) {
        const double radius = std::sqrt(-2.0 * std::log(Uniform()));
        return pMean + pSpread * radius * std::cos(2.0 * std::numbers::pi * Uniform());
    }

private:
    std::uint64_t m_state;
};

// A file-scope instance registers a picture before main runs:
//   static const RegisterImage reg("barchart.png", [] { ...; return chart.grab().toImage(); });
struct RegisterImage {
    RegisterImage(const QString& pFileName, std::function<QImage()> pRender);
};

} // namespace trv5::images
