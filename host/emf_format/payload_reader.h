#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "base/arithmetic.h"
#include "base/bytes.h"

namespace quillo::host::emf {

/// Reads the fields of one record in order. Sticky: after the first read that leaves the record,
/// every read yields zero (or nothing) and `ok()` stays false, so that a caller checks once, after
/// its last read and before it draws.
class PayloadReader {
 public:
  /// `record` is the whole record; reading starts after its type and size.
  explicit PayloadReader(Bytes record) : record_(record), at_(8), ok_(record.size() >= 8) {}

  template <typename T>
  T Read() {
    static_assert(std::is_trivially_copyable_v<T>);
    return LoadOrZero<T>(Take(sizeof(T)));
  }

  /// `count` elements of T. Reserves memory only if the record holds that many.
  template <typename T>
  std::vector<T> ReadArray(size_t count) {
    std::vector<T> values;
    if (count > left() / sizeof(T)) {
      ok_ = false;
      return values;
    }
    const Bytes bytes = Take(count * sizeof(T));
    values.resize(count);
    if (count != 0) std::memcpy(values.data(), bytes.data(), bytes.size());
    return values;
  }

  void Skip(size_t bytes) { Take(bytes); }

  /// `size` bytes at `offset` from the record's start (records locate their bitmaps and strings
  /// like this); fails like a read. Does not move the position.
  Bytes Slice(size_t offset, size_t size) {
    if (!ok_ || !RangeFits(record_.size(), offset, size)) {
      ok_ = false;
      return {};
    }
    return record_.subspan(offset, size);
  }

  [[nodiscard]] bool ok() const { return ok_; }
  [[nodiscard]] size_t left() const { return ok_ ? record_.size() - at_ : 0; }
  [[nodiscard]] Bytes record() const { return record_; }

 private:
  Bytes Take(size_t size) {
    if (size > left()) {
      ok_ = false;
      return {};
    }
    const Bytes taken = record_.subspan(at_, size);
    at_ += size;
    return taken;
  }

  Bytes record_;
  size_t at_;  // ≤ record_.size() while ok_
  bool ok_;
};

}  // namespace quillo::host::emf
