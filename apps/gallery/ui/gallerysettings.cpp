#include "ui/gallerysettings.h"

#include "core/galleryerror.h"

#include <trv5charts/hostsettings.h>

#include <QFile>

namespace trv5::gallery::settings {

namespace {

std::shared_ptr<IConfig>& Slot() {
    static std::shared_ptr<IConfig> current;
    return current;
}

} // namespace

QStringList RequiredKeys() {
    QStringList keys{
        QStringLiteral("Run.CurveFitting.Margin"),
        QStringLiteral("Run.UsageChart.HeatMap.H"),
        QStringLiteral("Run.UsageChart.HeatMap.S.Factor"),
        QStringLiteral("Run.UsageChart.HeatMap.B"),
        QStringLiteral("Run.UsageChart.ShowGaps.Limit"),
        QStringLiteral("Run.UsageChart.AbsentColor.1"),
    };
    for (const char* colour :
         {"HighColor", "LowColor", "HighColor.Inverted", "LowColor.Inverted", "SingleColor"}) {
        for (const char* part : {".R", ".G", ".B"}) {
            keys << QStringLiteral("ClassificationTapestry.") + QLatin1String(colour) +
                        QLatin1String(part);
        }
    }
    return keys;
}

std::shared_ptr<IConfig> Load(const QString& pPath) {
    const QString path = pPath.isEmpty() ? QString::fromLatin1(kDefaultsPath) : pPath;
    if (!QFile(path).open(QIODevice::ReadOnly)) {
        throw GalleryError(path, QStringLiteral("cannot read the settings file"));
    }
    auto config = std::make_shared<QSettingsConfig>(path);
    const QVariantMap values = config->Settings();
    for (const QString& key : RequiredKeys()) {
        if (!values.contains(key)) {
            throw GalleryError(path, QStringLiteral("the setting %1 is missing").arg(key));
        }
    }
    Slot() = config;
    return config;
}

std::shared_ptr<IConfig> Current() {
    if (!Slot()) {
        Load(QString());
    }
    return Slot();
}

} // namespace trv5::gallery::settings
