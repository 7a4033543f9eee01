#pragma once

#include <QByteArrayView>
#include <QString>

#include <cstddef>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace trv5::gallery {

// Splits comma-separated text into rows of cells, one row at a time.
//
// Cells are separated by ','; a cell may be quoted with '"' (a doubled quote stands for one
// quote, and a quoted cell may span lines). Spaces and tabs around a cell are dropped. A row
// ends at LF, CR LF or CR. Lines that hold nothing but spaces and tabs are skipped, and a UTF-8
// byte order mark at the start is ignored. The reader keeps no more than one row's cells, and
// no more of them than the caller asks for.
class CsvReader {
public:
    // The text must outlive the reader. pSource names it in error messages.
    CsvReader(QByteArrayView pText, QString pSource);

    // Reads the next row. False at the end of the text. Throws GalleryError for a quote that is
    // never closed or text after a closing quote. Only the first pMaxCells cells are kept; the
    // rest are read over and counted.
    bool NextRow(std::size_t pMaxCells = std::numeric_limits<std::size_t>::max());

    // The cells kept of the row just read; valid until the next NextRow.
    std::span<const std::string_view> Cells() const { return m_cells; }
    // How many cells the row just read has, kept or not.
    std::size_t CellCount() const { return m_cellCount; }
    // The 1-based line on which the row just read starts.
    int Line() const { return m_rowLine; }
    const QString& Source() const { return m_source; }

private:
    bool AtEnd() const { return m_pos >= m_size; }
    char Peek() const { return m_text[m_pos]; }
    bool SkipBlankLines();
    void SkipSpaces();
    bool AtRowEnd() const;
    void ConsumeRowEnd();
    void ReadQuoted(int pField);
    void ReadPlain();
    [[noreturn]] void Fail(int pLine, int pField, const QString& pMessage) const;

    const char* m_text;
    std::size_t m_size;
    std::size_t m_pos = 0;
    QString m_source;
    int m_line = 1;
    int m_rowLine = 0;
    std::string m_buffer;
    std::vector<std::pair<std::size_t, std::size_t>> m_spans;
    std::vector<std::string_view> m_cells;
    std::size_t m_cellCount = 0;
    bool m_keep = true;
};

} // namespace trv5::gallery
