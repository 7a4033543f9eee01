#include <trv5charts/variantconvert.h>

#include <trv5charts/charterror.h>
#include <trv5charts/localizationlib.h>

namespace trv5::VariantConvert {

double ToDouble(const QVariant& pValue) {
    switch (pValue.typeId()) {
    case QMetaType::Bool:
        return pValue.toBool() ? -1.0 : 0.0;
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Float:
    case QMetaType::Double:
        return pValue.toDouble();
    case QMetaType::QString:
        return LocalizationLib::UserTextToDouble(pValue.toString());
    case QMetaType::QByteArray:
        return LocalizationLib::UserTextToDouble(QString::fromUtf8(pValue.toByteArray()));
    default:
        throw ChartError(ChartError::TypeMismatch);
    }
}

std::int32_t ToInt32(const QVariant& pValue) {
    return LocalizationLib::ToInt32(ToDouble(pValue));
}

std::int16_t ToInt16(const QVariant& pValue) {
    return LocalizationLib::ToInt16(ToDouble(pValue));
}

} // namespace trv5::VariantConvert
