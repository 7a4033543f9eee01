#include "rtchart/chartlayout.h"

#include <trv5charts/localizationlib.h>
#include <trv5charts/numberformat.h>

#include <algorithm>
#include <cmath>

namespace trv5::rtchart {

namespace {

constexpr int kPad = 6;         // around the whole chart
constexpr int kLabelGap = 5;    // between a scale label and the plot frame
constexpr int kLegendGap = 16;  // between legend entries
constexpr int kMaxTicks = 40;   // per axis, whatever the size
constexpr int kMinPlotSide = 8; // below this the labels give way to the plot

struct Span {
    double low;
    double high;
};

bool Usable(double pLow, double pHigh) {
    return std::isfinite(pLow) && std::isfinite(pHigh) && pHigh > pLow &&
           std::isfinite(pHigh - pLow);
}

// Decimals that tell ticks pStep apart.
int DecimalsFor(double pStep) {
    if (!(pStep > 0.0) || !std::isfinite(pStep)) {
        return 0;
    }
    return std::clamp(static_cast<int>(-std::floor(std::log10(pStep) + 1e-9)), 0, 12);
}

QString ValueText(double pValue, int pDecimals, bool pPercent) {
    if (pPercent) {
        return LocalizationLib::FormatPercent(pValue / 100.0, std::max(0, pDecimals - 2));
    }
    // A tick at -0.0000001 of zero is zero.
    return NumberFormat::WithDigits(std::abs(pValue) < 1e-12 ? 0.0 : pValue, pDecimals);
}

int TextWidth(const QFontMetrics& pMetrics, const QString& pText) {
    return pText.isEmpty() ? 0 : pMetrics.horizontalAdvance(pText) + 2;
}

// Ticks strictly inside the span, at least pMinGap pixels from its ends and from each other.
std::vector<double> TicksInside(Span pSpan, double pPixels, double pMinGap, double* pStep) {
    std::vector<double> ticks;
    *pStep = 0.0;
    if (!Usable(pSpan.low, pSpan.high) || pPixels < 2.0 * pMinGap) {
        return ticks;
    }
    const double range = pSpan.high - pSpan.low;
    const double wanted = std::clamp(std::floor(pPixels / pMinGap), 1.0, double{kMaxTicks});
    const double step = NiceStep(range / wanted);
    if (!(step > 0.0) || !std::isfinite(step)) {
        return ticks;
    }
    *pStep = step;
    const double edge = pMinGap * range / pPixels;
    for (double i = std::ceil(pSpan.low / step); ticks.size() < kMaxTicks; i += 1.0) {
        const double value = i * step;
        if (!std::isfinite(value) || value > pSpan.high - edge * 0.75) {
            break;
        }
        if (value >= pSpan.low + edge * 0.75) {
            ticks.push_back(value);
        }
    }
    return ticks;
}

struct AxisTexts {
    PlacedText scale;
    PlacedText origin;
    std::vector<double> values;
    std::vector<PlacedText> ticks;
    int width = 0;
};

AxisTexts AxisTextsFor(const ValueAxisInfo& pAxis, int pPlotHeight, const QFontMetrics& pMetrics) {
    AxisTexts texts;
    if (!pAxis.present) {
        return texts;
    }
    const Span span{std::min(pAxis.minimum, pAxis.maximum), std::max(pAxis.minimum, pAxis.maximum)};
    double step = 0.0;
    texts.values = TicksInside(span, pPlotHeight, 2.2 * pMetrics.height(), &step);
    const int decimals = step > 0.0 ? DecimalsFor(step) : DecimalsFor((span.high - span.low) / 4);
    texts.scale.text = pAxis.topText.isEmpty()
                           ? ValueText(pAxis.maximum, decimals + 1, pAxis.percent)
                           : pAxis.topText;
    texts.origin.text = ValueText(pAxis.minimum, decimals + 1, pAxis.percent);
    texts.width =
        std::max(TextWidth(pMetrics, texts.scale.text), TextWidth(pMetrics, texts.origin.text));
    for (const double value : texts.values) {
        PlacedText tick;
        tick.text = ValueText(value, decimals, pAxis.percent);
        texts.width = std::max(texts.width, TextWidth(pMetrics, tick.text));
        texts.ticks.push_back(tick);
    }
    return texts;
}

// Entries flowed left to right into rows of pWidth pixels; returns the rows used.
int FlowLegend(const QStringList& pEntries, int pLeft, int pTop, int pWidth, int pRowHeight,
               const QFontMetrics& pMetrics, std::vector<QRect>& pRects) {
    int x = pLeft;
    int row = 0;
    for (const QString& entry : pEntries) {
        const int w = kLegendSwatchWidth + TextWidth(pMetrics, entry);
        if (x > pLeft && x + w > pLeft + pWidth) {
            x = pLeft;
            ++row;
        }
        pRects.emplace_back(x, pTop + row * pRowHeight, std::min(w, pWidth), pRowHeight);
        x += w + kLegendGap;
    }
    return pEntries.isEmpty() ? 0 : row + 1;
}

// The y pixel of a value on an axis mapped onto the plot.
int PixelOf(double pValue, const ValueAxisInfo& pAxis, const QRect& pPlot) {
    const double fraction = (pAxis.maximum - pValue) / (pAxis.maximum - pAxis.minimum);
    return pPlot.top() + static_cast<int>(std::lround(fraction * pPlot.height()));
}

} // namespace

double NiceStep(double pRoughStep) {
    if (!(pRoughStep > 0.0) || !std::isfinite(pRoughStep)) {
        return 0.0;
    }
    const double power = std::pow(10.0, std::floor(std::log10(pRoughStep)));
    for (const double factor : {1.0, 2.0, 5.0, 10.0}) {
        if (factor * power >= pRoughStep * (1.0 - 1e-9)) {
            return factor * power;
        }
    }
    return 10.0 * power;
}

ChartLayout ComputeLayout(const LayoutInput& pInput, const QFontMetrics& pMetrics) {
    ChartLayout layout;
    // Every legend entry has a place, empty when it does not fit.
    layout.legend.resize(static_cast<std::size_t>(pInput.legend.size()));
    const int width = std::max(0, pInput.size.width());
    const int height = std::max(0, pInput.size.height());
    const int th = pMetrics.height();
    const int rowHeight = th + 2;

    // The legend: entries flowed under the plot across the chart's width.
    QStringList entries = pInput.legend;
    if (!pInput.lineLegend.isEmpty()) {
        entries << pInput.lineLegend;
    }
    std::vector<QRect> legendRects;
    const int legendRows = FlowLegend(entries, kPad, 0, std::max(1, width - 2 * kPad), rowHeight,
                                      pMetrics, legendRects);
    const bool titles = (pInput.axes[0].present && !pInput.axes[0].title.isEmpty()) ||
                        (pInput.axes[1].present && !pInput.axes[1].title.isEmpty());

    // Vertical space, given up from the least needed part down when the chart is small: the
    // legend, then the point numbers, then every label.
    bool showLegend = legendRows > 0;
    bool showX = pInput.showXAxis;
    bool showLabels = true;
    int top = 0;
    int bottom = 0;
    for (int attempt = 0; attempt < 4; ++attempt) {
        top = showLabels ? kPad + (titles ? rowHeight + th / 2 : th / 2 + 1) : 1;
        bottom = showLabels ? th / 2 + kPad : 1;
        if (showX) {
            bottom += rowHeight;
        }
        if (showLegend) {
            bottom += 4 + legendRows * rowHeight;
        }
        if (height - top - bottom >= std::max(kMinPlotSide, showLegend ? 3 * th : 0)) {
            break;
        }
        if (showLegend) {
            showLegend = false;
        } else if (showX) {
            showX = false;
        } else {
            showLabels = false;
        }
    }
    const int plotHeight = std::max(0, height - top - bottom);

    // Horizontal space: scale labels beside the plot, wide enough for the widest of them.
    std::array<AxisTexts, 2> texts;
    int left = 1;
    int right = 1;
    if (showLabels) {
        for (std::size_t a = 0; a < 2; ++a) {
            texts[a] = AxisTextsFor(pInput.axes[a], plotHeight, pMetrics);
        }
        left = kPad + (pInput.axes[0].present ? texts[0].width + kLabelGap : 0);
        right = kPad + (pInput.axes[1].present ? texts[1].width + kLabelGap : 0);
        if (showX && !pInput.axes[1].present) {
            // Room for half of the last point number under the plot's right edge.
            right = std::max(
                right,
                TextWidth(pMetrics, QString::number(pInput.xFirst + pInput.xLast, 'f', 0)) / 2 + 2);
        }
        if (width - left - right < kMinPlotSide) {
            showLabels = false;
            showLegend = false;
            showX = false;
            left = right = 1;
            texts = {};
        }
    }
    if (!showLabels) {
        // Too small for any label: the plot inside its frame, and nothing else.
        layout.plot = QRect(std::min(1, width), std::min(1, height), std::max(0, width - 2),
                            std::max(0, height - 2));
        return layout;
    }
    layout.plot = QRect(left, top, std::max(0, width - left - right), plotHeight);
    const QRect& plot = layout.plot;

    // Value axes: the top and bottom values level with the plot's edges, ticks between them.
    for (std::size_t a = 0; a < 2; ++a) {
        const ValueAxisInfo& axis = pInput.axes[a];
        if (!axis.present) {
            continue;
        }
        const bool leftSide = a == 0;
        const auto place = [&](PlacedText pText, int pCentreY) {
            const int w = TextWidth(pMetrics, pText.text);
            const int x = leftSide ? plot.left() - kLabelGap - w : plot.right() + 1 + kLabelGap;
            pText.rect = QRect(x, pCentreY - th / 2, w, th);
            return pText;
        };
        layout.scale[a] = place(texts[a].scale, plot.top());
        layout.origin[a] = place(texts[a].origin, plot.bottom() + 1);
        for (std::size_t t = 0; t < texts[a].values.size(); ++t) {
            layout.valueTicks[a].push_back(
                place(texts[a].ticks[t], PixelOf(texts[a].values[t], axis, plot)));
        }
        if (leftSide) {
            layout.gridY = texts[a].values;
        }
        if (!axis.title.isEmpty()) {
            const int w = std::min(TextWidth(pMetrics, axis.title), std::max(0, plot.width() / 2));
            layout.title[a].text = axis.title;
            layout.title[a].rect =
                QRect(leftSide ? plot.left() - 1 : plot.right() + 2 - w, kPad, w, th);
        }
    }

    // Point numbers under the plot, at round numbers of what they count (points or
    // generations); the grid lines stand at the same indexes.
    if (showX) {
        const double last = std::max(1.0, pInput.xLast);
        const double first = std::isfinite(pInput.xFirst) ? pInput.xFirst : 0.0;
        const int widest = std::max(TextWidth(pMetrics, QString::number(first, 'f', 0)),
                                    TextWidth(pMetrics, QString::number(first + last, 'f', 0)));
        double step = 0.0;
        std::vector<double> ticks =
            TicksInside({0.0, last}, plot.width(), widest + 2.5 * th, &step);
        step = std::max(1.0, std::round(step));
        ticks.clear();
        for (double value = std::ceil(first / step) * step - first;
             value <= last && ticks.size() < kMaxTicks; value += step) {
            ticks.push_back(value);
        }
        const int y = plot.bottom() + 1 + 3;
        for (const double value : ticks) {
            PlacedText tick;
            tick.text = QString::number(first + value, 'f', 0);
            const int w = TextWidth(pMetrics, tick.text);
            const int centre =
                plot.left() + static_cast<int>(std::lround(value / last * plot.width()));
            tick.rect = QRect(centre - w / 2, y, w, th);
            layout.xTicks.push_back(tick);
            layout.gridX.push_back(value);
        }
    }

    if (showLegend) {
        const int legendTop = plot.bottom() + 1 + th / 2 + (showX ? rowHeight : 0) + 4;
        for (std::size_t i = 0; i < legendRects.size(); ++i) {
            const QRect rect = legendRects[i].translated(0, legendTop);
            if (i < layout.legend.size()) {
                layout.legend[i] = rect;
            } else {
                layout.lineLegend = rect;
            }
        }
    }
    return layout;
}

QString VisibleCaption(const QString& pText) {
    if (pText.size() <= kMaxCaptionLength) {
        return pText;
    }
    qsizetype keep = kMaxCaptionLength - 1;
    // Never split a surrogate pair.
    if (pText.at(keep - 1).isHighSurrogate()) {
        --keep;
    }
    return pText.left(keep) + QChar(0x2026);
}

} // namespace trv5::rtchart
