#include "projectfile.h"

#include "fileaccess.h"
#include "galleryerror.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QJsonValue>

#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace trv5::gallery {

namespace {

constexpr qint64 kMaxFileBytes = 64LL * 1024 * 1024;
const QString kFormat = QStringLiteral("trv5-gallery-project");
constexpr int kVersion = 1;

namespace key {
const QString Format = QStringLiteral("format");
const QString Version = QStringLiteral("version");
const QString Dataset = QStringLiteral("dataset");
const QString Settings = QStringLiteral("settings");
const QString Charts = QStringLiteral("charts");
const QString Seed = QStringLiteral("seed");
const QString Generations = QStringLiteral("generations");
const QString ParentCount = QStringLiteral("parentCount");
const QString OffspringCount = QStringLiteral("offspringCount");
const QString InitialStepSize = QStringLiteral("initialStepSize");
const QString ValidationFraction = QStringLiteral("validationFraction");
const QString Threshold = QStringLiteral("threshold");
const QString Fitness = QStringLiteral("fitness");
const QString PaceMilliseconds = QStringLiteral("paceMilliseconds");
} // namespace key

QString Quoted(const QString& pText) {
    return QLatin1Char('\'') + pText + QLatin1Char('\'');
}

// Reads one JSON object strictly: every expected key present with the right type, no others.
class ObjectReader {
public:
    ObjectReader(const QJsonObject& pObject, QString pSource, QString pWhere)
        : m_object(pObject), m_source(std::move(pSource)), m_where(std::move(pWhere)) {}

    void ExpectOnly(std::initializer_list<QString> pKeys) const {
        for (auto it = m_object.begin(); it != m_object.end(); ++it) {
            if (std::find(pKeys.begin(), pKeys.end(), it.key()) == pKeys.end()) {
                Fail(QStringLiteral("unknown entry %1").arg(Quoted(it.key())));
            }
        }
    }

    QJsonValue Value(const QString& pKey) const {
        const QJsonValue value = m_object.value(pKey);
        if (value.isUndefined()) {
            Fail(QStringLiteral("the entry %1 is missing").arg(Quoted(pKey)));
        }
        return value;
    }

    QString Text(const QString& pKey) const {
        const QJsonValue value = Value(pKey);
        if (!value.isString()) {
            Fail(QStringLiteral("the entry %1 must be a text").arg(Quoted(pKey)));
        }
        return value.toString();
    }

    double Number(const QString& pKey) const {
        const QJsonValue value = Value(pKey);
        if (!value.isDouble() || !std::isfinite(value.toDouble())) {
            Fail(QStringLiteral("the entry %1 must be a number").arg(Quoted(pKey)));
        }
        return value.toDouble();
    }

    std::int32_t Integer(const QString& pKey) const {
        const double number = Number(pKey);
        if (number != std::trunc(number) || number < std::numeric_limits<std::int32_t>::min() ||
            number > std::numeric_limits<std::int32_t>::max()) {
            Fail(QStringLiteral("the entry %1 must be a whole number").arg(Quoted(pKey)));
        }
        return static_cast<std::int32_t>(number);
    }

    QJsonObject Object(const QString& pKey) const {
        const QJsonValue value = Value(pKey);
        if (!value.isObject()) {
            Fail(QStringLiteral("the entry %1 must be an object").arg(Quoted(pKey)));
        }
        return value.toObject();
    }

    [[noreturn]] void Fail(const QString& pMessage) const {
        throw GalleryError(m_source, m_where.isEmpty() ? pMessage
                                                       : m_where + QStringLiteral(": ") + pMessage);
    }

private:
    const QJsonObject& m_object;
    QString m_source;
    QString m_where;
};

// Line and column (1-based, in bytes) of a byte offset.
std::pair<int, int> Position(QByteArrayView pBytes, qsizetype pOffset) {
    const qsizetype end = std::clamp<qsizetype>(pOffset, 0, pBytes.size());
    int line = 1;
    qsizetype lineStart = 0;
    for (qsizetype i = 0; i < end; ++i) {
        if (pBytes[i] == '\n') {
            ++line;
            lineStart = i + 1;
        }
    }
    const qsizetype column =
        std::min<qsizetype>(end - lineStart + 1, std::numeric_limits<int>::max());
    return {line, static_cast<int>(column)};
}

QJsonObject SettingsToJson(const RunSettings& pSettings) {
    QJsonObject settings;
    // A text: JSON numbers are doubles, which cannot hold every 64-bit seed.
    settings.insert(key::Seed, QString::number(pSettings.Seed));
    settings.insert(key::Generations, pSettings.Generations);
    settings.insert(key::ParentCount, pSettings.ParentCount);
    settings.insert(key::OffspringCount, pSettings.OffspringCount);
    settings.insert(key::InitialStepSize, pSettings.InitialStepSize);
    settings.insert(key::ValidationFraction, pSettings.ValidationFraction);
    settings.insert(key::Threshold, pSettings.Threshold);
    settings.insert(key::Fitness, FitnessMeasureName(pSettings.Fitness));
    settings.insert(key::PaceMilliseconds, pSettings.PaceMilliseconds);
    return settings;
}

RunSettings SettingsFromJson(const QJsonObject& pObject, const QString& pSource) {
    const ObjectReader reader(pObject, pSource, key::Settings);
    reader.ExpectOnly({key::Seed, key::Generations, key::ParentCount, key::OffspringCount,
                       key::InitialStepSize, key::ValidationFraction, key::Threshold, key::Fitness,
                       key::PaceMilliseconds});
    RunSettings settings;
    const std::string seed = reader.Text(key::Seed).toStdString();
    const char* const end = seed.data() + seed.size();
    const auto [stop, parseError] = std::from_chars(seed.data(), end, settings.Seed);
    if (seed.empty() || parseError != std::errc() || stop != end) {
        reader.Fail(QStringLiteral("the seed must be a whole number from 0 to %1")
                        .arg(std::numeric_limits<std::uint64_t>::max()));
    }
    settings.Generations = reader.Integer(key::Generations);
    settings.ParentCount = reader.Integer(key::ParentCount);
    settings.OffspringCount = reader.Integer(key::OffspringCount);
    settings.InitialStepSize = reader.Number(key::InitialStepSize);
    settings.ValidationFraction = reader.Number(key::ValidationFraction);
    settings.Threshold = reader.Number(key::Threshold);
    if (!FitnessMeasureFromName(reader.Text(key::Fitness), settings.Fitness)) {
        reader.Fail(
            QStringLiteral("unknown fitness measure %1").arg(Quoted(reader.Text(key::Fitness))));
    }
    settings.PaceMilliseconds = reader.Integer(key::PaceMilliseconds);
    try {
        settings.Validate();
    } catch (const GalleryError& error) {
        reader.Fail(error.Message());
    }
    return settings;
}

} // namespace

qint64 ProjectFile::MaxFileBytes() {
    return kMaxFileBytes;
}

QString ProjectFile::Chart(const QString& pName) const {
    const auto found = m_charts.find(pName);
    return found == m_charts.end() ? QString() : found->second;
}

void ProjectFile::SetChart(const QString& pName, const QString& pFragment) {
    if (pName.isEmpty()) {
        throw GalleryError(QStringLiteral("project"), QStringLiteral("a chart needs a name"));
    }
    m_charts[pName] = pFragment;
}

QByteArray ProjectFile::ToBytes() const {
    QJsonObject charts;
    for (const auto& [name, fragment] : m_charts) {
        charts.insert(name, fragment);
    }
    QJsonObject root;
    root.insert(key::Format, kFormat);
    root.insert(key::Version, kVersion);
    root.insert(key::Dataset, m_datasetSource);
    root.insert(key::Settings, SettingsToJson(m_settings));
    root.insert(key::Charts, charts);
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

ProjectFile ProjectFile::FromBytes(QByteArrayView pBytes, const QString& pSource) {
    if (pBytes.trimmed().isEmpty()) {
        throw GalleryError(pSource, QStringLiteral("the file is empty"));
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(pBytes.toByteArray(), &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        const auto [line, column] = Position(pBytes, parseError.offset);
        throw GalleryError(
            pSource, line, column,
            QStringLiteral("not a readable project (%1)").arg(parseError.errorString()));
    }
    if (!document.isObject()) {
        throw GalleryError(pSource, QStringLiteral("not a project: the document is no object"));
    }
    const QJsonObject root = document.object();
    const ObjectReader reader(root, pSource, QString());
    if (!root.value(key::Format).isString() || root.value(key::Format).toString() != kFormat) {
        reader.Fail(QStringLiteral("not a gallery project (the entry 'format' is not %1)")
                        .arg(Quoted(kFormat)));
    }
    const std::int32_t version = reader.Integer(key::Version);
    if (version != kVersion) {
        reader.Fail(QStringLiteral("version %1 is not supported (this program reads version %2)")
                        .arg(version)
                        .arg(kVersion));
    }
    reader.ExpectOnly({key::Format, key::Version, key::Dataset, key::Settings, key::Charts});

    ProjectFile project;
    project.m_datasetSource = reader.Text(key::Dataset);
    project.m_settings = SettingsFromJson(reader.Object(key::Settings), pSource);
    const QJsonObject charts = reader.Object(key::Charts);
    const ObjectReader chartReader(charts, pSource, key::Charts);
    for (auto it = charts.begin(); it != charts.end(); ++it) {
        if (it.key().isEmpty()) {
            chartReader.Fail(QStringLiteral("a chart without a name"));
        }
        project.m_charts[it.key()] = chartReader.Text(it.key());
    }
    return project;
}

void ProjectFile::Save(const QString& pPath) const {
    WriteFileAtomically(pPath, ToBytes());
}

ProjectFile ProjectFile::Load(const QString& pPath) {
    return FromBytes(ReadFileCapped(pPath, kMaxFileBytes), pPath);
}

} // namespace trv5::gallery
