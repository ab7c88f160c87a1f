#pragma once

#include "base/windows.h"

#include <cstddef>
#include <cstdint>
#include <span>

#include "imaging/pixels/geometry.h"
#include "imaging/pixels/palettes.h"
#include "imaging/pixels/result.h"
#include "imaging/pixels/row_format.h"

namespace quillo::imaging {

/// Sizes of the two forms of the bitmap handle record. The old form is the first 228 bytes of the
/// current one; the fields after them must not be touched when the record says 228.
constexpr uint32_t kCurrentForm = 272;
constexpr uint32_t kOldForm = 228;

/// Bits of BitmapHandle::flags.
constexpr uint32_t kAllocated = 0x0001;     // the record owns (or borrows) pixel storage
constexpr uint32_t kMemory = 0x0002;        // section or global memory
constexpr uint32_t kDisk = 0x0004;          // temporary file
constexpr uint32_t kLocked = 0x0010;        // global memory is locked, the data address is valid
constexpr uint32_t kCompressed = 0x0100;    // chunks of 32768 rows
constexpr uint32_t kCallerMemory = 0x0400;  // the data belongs to the caller
constexpr uint32_t kGlobalMemory = 0x1000;  // a GlobalAlloc handle, with kMemory
constexpr uint32_t kTiled = 0x4000;         // a table of mapped tiles

/// Values of BitmapHandle::view_perspective; for the others see orientation.h.
constexpr uint32_t kTopRowFirst = 1;
constexpr uint32_t kBottomRowFirst = 4;
constexpr uint32_t kMaxPerspective = 8;

/// An object that a bitmap owns besides its pixels.
class Attachment {
 public:
  /// Follows a change of the bitmap's size. kSuccess, or a failure code that undoes the change.
  virtual int Resize(uint32_t width, uint32_t height) = 0;
  virtual void Release() = 0;

 protected:
  ~Attachment() = default;
};

/// Describes an image in memory. The caller owns the record, the kernel fills it; it may be moved
/// bytewise. Rows are numbered in storage order: row 0 is the first in memory.
struct BitmapHandle {
  uint32_t structure_size;      // kCurrentForm or kOldForm
  HANDLE storage_handle;        // section, temporary file or global memory; else null
  std::byte* data_address;      // first row; tile table or chunk table; null on disk
  uint32_t width;               // pixels
  uint32_t height;              // rows
  uint32_t bits_per_pixel;      // IsSupportedDepth
  uint32_t bytes_per_line;      // a multiple of 4
  uint32_t flags;               // kAllocated ... kTiled
  uint32_t colours;             // palette entries in use; 0 above 8 bits
  PaletteEntry* palette;        // global memory block of PaletteSize entries, or null
  uint32_t view_perspective;    // 1 to kMaxPerspective
  uint32_t colour_order;        // kOrder... (row_format.h)
  uint64_t data_size;           // bytes_per_line * height
  uint32_t process_value;       // from the thread's settings
  Attachment* attached_object;  // owned, or null
  uint32_t x_resolution;        // dots per inch
  uint32_t y_resolution;        // dots per inch
  int32_t low_bit;              // as high_bit
  uint32_t view_offset;         // bytes from the start of the mapped section to the first row
  int32_t high_bit;             // highest bit of a channel; -1 for 32 bits per pixel
  uint32_t percent;             // 100
  uint8_t* lookup8;             // 256 levels, or null without storage
  uint32_t reserved1[27];       // zero; the old form ends here
  uint32_t reserved2;           //
  uint16_t* lookup16;           // 65536 levels, or null without storage
  uint64_t reserved3;           //
  CRITICAL_SECTION* lock;       // guards row access; null without storage
  uint64_t large_data_size;     // the data size again
  uint64_t reserved4;           //
};
static_assert(sizeof(BitmapHandle) == kCurrentForm);
static_assert(offsetof(BitmapHandle, reserved2) == kOldForm);
static_assert(sizeof(PaletteEntry) == sizeof(RGBQUAD));

/// Whether `size` is that of one of the two forms.
constexpr bool IsStructureSize(uint32_t size) { return size == kCurrentForm || size == kOldForm; }

/// Makes `record` (of `structure_size` writable bytes) describe a bitmap without storage. Width,
/// height and depth all 0 make an empty record.
///
/// Fails with kInvalidArgument (null record, or a row of 4 GiB), kWrongStructureSize,
/// kUnsupportedDepth, and kTooLargeForOldForm, which leaves zeros.
int Init(BitmapHandle* record, uint32_t structure_size, uint32_t width, uint32_t height,
         uint32_t bits_per_pixel);

/// Locks global-memory storage, so that the data address is valid; does nothing for other storage.
/// Fails with kInvalidArgument (null record), kWrongStructureSize and kOutOfMemory.
int Lock(BitmapHandle* record);
/// Undoes Lock.
void Unlock(BitmapHandle* record);

/// Holds a record for an operation on its rows: enters its lock, and locks global-memory storage
/// unless it is locked already.
class LockScope {
 public:
  explicit LockScope(BitmapHandle& record);
  ~LockScope();
  LockScope(const LockScope&) = delete;
  LockScope& operator=(const LockScope&) = delete;
  /// kSuccess, or why the storage could not be locked.
  [[nodiscard]] int Result() const { return result_; }

 private:
  BitmapHandle& record_;
  CRITICAL_SECTION* lock_;  // null for records without one
  bool locked_here_;
  int result_;
};

/// The record's colours in use; empty above 8 bits or without a palette.
std::span<PaletteEntry> PaletteOf(const BitmapHandle& record);

/// How the record's pixels are to be read.
RowFormat FormatOf(const BitmapHandle& record);

/// Size of the record's pixels.
Geometry GeometryOf(const BitmapHandle& record);

/// Replaces the record's palette by one of PaletteSize(bits_per_pixel) zero entries. kOutOfMemory
/// leaves the record without a palette.
int AllocatePalette(BitmapHandle& record);

/// The kernel's validity test: structure size, allocated, a geometry that matches the data size,
/// and a data address where the storage needs one.
bool IsValid(const BitmapHandle& record);

}  // namespace quillo::imaging
