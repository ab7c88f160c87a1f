#pragma once

#include "base/windows.h"

#include <cstdint>

#include "base/bytes.h"

namespace quillo {

/// Growable byte buffer on a heap of its owner: appended at the end, parsed from a read position.
class CBuffer {
 public:
  explicit CBuffer(HANDLE heap) : heap_(heap) {}
  CBuffer(const CBuffer&) = delete;
  CBuffer& operator=(const CBuffer&) = delete;
  ~CBuffer();

  /// Makes room for `size` more bytes. 1; 0, and nothing changed, when memory is short or the
  /// buffer would exceed 4 GiB.
  int32_t Reserve(uint32_t size);

  /// Copies `size` bytes to the end. `size`, or 0 when there is no room.
  uint32_t Append(const void* bytes, uint32_t size);

  /// Discards content and read position; keeps the storage.
  void Reset();

  /// Writes everything since the last reset to a new file. The bytes written; 0 on failure.
  /// For whoever has to look at a job's stream: the driver itself does not call it.
  uint32_t WriteToFile(const wchar_t* path) const;

  /// The bytes not yet parsed; valid until the next Append.
  [[nodiscard]] Bytes Unread() const {
    return {base_ + read_position_, total_written_ - read_position_};
  }

  /// Marks `size` unread bytes as parsed.
  void Consume(uint32_t size) { read_position_ += size; }

  /// Bytes of storage; for tests.
  [[nodiscard]] uint32_t Capacity() const { return capacity_; }

 private:
  uint32_t growth_step_ = 2048;  // minimum capacity, doubled at every growth
  HANDLE heap_;                  // all storage comes from it
  std::byte* base_ = nullptr;    // null until the first append
  std::byte* write_ = nullptr;   // base_ + used_
  uint32_t used_ = 0;            // bytes since the last reset
  uint32_t capacity_ = 0;        // bytes of storage
  uint32_t total_written_ = 0;   // bytes since the last reset: the parser's end mark
  uint32_t read_position_ = 0;   // first byte not yet parsed
};

}  // namespace quillo
