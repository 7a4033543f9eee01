#include "dataset.h"

#include "csvreader.h"
#include "fileaccess.h"
#include "galleryerror.h"

#include <trv5charts/charterror.h>

#include <QSet>

#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <system_error>

// Resources of a static library are registered by hand; this must sit outside any namespace.
static void InitGalleryDataResource() {
    Q_INIT_RESOURCE(gallery_data);
}

namespace trv5::gallery {

namespace {

constexpr qint64 kMaxFileBytes = 256LL * 1024 * 1024;
// More columns than any data set the gallery can train on; the limit keeps a header of millions
// of empty cells from costing gigabytes before it is refused.
constexpr std::size_t kMaxColumns = 100'000;

enum class NumberStatus { Ok, NotANumber, OutOfRange, NotFinite };

NumberStatus ParseNumber(std::string_view pText, double& pValue) {
    if (pText.size() > 1 && pText.front() == '+' && pText[1] != '-' && pText[1] != '+') {
        pText.remove_prefix(1);
    }
    const char* const end = pText.data() + pText.size();
    const auto [stop, error] = std::from_chars(pText.data(), end, pValue);
    if (pText.empty() || stop != end) {
        return NumberStatus::NotANumber;
    }
    if (error == std::errc::result_out_of_range) {
        return NumberStatus::OutOfRange;
    }
    if (error != std::errc()) {
        return NumberStatus::NotANumber;
    }
    return std::isfinite(pValue) ? NumberStatus::Ok : NumberStatus::NotFinite;
}

// A cell as it may be quoted in a message: at most 40 bytes.
QString Shown(std::string_view pText) {
    constexpr std::size_t kLimit = 40;
    if (pText.size() <= kLimit) {
        return QString::fromUtf8(pText.data(), static_cast<qsizetype>(pText.size()));
    }
    return QString::fromUtf8(pText.data(), static_cast<qsizetype>(kLimit)) + QStringLiteral("...");
}

QString Quoted(const QString& pText) {
    return QLatin1Char('\'') + pText + QLatin1Char('\'');
}

int FieldNumber(std::size_t pIndex) {
    return pIndex < static_cast<std::size_t>(std::numeric_limits<int>::max())
               ? static_cast<int>(pIndex) + 1
               : std::numeric_limits<int>::max();
}

// The class index of the positive class when the options leave the choice open.
std::size_t DefaultPositive(const std::string& pFirst, const std::string& pSecond) {
    double first = 0.0;
    double second = 0.0;
    if (ParseNumber(pFirst, first) == NumberStatus::Ok &&
        ParseNumber(pSecond, second) == NumberStatus::Ok) {
        return second > first ? 1 : 0;
    }
    return pSecond > pFirst ? 1 : 0;
}

} // namespace

qint64 Dataset::MaxFileBytes() {
    return kMaxFileBytes;
}

QString Dataset::BuiltInWdbcPath() {
    return QStringLiteral(":/trv5gallery/wdbc.csv");
}

Dataset Dataset::FromText(QByteArrayView pText, const QString& pSource,
                          const DatasetOptions& pOptions) {
    CsvReader reader(pText, pSource);
    if (!reader.NextRow(kMaxColumns + 1)) {
        throw GalleryError(pSource, QStringLiteral("the file is empty"));
    }
    const int headerLine = reader.Line();
    if (reader.CellCount() > kMaxColumns) {
        throw GalleryError(pSource, headerLine, FieldNumber(kMaxColumns),
                           QStringLiteral("the header has more than %1 columns").arg(kMaxColumns));
    }
    const auto header = reader.Cells();
    const std::size_t columns = header.size();
    if (columns < 2) {
        throw GalleryError(pSource, headerLine, 1,
                           QStringLiteral("the header names one column; at least one feature "
                                          "column and a class column are needed"));
    }

    QStringList names;
    names.reserve(static_cast<qsizetype>(columns));
    QSet<QString> seen;
    seen.reserve(static_cast<qsizetype>(columns));
    for (std::size_t i = 0; i < columns; ++i) {
        QString name =
            header[i].empty()
                ? QStringLiteral("column %1").arg(FieldNumber(i))
                : QString::fromUtf8(header[i].data(), static_cast<qsizetype>(header[i].size()));
        if (seen.contains(name)) {
            throw GalleryError(
                pSource, headerLine, FieldNumber(i),
                QStringLiteral("the column name %1 appears twice").arg(Quoted(name)));
        }
        seen.insert(name);
        names.append(std::move(name));
    }

    std::size_t target = columns - 1;
    if (!pOptions.TargetColumn.isEmpty()) {
        const qsizetype found = names.indexOf(pOptions.TargetColumn);
        if (found < 0) {
            throw GalleryError(
                pSource, headerLine, 0,
                QStringLiteral("no column is named %1").arg(Quoted(pOptions.TargetColumn)));
        }
        target = static_cast<std::size_t>(found);
    }

    Dataset data;
    data.m_source = pSource;
    data.m_targetName = names[static_cast<qsizetype>(target)];
    for (std::size_t i = 0; i < columns; ++i) {
        if (i != target) {
            data.m_featureNames.append(names[static_cast<qsizetype>(i)]);
        }
    }

    std::string classes[2];
    std::size_t classCount = 0;
    std::vector<std::uint8_t> classOfRecord;
    // One cell more than the header is kept, so that a row that is too long is told apart from
    // a full one without keeping all of it.
    while (reader.NextRow(columns + 1)) {
        const auto cells = reader.Cells();
        const int line = reader.Line();
        if (reader.CellCount() != columns) {
            const std::size_t at = std::min(reader.CellCount(), columns);
            throw GalleryError(pSource, line, FieldNumber(at),
                               QStringLiteral("the row has %1 cells, the header has %2")
                                   .arg(reader.CellCount())
                                   .arg(columns));
        }
        if (classOfRecord.size() >= static_cast<std::size_t>(std::numeric_limits<int>::max())) {
            throw GalleryError(pSource, line, 0, QStringLiteral("too many records"));
        }
        for (std::size_t i = 0; i < columns; ++i) {
            if (i == target) {
                continue;
            }
            double value = 0.0;
            const NumberStatus status = ParseNumber(cells[i], value);
            if (status != NumberStatus::Ok) {
                const QString what =
                    status == NumberStatus::OutOfRange  ? QStringLiteral("is out of range")
                    : status == NumberStatus::NotFinite ? QStringLiteral("is not a finite number")
                                                        : QStringLiteral("is not a number");
                throw GalleryError(pSource, line, FieldNumber(i),
                                   QStringLiteral("%1 in column %2 %3")
                                       .arg(Quoted(Shown(cells[i])),
                                            Quoted(names[static_cast<qsizetype>(i)]), what));
            }
            data.m_features.push_back(value);
        }

        const std::string_view label = cells[target];
        if (label.empty()) {
            throw GalleryError(
                pSource, line, FieldNumber(target),
                QStringLiteral("the class in column %1 is missing").arg(Quoted(data.m_targetName)));
        }
        std::size_t classIndex = 0;
        while (classIndex < classCount && classes[classIndex] != label) {
            ++classIndex;
        }
        if (classIndex == classCount) {
            if (classCount == 2) {
                throw GalleryError(
                    pSource, line, FieldNumber(target),
                    QStringLiteral("a third class %1 in column %2; two classes (%3 and %4) are "
                                   "allowed")
                        .arg(Quoted(Shown(label)), Quoted(data.m_targetName),
                             Quoted(Shown(classes[0])), Quoted(Shown(classes[1]))));
            }
            classes[classCount++] = std::string(label);
        }
        classOfRecord.push_back(static_cast<std::uint8_t>(classIndex));
    }

    if (classOfRecord.empty()) {
        throw GalleryError(pSource, headerLine, 0,
                           QStringLiteral("the file has a header but no records"));
    }
    if (classCount < 2) {
        throw GalleryError(pSource, QStringLiteral("column %1 holds only the class %2; two "
                                                   "classes are needed")
                                        .arg(Quoted(data.m_targetName), Quoted(Shown(classes[0]))));
    }

    std::size_t positive = DefaultPositive(classes[0], classes[1]);
    if (!pOptions.PositiveClass.isEmpty()) {
        const std::string wanted = pOptions.PositiveClass.toStdString();
        if (wanted != classes[0] && wanted != classes[1]) {
            throw GalleryError(pSource,
                               QStringLiteral("the positive class %1 is neither %2 nor %3")
                                   .arg(Quoted(pOptions.PositiveClass), Quoted(Shown(classes[0])),
                                        Quoted(Shown(classes[1]))));
        }
        positive = wanted == classes[0] ? 0 : 1;
    }
    data.m_positiveClass = QString::fromStdString(classes[positive]);
    data.m_negativeClass = QString::fromStdString(classes[1 - positive]);

    data.m_targets.reserve(classOfRecord.size());
    data.m_recordIds.reserve(classOfRecord.size());
    std::int32_t id = 0;
    for (const std::uint8_t classIndex : classOfRecord) {
        const bool isPositive = classIndex == positive;
        data.m_targets.push_back(isPositive ? 1.0 : 0.0);
        data.m_positiveCount += isPositive ? 1 : 0;
        data.m_recordIds.push_back(++id);
    }
    return data;
}

Dataset Dataset::FromFile(const QString& pPath, const DatasetOptions& pOptions) {
    return FromText(ReadFileCapped(pPath, kMaxFileBytes), pPath, pOptions);
}

Dataset Dataset::BuiltInWdbc() {
    static const bool registered = (InitGalleryDataResource(), true);
    Q_UNUSED(registered);
    return FromFile(BuiltInWdbcPath(),
                    DatasetOptions{QStringLiteral("diagnosis"), QStringLiteral("malignant")});
}

std::span<const double> Dataset::Features(std::int32_t pRecord) const {
    if (pRecord < 0 || pRecord >= RecordCount()) {
        throw ChartError(ChartError::IndexOutOfRange);
    }
    const auto width = static_cast<std::size_t>(FeatureCount());
    return std::span<const double>(m_features)
        .subspan(static_cast<std::size_t>(pRecord) * width, width);
}

} // namespace trv5::gallery
