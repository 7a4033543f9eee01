#include "platform/definitionfile.h"

#include <trv5charts/charterror.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QJsonValue>

#include <array>
#include <cmath>
#include <utility>

namespace trv5::platform::definitionfile {

namespace {

constexpr int kFileNotFound = 53;

// One field being read: the file and the dotted path of the field, so that every error says
// exactly where the problem is ("Content.Series[2].Marker.Size").
class Field {
public:
    Field(const QString& pSource, QString pPath) : m_source(pSource), m_path(std::move(pPath)) {}

    Field Child(const QString& pName) const { return {m_source, m_path + u'.' + pName}; }
    Field Item(qsizetype pIndex) const {
        return {m_source, m_path + u'[' + QString::number(pIndex) + u']'};
    }

    [[noreturn]] void Fail(int pNumber, const QString& pProblem) const {
        throw ChartError(pNumber, QStringLiteral("%1: %2 %3").arg(m_source, m_path, pProblem));
    }

    QJsonObject Object(const QJsonValue& pValue) const {
        if (!pValue.isObject()) {
            Fail(ChartError::TypeMismatch, QStringLiteral("must be an object"));
        }
        return pValue.toObject();
    }
    QJsonArray Array(const QJsonValue& pValue, qsizetype pLimit) const {
        if (!pValue.isArray()) {
            Fail(ChartError::TypeMismatch, QStringLiteral("must be a list"));
        }
        const QJsonArray array = pValue.toArray();
        if (array.size() > pLimit) {
            Fail(ChartError::Overflow, QStringLiteral("has %1 entries; at most %2 are allowed")
                                           .arg(array.size())
                                           .arg(pLimit));
        }
        return array;
    }
    QString Text(const QJsonValue& pValue) const {
        if (!pValue.isString()) {
            Fail(ChartError::TypeMismatch, QStringLiteral("must be a text"));
        }
        return pValue.toString();
    }
    bool Bool(const QJsonValue& pValue) const {
        if (!pValue.isBool()) {
            Fail(ChartError::TypeMismatch, QStringLiteral("must be true or false"));
        }
        return pValue.toBool();
    }
    double Number(const QJsonValue& pValue, double pLow, double pHigh) const {
        if (!pValue.isDouble()) {
            Fail(ChartError::TypeMismatch, QStringLiteral("must be a number"));
        }
        const double number = pValue.toDouble();
        if (!std::isfinite(number) || number < pLow || number > pHigh) {
            Fail(ChartError::Overflow,
                 QStringLiteral("must lie between %1 and %2").arg(pLow).arg(pHigh));
        }
        return number;
    }
    QColor Colour(const QJsonValue& pValue) const {
        const QString text = Text(pValue);
        // Exactly #RRGGBB: no colour names, so a file means the same on every system.
        bool valid = text.size() == 7 && text.front() == u'#';
        for (qsizetype i = 1; valid && i < text.size(); ++i) {
            const char16_t c = text.at(i).unicode();
            valid =
                (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
        }
        if (!valid) {
            Fail(ChartError::InvalidArgument,
                 QStringLiteral("must be a colour written #RRGGBB, not \"%1\"").arg(text.left(40)));
        }
        return QColor(text);
    }
    // A name from pNames (its index is the enumeration's value) or that index as a number.
    template <class Enum, std::size_t N>
    Enum Choice(const QJsonValue& pValue, const std::array<const char*, N>& pNames) const {
        if (pValue.isDouble()) {
            return static_cast<Enum>(
                static_cast<int>(Number(pValue, 0.0, static_cast<double>(N - 1))));
        }
        const QString text = Text(pValue);
        for (std::size_t i = 0; i < N; ++i) {
            if (text.compare(QLatin1String(pNames[i]), Qt::CaseInsensitive) == 0) {
                return static_cast<Enum>(static_cast<int>(i));
            }
        }
        QStringList names;
        for (const char* name : pNames) {
            names << QLatin1String(name);
        }
        Fail(ChartError::InvalidArgument,
             QStringLiteral("must be one of %1, not \"%2\"")
                 .arg(names.join(QStringLiteral(", ")), text.left(40)));
    }

private:
    const QString& m_source;
    QString m_path;
};

constexpr std::array<const char*, 4> kDockingNames{"Left", "Top", "Right", "Bottom"};
constexpr std::array<const char*, 3> kAlignmentNames{"Near", "Center", "Far"};
constexpr std::array<const char*, 2> kSeriesTypeNames{"Point", "Line"};
constexpr std::array<const char*, 9> kMarkerNames{
    "Circle", "Disc", "Square", "Diamond", "Triangle", "TriangleDown", "Cross", "Plus", "Star"};
constexpr std::array<const char*, 4> kLabelFormatNames{"Text", "Argument", "Value",
                                                       "ArgumentAndValue"};
constexpr std::array<const char*, 4> kLegendPositionNames{"TopRight", "TopLeft", "BottomRight",
                                                          "BottomLeft"};

// Calls pRead with the member's value and field when the object has the member; an absent member
// keeps the default.
template <class Read>
void Optional(const QJsonObject& pObject, const Field& pField, const char* pName, Read&& pRead) {
    const QString name = QLatin1String(pName);
    const auto found = pObject.constFind(name);
    if (found != pObject.constEnd()) {
        pRead(*found, pField.Child(name));
    }
}

QJsonObject Section(const QByteArray& pJson, const QString& pSource, const char* pSection) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(pJson, &error);
    if (error.error != QJsonParseError::NoError) {
        throw ChartError(ChartError::InvalidArgument,
                         QStringLiteral("%1: JSON parse error at offset %2: %3")
                             .arg(pSource)
                             .arg(error.offset)
                             .arg(error.errorString()));
    }
    if (!document.isObject()) {
        throw ChartError(ChartError::InvalidArgument,
                         QStringLiteral("%1: the document must be a JSON object").arg(pSource));
    }
    const QJsonObject root = document.object();
    const auto section = root.constFind(QLatin1String(pSection));
    if (section == root.constEnd()) {
        throw ChartError(
            ChartError::InvalidArgument,
            QStringLiteral("%1: the section \"%2\" is missing").arg(pSource, pSection));
    }
    return Field(pSource, QLatin1String(pSection)).Object(*section);
}

TitleDefinition ReadTitle(const QJsonObject& pObject, const Field& pField) {
    TitleDefinition title;
    Optional(pObject, pField, "Text",
             [&](const QJsonValue& v, const Field& f) { title.text = f.Text(v); });
    Optional(pObject, pField, "Docking", [&](const QJsonValue& v, const Field& f) {
        title.docking = f.Choice<Docking>(v, kDockingNames);
    });
    Optional(pObject, pField, "Alignment", [&](const QJsonValue& v, const Field& f) {
        title.alignment = f.Choice<TitleAlignment>(v, kAlignmentNames);
    });
    Optional(pObject, pField, "FontSize", [&](const QJsonValue& v, const Field& f) {
        title.fontSize = f.Number(v, 1.0, 200.0);
    });
    Optional(pObject, pField, "Bold",
             [&](const QJsonValue& v, const Field& f) { title.bold = f.Bool(v); });
    Optional(pObject, pField, "Visible",
             [&](const QJsonValue& v, const Field& f) { title.visible = f.Bool(v); });
    Optional(pObject, pField, "Color",
             [&](const QJsonValue& v, const Field& f) { title.colour = f.Colour(v); });
    return title;
}

SeriesDefinition ReadSeries(const QJsonObject& pObject, const Field& pField) {
    SeriesDefinition series;
    Optional(pObject, pField, "Name",
             [&](const QJsonValue& v, const Field& f) { series.name = f.Text(v); });
    Optional(pObject, pField, "Type", [&](const QJsonValue& v, const Field& f) {
        series.type = f.Choice<SeriesType>(v, kSeriesTypeNames);
        // A line series shows no markers unless the file asks for them.
        series.markerVisible = series.type == SeriesType::Point;
    });
    Optional(pObject, pField, "Color",
             [&](const QJsonValue& v, const Field& f) { series.colour = f.Colour(v); });
    Optional(pObject, pField, "Visible",
             [&](const QJsonValue& v, const Field& f) { series.visible = f.Bool(v); });
    Optional(pObject, pField, "ShowInLegend",
             [&](const QJsonValue& v, const Field& f) { series.showInLegend = f.Bool(v); });
    Optional(pObject, pField, "Marker", [&](const QJsonValue& v, const Field& f) {
        const QJsonObject marker = f.Object(v);
        Optional(marker, f, "Shape", [&](const QJsonValue& mv, const Field& mf) {
            series.markerShape = mf.Choice<MarkerShape>(mv, kMarkerNames);
        });
        Optional(marker, f, "Size", [&](const QJsonValue& mv, const Field& mf) {
            series.markerSize = mf.Number(mv, 0.0, 100.0);
        });
        Optional(marker, f, "Visible", [&](const QJsonValue& mv, const Field& mf) {
            series.markerVisible = mf.Bool(mv);
        });
    });
    Optional(pObject, pField, "Line", [&](const QJsonValue& v, const Field& f) {
        const QJsonObject line = f.Object(v);
        Optional(line, f, "Width", [&](const QJsonValue& lv, const Field& lf) {
            series.lineWidth = lf.Number(lv, 0.0, 20.0);
        });
        Optional(line, f, "Dash", [&](const QJsonValue& lv, const Field& lf) {
            const QJsonArray dash = lf.Array(lv, kMaxDashEntries);
            series.dashPattern.clear();
            for (qsizetype i = 0; i < dash.size(); ++i) {
                series.dashPattern.push_back(lf.Item(i).Number(dash.at(i), 0.1, 100.0));
            }
        });
    });
    Optional(pObject, pField, "Labels", [&](const QJsonValue& v, const Field& f) {
        const QJsonObject labels = f.Object(v);
        Optional(labels, f, "Visible", [&](const QJsonValue& lv, const Field& lf) {
            series.labelsVisible = lf.Bool(lv);
        });
        Optional(labels, f, "Format", [&](const QJsonValue& lv, const Field& lf) {
            series.labelFormat = lf.Choice<LabelFormat>(lv, kLabelFormatNames);
        });
    });
    return series;
}

AxisDefinition ReadAxis(const QJsonObject& pObject, const Field& pField) {
    AxisDefinition axis;
    Optional(pObject, pField, "Range", [&](const QJsonValue& v, const Field& f) {
        const QJsonObject range = f.Object(v);
        Optional(range, f, "AutoRange",
                 [&](const QJsonValue& rv, const Field& rf) { axis.autoRange = rf.Bool(rv); });
        Optional(range, f, "MinValue", [&](const QJsonValue& rv, const Field& rf) {
            axis.minValue = rf.Number(rv, -1e300, 1e300);
        });
        Optional(range, f, "MaxValue", [&](const QJsonValue& rv, const Field& rf) {
            axis.maxValue = rf.Number(rv, -1e300, 1e300);
        });
    });
    Optional(pObject, pField, "GridLines",
             [&](const QJsonValue& v, const Field& f) { axis.gridLines = f.Bool(v); });
    Optional(pObject, pField, "LabelAngle", [&](const QJsonValue& v, const Field& f) {
        axis.labelAngle = f.Number(v, -90.0, 90.0);
    });
    return axis;
}

} // namespace

PaletteDefinition DefaultPalette() {
    PaletteDefinition palette;
    // Well separated hues that stay apart for colour-blind readers, then softer companions.
    palette.seriesColours = {QColor(0x1F, 0x5F, 0xA8), QColor(0xD5, 0x5E, 0x00),
                             QColor(0x00, 0x9E, 0x73), QColor(0xCC, 0x79, 0xA7),
                             QColor(0x56, 0xB4, 0xE9), QColor(0xE6, 0x9F, 0x00),
                             QColor(0x6A, 0x3D, 0x9A), QColor(0x7F, 0x7F, 0x7F)};
    palette.background = QColor(255, 255, 255);
    palette.diagramBackground = QColor(255, 255, 255);
    palette.text = QColor(0x20, 0x20, 0x20);
    palette.axis = QColor(0x50, 0x50, 0x50);
    palette.grid = QColor(0xDD, 0xDD, 0xDD);
    palette.legendBackground = QColor(255, 255, 255, 230);
    palette.border = QColor(0xA0, 0xA0, 0xA0);
    return palette;
}

QByteArray Read(const QString& pPath) {
    QFile file(pPath);
    if (!file.exists()) {
        throw ChartError(kFileNotFound,
                         QStringLiteral("%1: the definition file does not exist").arg(pPath));
    }
    if (!file.open(QIODevice::ReadOnly)) {
        throw ChartError(kFileNotFound, QStringLiteral("%1: the definition file cannot be read: %2")
                                            .arg(pPath, file.errorString()));
    }
    if (file.size() > kMaxFileBytes) {
        throw ChartError(ChartError::InvalidArgument,
                         QStringLiteral("%1: the definition file is larger than %2 bytes")
                             .arg(pPath)
                             .arg(kMaxFileBytes));
    }
    // Read no more than the limit even if the file grows while it is read.
    return file.read(kMaxFileBytes + 1).left(kMaxFileBytes);
}

ContentDefinition ParseContent(const QByteArray& pJson, const QString& pSource) {
    const QJsonObject content = Section(pJson, pSource, "Content");
    const Field root(pSource, QStringLiteral("Content"));
    ContentDefinition definition;
    Optional(content, root, "Titles", [&](const QJsonValue& v, const Field& f) {
        const QJsonArray titles = f.Array(v, kMaxTitles);
        for (qsizetype i = 0; i < titles.size(); ++i) {
            const Field item = f.Item(i);
            definition.titles.push_back(ReadTitle(item.Object(titles.at(i)), item));
        }
    });
    Optional(content, root, "Series", [&](const QJsonValue& v, const Field& f) {
        const QJsonArray series = f.Array(v, kMaxSeries);
        for (qsizetype i = 0; i < series.size(); ++i) {
            const Field item = f.Item(i);
            definition.series.push_back(ReadSeries(item.Object(series.at(i)), item));
        }
    });
    Optional(content, root, "Diagram", [&](const QJsonValue& v, const Field& f) {
        const QJsonObject diagram = f.Object(v);
        Optional(diagram, f, "AxisX", [&](const QJsonValue& av, const Field& af) {
            definition.axisX = ReadAxis(af.Object(av), af);
        });
        Optional(diagram, f, "AxisY", [&](const QJsonValue& av, const Field& af) {
            definition.axisY = ReadAxis(af.Object(av), af);
        });
    });
    Optional(content, root, "Legend", [&](const QJsonValue& v, const Field& f) {
        const QJsonObject legend = f.Object(v);
        Optional(legend, f, "Visible", [&](const QJsonValue& lv, const Field& lf) {
            definition.legendVisible = lf.Bool(lv);
        });
        Optional(legend, f, "Position", [&](const QJsonValue& lv, const Field& lf) {
            definition.legendPosition = lf.Choice<LegendPosition>(lv, kLegendPositionNames);
        });
    });
    Optional(content, root, "Background", [&](const QJsonValue& v, const Field& f) {
        const QJsonObject background = f.Object(v);
        Optional(background, f, "Chart", [&](const QJsonValue& bv, const Field& bf) {
            definition.background = bf.Colour(bv);
        });
        Optional(background, f, "Diagram", [&](const QJsonValue& bv, const Field& bf) {
            definition.diagramBackground = bf.Colour(bv);
        });
    });
    return definition;
}

PaletteDefinition ParsePalette(const QByteArray& pJson, const QString& pSource) {
    const QJsonObject section = Section(pJson, pSource, "Palette");
    const Field root(pSource, QStringLiteral("Palette"));
    PaletteDefinition palette = DefaultPalette();
    Optional(section, root, "Series", [&](const QJsonValue& v, const Field& f) {
        const QJsonArray colours = f.Array(v, kMaxPaletteColours);
        if (colours.isEmpty()) {
            f.Fail(ChartError::InvalidArgument, QStringLiteral("must name at least one colour"));
        }
        palette.seriesColours.clear();
        for (qsizetype i = 0; i < colours.size(); ++i) {
            palette.seriesColours.push_back(f.Item(i).Colour(colours.at(i)));
        }
    });
    const std::array<std::pair<const char*, QColor*>, 7> parts{{
        {"Background", &palette.background},
        {"DiagramBackground", &palette.diagramBackground},
        {"Text", &palette.text},
        {"Axis", &palette.axis},
        {"Grid", &palette.grid},
        {"LegendBackground", &palette.legendBackground},
        {"Border", &palette.border},
    }};
    for (const auto& [name, colour] : parts) {
        QColor* target = colour;
        Optional(section, root, name,
                 [&](const QJsonValue& v, const Field& f) { *target = f.Colour(v); });
    }
    return palette;
}

} // namespace trv5::platform::definitionfile
