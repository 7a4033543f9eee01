#include <trv5charts/charterror.h>

#include <utility>

namespace trv5 {

ChartError::ChartError(int pNumber, QString pDescription)
    : m_number(pNumber), m_description(std::move(pDescription)),
      m_what(QStringLiteral("error %1: %2").arg(pNumber).arg(m_description).toStdString()) {}

ChartError::ChartError(Number pNumber) : ChartError(pNumber, StandardDescription(pNumber)) {}

QString ChartError::StandardDescription(int pNumber) {
    switch (pNumber) {
    case InvalidArgument:
        return QStringLiteral("Invalid procedure call or argument");
    case Overflow:
        return QStringLiteral("Overflow");
    case IndexOutOfRange:
        return QStringLiteral("Subscript out of range");
    case DivisionByZero:
        return QStringLiteral("Division by zero");
    case TypeMismatch:
        return QStringLiteral("Type mismatch");
    case ObjectNotSet:
        return QStringLiteral("Object variable not set");
    case TooManySeries:
        return QStringLiteral("Too many series");
    default:
        return QStringLiteral("Unexpected error");
    }
}

} // namespace trv5
