#include "galleryerror.h"

namespace trv5::gallery {

GalleryError::GalleryError(QString pSource, int pLine, int pColumn, QString pMessage)
    : m_source(std::move(pSource)), m_line(pLine), m_column(pColumn),
      m_message(std::move(pMessage)) {
    m_text = m_source;
    if (m_line > 0) {
        m_text += QLatin1Char(':') + QString::number(m_line);
        if (m_column > 0) {
            m_text += QLatin1Char(':') + QString::number(m_column);
        }
    }
    m_text += QStringLiteral(": ") + m_message;
    m_what = m_text.toStdString();
}

} // namespace trv5::gallery
