#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace trv5::blocks {

// Where N square blocks go on a picture of W x H device pixels, in reading order (left to
// right, then top to bottom). The number of columns is the one that gives the largest whole
// block side; among columns giving the same side the grid with the fewest rows wins. The grid
// is centred horizontally and starts at the top.
//
// When not even a one-pixel side fits (more items than pixels) the grid is laid out with a
// fractional side instead: item (row r, column k) falls on the device pixel
// (ColumnPixel(k), RowPixel(r)), and several items share each pixel.
class BlockGrid {
public:
    // An empty grid: nothing to draw, nothing under the mouse.
    BlockGrid() = default;
    // pGapsWanted leaves a one-pixel gap on the right and bottom of every block, as long as the
    // blocks are at least kMinSideForGaps pixels wide.
    BlockGrid(int pWidth, int pHeight, std::int64_t pCount, bool pGapsWanted);

    static constexpr int kMinSideForGaps = 3;

    bool IsEmpty() const { return m_columns == 0; }
    int Width() const { return m_width; }
    int Height() const { return m_height; }
    std::int64_t Count() const { return m_count; }
    std::int64_t Columns() const { return m_columns; }
    std::int64_t Rows() const { return m_rows; }
    // Whole grids: every block is Side() x Side() pixels (less the gap); fractional grids have
    // side 0 and FractionalSide() below 1.
    bool IsWhole() const { return m_side >= 1; }
    int Side() const { return m_side; }
    double FractionalSide() const { return m_fractionalSide; }
    bool HasGaps() const { return m_gaps; }
    // The drawn part of a block's side: the side less the gap.
    int BlockSide() const { return m_side - (m_gaps ? 1 : 0); }
    // Whole grids: the left edge of column 0.
    int Left() const { return m_left; }

    // Fractional grids: the device column of grid column pColumn and the device row of grid row
    // pRow. Both are non-decreasing, so the items of one pixel form a rectangle of the grid.
    int ColumnPixel(std::int64_t pColumn) const {
        return m_columnPixels[static_cast<std::size_t>(pColumn)];
    }
    int RowPixel(std::int64_t pRow) const;

    // Whole grids: the item whose block (gap excluded) covers the device pixel; nullopt over the
    // background, a gap or past the last item.
    std::optional<std::int64_t> WholeItemAt(int pX, int pY) const;

    // Fractional grids: the grid rectangle of the items on a device pixel; empty (first == end)
    // when no item falls there.
    struct Cell {
        std::int64_t firstRow = 0;
        std::int64_t endRow = 0;
        std::int64_t firstColumn = 0;
        std::int64_t endColumn = 0;
    };
    Cell FractionalCell(int pX, int pY) const;

private:
    void LayOutWhole(int pSide);
    void LayOutFractional();

    int m_width = 0;
    int m_height = 0;
    std::int64_t m_count = 0;
    std::int64_t m_columns = 0;
    std::int64_t m_rows = 0;
    int m_side = 0;
    double m_fractionalSide = 0.0;
    bool m_gaps = false;
    int m_left = 0;
    std::vector<int> m_columnPixels; // fractional grids only
};

} // namespace trv5::blocks
