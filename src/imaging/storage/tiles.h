#pragma once

#include "base/windows.h"

#include <cstddef>
#include <cstdint>

namespace quillo::imaging {

/// One mapped piece of a tiled bitmap: a whole number of rows.
struct Tile {
  HANDLE mapping;   //
  std::byte* view;  // first row of the tile
  HANDLE file;      // temporary file under the mapping, or null (paging file)
  uint32_t index;   // place in the table
};

/// Tiled storage: `count` tiles of `rows_per_tile` rows each.
struct TileTable {
  uint32_t count;
  uint32_t rows_per_tile;
  Tile tiles[1];  // really `count`
};

/// Maps tiles for `height` rows of `bytes_per_line` bytes; `on_disk` backs each by a temporary
/// file. Null, with nothing left allocated, when a tile cannot be mapped. A row never crosses
/// tiles.
TileTable* AllocateTiles(uint32_t height, uint32_t bytes_per_line, bool on_disk);

/// Releases the tiles from the last to the first, then the table.
void ReleaseTiles(TileTable* table);

std::byte* TileRow(const TileTable& table, uint32_t row, uint32_t bytes_per_line);

}  // namespace quillo::imaging
