#include <trv5charts/axis.h>

#include "testsupport.h"

#include <cmath>
#include <limits>

using trv5::Axis;
using trv5::test::ScopedLocale;

TEST(Axis, FirstInitFixedFreezesTheRange) {
    Axis axis;
    axis.Init(1, 2, true);
    EXPECT_EQ(axis.Minimum(), 1);
    EXPECT_TRUE(axis.IsSecondaryAxis());

    axis.InitFixed(0, 1, false);
    axis.Init(5, 50, true);
    axis.InitFixed(7, 8, true);
    EXPECT_EQ(axis.Minimum(), 0);
    EXPECT_EQ(axis.Maximum(), 1);
    EXPECT_FALSE(axis.IsSecondaryAxis());
    EXPECT_TRUE(axis.IsFixed());
}

TEST(Axis, MaxValueFormattedFollowsTheFormat) {
    ScopedLocale locale(trv5::test::German());
    Axis axis;
    axis.Init(0, 12.6, false);
    EXPECT_EQ(axis.MaxValueFormatted(), QStringLiteral("12,6"));
    axis.SetFormat(QStringLiteral("PERCENT"));
    EXPECT_EQ(axis.MaxValueFormatted(), QStringLiteral("13%"));
    axis.Init(0, 85, false);
    axis.SetFormat(QStringLiteral("percent"));
    EXPECT_EQ(axis.MaxValueFormatted(), QStringLiteral("85%"));
    axis.SetFormat(QStringLiteral("0.00"));
    EXPECT_EQ(axis.MaxValueFormatted(), QString());
}

TEST(Axis, WritesTheExactElement) {
    Axis axis;
    axis.Init(0, 100, false);
    axis.SetName(QStringLiteral("Fitness"));
    EXPECT_EQ(axis.ToString(),
              QStringLiteral(R"(<axis min="0" max="100" issecax="0" name="Fitness" format=""/>)"));

    axis.Init(-0.000015, 1.5e15, true);
    axis.SetName(QStringLiteral("a&b'c\"<d>"));
    axis.SetFormat(QStringLiteral("percent"));
    EXPECT_EQ(axis.ToString(),
              QStringLiteral(R"(<axis min="-0.000015" max="1.5E+15" issecax="1" )"
                             R"(name="a&amp;b'c&quot;&lt;d>" format="percent"/>)"));
}

TEST(Axis, RoundTripsExactlyUnderAnyLocale) {
    Axis original;
    original.Init(0.1 + 0.2, -1.25e-300, true);
    original.SetName(QStringLiteral("Ünïcode & 'quotes'"));
    original.SetFormat(QStringLiteral("Percent"));
    QString text;
    {
        ScopedLocale german(trv5::test::German());
        text = original.ToString();
    }
    EXPECT_FALSE(text.contains(QLatin1Char(','))) << text.toStdString();
    ScopedLocale french(QLocale(QLocale::French, QLocale::France));
    Axis restored;
    restored.FromString(text);
    EXPECT_EQ(restored.Minimum(), 0.3); // 15 significant digits, like every saved number
    EXPECT_EQ(restored.Maximum(), -1.25e-300);
    EXPECT_TRUE(restored.IsSecondaryAxis());
    EXPECT_EQ(restored.Name(), original.Name());
    EXPECT_EQ(restored.Format(), original.Format());
    EXPECT_EQ(restored.ToString(), text);
}

TEST(Axis, ReadsAttributesByPositionAndBooleansStrictly) {
    Axis axis;
    // Attributes out of order land in the fields of their positions.
    axis.FromString(QStringLiteral("<axis max='9' min='1' issecax='1' format='F' name='N'/>"));
    EXPECT_EQ(axis.Minimum(), 9);
    EXPECT_EQ(axis.Maximum(), 1);
    EXPECT_EQ(axis.Name(), QStringLiteral("F"));
    EXPECT_EQ(axis.Format(), QStringLiteral("N"));
    for (const char* flag : {"true", "-1", "True", " 1", ""}) {
        axis.FromString(QStringLiteral("<axis min='0' max='1' issecax='%1' name='' format=''/>")
                            .arg(QLatin1String(flag)));
        EXPECT_FALSE(axis.IsSecondaryAxis()) << flag;
    }
}

TEST(Axis, DamagedFragmentsKeepWhatWasReadBeforeTheDamage) {
    Axis axis;
    axis.Init(3, 4, true);
    axis.SetName(QStringLiteral("kept"));
    for (const char* text : {"", "garbage", "<axis min='1'", "<other/><other/>"}) {
        axis.FromString(QString::fromLatin1(text));
        EXPECT_EQ(axis.Minimum(), 3) << text;
        EXPECT_EQ(axis.Name(), QStringLiteral("kept")) << text;
    }
    // A number that does not parse stops reading at that attribute.
    axis.FromString(QStringLiteral("<axis min='7' max='lots' issecax='0' name='x' format=''/>"));
    EXPECT_EQ(axis.Minimum(), 7);
    EXPECT_EQ(axis.Maximum(), 4);
    EXPECT_EQ(axis.Name(), QStringLiteral("kept"));
    // Missing attributes likewise.
    axis.FromString(QStringLiteral("<axis min='8' max='9'/>"));
    EXPECT_EQ(axis.Maximum(), 9);
    EXPECT_TRUE(axis.IsSecondaryAxis());
    // Infinities and NaN are numbers the format can carry.
    axis.FromString(QStringLiteral("<axis min='NaN' max='-INF' issecax='0' name='' format=''/>"));
    EXPECT_TRUE(std::isnan(axis.Minimum()));
    EXPECT_EQ(axis.Maximum(), -std::numeric_limits<double>::infinity());
    // Loading never unfixes an axis.
    axis.InitFixed(0, 1, false);
    axis.FromString(QStringLiteral("<axis min='5' max='6' issecax='0' name='' format=''/>"));
    EXPECT_EQ(axis.Minimum(), 5);
    axis.Init(10, 20, false);
    EXPECT_EQ(axis.Minimum(), 5);
}

TEST(Axis, ClaimsSeriesFragmentsNotItsOwn) {
    Axis axis;
    EXPECT_TRUE(axis.IsTypeOf(QStringLiteral("<series name='x'")));
    EXPECT_FALSE(axis.IsTypeOf(axis.ToString()));
    EXPECT_FALSE(axis.IsTypeOf(QStringLiteral("<Series name='x'")));
}
