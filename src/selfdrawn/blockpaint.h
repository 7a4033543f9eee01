#pragma once

#include "platform/drawingsurface.h"
#include "selfdrawn/blockgrid.h"

#include <cstdint>
#include <optional>
#include <vector>

// Painting a block grid and finding the item under a pixel. Both take the items through two
// callables: pWeight(i), a whole number that decides which item a shared pixel shows (the
// largest wins, the first of equals), and pColour(i), the item's colour.
//
// The picture is written row by row of device pixels, so the cost follows the pixels: a whole
// grid colours each block's row once and copies it down the block, a fractional grid visits
// each item once to find the winner of its pixel and colours only the winners.
namespace trv5::blocks {

// Paints the grid onto pPicture, which the caller has cleared to pBackground.
template <class Weight, class Colour>
void PaintGrid(platform::DrawingSurface& pPicture, const BlockGrid& pGrid, std::int32_t pBackground,
               Weight&& pWeight, Colour&& pColour) {
    if (pGrid.IsEmpty()) {
        return;
    }
    std::vector<std::int32_t> row(static_cast<std::size_t>(pGrid.Width()), pBackground);
    if (pGrid.IsWhole()) {
        const int side = pGrid.Side();
        const int block = pGrid.BlockSide();
        for (std::int64_t r = 0; r < pGrid.Rows(); ++r) {
            std::fill(row.begin(), row.end(), pBackground);
            std::int64_t item = r * pGrid.Columns();
            const std::int64_t end = std::min(item + pGrid.Columns(), pGrid.Count());
            auto x = static_cast<std::size_t>(pGrid.Left());
            for (; item < end; ++item, x += static_cast<std::size_t>(side)) {
                std::fill_n(row.begin() + static_cast<std::ptrdiff_t>(x), block, pColour(item));
            }
            pPicture.PutDeviceRows(0, static_cast<int>(r * side), block, row);
        }
        return;
    }
    // The item each pixel of the current device row shows so far, and its weight.
    struct Winner {
        std::int64_t item;
        std::int64_t weight;
    };
    std::vector<Winner> winners(row.size(), Winner{-1, 0});
    int pixelRow = pGrid.RowPixel(0);
    const auto flush = [&] {
        for (std::size_t x = 0; x < row.size(); ++x) {
            row[x] = winners[x].item < 0 ? pBackground : pColour(winners[x].item);
            winners[x].item = -1;
        }
        pPicture.PutDeviceRows(0, pixelRow, 1, row);
    };
    for (std::int64_t r = 0; r < pGrid.Rows(); ++r) {
        const int y = pGrid.RowPixel(r);
        if (y != pixelRow) {
            flush();
            pixelRow = y;
        }
        const std::int64_t first = r * pGrid.Columns();
        const std::int64_t end = std::min(first + pGrid.Columns(), pGrid.Count());
        for (std::int64_t item = first; item < end; ++item) {
            Winner& winner = winners[static_cast<std::size_t>(pGrid.ColumnPixel(item - first))];
            const std::int64_t weight = pWeight(item);
            if (winner.item < 0 || weight > winner.weight) {
                winner = Winner{item, weight};
            }
        }
    }
    flush();
}

// The item whose colour the device pixel shows; nullopt over the background and the gaps.
template <class Weight>
std::optional<std::int64_t> ItemAt(const BlockGrid& pGrid, int pX, int pY, Weight&& pWeight) {
    if (pGrid.IsWhole()) {
        return pGrid.WholeItemAt(pX, pY);
    }
    const BlockGrid::Cell cell = pGrid.FractionalCell(pX, pY);
    std::optional<std::int64_t> found;
    std::int64_t best = 0;
    // In reading order, as the painting visits them, so that equal weights pick the same item.
    for (std::int64_t r = cell.firstRow; r < cell.endRow; ++r) {
        for (std::int64_t k = cell.firstColumn; k < cell.endColumn; ++k) {
            const std::int64_t item = r * pGrid.Columns() + k;
            if (item >= pGrid.Count()) {
                break;
            }
            const std::int64_t weight = pWeight(item);
            if (!found || weight > best) {
                found = item;
                best = weight;
            }
        }
    }
    return found;
}

} // namespace trv5::blocks
