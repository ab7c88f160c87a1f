#include "imaging/storage/tiles.h"

#include "base/system_owners.h"
#include "imaging/bitmap/kernel_settings.h"
#include "imaging/pixels/result.h"
#include "imaging/storage/storage_choice.h"
#include "imaging/storage/temporary_file.h"

namespace quillo::imaging {
namespace {

bool MapTile(uint64_t size, bool on_disk, Tile* tile) {
  KernelHandle file;
  if (on_disk && MakeTemporaryFile(size, &file) != kSuccess) return false;
  const HANDLE backing = file ? file.Get() : INVALID_HANDLE_VALUE;
  KernelHandle mapping(CreateFileMappingW(backing, nullptr, PAGE_READWRITE | SEC_COMMIT,
                                          static_cast<DWORD>(size >> 32), static_cast<DWORD>(size),
                                          nullptr));
  if (!mapping) return false;
  tile->view = static_cast<std::byte*>(MapViewOfFile(mapping.Get(), FILE_MAP_WRITE, 0, 0, 0));
  if (tile->view == nullptr) return false;
  tile->mapping = mapping.Detach();
  tile->file = file.Detach();
  return true;
}

uint32_t RowsPerTile(uint32_t height, uint32_t bytes_per_line) {
  const int64_t setting = ThreadSettings().tile_size;
  const auto size = static_cast<uint64_t>(setting < 1 ? kDefaultTileSize : setting);
  const uint64_t rows = size / bytes_per_line;
  if (rows < 1) return 1;
  return rows < height ? static_cast<uint32_t>(rows) : height;
}

}  // namespace

TileTable* AllocateTiles(uint32_t height, uint32_t bytes_per_line, bool on_disk) {
  const uint32_t rows_per_tile = RowsPerTile(height, bytes_per_line);
  const uint32_t count = (height - 1) / rows_per_tile + 1;
  GlobalBlock block = GlobalBlock::Allocate(sizeof(TileTable) + (size_t{count} - 1) * sizeof(Tile));
  if (!block) return nullptr;
  auto* table = static_cast<TileTable*>(block.Detach());
  table->rows_per_tile = rows_per_tile;
  uint32_t rows_left = height;
  while (table->count < count) {
    const uint32_t rows = rows_left < rows_per_tile ? rows_left : rows_per_tile;
    Tile& tile = table->tiles[table->count];
    if (!MapTile(uint64_t{rows} * bytes_per_line, on_disk, &tile)) {
      ReleaseTiles(table);
      return nullptr;
    }
    tile.index = table->count++;
    rows_left -= rows;
  }
  return table;
}

void ReleaseTiles(TileTable* table) {
  for (uint32_t i = table->count; i-- > 0;) {
    const Tile& tile = table->tiles[i];
    UnmapViewOfFile(tile.view);
    CloseHandle(tile.mapping);
    if (tile.file != nullptr) CloseHandle(tile.file);
  }
  GlobalBlock::Free(table);
}

std::byte* TileRow(const TileTable& table, uint32_t row, uint32_t bytes_per_line) {
  const Tile& tile = table.tiles[row / table.rows_per_tile];
  return tile.view + size_t{row % table.rows_per_tile} * bytes_per_line;
}

}  // namespace quillo::imaging
