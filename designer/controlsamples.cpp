#include "controlsamples.h"

#include <trv5charts/trv5charts.h>

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace trv5::designer {

namespace {

constexpr int kIconSize = 32;
const QColor kInk(60, 60, 60);
const QColor kRed(200, 40, 30);
const QColor kBlue(30, 90, 180);
const QColor kGreen(40, 150, 70);

using IconDrawing = std::function<void(QPainter&)>;

void Polyline(QPainter& pPainter, const QColor& pColour, std::initializer_list<QPointF> pPoints) {
    pPainter.setPen(QPen(pColour, 2.0));
    pPainter.drawPolyline(std::data(pPoints), static_cast<int>(pPoints.size()));
}

void Dots(QPainter& pPainter, const QColor& pColour, std::initializer_list<QPointF> pPoints) {
    pPainter.setPen(Qt::NoPen);
    pPainter.setBrush(pColour);
    for (const QPointF& point : pPoints) {
        pPainter.drawEllipse(point, 2.0, 2.0);
    }
}

// The axes every chart icon shares: a vertical and a horizontal line meeting at the bottom left.
void Axes(QPainter& pPainter) {
    pPainter.setPen(QPen(kInk, 1.5));
    pPainter.drawLine(QPointF(4, 3), QPointF(4, 28));
    pPainter.drawLine(QPointF(4, 28), QPointF(29, 28));
}

const std::map<QString, IconDrawing>& Drawings() {
    static const std::map<QString, IconDrawing> drawings{
        {QStringLiteral("trv5::RTChart"),
         [](QPainter& p) {
             Axes(p);
             Polyline(p, kRed, {{5, 24}, {10, 14}, {16, 10}, {22, 8}, {28, 7}});
             Polyline(p, kBlue, {{5, 26}, {10, 21}, {16, 17}, {22, 15}, {28, 14}});
         }},
        {QStringLiteral("trv5::BarChart"),
         [](QPainter& p) {
             Axes(p);
             p.setPen(Qt::NoPen);
             p.setBrush(kBlue);
             const int heights[] = {10, 18, 7, 22, 14};
             for (int i = 0; i < 5; ++i) {
                 p.drawRect(QRectF(6.0 + 4.6 * i, 28.0 - heights[i], 3.6, heights[i]));
             }
         }},
        {QStringLiteral("trv5::ROCChart"),
         [](QPainter& p) {
             Axes(p);
             p.setPen(QPen(kInk, 1.0, Qt::DotLine));
             p.drawLine(QPointF(4, 28), QPointF(29, 3));
             Polyline(p, kRed, {{4, 28}, {6, 14}, {11, 8}, {19, 5}, {29, 3}});
         }},
        {QStringLiteral("trv5::VerticalLabel"),
         [](QPainter& p) {
             p.translate(22, 29);
             p.rotate(-90);
             QFont font = p.font();
             font.setPixelSize(14);
             font.setBold(true);
             p.setFont(font);
             p.setPen(kInk);
             p.drawText(QRectF(0, -14, 26, 18), Qt::AlignCenter, QStringLiteral("Abc"));
         }},
        {QStringLiteral("trv5::ScatterPlot"),
         [](QPainter& p) {
             Axes(p);
             Dots(p, kBlue, {{8, 24}, {11, 19}, {14, 21}, {17, 15}, {20, 16}, {23, 10}, {26, 8}});
             p.setPen(QPen(kRed, 1.5));
             p.drawLine(QPointF(6, 26), QPointF(29, 6));
         }},
        {QStringLiteral("trv5::CurveFitting"),
         [](QPainter& p) {
             Axes(p);
             Polyline(p, kBlue, {{5, 26}, {16, 26}, {16, 6}, {29, 6}});
             Polyline(p, kRed, {{5, 25}, {11, 23}, {14, 19}, {18, 12}, {22, 8}, {29, 7}});
         }},
        {QStringLiteral("trv5::CLScatterPlot"),
         [](QPainter& p) {
             Axes(p);
             Dots(p, kGreen, {{7, 12}, {9, 20}, {12, 8}, {13, 16}, {19, 22}});
             Dots(p, kRed, {{20, 10}, {22, 18}, {25, 7}, {26, 14}, {14, 24}});
             p.setPen(QPen(kInk, 1.0, Qt::DashLine));
             p.drawLine(QPointF(17, 3), QPointF(17, 28));
         }},
        {QStringLiteral("trv5::StackedDistributionChart"),
         [](QPainter& p) {
             Axes(p);
             p.setPen(Qt::NoPen);
             const int lower[] = {4, 8, 11, 7, 3};
             const int upper[] = {3, 6, 9, 12, 6};
             for (int i = 0; i < 5; ++i) {
                 const double x = 6.0 + 4.6 * i;
                 p.setBrush(kBlue);
                 p.drawRect(QRectF(x, 28.0 - lower[i], 3.6, lower[i]));
                 p.setBrush(kRed);
                 p.drawRect(QRectF(x, 28.0 - lower[i] - upper[i], 3.6, upper[i]));
             }
         }},
        {QStringLiteral("trv5::BlockPanel"),
         [](QPainter& p) {
             // Four by four blocks, deeper blue the more an item is used, pale where unused.
             const int uses[] = {9, 3, 0, 6, 1, 8, 4, 0, 7, 2, 9, 5, 0, 6, 3, 8};
             p.setPen(Qt::NoPen);
             for (int i = 0; i < 16; ++i) {
                 p.setBrush(uses[i] == 0 ? QColor(235, 235, 235)
                                         : QColor::fromHsv(210, 40 + 23 * uses[i], 200));
                 p.drawRect(QRectF(3.0 + 7.0 * (i % 4), 3.0 + 7.0 * (i / 4), 6.0, 6.0));
             }
         }},
        {QStringLiteral("trv5::BlockPanelSimple"),
         [](QPainter& p) {
             // A tapestry of small records, high in red and low in green, in rows.
             p.setPen(Qt::NoPen);
             for (int i = 0; i < 64; ++i) {
                 p.setBrush((i * 7 + i / 8) % 3 == 0 ? kRed : kGreen);
                 p.drawRect(QRectF(2.0 + 3.5 * (i % 8), 2.0 + 3.5 * (i / 8), 3.0, 3.0));
             }
         }},
    };
    return drawings;
}

void SampleProgress(RTChart& pChart) {
    auto axis = std::make_shared<Axis>();
    axis->Init(0.0, 1.0, false);
    axis->SetName(QStringLiteral("Fitness"));
    pChart.SetMainYAxis(axis);
    constexpr int kGenerations = 60;
    const struct {
        const char* name;
        std::int32_t colour;
        double start;
        double end;
    } lines[] = {{"Best", 0x1E28C8, 0.55, 0.93}, {"Average", 0xB45A1E, 0.35, 0.8}};
    for (const auto& line : lines) {
        const std::int32_t index = pChart.AddSeries(nullptr, false, QString::fromLatin1(line.name));
        const auto series = pChart.GetSeries(index);
        series->Init(kGenerations, 0.0, 1.0, DripFeed, false);
        series->SetColour(line.colour);
        for (int generation = 0; generation < kGenerations; ++generation) {
            // A run that improves quickly, then levels off.
            const double progress = 1.0 - std::exp(-generation / 12.0);
            pChart.AddPoint(index, line.start + (line.end - line.start) * progress);
        }
    }
    pChart.Refresh();
}

void SampleBars(BarChart& pChart) {
    const std::vector<double> values{3.0, 7.5, 5.0, 9.0, 4.0, 6.5, 8.0, 2.5};
    pChart.Init(static_cast<std::int32_t>(values.size()), 10.0F, ctMultiVerticalBars,
                BarChart::kDoubleValues, 0.0F);
    pChart.SetDoubleData(values);
    pChart.Redraw();
}

// Usage counts in the panel's own colour; the heat map and random colours need settings that
// Designer has not got.
void SampleUsageBlocks(BlockPanel& pPanel) {
    const std::vector<std::int32_t> counts{5, 12, 0, 8, 3, 15, 7, 0, 10, 4, 9, 1};
    pPanel.SetUsage(counts);
    pPanel.SetChartMode(umMonochromatic);
    pPanel.Redraw();
}

// Without settings the tapestry's colours are black, so the single-colour mode shows high
// records black and low ones white.
void SampleTapestry(BlockPanelSimple& pTapestry) {
    std::vector<std::int32_t> classes(120);
    std::vector<std::int32_t> ids(classes.size());
    for (std::size_t i = 0; i < classes.size(); ++i) {
        classes[i] = (i * 7 + i / 9) % 3 == 0 ? 1 : 0;
        ids[i] = static_cast<std::int32_t>(i + 1);
    }
    pTapestry.SetData(classes, ids);
    pTapestry.SetChartMode(tmSingleColour);
    pTapestry.Redraw();
}

} // namespace

QIcon ControlIcon(const QString& pClassName) {
    QPixmap pixmap(kIconSize, kIconSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto& drawings = Drawings();
    if (const auto found = drawings.find(pClassName); found != drawings.end()) {
        found->second(painter);
    } else {
        Axes(painter);
    }
    painter.end();
    return QIcon(pixmap);
}

void ShowSample(QWidget& pControl) {
    if (auto* progress = qobject_cast<RTChart*>(&pControl)) {
        SampleProgress(*progress);
    } else if (auto* bars = qobject_cast<BarChart*>(&pControl)) {
        SampleBars(*bars);
    } else if (auto* blocks = qobject_cast<BlockPanel*>(&pControl)) {
        SampleUsageBlocks(*blocks);
    } else if (auto* tapestry = qobject_cast<BlockPanelSimple*>(&pControl)) {
        SampleTapestry(*tapestry);
    } else if (auto* label = qobject_cast<VerticalLabel*>(&pControl);
               label && label->Text().isEmpty()) {
        label->SetText(QStringLiteral("Vertical caption"));
    }
}

} // namespace trv5::designer
