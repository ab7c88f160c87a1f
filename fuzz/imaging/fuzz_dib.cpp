// DIBs through the converter, and what they become through the reader of rows.
#include <algorithm>
#include <cstdlib>
#include <vector>

#include "imaging/dib_convert.h"
#include "imaging/pixels/row_format.h"

namespace quillo::imaging {
namespace {

void Check(bool holds) {
  if (!holds) std::abort();
}

/// Two bytes state where the bits of the DIB begin that the rest is. Blocks of their own end where
/// a sanitizer sees reads beyond them.
void TryDib(Bytes input) {
  const size_t split = LoadOrZero<uint16_t>(input);
  const Bytes dib = input.subspan(std::min<size_t>(2, input.size()));
  const size_t bits_at = std::min(split, dib.size());
  const auto split_at = static_cast<ptrdiff_t>(bits_at);
  const ConvertedDib out = ConvertInMemory(std::vector(dib.begin(), dib.begin() + split_at),
                                           std::vector(dib.begin() + split_at, dib.end()), 1 << 18);
  Check(out.result == kSuccess || out.result == kInvalidArgument || out.result == kOutOfMemory ||
        out.result == kUnsupportedFormat);
  if (out.result != kSuccess || out.rows.empty()) return;
  const RowFormat format{out.geometry.bits_per_pixel, kOrderColour, out.palette};
  std::vector<Colour16> colours(out.geometry.width);
  for (uint32_t y = 0; y < out.geometry.height; ++y) {
    DecodeRow(format, out.rows.data() + size_t{y} * out.geometry.bytes_per_line, 0, colours);
  }
}

}  // namespace
}  // namespace quillo::imaging

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  quillo::imaging::TryDib(std::as_bytes(std::span(data, size)));
  return 0;
}
