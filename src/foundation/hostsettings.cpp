#include <trv5charts/hostsettings.h>

#include <trv5charts/charterror.h>
#include <trv5charts/colorconverter.h>
#include <trv5charts/variantconvert.h>

#include <QSettings>

#include <utility>

namespace trv5 {

QSettingsConfig::QSettingsConfig(QString pIniPath) : m_path(std::move(pIniPath)) {}

QVariantMap QSettingsConfig::Settings() const {
    const QSettings settings(m_path, QSettings::IniFormat);
    QVariantMap map;
    const QStringList keys = settings.allKeys();
    for (const QString& key : keys) {
        QString dotted = key;
        dotted.replace(QLatin1Char('/'), QLatin1Char('.'));
        map.insert(dotted, settings.value(key));
    }
    return map;
}

namespace {
// Per thread, like the apartment-wide slot a UI-thread component library keeps: controls on one
// UI thread share it and nothing needs a lock.
std::shared_ptr<IConfig>& Slot() {
    thread_local std::shared_ptr<IConfig> slot;
    return slot;
}
} // namespace

namespace Globals {
void StoreConfig(std::shared_ptr<IConfig> pConfig) {
    Slot() = std::move(pConfig);
}
std::shared_ptr<IConfig> Config() {
    return Slot();
}
bool HasConfig() {
    return Slot() != nullptr;
}
} // namespace Globals

namespace HostSettings {

QVariant Value(const QString& pKey) {
    const std::shared_ptr<IConfig> config = Globals::Config();
    if (!config) {
        throw ChartError(ChartError::ObjectNotSet);
    }
    const QVariantMap settings = config->Settings();
    const auto found = settings.constFind(pKey);
    if (found == settings.constEnd()) {
        throw ChartError(ChartError::InvalidArgument,
                         QStringLiteral("The host settings have no key \"%1\"").arg(pKey));
    }
    return found.value();
}

std::int32_t Colour(const QString& pBaseKey) {
    if (!Globals::HasConfig()) {
        return 0;
    }
    const std::int16_t red = VariantConvert::ToInt16(Value(pBaseKey + QStringLiteral(".R")));
    const std::int16_t green = VariantConvert::ToInt16(Value(pBaseKey + QStringLiteral(".G")));
    const std::int16_t blue = VariantConvert::ToInt16(Value(pBaseKey + QStringLiteral(".B")));
    return ColorConverter::RGBToLong(red, green, blue);
}

} // namespace HostSettings

} // namespace trv5
