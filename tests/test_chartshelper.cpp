#include "hosted/chartshelper.h"
#include "platform/chartengine.h"

#include "testsupport.h"

#include <QWidget>

#include <cmath>
#include <limits>
#include <memory>

namespace {

using trv5::ChartsHelper::ApplyLabelAngle;
using trv5::ChartsHelper::RelativeSpread;

class ChartsHelperTest : public ::testing::Test {
protected:
    void TearDown() override { trv5::Globals::StoreConfig(nullptr); }

    void UseMargin(const QVariant& pMargin) {
        trv5::Globals::StoreConfig(std::make_shared<trv5::test::MapConfig>(
            QVariantMap{{QStringLiteral("Run.CurveFitting.Margin"), pMargin},
                        {QStringLiteral("Other.Margin"), 0.5}}));
    }

    void ExpectRange(const trv5::platform::ChartAxis& pAxis, double pMinimum, double pMaximum) {
        EXPECT_FALSE(pAxis.AutoRange());
        EXPECT_DOUBLE_EQ(pAxis.MinValue(), pMinimum);
        EXPECT_DOUBLE_EQ(pAxis.MaxValue(), pMaximum);
    }

    QWidget parent;
    trv5::platform::ChartEngine engine{&parent};
};

TEST_F(ChartsHelperTest, AxisRangesAddTheSettingsMarginToTheWidenedDataRange) {
    UseMargin(0);
    trv5::ChartsHelper::SetXAxisRange(engine, 2.0, 7.0);
    ExpectRange(engine.AxisX(), 2.0, 7.0);
    trv5::ChartsHelper::SetYAxisRange(engine, 5.0, 5.0);
    ExpectRange(engine.AxisY(), 4.5, 5.5);
    trv5::ChartsHelper::SetXAxisRange(engine, 0.0, 0.0);
    ExpectRange(engine.AxisX(), 0.0, 0.1);
    // A negative pair widens the other way; it is kept as it always was.
    trv5::ChartsHelper::SetXAxisRange(engine, -5.0, -5.0);
    ExpectRange(engine.AxisX(), -4.5, -5.5);

    UseMargin(QStringLiteral("0.1"));
    trv5::ChartsHelper::SetXAxisRange(engine, 0.0, 10.0);
    ExpectRange(engine.AxisX(), -1.0, 11.0);
    // The keyed variants read their own key; the vertical one spans both ranges.
    trv5::ChartsHelper::SetXAxisRange(engine, 0.0, 10.0, QStringLiteral("Other.Margin"));
    ExpectRange(engine.AxisX(), -5.0, 15.0);
    trv5::ChartsHelper::SetYAxisRange(engine, 2.0, 4.0, -1.0, 3.0,
                                      QStringLiteral("Run.CurveFitting.Margin"));
    ExpectRange(engine.AxisY(), -1.5, 4.5);
    EXPECT_CHART_ERROR(trv5::ChartsHelper::SetXAxisRange(engine, 0.0, 1.0, QStringLiteral("Nope")),
                       5);

    // Before a host stores its settings the charts still range their axes, without a margin.
    trv5::Globals::StoreConfig(nullptr);
    trv5::ChartsHelper::SetYAxisRange(engine, 1.0, 3.0);
    ExpectRange(engine.AxisY(), 1.0, 3.0);
}

TEST_F(ChartsHelperTest, LabelAngleTiltsForHugeAndTinyNumbers) {
    const auto angle = [&](double pMinimum, double pMaximum) {
        ApplyLabelAngle(engine, pMinimum, pMaximum);
        return engine.AxisX().LabelAngle();
    };
    EXPECT_EQ(angle(1.0, 2e6), 20.0);
    EXPECT_EQ(angle(1.0, 2.0), 0.0) << "a tilted axis is levelled again";
    EXPECT_EQ(angle(-999999.0, 5.0), 20.0);
    EXPECT_EQ(angle(1e-9, 1.0), 20.0);
    EXPECT_EQ(angle(0.0, 1e-9), 0.0) << "a range starting at exactly 0 is not tilted";
    EXPECT_EQ(angle(1.0, -1e-9), 20.0) << "the pair is put in order first";
    EXPECT_EQ(angle(-3.0, 999998.0), 0.0);
}

TEST_F(ChartsHelperTest, RelativeSpreadAndNormalization) {
    EXPECT_EQ(RelativeSpread(5.0, 5.0), 1.0);
    EXPECT_EQ(RelativeSpread(-1.0, 1.0), 2.0);
    EXPECT_DOUBLE_EQ(RelativeSpread(2.0, 6.0), 1.0);
    EXPECT_LT(RelativeSpread(1000000.0, 1000000.001), trv5::ChartsHelper::kMinimumRelativeSpread);
    EXPECT_GE(RelativeSpread(1.0, 1.00000002), trv5::ChartsHelper::kMinimumRelativeSpread);

    const std::vector<double> values{-2.0, 0.0, 2.0, 1.0};
    EXPECT_EQ(trv5::ChartsHelper::Normalize(values, 2.0, -2.0),
              (std::vector<double>{0.0, 0.5, 1.0, 0.75}));
    EXPECT_EQ(trv5::ChartsHelper::Normalize(values, 3.0, 3.0),
              (std::vector<double>{0.0, 0.0, 0.0, 0.0}));
    EXPECT_NEAR(trv5::ChartsHelper::NormalizeValue(1000000.0005, 1000000.001, 1000000.0), 0.5,
                1e-6);
}

TEST_F(ChartsHelperTest, RoundingAndSettingsColours) {
    using trv5::ChartsHelper::RoundToDecimals;
    EXPECT_EQ(RoundToDecimals(0.5, 0), 0.0);
    EXPECT_EQ(RoundToDecimals(1.5, 0), 2.0);
    EXPECT_EQ(RoundToDecimals(-2.5, 0), -2.0);
    EXPECT_DOUBLE_EQ(RoundToDecimals(0.1234567, 6), 0.123457);
    EXPECT_EQ(RoundToDecimals(1e300, 6), 1e300);
    EXPECT_TRUE(std::isnan(RoundToDecimals(std::numeric_limits<double>::quiet_NaN(), 6)));

    EXPECT_FALSE(trv5::ChartsHelper::SettingsColour(QStringLiteral("Series")).has_value());
    trv5::Globals::StoreConfig(
        std::make_shared<trv5::test::MapConfig>(QVariantMap{{QStringLiteral("Series.R"), 10},
                                                            {QStringLiteral("Series.G"), 20},
                                                            {QStringLiteral("Series.B"), 30}}));
    EXPECT_EQ(trv5::ChartsHelper::SettingsColour(QStringLiteral("Series")),
              10 + 20 * 256 + 30 * 65536);
}

} // namespace
