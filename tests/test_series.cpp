#include <trv5charts/series.h>

#include "testsupport.h"

#include <cmath>
#include <limits>
#include <vector>

using trv5::Series;

namespace {

std::vector<double> Slots(const Series& pSeries) {
    return {pSeries.Values().begin(), pSeries.Values().end()};
}

} // namespace

TEST(Series, DripFeedIsARingWithAMirrorSlot) {
    Series series;
    series.Init(3, 0, 10, trv5::DripFeed, false);
    EXPECT_EQ(Slots(series), (std::vector<double>{0, 0, 0, 0}));
    EXPECT_EQ(series.LastPoint(), -1);
    EXPECT_FALSE(series.DataReady());

    for (double value : {1.0, 2.0, 3.0}) {
        series.AddPoint(value);
    }
    EXPECT_EQ(series.LastPoint(), 2);
    series.AddPoint(4);
    EXPECT_EQ(Slots(series), (std::vector<double>{4, 2, 3, 4}));
    EXPECT_EQ(series.LastPoint(), 0);
    series.AddPoint(5);
    EXPECT_EQ(Slots(series), (std::vector<double>{4, 5, 3, 4}));
    EXPECT_EQ(series.LastPoint(), 1);
    EXPECT_TRUE(series.DataReady());
    EXPECT_EQ(series.GetMaxValue(), 5);
    EXPECT_EQ(series.GetMinValue(), 3);

    // Init starts a new run on the same ring.
    series.Init(2, 0, 1, trv5::DripFeed, true);
    EXPECT_EQ(Slots(series), (std::vector<double>{0, 0, 0}));
    EXPECT_EQ(series.GetValue(0), 0);
    EXPECT_TRUE(series.DrawOnSecondaryAxis());
}

TEST(Series, FeedingWithoutSlotsOrNegativeCapacityThrows) {
    Series unallocated;
    EXPECT_CHART_ERROR(unallocated.AddPoint(1), 9);
    Series bulk;
    bulk.Init(10, 0, 1, trv5::Bulk, false);
    EXPECT_CHART_ERROR(bulk.AddPoint(1), 9);
    EXPECT_CHART_ERROR(bulk.Init(-1, 0, 1, trv5::DripFeed, false), 9);
    EXPECT_EQ(bulk.Count(), 10);
    EXPECT_CHART_ERROR(bulk.SetData({}), 9);
}

TEST(Series, BulkCountIsLoweredToTheArrayButNeverRaised) {
    const std::vector<double> hundred(100, 1.5);
    Series large;
    large.Init(1000, 0, 1, trv5::Bulk, false);
    EXPECT_EQ(large.Count(), 1000) << "no array yet: unchanged";
    large.SetData(hundred);
    EXPECT_EQ(large.Count(), 100);
    EXPECT_EQ(large.LastPoint(), 99);
    large.SetData(std::vector<double>(500, 0));
    EXPECT_EQ(large.Count(), 100) << "a lowered count stays lowered";

    Series small;
    small.Init(10, 0, 1, trv5::Bulk, false);
    small.SetData(hundred);
    EXPECT_EQ(small.Count(), 10);
}

TEST(Series, ValuesReadAsZeroUntilDataIsReady) {
    Series series;
    series.Init(5, 0, 1, trv5::Bulk, false);
    EXPECT_EQ(series.GetValue(1234), 0);
    EXPECT_EQ(series.GetMinValue(), 0);
    EXPECT_EQ(series.IndexOfPoint(3), 0);

    series.SetData2(std::vector<double>{2, -1, 7}, std::vector<std::int32_t>{10, 20, 30});
    EXPECT_EQ(series.GetValue(2), 7);
    EXPECT_CHART_ERROR(series.GetValue(3), 9);
    EXPECT_EQ(series.IndexOfPoint(1), 20);
    EXPECT_CHART_ERROR(series.GetOriginalValue(0), 9);
    series.SetOriginalData(std::vector<double>{200, -100, 700});
    EXPECT_EQ(series.GetOriginalMinValue(), -100);

    series.ClearData();
    EXPECT_FALSE(series.DataReady());
    EXPECT_EQ(series.LastPoint(), 2) << "ClearData keeps LastPoint";
    EXPECT_TRUE(series.HasOriginalData()) << "and the original values";
}

TEST(Series, DisplayedValueUsesTheReplacementTable) {
    trv5::test::ScopedLocale locale(trv5::test::German());
    auto table = std::make_shared<trv5::ReplacementTable>();
    table->insert(QStringLiteral("0,1"), 100);
    table->insert(QStringLiteral("1"), 200);
    Series series;
    series.SetData3(std::vector<double>{0.1 + 1e-12, 1, 3}, std::vector<std::int32_t>{0, 1, 2},
                    table);
    EXPECT_TRUE(series.HasReplacements());
    EXPECT_EQ(series.DisplayedValue(0), 100) << "keys are rounded to ten decimals";
    EXPECT_EQ(series.DisplayedValue(1), 200);
    EXPECT_EQ(series.DisplayedValue(2), 0) << "no entry: 0";
    Series plain;
    plain.SetData(std::vector<double>{4.25});
    EXPECT_EQ(plain.DisplayedValue(0), 4.25);
}

TEST(Series, PrepareValuesStandardizesOnlyArraysWhollyFarOut) {
    Series series;
    std::vector<double> out;
    series.PrepareValues(std::vector<double>{1, 2e7}, out);
    EXPECT_EQ(out, (std::vector<double>{1, 2e7}));
    EXPECT_FALSE(series.Standardized());

    series.PrepareValues(std::vector<double>{1e7, 1.5e7, 2e7}, out);
    EXPECT_TRUE(series.Standardized());
    EXPECT_DOUBLE_EQ(out[0], -1);
    EXPECT_DOUBLE_EQ(out[1], 0);
    EXPECT_DOUBLE_EQ(out[2], 1);

    // The bound itself counts as inside.
    series.PrepareValues(std::vector<double>{9e6, 1e8}, out);
    EXPECT_FALSE(series.Standardized());
    series.PrepareValues(std::vector<double>{-2e7, -9e6}, out);
    EXPECT_FALSE(series.Standardized());
    series.PrepareValues(std::vector<double>{-2e7, -9000000.5}, out);
    EXPECT_TRUE(series.Standardized());
    EXPECT_FALSE(series.DataReady()) << "preparing stores no values";
}

TEST(Series, WritesTheExactElementOnlyWhenItHasData) {
    Series series;
    series.Init(3, -1, 1.5, trv5::DripFeed, true);
    series.SetName(QStringLiteral("Best & worst"));
    series.SetColour(0x00FF8000);
    series.SetPoint(trv5::ptDot);
    series.SetDataType(trv5::NonContinuous);
    EXPECT_EQ(series.ToString(), QString()) << "no data: not saved at all";

    series.AddPoint(0.5);
    series.AddPoint(1.0 / 3.0);
    EXPECT_EQ(series.ToString(),
              QStringLiteral(R"(<series name="Best &amp; worst" min="-1" max="1.5" settype="0" )"
                             R"(drawsec="1" point="2" colour="16744448" count="3" datatype="1" )"
                             R"(lastpoint="1">0.5|0.333333333333333|0|0</series>)"));
    series.SetColour(-2147483633); // a system colour code
    EXPECT_TRUE(series.ToString().contains(QStringLiteral("colour=\"-2147483633\"")));
}

TEST(Series, RoundTripDropsTheMirrorSlotAndKeepsTheRest) {
    Series original;
    original.Init(5, 0, 1, trv5::DripFeed, false);
    original.SetName(QStringLiteral("Average"));
    for (double value : {0.25, std::numeric_limits<double>::infinity(), -0.0, 1e-300}) {
        original.AddPoint(value);
    }
    original.AddPoint(std::nan(""));
    QString text;
    {
        trv5::test::ScopedLocale german(trv5::test::German());
        text = original.ToString();
    }
    Series restored;
    restored.FromString(text);
    ASSERT_TRUE(restored.DataReady());
    EXPECT_EQ(restored.Values().size(), 5U) << "a loaded ring has Count slots, not Count + 1";
    EXPECT_EQ(restored.Count(), 5);
    EXPECT_EQ(restored.LastPoint(), 4);
    EXPECT_EQ(restored.Name(), QStringLiteral("Average"));
    EXPECT_EQ(restored.GetValue(0), 0.25);
    EXPECT_EQ(restored.GetValue(1), std::numeric_limits<double>::infinity());
    EXPECT_EQ(restored.GetValue(2), 0.0);
    EXPECT_EQ(restored.GetValue(3), 1e-300);
    EXPECT_TRUE(std::isnan(restored.GetValue(4)));
    EXPECT_EQ(restored.SetType(), trv5::DripFeed);
}

TEST(Series, DamagedFragmentsNeverAllocateBeyondWhatTheTextHolds) {
    const QString head = QStringLiteral("<series name='s' min='0' max='1' settype='1' drawsec='0' "
                                        "point='0' colour='0' count='%1' datatype='0' "
                                        "lastpoint='0'>%2</series>");
    {
        // A count of two billion over three values: an error, no allocation, no data.
        Series series;
        series.FromString(head.arg(QStringLiteral("2000000000"), QStringLiteral("1|2|3")));
        EXPECT_FALSE(series.DataReady());
        EXPECT_TRUE(series.Values().empty());
        EXPECT_EQ(series.Name(), QStringLiteral("s")) << "attributes read before the damage stay";
    }
    {
        Series series;
        series.FromString(head.arg(QStringLiteral("2"), QStringLiteral("1|2|3|4")));
        EXPECT_EQ(Slots(series), (std::vector<double>{1, 2})) << "surplus values are ignored";
        EXPECT_TRUE(series.DataReady());
    }
    for (const char* count : {"0", "-5", "2.5e10", "many"}) {
        Series series;
        series.FromString(head.arg(QLatin1String(count), QStringLiteral("1")));
        EXPECT_FALSE(series.DataReady()) << count;
    }
    {
        // A value that does not parse stops the load; the series is not ready.
        Series series;
        series.FromString(head.arg(QStringLiteral("3"), QStringLiteral("1|x|3")));
        EXPECT_FALSE(series.DataReady());
    }
    {
        // Numbers in a decimal-comma notation are not saved state.
        Series series;
        series.FromString(head.arg(QStringLiteral("1"), QStringLiteral("0,5")));
        EXPECT_TRUE(series.DataReady());
        EXPECT_EQ(series.GetValue(0), 5) << "the comma is the fixed culture's group separator";
    }
}

TEST(Series, AShortElementGetsItsSlotsUpToACapAndClaimsBeyondItChangeNothing) {
    const QString head = QStringLiteral("<series name='s' min='0' max='1' settype='0' drawsec='0' "
                                        "point='0' colour='0' count='%1' datatype='0' "
                                        "lastpoint='%2'>%3</series>");
    Series series;
    series.FromString(head.arg(QStringLiteral("3"), QStringLiteral("2"), QStringLiteral("7|8|0")));
    ASSERT_TRUE(series.DataReady());

    // Fewer texts than slots: the slots are there, filled as far as the texts go.
    series.FromString(head.arg(QStringLiteral("4"), QStringLiteral("1"), QStringLiteral("5|6")));
    EXPECT_EQ(Slots(series), (std::vector<double>{5, 6, 0, 0}));
    EXPECT_EQ(series.Count(), 4);
    EXPECT_EQ(series.LastPoint(), 1);

    // Up to the cap even without a single text.
    series.FromString(head.arg(QStringLiteral("1048576"), QStringLiteral("3"), QString()));
    EXPECT_EQ(series.Values().size(), 1048576U);
    EXPECT_EQ(series.Count(), 1048576);

    // Beyond the cap without texts to back it: the count and the newest point claimed are not
    // taken, so nothing is left that would make a redraw walk billions of points.
    Series fresh;
    fresh.FromString(head.arg(QStringLiteral("2147483647"), QStringLiteral("2147483647"),
                              QStringLiteral("1|2|3")));
    EXPECT_TRUE(fresh.Values().empty());
    EXPECT_EQ(fresh.Count(), 0);
    EXPECT_EQ(fresh.LastPoint(), -1);
    EXPECT_FALSE(fresh.DataReady());
    EXPECT_EQ(fresh.Name(), QStringLiteral("s"));

    series.FromString(
        head.arg(QStringLiteral("1048577"), QStringLiteral("9"), QStringLiteral("1")));
    EXPECT_EQ(series.Count(), 1048576) << "the earlier state stays";
    EXPECT_EQ(series.LastPoint(), 3);
}

TEST(Series, NamesKeepEveryCharacterThroughSaveAndLoad) {
    for (const QString& name :
         {QString(QChar(0xFEFF)) + QStringLiteral("lead"), QStringLiteral("tail") + QChar(0xFEFF),
          QString(QChar(0xFEFF)), QStringLiteral(" spaced \t<&'\"> \r\n lines \n"),
          QStringLiteral("\xF0\x9F\x93\x88 chart")}) {
        Series series;
        series.Init(1, 0, 1, trv5::Bulk, false);
        series.SetName(name);
        series.SetData(std::vector<double>{1});
        Series restored;
        restored.FromString(series.ToString());
        EXPECT_EQ(restored.Name(), name) << series.ToString().toStdString();
        Series again;
        again.FromString(restored.ToString());
        EXPECT_EQ(again.Name(), name);
    }
}
