#pragma once

#include <QString>

#include <exception>
#include <string>
#include <utility>

namespace trv5::gallery {

// Input the gallery cannot use: a damaged data or project file, a file that cannot be read or
// written, or run settings out of range. It says where the problem is so that the message can
// be shown to the user as it stands.
class GalleryError : public std::exception {
public:
    // pSource names the file (or "run settings" and the like); pLine and pColumn are 1-based,
    // 0 when they do not apply. For CSV input the column is the field number.
    GalleryError(QString pSource, int pLine, int pColumn, QString pMessage);
    GalleryError(QString pSource, QString pMessage)
        : GalleryError(std::move(pSource), 0, 0, std::move(pMessage)) {}

    const QString& Source() const noexcept { return m_source; }
    int Line() const noexcept { return m_line; }
    int Column() const noexcept { return m_column; }
    const QString& Message() const noexcept { return m_message; }

    // "source:line:column: message", leaving out the parts that are 0.
    const QString& Text() const noexcept { return m_text; }
    const char* what() const noexcept override { return m_what.c_str(); }

private:
    QString m_source;
    int m_line;
    int m_column;
    QString m_message;
    QString m_text;
    std::string m_what;
};

} // namespace trv5::gallery
