#include "selfdrawn/barchart_runs.h"

#include <algorithm>
#include <cmath>

namespace trv5::barchart {

namespace {

// Far beyond any raster, near enough to zero for int; FilledBox limits edges to the raster
// itself, so a run clipped here is clipped the same way there.
constexpr double kEdgeLimit = 1 << 30;

int Edge(double pDevice) {
    return static_cast<int>(std::nearbyint(std::clamp(pDevice, -kEdgeLimit, kEdgeLimit)));
}

} // namespace

BarRuns::BarRuns(platform::DrawingSurface& pSurface,
                 const platform::DrawingSurface::DeviceMapping& pMapping, std::int32_t pColour)
    : m_surface(pSurface), m_mapping(pMapping), m_colour(pColour), m_zero(pMapping.Y(0.0)) {}

void BarRuns::Add(double pX1, double pX2, double pValue) {
    const double x1 = m_mapping.X(pX1);
    const double x2 = m_mapping.X(pX2);
    const double y = m_mapping.Y(pValue);
    if (!std::isfinite(x1) || !std::isfinite(x2) || !std::isfinite(y) || !std::isfinite(m_zero)) {
        return;
    }
    const int left = Edge(std::min(x1, x2));
    const int right = std::max(Edge(std::max(x1, x2)), left + 1);
    const int top = Edge(std::min(m_zero, y));
    const int bottom = std::max(Edge(std::max(m_zero, y)), top + 1);
    if (m_open && left == m_left && right == m_right) {
        m_top = std::min(m_top, top);
        m_bottom = std::max(m_bottom, bottom);
        return;
    }
    Flush();
    m_open = true;
    m_left = left;
    m_right = right;
    m_top = top;
    m_bottom = bottom;
}

void BarRuns::Flush() {
    if (!m_open) {
        return;
    }
    m_open = false;
    // Back to user units on the edges themselves, which FilledBox maps back to these edges.
    const auto userX = [this](int pEdge) {
        return m_mapping.left + pEdge / m_mapping.xFactor;
    };
    const auto userY = [this](int pEdge) {
        return m_mapping.top + pEdge / m_mapping.yFactor;
    };
    m_surface.FilledBox(userX(m_left), userY(m_top), userX(m_right), userY(m_bottom), m_colour);
}

} // namespace trv5::barchart
