#pragma once

#include <QByteArray>
#include <QColor>
#include <QString>

#include <optional>
#include <vector>

// The definition and palette files of the chart engine: JSON documents with a "Content" section
// (titles, series, axes, legend, backgrounds) and a "Palette" section (series colours and the
// colours of the chart's parts). docs/definition-files.md describes the format. Parsing yields
// plain values; the engine applies them. Every problem is a ChartError whose description names
// the file and what is wrong with it.
namespace trv5::platform {

// The engine's own numbering: docking 1 is the top edge, alignment 0 the near end.
enum class Docking : int { Left = 0, Top = 1, Right = 2, Bottom = 3 };
enum class TitleAlignment : int { Near = 0, Center = 1, Far = 2 };

// Point series draw markers only; line series join their points in ascending argument order.
enum class SeriesType : int { Point = 0, Line = 1 };

enum class MarkerShape : int {
    Circle = 0,
    Disc,
    Square,
    Diamond,
    Triangle,
    TriangleDown,
    Cross,
    Plus,
    Star,
};

// What a point label shows: the point's own text, or its numbers in the label number format.
enum class LabelFormat : int { Text = 0, Argument, Value, ArgumentAndValue };

enum class LegendPosition : int { TopRight = 0, TopLeft, BottomRight, BottomLeft };

struct TitleDefinition {
    QString text;
    Docking docking = Docking::Top;
    TitleAlignment alignment = TitleAlignment::Center;
    double fontSize = 10.0;
    bool bold = false;
    bool visible = true;
    std::optional<QColor> colour;
};

struct SeriesDefinition {
    QString name;
    SeriesType type = SeriesType::Point;
    std::optional<QColor> colour; // none: the palette's colour for the series' index
    bool visible = true;
    bool showInLegend = true;
    MarkerShape markerShape = MarkerShape::Disc;
    double markerSize = 5.0;
    bool markerVisible = true;
    double lineWidth = 1.0;
    std::vector<double> dashPattern; // empty: solid
    bool labelsVisible = false;
    LabelFormat labelFormat = LabelFormat::Text;
};

struct AxisDefinition {
    bool autoRange = true;
    double minValue = 0.0;
    double maxValue = 1.0;
    bool gridLines = true;
    double labelAngle = 0.0;
};

struct ContentDefinition {
    std::vector<TitleDefinition> titles;
    std::vector<SeriesDefinition> series;
    AxisDefinition axisX;
    AxisDefinition axisY;
    bool legendVisible = false;
    LegendPosition legendPosition = LegendPosition::TopRight;
    std::optional<QColor> background;
    std::optional<QColor> diagramBackground;
};

struct PaletteDefinition {
    std::vector<QColor> seriesColours;
    QColor background;
    QColor diagramBackground;
    QColor text;
    QColor axis;
    QColor grid;
    QColor legendBackground;
    QColor border;
};

namespace definitionfile {

// Limits that keep a hostile file from asking for unbounded work.
inline constexpr int kMaxTitles = 16;
inline constexpr int kMaxSeries = 64;
inline constexpr int kMaxPaletteColours = 256;
inline constexpr int kMaxDashEntries = 16;
inline constexpr qint64 kMaxFileBytes = 4 * 1024 * 1024;

// The palette the engine starts with and that missing palette entries fall back to.
PaletteDefinition DefaultPalette();

// The bytes of a definition file or Qt resource (":/..."). ChartError 53 when it does not exist
// or cannot be read, 5 when it is larger than kMaxFileBytes.
QByteArray Read(const QString& pPath);

// The sections of a document. pSource names the file in error descriptions. ChartError 5 for
// text that is no JSON object (with the parse error's offset) or lacks the section, 13 for a
// field of the wrong type, 6 for a number outside its field's range or a list beyond its limit.
ContentDefinition ParseContent(const QByteArray& pJson, const QString& pSource);
PaletteDefinition ParsePalette(const QByteArray& pJson, const QString& pSource);

} // namespace definitionfile

} // namespace trv5::platform
