#include "platform/drawingsurface.h"

#include "platform/colour.h"

#include <QFontMetricsF>
#include <QLineF>
#include <QPaintEvent>
#include <QRect>
#include <QResizeEvent>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace trv5::platform {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Rasters beyond this many pixels (a 16384 x 16384 picture) are not allocated: such a widget
// cannot be shown anyway, and the allocation alone could exhaust memory.
constexpr double kMaxRasterPixels = 16384.0 * 16384.0;

// Ratios outside this range are not real screens; they would only make rasters absurdly large
// or empty.
constexpr double kMinRatio = 0.25;
constexpr double kMaxRatio = 16.0;

// Circles whose radius exceeds this many device pixels are not drawn: the rasterizer works in
// fixed point and such a circle is a mistake in the caller's scale, not a picture.
constexpr double kMaxCircleRadius = 1 << 20;

// Text anchored further than this outside the raster cannot reach it.
constexpr double kMaxTextOffset = 1 << 20;

bool Finite(double pValue) {
    return std::isfinite(pValue);
}

// Clips the segment to the rectangle (Liang-Barsky); false when nothing of it is inside. A
// clipped end is put exactly on the edge that cut it, so that a horizontal or vertical line
// with far-off ends (where t carries no usable precision) stays exactly on its row or column.
bool ClipSegment(double& pX1, double& pY1, double& pX2, double& pY2, double pLeft, double pTop,
                 double pRight, double pBottom) {
    const double dx = pX2 - pX1;
    const double dy = pY2 - pY1;
    if (!Finite(dx) || !Finite(dy)) {
        return false;
    }
    double t0 = 0.0;
    double t1 = 1.0;
    int edge0 = -1;
    int edge1 = -1;
    const double p[4] = {-dx, dx, -dy, dy};
    const double q[4] = {pX1 - pLeft, pRight - pX1, pY1 - pTop, pBottom - pY1};
    for (int i = 0; i < 4; ++i) {
        if (p[i] == 0.0) {
            if (q[i] < 0.0) {
                return false;
            }
            continue;
        }
        const double r = q[i] / p[i];
        if (p[i] < 0.0) {
            if (r > t0) {
                t0 = r;
                edge0 = i;
            }
        } else if (r < t1) {
            t1 = r;
            edge1 = i;
        }
        if (t0 > t1) {
            return false;
        }
    }
    const double edges[4] = {pLeft, pRight, pTop, pBottom};
    const auto pointAt = [&](int pEdge, double& pX, double& pY) {
        if (pEdge < 0) {
            return;
        }
        if (pEdge < 2) {
            pX = edges[pEdge];
            pY = dy == 0.0 ? pY1 : pY1 + (pX - pX1) * (dy / dx);
        } else {
            pY = edges[pEdge];
            pX = dx == 0.0 ? pX1 : pX1 + (pY - pY1) * (dx / dy);
        }
    };
    double x1 = pX1;
    double y1 = pY1;
    double x2 = pX2;
    double y2 = pY2;
    pointAt(edge0, x1, y1);
    pointAt(edge1, x2, y2);
    if (!Finite(x1) || !Finite(y1) || !Finite(x2) || !Finite(y2)) {
        return false;
    }
    // Rounding in the interpolation of a very long segment can leave a point off the edge; the
    // rasterizer must only ever see bounded coordinates.
    pX1 = std::clamp(x1, pLeft, pRight);
    pY1 = std::clamp(y1, pTop, pBottom);
    pX2 = std::clamp(x2, pLeft, pRight);
    pY2 = std::clamp(y2, pTop, pBottom);
    return true;
}

// A device coordinate as a whole pixel edge, limited to a margin around the raster so that the
// conversion to int is always defined.
int PixelEdge(double pValue, double pLimit) {
    return static_cast<int>(std::nearbyint(std::clamp(pValue, -pLimit, pLimit)));
}

std::int32_t ColourValue(QRgb pPixel) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(qRed(pPixel)) |
                                     (static_cast<std::uint32_t>(qGreen(pPixel)) << 8) |
                                     (static_cast<std::uint32_t>(qBlue(pPixel)) << 16));
}

Qt::PenStyle PenStyleOf(DrawingSurface::DrawStyle pStyle) {
    switch (pStyle) {
    case DrawingSurface::DrawStyle::Dash:
        return Qt::DashLine;
    case DrawingSurface::DrawStyle::Dot:
        return Qt::DotLine;
    case DrawingSurface::DrawStyle::DashDot:
        return Qt::DashDotLine;
    case DrawingSurface::DrawStyle::DashDotDot:
        return Qt::DashDotDotLine;
    case DrawingSurface::DrawStyle::Invisible:
        return Qt::NoPen;
    case DrawingSurface::DrawStyle::Solid:
        break;
    }
    return Qt::SolidLine;
}

QStringList LinesOf(const QString& pText) {
    return pText.split(QLatin1Char('\n'));
}

} // namespace

DrawingSurface::DrawingSurface(QWidget* pParent) : QWidget(pParent) {
    // The raster covers the whole widget, so Qt need not erase the background first.
    setAttribute(Qt::WA_OpaquePaintEvent);
    SyncRaster();
}

DrawingSurface::~DrawingSurface() {
    EndPainting();
}

// ---- coordinate system ----

double DrawingSurface::ScaleLeft() const {
    return m_scaleMode == ScaleMode::Pixel ? 0.0 : m_scaleLeft;
}

double DrawingSurface::ScaleTop() const {
    return m_scaleMode == ScaleMode::Pixel ? 0.0 : m_scaleTop;
}

double DrawingSurface::ScaleWidth() const {
    return m_scaleMode == ScaleMode::Pixel ? static_cast<double>(width()) : m_scaleWidth;
}

double DrawingSurface::ScaleHeight() const {
    return m_scaleMode == ScaleMode::Pixel ? static_cast<double>(height()) : m_scaleHeight;
}

void DrawingSurface::EnterUserMode() {
    if (m_scaleMode == ScaleMode::Pixel) {
        m_scaleLeft = 0.0;
        m_scaleTop = 0.0;
        m_scaleWidth = width();
        m_scaleHeight = height();
        m_scaleMode = ScaleMode::User;
    }
}

void DrawingSurface::SetScale(double pLeft, double pTop, double pWidth, double pHeight) {
    m_scaleMode = ScaleMode::User;
    m_scaleLeft = pLeft;
    m_scaleTop = pTop;
    m_scaleWidth = pWidth;
    m_scaleHeight = pHeight;
}

void DrawingSurface::SetScaleLeft(double pValue) {
    EnterUserMode();
    m_scaleLeft = pValue;
}

void DrawingSurface::SetScaleTop(double pValue) {
    EnterUserMode();
    m_scaleTop = pValue;
}

void DrawingSurface::SetScaleWidth(double pValue) {
    EnterUserMode();
    m_scaleWidth = pValue;
}

void DrawingSurface::SetScaleHeight(double pValue) {
    EnterUserMode();
    m_scaleHeight = pValue;
}

void DrawingSurface::SetScaleMode(ScaleMode pMode) {
    if (pMode == ScaleMode::User) {
        EnterUserMode();
    } else {
        m_scaleMode = ScaleMode::Pixel;
    }
}

double DrawingSurface::ScaleX(double pWidth, ScaleMode pFrom, ScaleMode pTo) const {
    if (pFrom == pTo) {
        return pWidth;
    }
    const double pixels = width();
    const double units = ScaleWidth();
    if (pixels == 0.0 || units == 0.0 || !Finite(units)) {
        return kNaN;
    }
    return pFrom == ScaleMode::User ? pWidth * (pixels / units) : pWidth * (units / pixels);
}

double DrawingSurface::ScaleY(double pHeight, ScaleMode pFrom, ScaleMode pTo) const {
    if (pFrom == pTo) {
        return pHeight;
    }
    const double pixels = height();
    const double units = ScaleHeight();
    if (pixels == 0.0 || units == 0.0 || !Finite(units)) {
        return kNaN;
    }
    return pFrom == ScaleMode::User ? pHeight * (pixels / units) : pHeight * (units / pixels);
}

double DrawingSurface::ToPixelX(double pUserX) const {
    return ScaleX(pUserX - ScaleLeft(), ScaleMode::User, ScaleMode::Pixel);
}

double DrawingSurface::ToPixelY(double pUserY) const {
    return ScaleY(pUserY - ScaleTop(), ScaleMode::User, ScaleMode::Pixel);
}

double DrawingSurface::ToUserX(double pPixelX) const {
    return ScaleLeft() + ScaleX(pPixelX, ScaleMode::Pixel, ScaleMode::User);
}

double DrawingSurface::ToUserY(double pPixelY) const {
    return ScaleTop() + ScaleY(pPixelY, ScaleMode::Pixel, ScaleMode::User);
}

bool DrawingSurface::CanMap() const {
    const double w = ScaleWidth();
    const double h = ScaleHeight();
    return !m_raster.isNull() && w != 0.0 && h != 0.0 && Finite(w) && Finite(h) &&
           Finite(ScaleLeft()) && Finite(ScaleTop());
}

std::optional<DrawingSurface::DeviceMapping> DrawingSurface::Mapping() const {
    SyncRaster();
    return MappingInForce();
}

std::optional<DrawingSurface::DeviceMapping> DrawingSurface::MappingInForce() const {
    if (!CanMap()) {
        return std::nullopt;
    }
    // Through the raster's own size rather than the ratio, so that the whole scale lands exactly
    // on the whole raster even when size x ratio is not a whole number.
    return DeviceMapping{ScaleLeft(), ScaleTop(), m_raster.width() / ScaleWidth(),
                         m_raster.height() / ScaleHeight()};
}

std::optional<DrawingSurface::DevicePoint> DrawingSurface::ToDevice(double pX, double pY) const {
    const std::optional<DeviceMapping> mapping = MappingInForce();
    if (!mapping) {
        return std::nullopt;
    }
    const double x = mapping->X(pX);
    const double y = mapping->Y(pY);
    if (!Finite(x) || !Finite(y)) {
        return std::nullopt;
    }
    return DevicePoint{x, y};
}

// ---- colours and styles ----

void DrawingSurface::SetForeColor(std::int32_t pColour) {
    m_foreColor = pColour;
    m_penDirty = true;
}

void DrawingSurface::SetFillColor(std::int32_t pColour) {
    m_fillColor = pColour;
}

void DrawingSurface::SetFillStyle(FillStyle pStyle) {
    m_fillStyle = pStyle;
}

void DrawingSurface::SetDrawStyle(DrawStyle pStyle) {
    m_drawStyle = pStyle;
    m_penDirty = true;
}

void DrawingSurface::SetDrawWidth(int pWidth) {
    // The upper bound only keeps the device width arithmetic far from overflow.
    m_drawWidth = std::clamp(pWidth, 1, 1000);
    m_penDirty = true;
}

int DrawingSurface::PenWidthInDevicePixels() const {
    return std::max(1, static_cast<int>(std::lround(m_drawWidth * m_dpr)));
}

// ---- raster and painter ----

double DrawingSurface::EffectiveRatio() const {
    const double ratio = m_dprOverride > 0.0 ? m_dprOverride : devicePixelRatioF();
    return Finite(ratio) ? std::clamp(ratio, kMinRatio, kMaxRatio) : 1.0;
}

double DrawingSurface::DevicePixelRatio() const {
    SyncRaster();
    return m_dpr;
}

void DrawingSurface::SetDevicePixelRatioForTesting(double pRatio) {
    m_dprOverride = Finite(pRatio) && pRatio > 0.0 ? std::clamp(pRatio, kMinRatio, kMaxRatio) : 0.0;
    SyncRaster();
}

void DrawingSurface::SyncRaster() const {
    if (m_rasterLayout != size() || m_dpr != EffectiveRatio()) {
        // A new size starts a new picture (the chart redraws for it); a new ratio alone, as
        // when the window moves to another screen, keeps the picture.
        Reallocate(m_rasterLayout == size());
    }
}

void DrawingSurface::Reallocate(bool pKeepPicture) const {
    EndPainting();
    const QImage previous = m_raster;
    m_rasterLayout = size();
    m_dpr = EffectiveRatio();
    m_penDirty = true;
    m_raster = QImage();

    const double deviceWidth = std::round(width() * m_dpr);
    const double deviceHeight = std::round(height() * m_dpr);
    if (deviceWidth < 1.0 || deviceHeight < 1.0 || deviceWidth * deviceHeight > kMaxRasterPixels) {
        return;
    }
    QImage raster(static_cast<int>(deviceWidth), static_cast<int>(deviceHeight),
                  QImage::Format_RGB32);
    if (raster.isNull()) {
        return;
    }
    raster.fill(ToQColor(m_backColor));
    // Text is laid out at the widget's resolution, so that it measures on the raster as it
    // does on the widget (TextWidth) and lands where the measurement says.
    raster.setDotsPerMeterX(qRound(logicalDpiX() / 0.0254));
    raster.setDotsPerMeterY(qRound(logicalDpiY() / 0.0254));
    if (pKeepPicture && !previous.isNull()) {
        QPainter painter(&raster);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(QRectF(0.0, 0.0, deviceWidth, deviceHeight), previous,
                          QRectF(previous.rect()));
    }
    raster.setDevicePixelRatio(m_dpr);
    m_raster = raster;
}

QPainter* DrawingSurface::Painter() {
    SyncRaster();
    if (m_painter) {
        return &*m_painter;
    }
    if (m_raster.isNull() || (m_band && m_scratch.size() != m_raster.size())) {
        return nullptr;
    }
    // The painter works in device pixels: with the ratio on the image, Qt would scale every
    // coordinate and a shape could no longer be placed on exact pixels.
    m_raster.setDevicePixelRatio(1.0);
    m_painter.emplace(&Target());
    if (!m_painter->isActive()) {
        m_painter.reset();
        m_raster.setDevicePixelRatio(m_dpr);
        return nullptr;
    }
    m_painter->setRenderHint(QPainter::Antialiasing, false);
    m_penDirty = true;
    return &*m_painter;
}

void DrawingSurface::EndPainting() const {
    if (m_painter) {
        m_painter.reset();
        m_raster.setDevicePixelRatio(m_dpr);
    }
}

void DrawingSurface::ApplyPen(QPainter& pPainter) {
    if (!m_penDirty) {
        return;
    }
    QPen pen(ToQColor(m_foreColor));
    pen.setWidth(PenWidthInDevicePixels());
    pen.setStyle(PenStyleOf(m_drawStyle));
    // Square caps make a solid line cover its end cells; dashes keep flat caps so that the
    // gaps stay as long as the pattern says.
    pen.setCapStyle(m_drawStyle == DrawStyle::Solid ? Qt::SquareCap : Qt::FlatCap);
    pen.setJoinStyle(Qt::MiterJoin);
    pPainter.setPen(pen);
    m_penDirty = false;
}

void DrawingSurface::ScheduleUpdate() {
    // A band repaints its own strip when it is copied in.
    if (m_band) {
        return;
    }
    if (!m_updatePending) {
        m_updatePending = true;
        update();
    }
}

void DrawingSurface::BeginColumnBand(int pLeft, int pRight) {
    SyncRaster();
    EndPainting();
    const int width = m_raster.width();
    const int left = std::clamp(pLeft, 0, std::max(0, width - 1));
    m_band.emplace(left, std::clamp(pRight, left, std::max(0, width - 1)));
    if (m_raster.isNull()) {
        return;
    }
    if (m_scratch.size() != m_raster.size() || m_scratch.format() != m_raster.format()) {
        m_scratch = QImage(m_raster.size(), m_raster.format());
        m_scratch.setDotsPerMeterX(m_raster.dotsPerMeterX());
        m_scratch.setDotsPerMeterY(m_raster.dotsPerMeterY());
    }
}

void DrawingSurface::EndColumnBand() {
    if (!m_band) {
        return;
    }
    const auto [left, right] = *m_band;
    EndPainting();
    m_band.reset();
    SyncRaster();
    if (m_raster.isNull() || m_scratch.size() != m_raster.size() ||
        m_scratch.format() != m_raster.format() || m_raster.depth() != 32) {
        return;
    }
    const std::size_t offset = static_cast<std::size_t>(left) * 4;
    const std::size_t bytes = static_cast<std::size_t>(right - left + 1) * 4;
    for (int y = 0; y < m_raster.height(); ++y) {
        std::memcpy(m_raster.scanLine(y) + offset, m_scratch.constScanLine(y) + offset, bytes);
    }
    // The strip of widget pixels that shows those device columns.
    const int from = static_cast<int>(std::floor(left / m_dpr));
    const int to = static_cast<int>(std::ceil((right + 1) / m_dpr));
    update(QRect(from, 0, to - from, height()));
}

QSize DrawingSurface::DeviceSize() const {
    SyncRaster();
    return m_raster.size();
}

const QImage& DrawingSurface::Raster() const {
    SyncRaster();
    EndPainting();
    return m_raster;
}

void DrawingSurface::paintEvent(QPaintEvent* pEvent) {
    m_updatePending = false;
    SyncRaster();
    EndPainting();
    QPainter painter(this);
    if (m_raster.isNull()) {
        painter.fillRect(pEvent->rect(), ToQColor(m_backColor));
        return;
    }
    painter.drawImage(QPointF(0.0, 0.0), m_raster);
}

void DrawingSurface::resizeEvent(QResizeEvent* pEvent) {
    QWidget::resizeEvent(pEvent);
    SyncRaster();
}

// ---- drawing ----

void DrawingSurface::FillCells(double pX, double pY, const QColor& pColour) {
    QPainter* painter = Painter();
    if (painter == nullptr) {
        return;
    }
    const int w = PenWidthInDevicePixels();
    const double limit = std::max(m_raster.width(), m_raster.height()) + 2.0 * w;
    painter->fillRect(QRect(PixelEdge(pX, limit), PixelEdge(pY, limit), w, w), pColour);
    ScheduleUpdate();
}

void DrawingSurface::StrokeCells(double pX1, double pY1, double pX2, double pY2) {
    if (m_drawStyle == DrawStyle::Invisible) {
        return;
    }
    QPainter* painter = Painter();
    if (painter == nullptr) {
        return;
    }
    ApplyPen(*painter);
    if (StrokeCellsWith(*painter, pX1, pY1, pX2, pY2)) {
        ScheduleUpdate();
    }
}

bool DrawingSurface::StrokeCellsWith(QPainter& pPainter, double pX1, double pY1, double pX2,
                                     double pY2) {
    if (pX1 == pX2 && pY1 == pY2) {
        // A stroke of no length still marks its cell, as a picture box does.
        FillColumnCells(pPainter, pX1, pY1, pY2, ToQColor(m_foreColor));
        return true;
    }
    const std::optional<QLineF> line = StrokeLine(pX1, pY1, pX2, pY2);
    if (!line) {
        return false;
    }
    pPainter.drawLine(*line);
    return true;
}

std::optional<QLineF> DrawingSurface::StrokeLine(double pX1, double pY1, double pX2,
                                                 double pY2) const {
    const int w = PenWidthInDevicePixels();
    const double half = w / 2.0;
    double x1 = pX1 + half;
    double y1 = pY1 + half;
    double x2 = pX2 + half;
    double y2 = pY2 + half;
    // Clipping first keeps far-off end points out of the rasterizer's fixed-point range.
    const double margin = 2.0 * w + 2.0;
    if (!ClipSegment(x1, y1, x2, y2, -margin, -margin, m_raster.width() + margin,
                     m_raster.height() + margin)) {
        return std::nullopt;
    }
    return QLineF(x1, y1, x2, y2);
}

void DrawingSurface::FillColumnCells(QPainter& pPainter, double pX, double pY1, double pY2,
                                     const QColor& pColour) {
    const int w = PenWidthInDevicePixels();
    const double limit = std::max(m_raster.width(), m_raster.height()) + 2.0 * w;
    const int left = PixelEdge(pX, limit);
    const int top = PixelEdge(std::min(pY1, pY2), limit);
    const int bottom = PixelEdge(std::max(pY1, pY2), limit);
    const QRect cells(left, top, w, bottom - top + w);
    QImage& image = Target();
    // A narrow, tall rectangle costs the painter a call per row; written straight into the
    // picture it is a store per pixel. That is exactly what the painter does for an opaque colour
    // on 32-bit pixels (it draws without clip or transformation here), and the picture is the
    // painter's own as long as nothing shares it.
    if (image.depth() != 32 || pColour.alpha() != 255 || !image.isDetached()) {
        pPainter.fillRect(cells, pColour);
        return;
    }
    const QRect visible = cells.intersected(image.rect());
    if (visible.isEmpty()) {
        return;
    }
    const QRgb value = pColour.rgb();
    const qsizetype stride = image.bytesPerLine();
    uchar* row = image.bits() + visible.top() * stride + static_cast<qsizetype>(visible.left()) * 4;
    for (int y = visible.top(); y <= visible.bottom(); ++y, row += stride) {
        std::fill_n(reinterpret_cast<QRgb*>(row), visible.width(), value);
    }
}

void DrawingSurface::CellLines(std::span<const CellLine> pLines) {
    if (pLines.empty() || m_drawStyle == DrawStyle::Invisible) {
        return;
    }
    QPainter* painter = Painter();
    if (painter == nullptr) {
        return;
    }
    ApplyPen(*painter);
    bool drawn = false;
    if (m_drawStyle != DrawStyle::Solid) {
        for (const CellLine& line : pLines) {
            if (Finite(line.x1) && Finite(line.y1) && Finite(line.x2) && Finite(line.y2)) {
                drawn = StrokeCellsWith(*painter, line.x1, line.y1, line.x2, line.y2) || drawn;
            }
        }
    } else {
        // A solid line within one column covers exactly the cells from its top to its bottom
        // end (square caps), so it is written as a rectangle; the others go to the rasterizer
        // together. All are one colour, so the order among them does not matter.
        const QColor colour = ToQColor(m_foreColor);
        m_lineBuffer.clear();
        for (const CellLine& line : pLines) {
            if (!Finite(line.x1) || !Finite(line.y1) || !Finite(line.x2) || !Finite(line.y2)) {
                continue;
            }
            if (line.x1 == line.x2) {
                FillColumnCells(*painter, line.x1, line.y1, line.y2, colour);
                drawn = true;
            } else if (const std::optional<QLineF> stroke =
                           StrokeLine(line.x1, line.y1, line.x2, line.y2)) {
                m_lineBuffer.push_back(*stroke);
            }
        }
        if (!m_lineBuffer.empty()) {
            painter->drawLines(m_lineBuffer.data(), static_cast<int>(m_lineBuffer.size()));
            drawn = true;
        }
    }
    if (drawn) {
        ScheduleUpdate();
    }
}

void DrawingSurface::Cls() {
    m_currentX = 0.0;
    m_currentY = 0.0;
    if (QPainter* painter = Painter()) {
        QRect area = m_raster.rect();
        if (m_band) {
            area = QRect(m_band->first, 0, m_band->second - m_band->first + 1, m_raster.height());
        }
        painter->fillRect(area, ToQColor(m_backColor));
        ScheduleUpdate();
    }
}

void DrawingSurface::Line(double pX1, double pY1, double pX2, double pY2) {
    m_currentX = pX2;
    m_currentY = pY2;
    SyncRaster();
    const auto from = ToDevice(pX1, pY1);
    const auto to = ToDevice(pX2, pY2);
    if (!from || !to) {
        return;
    }
    StrokeCells(std::floor(from->x), std::floor(from->y), std::floor(to->x), std::floor(to->y));
}

void DrawingSurface::LineTo(double pX, double pY) {
    Line(m_currentX, m_currentY, pX, pY);
}

void DrawingSurface::Box(double pX1, double pY1, double pX2, double pY2) {
    m_currentX = pX2;
    m_currentY = pY2;
    SyncRaster();
    const auto a = ToDevice(pX1, pY1);
    const auto b = ToDevice(pX2, pY2);
    if (!a || !b || m_drawStyle == DrawStyle::Invisible) {
        return;
    }
    // The outline runs along the inside of the pixels FilledBox would fill, so an outline
    // drawn over a filled box frames exactly that box.
    const int w = PenWidthInDevicePixels();
    const double limit = std::max(m_raster.width(), m_raster.height()) + 4.0 * w;
    const int left = PixelEdge(std::min(a->x, b->x), limit);
    const int right = std::max(PixelEdge(std::max(a->x, b->x), limit), left + 1);
    const int top = PixelEdge(std::min(a->y, b->y), limit);
    const int bottom = std::max(PixelEdge(std::max(a->y, b->y), limit), top + 1);
    const double innerRight = std::max(left, right - w);
    const double innerBottom = std::max(top, bottom - w);
    StrokeCells(left, top, innerRight, top);
    StrokeCells(left, innerBottom, innerRight, innerBottom);
    StrokeCells(left, top, left, innerBottom);
    StrokeCells(innerRight, top, innerRight, innerBottom);
}

void DrawingSurface::FilledBox(double pX1, double pY1, double pX2, double pY2,
                               std::int32_t pColour) {
    m_currentX = pX2;
    m_currentY = pY2;
    SyncRaster();
    const auto a = ToDevice(pX1, pY1);
    const auto b = ToDevice(pX2, pY2);
    if (!a || !b) {
        return;
    }
    QPainter* painter = Painter();
    if (painter == nullptr) {
        return;
    }
    const double limit = std::max(m_raster.width(), m_raster.height()) + 2.0;
    const int left = PixelEdge(std::min(a->x, b->x), limit);
    const int right = std::max(PixelEdge(std::max(a->x, b->x), limit), left + 1);
    const int top = PixelEdge(std::min(a->y, b->y), limit);
    const int bottom = std::max(PixelEdge(std::max(a->y, b->y), limit), top + 1);
    painter->fillRect(QRect(left, top, right - left, bottom - top), ToQColor(pColour));
    ScheduleUpdate();
}

void DrawingSurface::RoundRect(double pX1, double pY1, double pX2, double pY2, double pCornerWidth,
                               double pCornerHeight) {
    m_currentX = pX2;
    m_currentY = pY2;
    SyncRaster();
    const auto a = ToDevice(pX1, pY1);
    const auto b = ToDevice(pX2, pY2);
    if (!a || !b || m_drawStyle == DrawStyle::Invisible || !Finite(pCornerWidth) ||
        !Finite(pCornerHeight)) {
        return;
    }
    QPainter* painter = Painter();
    if (painter == nullptr) {
        return;
    }
    const int w = PenWidthInDevicePixels();
    const double limit = std::max(m_raster.width(), m_raster.height()) + 4.0 * w;
    const int left = PixelEdge(std::min(a->x, b->x), limit);
    const int right = std::max(PixelEdge(std::max(a->x, b->x), limit), left + 1);
    const int top = PixelEdge(std::min(a->y, b->y), limit);
    const int bottom = std::max(PixelEdge(std::max(a->y, b->y), limit), top + 1);
    // The pen runs along the inside of the outer pixels, as in Box.
    const double half = w / 2.0;
    const QRectF path(left + half, top + half, std::max(0, right - left - w),
                      std::max(0, bottom - top - w));
    const double rx = std::min(std::abs(pCornerWidth * (m_raster.width() / ScaleWidth())) / 2.0,
                               path.width() / 2.0);
    const double ry = std::min(std::abs(pCornerHeight * (m_raster.height() / ScaleHeight())) / 2.0,
                               path.height() / 2.0);
    ApplyPen(*painter);
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(path, Finite(rx) ? rx : 0.0, Finite(ry) ? ry : 0.0);
    ScheduleUpdate();
}

void DrawingSurface::Circle(double pCenterX, double pCenterY, double pRadius) {
    SyncRaster();
    const auto centre = ToDevice(pCenterX, pCenterY);
    if (!centre) {
        return;
    }
    const double radius = std::abs(pRadius * (m_raster.width() / ScaleWidth()));
    if (!Finite(radius) || radius > kMaxCircleRadius) {
        return;
    }
    if (centre->x + radius < -1.0 || centre->y + radius < -1.0 ||
        centre->x - radius > m_raster.width() + 1.0 ||
        centre->y - radius > m_raster.height() + 1.0) {
        return;
    }
    if (radius < 0.5) {
        // Too small for an ellipse; a dot keeps the position visible and hit-testable.
        if (m_drawStyle != DrawStyle::Invisible) {
            FillCells(std::floor(centre->x), std::floor(centre->y), ToQColor(m_foreColor));
        }
        return;
    }
    QPainter* painter = Painter();
    if (painter == nullptr) {
        return;
    }
    ApplyPen(*painter);
    if (m_fillStyle == FillStyle::Solid) {
        painter->setBrush(ToQColor(m_fillColor));
    } else {
        painter->setBrush(Qt::NoBrush);
    }
    painter->drawEllipse(QPointF(centre->x, centre->y), radius, radius);
    ScheduleUpdate();
}

void DrawingSurface::PSet(double pX, double pY, std::int32_t pColour) {
    m_currentX = pX;
    m_currentY = pY;
    SyncRaster();
    if (const auto point = ToDevice(pX, pY)) {
        FillCells(std::floor(point->x), std::floor(point->y), ToQColor(pColour));
    }
}

std::int32_t DrawingSurface::Point(double pX, double pY) const {
    SyncRaster();
    const auto point = ToDevice(pX, pY);
    if (!point) {
        return -1;
    }
    // The open painter need not end: the raster engine writes straight into the image, so the
    // pixels are current, and hit-testing while a frame is drawn stays cheap.
    const double x = std::floor(point->x);
    const double y = std::floor(point->y);
    if (x < 0.0 || y < 0.0 || x >= m_raster.width() || y >= m_raster.height()) {
        return -1;
    }
    return ColourValue(m_raster.pixel(static_cast<int>(x), static_cast<int>(y)));
}

// ---- whole device rows ----

void DrawingSurface::PutDeviceRows(int pLeft, int pTop, int pRows,
                                   std::span<const std::int32_t> pColours) {
    SyncRaster();
    // The rows are written straight into the image, which must not be shared with a painter.
    EndPainting();
    if (m_raster.isNull() || pRows <= 0 || pColours.empty()) {
        return;
    }
    const std::int64_t left = pLeft;
    const std::int64_t first = std::max<std::int64_t>(left, 0);
    const std::int64_t last =
        std::min<std::int64_t>(left + static_cast<std::int64_t>(pColours.size()), m_raster.width());
    const std::int64_t top = std::max<std::int64_t>(pTop, 0);
    const std::int64_t bottom =
        std::min<std::int64_t>(static_cast<std::int64_t>(pTop) + pRows, m_raster.height());
    if (first >= last || top >= bottom) {
        return;
    }
    // One row is converted, the others are copies of it. Neighbouring pixels mostly share a
    // colour, so the last conversion is kept.
    auto* row = reinterpret_cast<QRgb*>(m_raster.scanLine(static_cast<int>(top)));
    std::int32_t lastColour = pColours[static_cast<std::size_t>(first - left)];
    QRgb lastRgb = ToQRgb(lastColour);
    for (std::int64_t x = first; x < last; ++x) {
        const std::int32_t colour = pColours[static_cast<std::size_t>(x - left)];
        if (colour != lastColour) {
            lastColour = colour;
            lastRgb = ToQRgb(colour);
        }
        row[x] = lastRgb;
    }
    const auto bytes = static_cast<std::size_t>(last - first) * sizeof(QRgb);
    for (std::int64_t y = top + 1; y < bottom; ++y) {
        auto* target = reinterpret_cast<QRgb*>(m_raster.scanLine(static_cast<int>(y)));
        std::memcpy(target + first, row + first, bytes);
    }
    ScheduleUpdate();
}

// ---- text ----

void DrawingSurface::DrawTextAt(const QString& pText, double pX, double pY, double pDegrees,
                                const QFont& pFont) {
    const auto origin = ToDevice(pX, pY);
    if (!origin || !Finite(pDegrees) || std::abs(origin->x) > kMaxTextOffset ||
        std::abs(origin->y) > kMaxTextOffset || pText.isEmpty()) {
        return;
    }
    QPainter* painter = Painter();
    if (painter == nullptr) {
        return;
    }
    painter->save();
    painter->setPen(ToQColor(m_foreColor));
    painter->setFont(pFont);
    painter->translate(origin->x, origin->y);
    painter->rotate(-std::fmod(pDegrees, 360.0));
    // The raster's resolution matches the widget's, so scaling by the ratio gives text of the
    // size TextWidth and TextHeight measure.
    painter->scale(m_dpr, m_dpr);
    painter->drawText(QPointF(0.0, painter->fontMetrics().ascent()), pText);
    painter->restore();
    ScheduleUpdate();
}

void DrawingSurface::Print(const QString& pText) {
    PrintRotated(pText, m_currentX, m_currentY, 0.0, font());
}

void DrawingSurface::PrintRotated(const QString& pText, double pX, double pY, double pDegrees,
                                  const QFont& pFont) {
    SyncRaster();
    m_currentX = pX;
    m_currentY = pY;
    const double lineHeight = QFontMetricsF(pFont, this).height();
    for (const QString& line : LinesOf(pText)) {
        DrawTextAt(line, m_currentX, m_currentY, pDegrees, pFont);
        // The next line starts at the left edge, one line lower on the screen whichever way
        // the user scale runs.
        const double next = ToUserY(ToPixelY(m_currentY) + lineHeight);
        m_currentX = ScaleLeft();
        if (Finite(next)) {
            m_currentY = next;
        }
    }
}

double DrawingSurface::TextWidth(const QString& pText) const {
    const QFontMetricsF metrics(font(), this);
    double widest = 0.0;
    for (const QString& line : LinesOf(pText)) {
        widest = std::max(widest, metrics.horizontalAdvance(line));
    }
    return std::abs(ScaleX(widest, ScaleMode::Pixel, ScaleMode::User));
}

double DrawingSurface::TextHeight(const QString& pText) const {
    const QFontMetricsF metrics(font(), this);
    const double lines = static_cast<double>(LinesOf(pText).size());
    return std::abs(ScaleY(lines * metrics.height(), ScaleMode::Pixel, ScaleMode::User));
}

} // namespace trv5::platform
