#pragma once

#include "runsettings.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <map>

namespace trv5::gallery {

// A gallery project: the run settings, where the data came from, and each chart's saved state
// (the XML fragment of its ISimpleSerializable::ToString) by chart name.
//
// The file is a JSON document (see apps/gallery/README.md): an object with "format",
// "version", "dataset", "settings" and "charts", written with sorted keys and four-space
// indentation. Writing is deterministic, so saving a loaded project writes the same bytes.
// Loading checks everything and throws GalleryError naming the file (with line and column for
// JSON syntax errors) for anything damaged or unknown.
class ProjectFile {
public:
    const RunSettings& Settings() const { return m_settings; }
    void SetSettings(const RunSettings& pSettings) { m_settings = pSettings; }

    // The data set's file path, or Dataset::BuiltInWdbcPath() for the built-in data.
    const QString& DatasetSource() const { return m_datasetSource; }
    void SetDatasetSource(const QString& pSource) { m_datasetSource = pSource; }

    // Fragments by chart name, in name order.
    const std::map<QString, QString>& Charts() const { return m_charts; }
    // The fragment saved for a chart; empty when there is none.
    QString Chart(const QString& pName) const;
    // Replaces the chart's fragment. Throws GalleryError for an empty name.
    void SetChart(const QString& pName, const QString& pFragment);
    void RemoveChart(const QString& pName) { m_charts.erase(pName); }

    QByteArray ToBytes() const;
    // pSource names the text in error messages.
    static ProjectFile FromBytes(QByteArrayView pBytes, const QString& pSource);

    // Writes the file atomically (the old file stays intact if writing fails).
    void Save(const QString& pPath) const;
    // Reads a file of at most MaxFileBytes() bytes.
    static ProjectFile Load(const QString& pPath);
    static qint64 MaxFileBytes();

    bool operator==(const ProjectFile&) const = default;

private:
    RunSettings m_settings;
    QString m_datasetSource;
    std::map<QString, QString> m_charts;
};

} // namespace trv5::gallery
