#include "imaging/pixels/packed_rows.h"

#include <algorithm>

namespace quillo::imaging {
namespace {

constexpr size_t kMaxRun = 128;

size_t RunLength(Bytes row, size_t start) {
  size_t end = start + 1;
  while (end < row.size() && end - start < kMaxRun && row[end] == row[start]) ++end;
  return end - start;
}

}  // namespace

size_t PackRow(Bytes row, MutableBytes packed) {
  size_t used = 0;
  size_t at = 0;
  while (at < row.size()) {
    const size_t run = RunLength(row, at);
    if (run > 2) {
      packed[used++] = static_cast<std::byte>(257 - run);
      packed[used++] = row[at];
      at += run;
      continue;
    }
    const size_t start = at;
    while (at < row.size() && at - start < kMaxRun && RunLength(row, at) <= 2) ++at;
    packed[used++] = static_cast<std::byte>(at - start - 1);
    std::ranges::copy(row.subspan(start, at - start),
                      packed.begin() + static_cast<ptrdiff_t>(used));
    used += at - start;
  }
  return used;
}

void UnpackRow(Bytes packed, MutableBytes row) {
  size_t out = 0;
  size_t in = 0;
  while (in < packed.size() && out < row.size()) {
    const auto count = static_cast<size_t>(packed[in++]);
    const size_t wanted = count < kMaxRun ? count + 1 : 257 - count;
    const size_t length = std::min(wanted, row.size() - out);
    if (count < kMaxRun) {
      const size_t present = std::min(length, packed.size() - in);
      std::ranges::copy(packed.subspan(in, present), row.begin() + static_cast<ptrdiff_t>(out));
      in += present;
      out += present;
    } else {
      std::ranges::fill(row.subspan(out, length), LoadOrZero<std::byte>(packed, in++));
      out += length;
    }
  }
  std::ranges::fill(row.subspan(out), std::byte{0});
}

}  // namespace quillo::imaging
