#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <span>
#include <vector>

namespace trv5::gallery {

// How a CSV file is read as a two-class data set.
struct DatasetOptions {
    // The column that holds the class, by its header name; empty for the last column.
    QString TargetColumn;
    // The class value modelled as positive (target 1). Empty: when both class values are
    // numbers the larger one, otherwise the one that sorts later by its UTF-8 bytes (so
    // "malignant" over "benign", "yes" over "no", "M" over "B").
    QString PositiveClass;
};

// A two-class data set held in memory: numeric features per record and a 0/1 target.
//
// CSV input has a header row of column names and one row per record; every column but the
// target holds numbers ('.' decimal point, optional exponent), the target column holds exactly
// two distinct values (texts, compared as written). Records are numbered 1..N in file order.
// Damaged input throws GalleryError naming the file, the line and the field number; memory
// grows only with the rows really present.
class Dataset {
public:
    Dataset() = default;

    // pSource names the text in error messages.
    static Dataset FromText(QByteArrayView pText, const QString& pSource,
                            const DatasetOptions& pOptions = {});
    // Reads a CSV file of at most MaxFileBytes() bytes.
    static Dataset FromFile(const QString& pPath, const DatasetOptions& pOptions = {});
    // The Wisconsin Diagnostic Breast Cancer data built into the gallery (569 records,
    // 30 features, malignant modelled as positive).
    static Dataset BuiltInWdbc();
    static QString BuiltInWdbcPath();
    static qint64 MaxFileBytes();

    const QString& Source() const { return m_source; }
    std::int32_t RecordCount() const { return static_cast<std::int32_t>(m_targets.size()); }
    std::int32_t FeatureCount() const { return static_cast<std::int32_t>(m_featureNames.size()); }
    const QStringList& FeatureNames() const { return m_featureNames; }
    const QString& TargetName() const { return m_targetName; }
    const QString& PositiveClass() const { return m_positiveClass; }
    const QString& NegativeClass() const { return m_negativeClass; }
    std::int32_t PositiveCount() const { return m_positiveCount; }

    // The features of one record (0-based index); ChartError 9 outside 0..RecordCount() - 1.
    std::span<const double> Features(std::int32_t pRecord) const;
    // All features, record after record.
    std::span<const double> AllFeatures() const { return m_features; }
    // 1 for the positive class, 0 for the negative one.
    std::span<const double> Targets() const { return m_targets; }
    std::span<const std::int32_t> RecordIds() const { return m_recordIds; }

private:
    QString m_source;
    QStringList m_featureNames;
    QString m_targetName;
    QString m_positiveClass;
    QString m_negativeClass;
    std::int32_t m_positiveCount = 0;
    std::vector<double> m_features;
    std::vector<double> m_targets;
    std::vector<std::int32_t> m_recordIds;
};

} // namespace trv5::gallery
