#include "selfdrawn/blockgrid.h"

#include <algorithm>
#include <cmath>

namespace trv5::blocks {

namespace {

std::int64_t CeilDiv(std::int64_t pNumerator, std::int64_t pDenominator) {
    return (pNumerator + pDenominator - 1) / pDenominator;
}

// No whole side can exceed sqrt(W * H / N) (the blocks would cover more than the picture), nor
// the shorter edge.
std::int64_t LargestPossibleSide(std::int64_t pWidth, std::int64_t pHeight, std::int64_t pCount) {
    const auto bound = static_cast<std::int64_t>(std::sqrt(
        static_cast<double>(pWidth) * static_cast<double>(pHeight) / static_cast<double>(pCount)));
    return std::min({bound + 1, pWidth, pHeight});
}

} // namespace

BlockGrid::BlockGrid(int pWidth, int pHeight, std::int64_t pCount, bool pGapsWanted)
    : m_width(std::max(pWidth, 0)), m_height(std::max(pHeight, 0)),
      m_count(std::max<std::int64_t>(pCount, 0)) {
    if (m_width == 0 || m_height == 0 || m_count == 0) {
        return;
    }
    const std::int64_t width = m_width;
    const std::int64_t height = m_height;
    // The side s fits when the widest grid of side s, min(N, floor(W / s)) columns, needs no
    // more than floor(H / s) rows; that grid also has the fewest rows for s. The first side that
    // fits going down is the largest.
    for (std::int64_t side = LargestPossibleSide(width, height, m_count); side >= 1; --side) {
        const std::int64_t columns = std::min(m_count, width / side);
        if (CeilDiv(m_count, columns) * side <= height) {
            LayOutWhole(static_cast<int>(side));
            m_gaps = pGapsWanted && m_side >= kMinSideForGaps;
            return;
        }
    }
    LayOutFractional();
}

void BlockGrid::LayOutWhole(int pSide) {
    m_side = pSide;
    m_columns = std::min<std::int64_t>(m_count, m_width / pSide);
    m_rows = CeilDiv(m_count, m_columns);
    m_left = static_cast<int>((m_width - m_columns * pSide) / 2);
}

void BlockGrid::LayOutFractional() {
    // The side min(W / c, H / ceil(N / c)) is largest where the two terms cross: the first
    // term falls with c, the second never does. Search the smallest c at which the width
    // limits (W * ceil(N / c) <= H * c) and compare it with its left neighbour.
    const std::int64_t width = m_width;
    const std::int64_t height = m_height;
    std::int64_t low = 1;
    std::int64_t high = m_count;
    while (low < high) {
        const std::int64_t middle = low + (high - low) / 2;
        if (width * CeilDiv(m_count, middle) <= height * middle) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    const auto sideFor = [&](std::int64_t pColumns) {
        return std::min(static_cast<double>(width) / static_cast<double>(pColumns),
                        static_cast<double>(height) /
                            static_cast<double>(CeilDiv(m_count, pColumns)));
    };
    std::int64_t columns = low;
    // On a tie the wider grid has fewer rows.
    if (columns > 1 && sideFor(columns - 1) > sideFor(columns)) {
        --columns;
    }
    m_columns = columns;
    m_rows = CeilDiv(m_count, columns);
    m_fractionalSide = sideFor(columns);
    const double left =
        (static_cast<double>(width) - static_cast<double>(columns) * m_fractionalSide) / 2.0;
    m_columnPixels.resize(static_cast<std::size_t>(columns));
    for (std::int64_t k = 0; k < columns; ++k) {
        const double x = std::floor(left + static_cast<double>(k) * m_fractionalSide);
        m_columnPixels[static_cast<std::size_t>(k)] =
            static_cast<int>(std::clamp(x, 0.0, static_cast<double>(m_width - 1)));
    }
}

int BlockGrid::RowPixel(std::int64_t pRow) const {
    const double y = std::floor(static_cast<double>(pRow) * m_fractionalSide);
    return static_cast<int>(std::clamp(y, 0.0, static_cast<double>(m_height - 1)));
}

std::optional<std::int64_t> BlockGrid::WholeItemAt(int pX, int pY) const {
    if (!IsWhole() || pX < m_left || pY < 0) {
        return std::nullopt;
    }
    const std::int64_t column = (pX - m_left) / m_side;
    const std::int64_t row = pY / m_side;
    if (column >= m_columns || row >= m_rows || (pX - m_left) % m_side >= BlockSide() ||
        pY % m_side >= BlockSide()) {
        return std::nullopt;
    }
    const std::int64_t item = row * m_columns + column;
    if (item >= m_count) {
        return std::nullopt;
    }
    return item;
}

BlockGrid::Cell BlockGrid::FractionalCell(int pX, int pY) const {
    Cell cell;
    if (IsEmpty() || IsWhole() || pX < 0 || pY < 0 || pX >= m_width || pY >= m_height) {
        return cell;
    }
    const auto columnBegin = m_columnPixels.begin();
    cell.firstColumn = std::lower_bound(columnBegin, m_columnPixels.end(), pX) - columnBegin;
    cell.endColumn = std::upper_bound(columnBegin, m_columnPixels.end(), pX) - columnBegin;
    // Rows map to pixels monotonically too; search them without a table.
    std::int64_t low = 0;
    std::int64_t high = m_rows;
    while (low < high) {
        const std::int64_t middle = low + (high - low) / 2;
        if (RowPixel(middle) < pY) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    cell.firstRow = low;
    cell.endRow = low;
    while (cell.endRow < m_rows && RowPixel(cell.endRow) == pY) {
        ++cell.endRow;
    }
    if (cell.firstColumn == cell.endColumn || cell.firstRow == cell.endRow) {
        return Cell{};
    }
    return cell;
}

} // namespace trv5::blocks
