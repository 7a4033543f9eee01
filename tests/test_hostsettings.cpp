#include <trv5charts/axisrange.h>
#include <trv5charts/hostsettings.h>

#include "testsupport.h"

#include <QTemporaryDir>
#include <QTextStream>

#include <memory>

namespace {

class MapConfig final : public trv5::IConfig {
public:
    explicit MapConfig(QVariantMap pSettings) : settings(std::move(pSettings)) {}
    QVariantMap Settings() const override {
        ++lookups;
        return settings;
    }
    QVariantMap settings;
    mutable int lookups = 0;
};

class HostSettingsTest : public ::testing::Test {
protected:
    void TearDown() override { trv5::Globals::StoreConfig(nullptr); }
};

} // namespace

TEST_F(HostSettingsTest, WithoutConfigurationColoursAreBlackAndValuesFail) {
    trv5::Globals::StoreConfig(nullptr);
    EXPECT_FALSE(trv5::Globals::HasConfig());
    EXPECT_EQ(trv5::HostSettings::Colour(QStringLiteral("ClassificationTapestry.HighColor")), 0);
    EXPECT_CHART_ERROR(trv5::HostSettings::Value(QStringLiteral("Run.CurveFitting.Margin")), 91);
}

TEST_F(HostSettingsTest, LooksUpValuesAndColoursAfreshEachTime) {
    auto config = std::make_shared<MapConfig>(QVariantMap{
        {QStringLiteral("Tapestry.High.R"), 255},
        {QStringLiteral("Tapestry.High.G"), QStringLiteral("128")},
        {QStringLiteral("Tapestry.High.B"), 1.4},
        {QStringLiteral("Run.CurveFitting.Margin"), 0.05},
    });
    trv5::Globals::StoreConfig(config);
    EXPECT_EQ(trv5::HostSettings::Colour(QStringLiteral("Tapestry.High")), 255 + 128 * 256 + 65536);
    EXPECT_DOUBLE_EQ(trv5::SettingsMargin(), 0.05);

    config->settings[QStringLiteral("Run.CurveFitting.Margin")] = QStringLiteral("0.25");
    EXPECT_DOUBLE_EQ(trv5::SettingsMargin(), 0.25) << "settings must not be cached";

    EXPECT_CHART_ERROR(trv5::HostSettings::Value(QStringLiteral("No.Such.Key")), 5);
    EXPECT_CHART_ERROR(trv5::HostSettings::Colour(QStringLiteral("Missing")), 5);
    config->settings[QStringLiteral("Run.CurveFitting.Margin")] = QStringLiteral("wide");
    EXPECT_CHART_ERROR(trv5::SettingsMargin(), 13);
}

TEST_F(HostSettingsTest, TheLastStoredConfigurationWins) {
    auto first = std::make_shared<MapConfig>(QVariantMap{{QStringLiteral("K"), 1}});
    auto second = std::make_shared<MapConfig>(QVariantMap{{QStringLiteral("K"), 2}});
    trv5::Globals::StoreConfig(first);
    trv5::Globals::StoreConfig(second);
    EXPECT_EQ(trv5::HostSettings::Value(QStringLiteral("K")).toInt(), 2);
    EXPECT_EQ(first->lookups, 0);
}

TEST_F(HostSettingsTest, IniFileConfigurationAnswersDottedKeys) {
    QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    const QString path = directory.filePath(QStringLiteral("host.ini"));
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Text));
        QTextStream stream(&file);
        stream << "[General]\nRun.CurveFitting.Margin=0.1\n"
               << "[ClassificationTapestry]\nLowColor.R=10\nLowColor.G=20\nLowColor.B=30\n";
    }
    trv5::Globals::StoreConfig(std::make_shared<trv5::QSettingsConfig>(path));
    EXPECT_DOUBLE_EQ(trv5::SettingsMargin(), 0.1);
    EXPECT_EQ(trv5::HostSettings::Colour(QStringLiteral("ClassificationTapestry.LowColor")),
              10 + 20 * 256 + 30 * 65536);
}

TEST(PaddedRange, WidensDegenerateRangesThenAddsTheMargin) {
    struct Case {
        double minimum, maximum, margin, low, high;
    } cases[] = {
        {0, 0, 0, 0, 0.1},       // a zero maximum becomes 0.1, then the ends differ
        {5, 5, 0, 4.5, 5.5},     // equal ends widen by 10 % each way
        {-5, -5, 0, -4.5, -5.5}, // and a negative pair moves the other way
        {0, 10, 0.05, -0.5, 10.5}, {2, 4, 0, 2, 4},
    };
    for (const Case& c : cases) {
        const trv5::ValueRange range = trv5::PaddedRange(c.minimum, c.maximum, c.margin);
        EXPECT_DOUBLE_EQ(range.Minimum, c.low) << c.minimum << ".." << c.maximum;
        EXPECT_DOUBLE_EQ(range.Maximum, c.high) << c.minimum << ".." << c.maximum;
    }
}
