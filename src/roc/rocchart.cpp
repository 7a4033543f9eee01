#include <trv5charts/localizationlib.h>
#include <trv5charts/numberformat.h>
#include <trv5charts/rocchart.h>
#include <trv5charts/verticallabel.h>

#include "platform/chartmenu.h"
#include "platform/colour.h"
#include "platform/drawingsurface.h"
#include "platform/focusmark.h"
#include "roc/rocdatatext.h"
#include "roc/rocdrawing.h"
#include "roc/roclayout.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QFontMetricsF>
#include <QLabel>
#include <QPalette>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace trv5 {

namespace {

using platform::DrawingSurface;

constexpr int kCopyChart = 0;
constexpr int kCopyChartData = 1;
constexpr int kPrintSeparator = 2;
constexpr int kPrint = 3;
constexpr int kQuantitySeparator = 4;
constexpr int kQuantity = 5;

constexpr std::int32_t kRecordsColour = 95 | (95 << 8) | (95 << 16);
constexpr std::int32_t kLegendBorderColour = 0xC8C8C8;
// The curve is drawn two pixels wide so that it stands out from the one-pixel diagonal and
// frame at a glance; its legend sample matches.
constexpr int kCurveWidth = 2;
constexpr int kTitlePixelHeight = 13;
constexpr double kTickStep = 10.0;

// The legend panel: padding, sample length, space between rows.
constexpr int kLegendPadding = 6;
constexpr int kSampleLength = 24;
constexpr int kLegendRowSpacing = 2;
constexpr int kMinimumRowHeight = 13;

constexpr double kCaptionPoints = 8.0;

// The axis titles at full length; a small chart shows as many of their words as fit.
const QString kHorizontalTitle = QStringLiteral("FP Rate (1-Specificity)");
const QString kVerticalTitle = QStringLiteral("TP Rate (Sensitivity)");
// The widest point count the layout keeps room for before the count itself is known.
const QString kRecordsSample = QStringLiteral("Points 1 to 0000000");

QFont CaptionFont(double pScale = 1.0) {
    QFont font(QStringLiteral("Tahoma"));
    font.setPointSizeF(kCaptionPoints * pScale);
    font.setStyleHint(QFont::SansSerif);
    return font;
}

QFont ValueFont(double pScale = 1.0) {
    // The figures are what a reader looks for first.
    QFont font = CaptionFont(pScale);
    font.setBold(true);
    return font;
}

int Scaled(int pLength, double pScale) {
    return static_cast<int>(std::lround(pLength * pScale));
}

double RowHeight(const QFontMetricsF& pCaption, double pScale) {
    return std::max(std::round(kMinimumRowHeight * pScale), pCaption.height());
}

// The legend panel: a sample and a caption on each of two rows.
QSize LegendSize(const QFontMetricsF& pCaption, double pScale, const QString& pFirst,
                 const QString& pSecond) {
    const double captionWidth =
        std::max(pCaption.horizontalAdvance(pFirst), pCaption.horizontalAdvance(pSecond));
    const int row = static_cast<int>(std::ceil(RowHeight(pCaption, pScale)));
    const int padding = Scaled(kLegendPadding, pScale);
    return {padding * 3 + Scaled(kSampleLength, pScale) + static_cast<int>(std::ceil(captionWidth)),
            padding * 2 + Scaled(kLegendRowSpacing, pScale) + 2 * row};
}

QLabel* MakeLabel(QWidget* pParent, const QString& pName, const QString& pText = QString()) {
    auto* label = new QLabel(pText, pParent);
    label->setObjectName(pName);
    return label;
}

} // namespace

ROCChart::ROCChart(QWidget* pParent) : QWidget(pParent) {
    setFont(CaptionFont());

    // The control's own surface: only the platform layer paints, so the frame goes on a
    // drawing surface behind every other child.
    m_surface = new DrawingSurface(this);
    m_surface->setObjectName(QStringLiteral("surface"));
    pic = new DrawingSurface(this);
    pic->setObjectName(QStringLiteral("pic"));
    // The members of a label array share their name; their order is their index.
    for (std::size_t i = 0; i < lblX.size(); ++i) {
        lblX[i] = MakeLabel(this, QStringLiteral("lblX"));
        lblX[i]->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
        lblY[i] = MakeLabel(this, QStringLiteral("lblY"));
        lblY[i]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    lblHLegend = MakeLabel(this, QStringLiteral("lblHLegend"), kHorizontalTitle);
    QFont titleFont = CaptionFont();
    titleFont.setPixelSize(kTitlePixelHeight);
    lblHLegend->setFont(titleFont);
    lblHLegend->setAlignment(Qt::AlignCenter);
    vlLegend = new VerticalLabel(this);
    vlLegend->setObjectName(QStringLiteral("vlLegend"));
    CreateLegend();
    CreateAucLabels();
    ctxMain = new platform::ChartMenu(this, QStringLiteral("ctxMain"));
    const QString captions[] = {QStringLiteral("&Copy Chart"), QStringLiteral("Copy Chart Data"),
                                QStringLiteral("-"),           QStringLiteral("&Print"),
                                QStringLiteral("-"),           QString()};
    for (int i = 0; i < 6; ++i) {
        ctxMain->AddItem(captions[i], QStringLiteral("mnuMain"));
    }
    ctxMain->Item(kQuantity)->setCheckable(true);
    ctxMain->Item(kQuantitySeparator)->setVisible(false);
    ctxMain->Item(kQuantity)->setVisible(false);
    connect(ctxMain, &platform::ChartMenu::Triggered, this, &ROCChart::OnMenuItem);
    connect(ctxMain, &platform::ChartMenu::PrintFailed, this, &ROCChart::PrintFailed);
    setFocusPolicy(Qt::StrongFocus);
    new platform::FocusMark(this);
    setAccessibleName(QStringLiteral("ROC chart"));

    m_surface->lower();
    m_frameColor = m_foreColor;
    vlLegend->SetText(kVerticalTitle);
    SetForeColor(m_foreColor);
    SetBackColor(m_backColor);
    ApplyInverted();
    ApplyLayout();
    Reset();
}

ROCChart::~ROCChart() = default;

void ROCChart::CreateLegend() {
    picLegend = new DrawingSurface(this);
    picLegend->setObjectName(QStringLiteral("picLegend"));
    lnROCCurve = new DrawingSurface(picLegend);
    lnROCCurve->setObjectName(QStringLiteral("lnROCCurve"));
    lblROCCurve = MakeLabel(picLegend, QStringLiteral("lblROCCurve"), QStringLiteral("ROC Curve"));
    lnBaseline = new DrawingSurface(picLegend);
    lnBaseline->setObjectName(QStringLiteral("lnBaseline"));
    lblBaseline = MakeLabel(picLegend, QStringLiteral("lblBaseline"), QStringLiteral("Random"));
    for (QLabel* label : {lblROCCurve, lblBaseline}) {
        label->setFont(CaptionFont());
        label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    }
}

void ROCChart::CreateAucLabels() {
    lblAucLabel = MakeLabel(this, QStringLiteral("lblAucLabel"), QStringLiteral("AUC:"));
    lblAucLabel->setToolTip(QStringLiteral("Area Under the ROC Curve"));
    lblAUC = MakeLabel(this, QStringLiteral("lblAUC"));
    lbl1MinusAucLabel =
        MakeLabel(this, QStringLiteral("lbl1MinusAucLabel"), QStringLiteral("1 - AUC:"));
    lbl1MinusAuc = MakeLabel(this, QStringLiteral("lbl1MinusAuc"));
    lblRecords = MakeLabel(this, QStringLiteral("lblRecords"));
    for (QLabel* label : {lblAucLabel, lblAUC, lbl1MinusAucLabel, lbl1MinusAuc, lblRecords}) {
        label->setFont(CaptionFont());
        label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    }
    lblAUC->setFont(ValueFont());
    lbl1MinusAuc->setFont(ValueFont());
}

// ---- properties ----

void ROCChart::SetInverted(bool pValue) {
    m_inverted = pValue;
    ApplyInverted();
}

void ROCChart::ApplyInverted() {
    lbl1MinusAucLabel->setVisible(m_inverted);
    lbl1MinusAuc->setVisible(m_inverted);
}

void ROCChart::SetHeightPercent(float pValue) {
    m_heightPercent = pValue;
    ApplyLayout();
}

void ROCChart::SetROCColor(std::int32_t pColour) {
    m_rocColor = pColour;
    DrawLegendSamples();
}

void ROCChart::SetDiagonalColor(std::int32_t pColour) {
    m_diagonalColor = pColour;
    DrawLegendSamples();
}

void ROCChart::SetBackColor(std::int32_t pColour) {
    m_backColor = pColour;
    ApplyTextColours();
    for (DrawingSurface* surface : {m_surface, pic, picLegend, lnROCCurve, lnBaseline}) {
        surface->SetBackColor(pColour);
    }
    vlLegend->SetBackColor(pColour);
    // The chart keeps showing what it showed, on the new background.
    Redraw();
    DrawLegendSamples();
}

void ROCChart::SetForeColor(std::int32_t pColour) {
    m_foreColor = pColour;
    ApplyTextColours();
}

void ROCChart::ApplyTextColours() {
    // Labels without a colour of their own (titles, legend captions, AUC figures) follow the
    // control's text colour; every text colour is checked against the background, so a dark
    // palette behind a light chart (or the reverse) never hides them.
    platform::ColourLabel(*this, m_foreColor, m_backColor);
    platform::ColourLabel(*lblRecords, kRecordsColour, m_backColor);
    for (std::size_t i = 0; i < lblX.size(); ++i) {
        platform::ColourLabel(*lblX[i], m_labelsColor, m_backColor);
        platform::ColourLabel(*lblY[i], m_labelsColor, m_backColor);
    }
}

QColor ROCChart::ROCQColor() const {
    return platform::ToQColor(ROCColor());
}

void ROCChart::SetROCQColor(const QColor& pColour) {
    SetROCColor(platform::FromQColor(pColour));
}

QColor ROCChart::DiagonalQColor() const {
    return platform::ToQColor(DiagonalColor());
}

void ROCChart::SetDiagonalQColor(const QColor& pColour) {
    SetDiagonalColor(platform::FromQColor(pColour));
}

QColor ROCChart::LabelsQColor() const {
    return platform::ToQColor(LabelsColor());
}

void ROCChart::SetLabelsQColor(const QColor& pColour) {
    SetLabelsColor(platform::FromQColor(pColour));
}

QColor ROCChart::FrameQColor() const {
    return platform::ToQColor(FrameColor());
}

void ROCChart::SetFrameQColor(const QColor& pColour) {
    SetFrameColor(platform::FromQColor(pColour));
}

QColor ROCChart::BackQColor() const {
    return platform::ToQColor(BackColor());
}

void ROCChart::SetBackQColor(const QColor& pColour) {
    SetBackColor(platform::FromQColor(pColour));
}

QColor ROCChart::ForeQColor() const {
    return platform::ToQColor(ForeColor());
}

void ROCChart::SetForeQColor(const QColor& pColour) {
    SetForeColor(platform::FromQColor(pColour));
}

void ROCChart::SetFont(const QFont& pFont) {
    setFont(pFont);
    pic->setFont(pFont);
    for (std::size_t i = 0; i < lblX.size(); ++i) {
        lblX[i]->setFont(pFont);
        lblY[i]->setFont(pFont);
    }
    ApplyLayout();
}

void ROCChart::changeEvent(QEvent* pEvent) {
    QWidget::changeEvent(pEvent);
    // A font set through QWidget (a form designer, a style sheet) lays the chart out again too.
    if (pEvent->type() == QEvent::FontChange && pic != nullptr) {
        ApplyLayout();
    }
    // Colours that follow the palette are taken again from a new one.
    platform::FollowPaletteChange(*pEvent,
                                  pic != nullptr && (platform::FollowsPalette(m_backColor) ||
                                                     platform::FollowsPalette(m_foreColor)),
                                  m_recolouring, [this] { SetBackColor(m_backColor); });
}

// ---- data ----

void ROCChart::SetDataSource(std::span<const double> pValues1, std::span<const double> pValues2) {
    m_fpRates.assign(pValues1.begin(), pValues1.end());
    m_tpRates.assign(pValues2.begin(), pValues2.end());
    m_dataChanged = true;
}

void ROCChart::SetAUC(double pAUC) {
    try {
        if (pAUC == -1.0) {
            lblAUC->setText(QStringLiteral("UNDEFINED"));
            lbl1MinusAuc->setText(QStringLiteral("UNDEFINED"));
        } else {
            lblAUC->setText(NumberFormat::WithDigits(pAUC, 6));
            lbl1MinusAuc->setText(NumberFormat::WithDigits(1.0 - pAUC, 6));
        }
    } catch (...) {
        // The figures keep their old texts; the labels are shown all the same.
    }
    lblAUC->setVisible(true);
    lblAucLabel->setVisible(true);
}

// ---- drawing ----

void ROCChart::Refresh() {
    m_content = m_dataChanged ? PlotContent::Curve : PlotContent::Nothing;
    SetTickTexts();
    try {
        if (Redraw() && m_dataChanged) {
            const QString points = QStringLiteral("Points 1 to ") +
                                   QString::number(static_cast<long long>(m_fpRates.size()) - 1);
            pic->SetToolTipText(points);
            lblRecords->setText(points);
            // A count longer than the room kept for it moves the legend column.
            if (QFontMetricsF(lblRecords->font(), this).horizontalAdvance(points) >
                lblRecords->width()) {
                ApplyLayout();
            }
        }
    } catch (...) {
        pic->Cls();
    }
    DescribeData();
    if (pic->isHidden()) {
        for (QWidget* child : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            // The focus mark shows only with the keyboard focus.
            if (!child->isWindow() && qobject_cast<platform::FocusMark*>(child) == nullptr) {
                child->setVisible(true);
            }
        }
    }
    ApplyInverted();
}

void ROCChart::DescribeData() {
    // What a screen reader says about the chart beside its name.
    setAccessibleDescription(
        m_content == PlotContent::Curve
            ? QStringLiteral("ROC curve, %1 points, AUC %2")
                  .arg(m_fpRates.size())
                  .arg(lblAUC->isVisibleTo(this) ? lblAUC->text() : QStringLiteral("not set"))
            : QStringLiteral("ROC curve, no data"));
}

void ROCChart::Reset() {
    lblAUC->setVisible(false);
    lblAucLabel->setVisible(false);
    lbl1MinusAuc->setVisible(false);
    SetTickTexts();
    m_content = PlotContent::Diagonal;
    Redraw();
    m_dataChanged = false;
    DescribeData();
}

void ROCChart::SetTickTexts() {
    const auto count = static_cast<int>(lblX.size()) - 1;
    for (int i = 0; i <= count; ++i) {
        const auto index = static_cast<std::size_t>(i);
        lblX[index]->setText(NumberFormat::WithDigits(i / kTickStep, 1));
        lblY[index]->setText(NumberFormat::WithDigits((count - i) / kTickStep, 1));
        platform::ColourLabel(*lblX[index], m_labelsColor, m_backColor);
        platform::ColourLabel(*lblY[index], m_labelsColor, m_backColor);
    }
}

bool ROCChart::Redraw() {
    // A hidden control gets its resize event only when it is shown, but hosts resize, fill and
    // capture charts that are not on screen yet.
    if (size() != m_layoutSize) {
        PlaceChildren();
        DrawLegendSamples();
    }
    m_surface->Cls();
    roc::DrawFrame(*m_surface, m_frameColor);
    roc::DrawPlotBorder(*m_surface, pic->geometry(), m_frameColor);
    pic->Cls();
    if (m_content == PlotContent::Nothing) {
        return true;
    }
    roc::DrawDiagonal(*pic, m_diagonalColor);
    if (m_content == PlotContent::Curve &&
        !roc::DrawCurve(*pic, m_fpRates, m_tpRates, m_rocColor, kCurveWidth)) {
        pic->Cls();
        return false;
    }
    return true;
}

void ROCChart::DrawLegendSamples() {
    picLegend->Cls();
    picLegend->SetForeColor(kLegendBorderColour);
    picLegend->Box(0.0, 0.0, picLegend->ScaleWidth(), picLegend->ScaleHeight());
    roc::DrawLegendSample(*lnROCCurve, m_rocColor, DrawingSurface::DrawStyle::Solid, kCurveWidth);
    roc::DrawLegendSample(*lnBaseline, m_diagonalColor, DrawingSurface::DrawStyle::Dot, 1);
}

// ---- layout ----

void ROCChart::resizeEvent(QResizeEvent* pEvent) {
    QWidget::resizeEvent(pEvent);
    ApplyLayout();
}

void ROCChart::ApplyLayout() {
    PlaceChildren();
    // New sizes start new pictures: draw what the chart showed.
    DrawLegendSamples();
    Redraw();
}

void ROCChart::PlaceChildren() {
    m_layoutSize = size();
    const QFontMetricsF ticks(font(), this);
    const QFontMetricsF title(lblHLegend->font(), this);
    const auto titleWidth = [&title](const QString& pText) {
        return title.horizontalAdvance(pText) + 4.0;
    };

    const auto inputAt = [&](double pScale) {
        const QFontMetricsF caption(CaptionFont(pScale), this);
        const QFontMetricsF value(ValueFont(pScale), this);
        roc::LayoutInput input;
        input.width = width();
        input.height = height();
        input.heightPercent = m_heightPercent;
        input.tickLabel = QSizeF(
            ticks.horizontalAdvance(LocalizationLib::FormatFixed(0.0, 1)) + 2.0, ticks.height());
        input.tickDigitMiddle = ticks.ascent() - ticks.capHeight() / 2.0;
        input.horizontalTitle =
            QSizeF(std::ceil(titleWidth(kHorizontalTitle)), std::ceil(title.height()));
        input.verticalTitleThickness = vlLegend->sizeHint().width();
        input.verticalTitleLength = vlLegend->TextLength(kVerticalTitle);
        input.legendScale = pScale;
        input.legend = LegendSize(caption, pScale, lblROCCurve->text(), lblBaseline->text());
        input.aucCaptionWidth = std::max(caption.horizontalAdvance(lblAucLabel->text()),
                                         caption.horizontalAdvance(lbl1MinusAucLabel->text()));
        input.aucValueWidth = std::max(value.horizontalAdvance(QStringLiteral("UNDEFINED")),
                                       value.horizontalAdvance(QStringLiteral("0.000000")));
        input.rowHeight = RowHeight(caption, pScale) + 2.0;
        input.recordsWidth = std::max(caption.horizontalAdvance(kRecordsSample),
                                      caption.horizontalAdvance(lblRecords->text()));
        return input;
    };
    const roc::Layout layout = roc::ComputeFittedLayout(inputAt);

    m_surface->setGeometry(rect());
    pic->setGeometry(layout.plot);
    for (std::size_t i = 0; i < lblX.size(); ++i) {
        lblX[i]->setGeometry(layout.xLabels[i]);
        lblY[i]->setGeometry(layout.yLabels[i]);
    }
    lblHLegend->setText(
        roc::FitWords(kHorizontalTitle, layout.horizontalTitle.width(), titleWidth));
    lblHLegend->setGeometry(layout.horizontalTitle);
    vlLegend->setGeometry(layout.verticalTitle);
    vlLegend->SetText(
        roc::FitWords(kVerticalTitle, layout.verticalTitle.height(),
                      [this](const QString& pText) { return vlLegend->TextLength(pText); }));
    PlaceLegendColumn(layout);
}

void ROCChart::PlaceLegendColumn(const roc::Layout& pLayout) {
    const double scale = pLayout.legendScale;
    for (QLabel* label : {lblROCCurve, lblBaseline, lblAucLabel, lbl1MinusAucLabel, lblRecords}) {
        label->setFont(CaptionFont(scale));
    }
    lblAUC->setFont(ValueFont(scale));
    lbl1MinusAuc->setFont(ValueFont(scale));

    picLegend->setGeometry(pLayout.legend);
    const QFontMetricsF caption(CaptionFont(scale), this);
    const int row = static_cast<int>(std::ceil(RowHeight(caption, scale)));
    const int padding = Scaled(kLegendPadding, scale);
    const int sample = Scaled(kSampleLength, scale);
    const int captionLeft = padding * 2 + sample;
    const int captionRoom = std::max(0, pLayout.legend.width() - captionLeft - padding);
    lnROCCurve->setGeometry(padding, padding, sample, row);
    lblROCCurve->setGeometry(captionLeft, padding, captionRoom, row);
    const int secondRow = padding + row + Scaled(kLegendRowSpacing, scale);
    lnBaseline->setGeometry(padding, secondRow, sample, row);
    lblBaseline->setGeometry(captionLeft, secondRow, captionRoom, row);
    lblAucLabel->setGeometry(pLayout.aucCaption);
    lblAUC->setGeometry(pLayout.aucValue);
    lbl1MinusAucLabel->setGeometry(pLayout.minusAucCaption);
    lbl1MinusAuc->setGeometry(pLayout.minusAucValue);
    lblRecords->setGeometry(pLayout.records);
}

// ---- menu, copy and print ----

void ROCChart::contextMenuEvent(QContextMenuEvent* pEvent) {
    if (!m_showMenu) {
        // Taken and dropped: an ignored event would travel on to the host, whose own menu
        // would then open over the chart.
        pEvent->accept();
        return;
    }
    // Printing is not offered from this menu; the quantity entry only when the host asked.
    ctxMain->Item(kPrintSeparator)->setVisible(false);
    ctxMain->Item(kPrint)->setVisible(false);
    ctxMain->Item(kQuantitySeparator)->setVisible(m_quantityShown);
    ctxMain->Item(kQuantity)->setVisible(m_quantityShown);
    ctxMain->Popup(pEvent->globalPos(), pEvent->reason() == QContextMenuEvent::Keyboard);
    pEvent->accept();
}

void ROCChart::ShowMenuWithQuantity(const QString& pMessage) {
    QAction* quantity = ctxMain->Item(kQuantity);
    ctxMain->Item(kQuantitySeparator)->setVisible(true);
    quantity->setVisible(true);
    quantity->setText(pMessage);
    quantity->setChecked(true);
    m_quantityShown = true;
}

void ROCChart::HideMenuWithQuantity() {
    ctxMain->Item(kQuantitySeparator)->setVisible(false);
    ctxMain->Item(kQuantity)->setVisible(false);
    m_quantityShown = false;
}

void ROCChart::OnMenuItem(int pIndex) {
    switch (pIndex) {
    case kCopyChart:
        EditCopy();
        break;
    case kCopyChartData:
        CopyChartData();
        break;
    case kPrint:
        ctxMain->PrintOwnerPicture();
        break;
    case kQuantity:
        // The entry is a statement, not a switch: it keeps its check mark.
        ctxMain->Item(kQuantity)->setChecked(true);
        ctxMain->Hide();
        QCoreApplication::processEvents();
        break;
    default:
        break;
    }
}

void ROCChart::EditCopy() {
    ctxMain->CopyOwnerPicture();
}

void ROCChart::CopyChartData() {
    const QString text = roc::ChartDataText(m_fpRates, m_tpRates);
    ctxMain->Hide();
    QCoreApplication::processEvents();
    platform::ChartMenu::CopyText(text);
}

void ROCChart::SetPrintDialog(std::shared_ptr<IPrintDialog> pDialog) {
    ctxMain->SetPrintDialog(std::move(pDialog));
}

void ROCChart::PrintPreview() {
    ctxMain->PreviewOwnerPicture();
}

} // namespace trv5
