#pragma once

#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <cstdint>
#include <memory>

namespace trv5 {

// What the library needs of a host's configuration: its keyed collection of setting values.
// The collection is asked for afresh on every lookup, so a host may change settings at any time.
class IConfig {
public:
    virtual ~IConfig() = default;
    virtual QVariantMap Settings() const = 0;

protected:
    IConfig() = default;
    IConfig(const IConfig&) = default;
    IConfig& operator=(const IConfig&) = default;
};

// An IConfig over an INI file, for hosts that keep their settings that way. Keys may be written
// flat ("Run.CurveFitting.Margin=0.05" under [General]) or grouped ("[Run]" then
// "CurveFitting.Margin=0.05"); both answer to the dotted key.
class QSettingsConfig final : public IConfig {
public:
    explicit QSettingsConfig(QString pIniPath);
    QVariantMap Settings() const override;
    const QString& Path() const { return m_path; }

private:
    QString m_path;
};

// The library-wide settings slot: one configuration for every control on the UI thread. The
// last store wins.
namespace Globals {
void StoreConfig(std::shared_ptr<IConfig> pConfig);
std::shared_ptr<IConfig> Config();
bool HasConfig();
} // namespace Globals

namespace HostSettings {
// The value under the key. Throws ChartError 91 when no configuration is stored and
// ChartError 5 when the collection has no such key: a missing key is the host's mistake, and
// the library applies no defaults of its own.
QVariant Value(const QString& pKey);
// A colour from the three settings pBaseKey + ".R", ".G" and ".B" (each 0 to 255), red in the
// low byte. Black when no configuration is stored.
std::int32_t Colour(const QString& pBaseKey);
} // namespace HostSettings

} // namespace trv5
