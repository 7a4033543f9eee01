#pragma once

#include <trv5charts/isimpleserializable.h>

#include <QHash>
#include <QString>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace trv5 {

namespace platform {
class XmlNode;
}

// How a series receives its values: one point per generation into a ring, or a whole array.
enum DataSettingType : std::int32_t { DripFeed = 0, Bulk = 1 };
// Whether the values form a line or stand as separate markers.
enum XSeriesDataType : std::int32_t { Continuous = 0, NonContinuous = 1 };
enum PointType : std::int32_t { ptSquare = 0, ptRound = 1, ptDot = 2 };

// Replacement values shown in place of a series' values, keyed by the value's text (rounded to
// ten decimals, in the user's locale). Shared: the series keeps the host's table, not a copy.
using ReplacementTable = QHash<QString, double>;
using Replacements = std::shared_ptr<const ReplacementTable>;

// One line of the run progress chart.
//
// A drip-feed series is a ring of Count + 1 slots: points go to slots 0, 1, ... and after slot
// Count the ring wraps to slot 0. At the moment of wrapping the newest value sits both in slot
// Count and in slot 0, so a reader that walks 0..Count sees a closed ring.
class Series final : public ISimpleSerializable {
public:
    Series() = default;

    // Capacity. Lowered (for good) to the number of value slots when it exceeds them; never
    // raised. Not const for that reason.
    std::int32_t Count();
    std::int32_t LastPoint() const { return m_lastPoint; }
    double Maximum() const { return m_maximum; }
    double Minimum() const { return m_minimum; }
    DataSettingType SetType() const { return m_setType; }
    bool DataReady() const { return m_dataReady; }
    bool Standardized() const { return m_standardized; }
    bool HasOriginalData() const { return m_hasOriginalData; }

    bool DrawOnSecondaryAxis() const { return m_drawOnSecondaryAxis; }
    void SetDrawOnSecondaryAxis(bool pValue) { m_drawOnSecondaryAxis = pValue; }
    // 0x00BBGGRR.
    std::int32_t Colour() const { return m_colour; }
    void SetColour(std::int32_t pValue) { m_colour = pValue; }
    const QString& Name() const { return m_name; }
    void SetName(const QString& pValue) { m_name = pValue; }
    XSeriesDataType DataType() const { return m_dataType; }
    void SetDataType(XSeriesDataType pValue) { m_dataType = pValue; }
    PointType Point() const { return m_point; }
    void SetPoint(PointType pValue) { m_point = pValue; }

    // Sets the capacity, nominal range, feeding mode and axis side, and forgets the data. A
    // drip-feed series gets pCount + 1 zeroed slots; a bulk series waits for its array.
    // Throws ChartError 9 for a negative capacity.
    void Init(std::int32_t pCount, double pMinimum, double pMaximum, DataSettingType pSetType,
              bool pDrawOnSecondaryAxis);

    // The next value of a drip-feed run. Throws ChartError 9 when the series has no slot for
    // it (not initialised as drip feed).
    void AddPoint(double pValue);

    // Bulk values; an empty array throws ChartError 9.
    void SetData(std::span<const double> pValues);
    // With the record index of each value, shown in tooltips and exported.
    void SetData2(std::span<const double> pValues, std::span<const std::int32_t> pIndexes);
    // With a replacement table as well (may be null).
    void SetData3(std::span<const double> pValues, std::span<const std::int32_t> pIndexes,
                  Replacements pReplacements);
    // An unchanged copy kept beside standardized values, for export.
    void SetOriginalData(std::span<const double> pValues);
    void RemoveOriginalData();
    // Drops values, indexes and replacements. LastPoint, Count and the original values stay.
    void ClearData();

    // 0 while the series is not DataReady; ChartError 9 for an index outside the values.
    double GetValue(std::int32_t pIndex) const;
    double GetOriginalValue(std::int32_t pIndex) const;
    // Extremes of all value slots (0 while not DataReady).
    double GetMinValue() const;
    double GetMaxValue() const;
    double GetOriginalMinValue() const;
    double GetOriginalMaxValue() const;

    // Copies pInput to pOutput, standardized when the whole array lies beyond ±9,000,000, and
    // records which of the two it did in Standardized.
    void PrepareValues(std::span<const double> pInput, std::vector<double>& pOutput);

    // Used by the chart for tooltips and export.
    bool HasIndexes() const { return m_hasIndexes; }
    bool HasReplacements() const { return m_replacements != nullptr; }
    const Replacements& GetReplacements() const { return m_replacements; }
    // The record index of a point; 0 without indexes.
    std::int32_t IndexOfPoint(std::int32_t pIndex) const;
    // The value to show for a point: its replacement when a table is held (0 when the table has
    // no entry for it), else the value itself.
    double DisplayedValue(std::int32_t pIndex) const;
    std::span<const double> Values() const { return m_values; }
    // Change counters for whoever draws the series: Revision moves with every change of the
    // values other than AddPoint (Init, the SetData family, ClearData, loading), PointsAdded
    // with every AddPoint. Together with LastPoint they tell appended points from a new series.
    std::uint64_t Revision() const { return m_revision; }
    std::uint64_t PointsAdded() const { return m_pointsAdded; }

    // Empty while the series has no data: a series without data is not saved at all.
    QString ToString() override;
    void FromString(const QString& pText) override;
    bool IsTypeOf(const QString& pText) override;

private:
    friend class RTChart;
    // The chart's serializer works on the elements of its own document instead of a text copy
    // per series. Both throw on failure; the reader keeps what it read before the damage.
    void AppendXml(std::string& pOut);
    void ReadElement(const platform::XmlNode& pElement);
    void ReadValues(std::int32_t pCount, std::int32_t pLastPoint, std::string_view pText);

    std::vector<double> m_values;
    bool m_valuesAllocated = false;
    std::vector<std::int32_t> m_indexes;
    std::int32_t m_count = 0;
    double m_maximum = 0.0;
    double m_minimum = 0.0;
    bool m_drawOnSecondaryAxis = false;
    bool m_dataReady = false;
    DataSettingType m_setType = DripFeed;
    std::int32_t m_colour = 0;
    QString m_name;
    XSeriesDataType m_dataType = Continuous;
    PointType m_point = ptSquare;
    bool m_hasIndexes = false;
    Replacements m_replacements;
    bool m_standardized = false;
    bool m_hasOriginalData = false;
    std::vector<double> m_originalValues;
    std::int32_t m_lastPoint = -1;
    std::uint64_t m_revision = 0;
    std::uint64_t m_pointsAdded = 0;
};

} // namespace trv5
