#pragma once

#include <trv5charts/isimpleserializable.h>

#include <QString>

#include <string>

namespace trv5 {

namespace platform {
class XmlNode;
}

// One vertical value axis of the run progress chart: its range, which side it is on, its title
// and how its top value is shown. Once fixed with InitFixed, the range stays as it is when the
// chart re-initialises its axes from the data.
class Axis final : public ISimpleSerializable {
public:
    Axis() = default;

    double Maximum() const { return m_maximum; }
    double Minimum() const { return m_minimum; }
    bool IsSecondaryAxis() const { return m_isSecondaryAxis; }

    const QString& Name() const { return m_name; }
    void SetName(const QString& pName) { m_name = pName; }

    // Empty, or "percent" in any letter case.
    const QString& Format() const { return m_format; }
    void SetFormat(const QString& pFormat) { m_format = pFormat; }

    // The top of the range as text for the scale: plain in the user's locale, "85%" for a
    // percent axis whose maximum is 85, and empty for a format it does not know.
    QString MaxValueFormatted() const;

    void Init(double pMinimum, double pMaximum, bool pIsSecondaryAxis);
    // As Init, and freezes the range; only the first call has an effect.
    void InitFixed(double pMinimum, double pMaximum, bool pIsSecondaryAxis);
    bool IsFixed() const { return m_fixed; }

    // <axis min="" max="" issecax="" name="" format=""/>, numbers in the fixed culture.
    QString ToString() override;
    // Reads the five attributes by position. The fixed flag is not part of the saved state and
    // is left as it is.
    void FromString(const QString& pText) override;
    // Answers to series fragments, not to its own: hosts that route fragments by asking each
    // object rely on this, so it stays.
    bool IsTypeOf(const QString& pText) override;

private:
    friend class RTChart;
    // The chart's serializer works on the elements of its own document. Both throw on failure.
    void AppendXml(std::string& pOut) const;
    void ReadElement(const platform::XmlNode& pElement);

    double m_maximum = 0.0;
    double m_minimum = 0.0;
    bool m_isSecondaryAxis = false;
    QString m_name;
    QString m_format;
    bool m_fixed = false;
};

} // namespace trv5
