#pragma once

#include <QString>
#include <QStringView>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace trv5::platform {

// The tooltip texts of a series' points, one after another in one UTF-8 buffer with an end offset
// per text: a hundred thousand tooltips cost two allocations instead of a hundred thousand
// strings, and a chart can build them from number text without any temporary QString.
class PointTexts {
public:
    void Reserve(std::size_t pTexts, std::size_t pBytes);
    void Clear();

    // The next text, whole.
    void Append(QStringView pText);
    // The next text in pieces: Add as often as needed, then End. Pieces are UTF-8.
    PointTexts& Add(std::string_view pPiece) {
        m_bytes.append(pPiece);
        return *this;
    }
    void End() { m_ends.push_back(m_bytes.size()); }

    std::size_t Count() const { return m_ends.size(); }
    std::size_t Bytes() const { return m_bytes.size(); }
    // pIndex must be below Count().
    std::string_view Utf8(std::size_t pIndex) const;
    QString Text(std::size_t pIndex) const;

    // Pads with empty texts (or drops texts) until there are exactly pCount.
    void Resize(std::size_t pCount);

private:
    std::string m_bytes;
    std::vector<std::size_t> m_ends;
};

} // namespace trv5::platform
