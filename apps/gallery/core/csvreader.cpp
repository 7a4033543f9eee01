#include "csvreader.h"

#include "galleryerror.h"

#include <limits>

namespace trv5::gallery {

namespace {

bool IsSpace(char pChar) {
    return pChar == ' ' || pChar == '\t';
}

bool IsLineEnd(char pChar) {
    return pChar == '\n' || pChar == '\r';
}

} // namespace

CsvReader::CsvReader(QByteArrayView pText, QString pSource)
    : m_text(pText.data()), m_size(static_cast<std::size_t>(pText.size())),
      m_source(std::move(pSource)) {
    if (pText.startsWith("\xEF\xBB\xBF")) {
        m_pos = 3;
    }
}

void CsvReader::Fail(int pLine, int pField, const QString& pMessage) const {
    throw GalleryError(m_source, pLine, pField, pMessage);
}

void CsvReader::SkipSpaces() {
    while (!AtEnd() && IsSpace(Peek())) {
        ++m_pos;
    }
}

bool CsvReader::AtRowEnd() const {
    return AtEnd() || IsLineEnd(Peek());
}

void CsvReader::ConsumeRowEnd() {
    if (AtEnd()) {
        return;
    }
    if (Peek() == '\r' && m_pos + 1 < m_size && m_text[m_pos + 1] == '\n') {
        ++m_pos;
    }
    ++m_pos;
    // Line numbers saturate instead of overflowing on absurdly long texts.
    if (m_line < std::numeric_limits<int>::max()) {
        ++m_line;
    }
}

bool CsvReader::SkipBlankLines() {
    while (!AtEnd()) {
        std::size_t probe = m_pos;
        while (probe < m_size && IsSpace(m_text[probe])) {
            ++probe;
        }
        if (probe < m_size && !IsLineEnd(m_text[probe])) {
            return true;
        }
        m_pos = probe;
        ConsumeRowEnd();
    }
    return false;
}

void CsvReader::ReadQuoted(int pField) {
    const int openedOn = m_line;
    ++m_pos; // the opening quote
    for (;;) {
        if (AtEnd()) {
            Fail(openedOn, pField, QStringLiteral("the quote opened here is never closed"));
        }
        const char c = Peek();
        if (c == '"') {
            if (m_pos + 1 < m_size && m_text[m_pos + 1] == '"') {
                if (m_keep) {
                    m_buffer.push_back('"');
                }
                m_pos += 2;
                continue;
            }
            ++m_pos;
            break;
        }
        if (c == '\n' || (c == '\r' && !(m_pos + 1 < m_size && m_text[m_pos + 1] == '\n'))) {
            if (m_line < std::numeric_limits<int>::max()) {
                ++m_line;
            }
        }
        if (m_keep) {
            m_buffer.push_back(c);
        }
        ++m_pos;
    }
    SkipSpaces();
    if (!AtRowEnd() && Peek() != ',') {
        Fail(m_line, pField, QStringLiteral("unexpected text after a closing quote"));
    }
}

void CsvReader::ReadPlain() {
    const std::size_t start = m_pos;
    while (!AtRowEnd() && Peek() != ',') {
        ++m_pos;
    }
    std::size_t end = m_pos;
    while (end > start && IsSpace(m_text[end - 1])) {
        --end;
    }
    if (m_keep) {
        m_buffer.append(m_text + start, end - start);
    }
}

bool CsvReader::NextRow(std::size_t pMaxCells) {
    m_buffer.clear();
    m_spans.clear();
    m_cells.clear();
    m_cellCount = 0;
    if (!SkipBlankLines()) {
        return false;
    }
    m_rowLine = m_line;
    for (int field = 1;; ++field) {
        // Cells beyond the limit are read over and counted, not kept: a row of a hundred million
        // cells then costs no memory before the caller sees that it has too many.
        m_keep = m_cellCount < pMaxCells;
        SkipSpaces();
        const std::size_t begin = m_buffer.size();
        if (!AtEnd() && Peek() == '"') {
            ReadQuoted(field);
        } else {
            ReadPlain();
        }
        if (m_keep) {
            m_spans.emplace_back(begin, m_buffer.size() - begin);
        }
        ++m_cellCount;
        if (AtRowEnd()) {
            ConsumeRowEnd();
            break;
        }
        ++m_pos; // the comma
        if (field == std::numeric_limits<int>::max()) {
            Fail(m_rowLine, field, QStringLiteral("too many cells in one row"));
        }
    }
    m_keep = true;
    // Views are made only now: the buffer may have moved while the row was read.
    m_cells.reserve(m_spans.size());
    for (const auto& [offset, length] : m_spans) {
        m_cells.emplace_back(m_buffer.data() + offset, length);
    }
    return true;
}

} // namespace trv5::gallery
