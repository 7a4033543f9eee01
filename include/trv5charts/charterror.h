#pragma once

#include <QString>

#include <exception>
#include <string>

namespace trv5 {

// The one exception type that reaches a host. The numbers are the classic runtime error
// numbers that host code already branches on, so keep them stable.
class ChartError : public std::exception {
public:
    enum Number : int {
        InvalidArgument = 5,
        Overflow = 6,
        IndexOutOfRange = 9,
        DivisionByZero = 11,
        TypeMismatch = 13,
        ObjectNotSet = 91,
        TooManySeries = 1111,
    };

    ChartError(int pNumber, QString pDescription);

    // A ChartError with the standard description for one of the numbers above.
    explicit ChartError(Number pNumber);

    int number() const noexcept { return m_number; }
    const QString& description() const noexcept { return m_description; }
    const char* what() const noexcept override { return m_what.c_str(); }

    static QString StandardDescription(int pNumber);

private:
    int m_number;
    QString m_description;
    std::string m_what;
};

} // namespace trv5
