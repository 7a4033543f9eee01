#include "platform/pointtexts.h"

#include <QByteArray>

namespace trv5::platform {

void PointTexts::Reserve(std::size_t pTexts, std::size_t pBytes) {
    m_ends.reserve(pTexts);
    m_bytes.reserve(pBytes);
}

void PointTexts::Clear() {
    m_bytes.clear();
    m_ends.clear();
}

void PointTexts::Append(QStringView pText) {
    const QByteArray utf8 = pText.toUtf8();
    m_bytes.append(utf8.constData(), static_cast<std::size_t>(utf8.size()));
    End();
}

std::string_view PointTexts::Utf8(std::size_t pIndex) const {
    const std::size_t begin = pIndex == 0 ? 0 : m_ends[pIndex - 1];
    return std::string_view(m_bytes).substr(begin, m_ends[pIndex] - begin);
}

QString PointTexts::Text(std::size_t pIndex) const {
    const std::string_view text = Utf8(pIndex);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

void PointTexts::Resize(std::size_t pCount) {
    if (pCount < m_ends.size()) {
        m_ends.resize(pCount);
        m_bytes.resize(pCount == 0 ? 0 : m_ends.back());
        return;
    }
    m_ends.resize(pCount, m_bytes.size());
}

} // namespace trv5::platform
