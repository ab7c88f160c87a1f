#include "host/pdf/pictures.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <string_view>

#include "base/bytes.h"
#include "host/engine/raster.h"

namespace quillo::host::pdf {

namespace {

/// 64 bits that depend on all bytes (FNV-1a over words, with a start of one's own).
uint64_t Hash(Bytes bytes, uint64_t hash) {
  constexpr uint64_t kPrime = 0x100000001B3;
  for (size_t at = 0; at < bytes.size(); at += sizeof(uint64_t)) {
    hash = (hash ^ LoadOrZero<uint64_t>(bytes, at)) * kPrime;
    hash ^= hash >> 29;
  }
  return hash;
}

/// A picture whose rows the caller fills.
class Rows {
 public:
  Rows(cairo_format_t format, LONG width, LONG height)
      : surface_(cairo_image_surface_create(format, width, height)) {
    if (cairo_surface_status(surface_.get()) != CAIRO_STATUS_SUCCESS) throw std::bad_alloc();
    cairo_surface_flush(surface_.get());
  }

  unsigned char* Row(LONG y) const {
    return cairo_image_surface_get_data(surface_.get()) +
           ptrdiff_t{y} * cairo_image_surface_get_stride(surface_.get());
  }

  /// The picture under the name that its contents have.
  CairoSurface Named() {
    cairo_surface_mark_dirty(surface_.get());
    const auto height = static_cast<size_t>(cairo_image_surface_get_height(surface_.get()));
    const auto stride = static_cast<size_t>(cairo_image_surface_get_stride(surface_.get()));
    const Bytes bytes(reinterpret_cast<const std::byte*>(Row(0)), height * stride);
    char name[96];
    const int length =
        std::snprintf(name, sizeof name, "%d-%dx%zu-%016llx%016llx",
                      static_cast<int>(cairo_image_surface_get_format(surface_.get())),
                      cairo_image_surface_get_width(surface_.get()), height,
                      static_cast<unsigned long long>(Hash(bytes, 0xCBF29CE484222325)),
                      static_cast<unsigned long long>(Hash(bytes, 0x9E3779B97F4A7C15)));
    auto kept = std::make_unique<std::string>(name, static_cast<size_t>(length));
    std::string* text = kept.get();
    const auto* data = reinterpret_cast<const unsigned char*>(text->data());
    const auto free = [](void* owned) { delete static_cast<std::string*>(owned); };
    if (cairo_surface_set_mime_data(surface_.get(), CAIRO_MIME_TYPE_UNIQUE_ID, data, text->size(),
                                    free, text) == CAIRO_STATUS_SUCCESS) {
      static_cast<void>(kept.release());  // the surface's now
    }
    return std::move(surface_);
  }

 private:
  CairoSurface surface_;
};

bool IsShown(uint32_t pixel) { return pixel >> 24 != 0; }

/// A pixel that does not show, of the colour of one that does.
uint32_t UnseenLike(uint32_t pixel) {
  const uint32_t alpha = pixel >> 24;
  uint32_t colour = 0;
  for (int shift = 0; shift < 24; shift += 8) {
    colour |= ((pixel >> shift & 0xFF) * 255 + alpha / 2) / alpha << shift;
  }
  return colour;
}

/// Gives pixels that do not show the colour of the nearest one in their row that does; of a row
/// without any, of the row beside it. Where viewers reduce a picture they mix these colours in.
void SpreadColours(std::vector<uint32_t>& pixels, size_t width) {
  const auto rows = pixels.size() / width;
  std::vector<bool> filled(rows);
  for (size_t y = 0; y < rows; ++y) {
    const auto row = std::span(pixels).subspan(y * width, width);
    for (auto first = row.begin(); first != row.end();) {
      first = std::find_if_not(first, row.end(), IsShown);
      const auto last = std::find_if(first, row.end(), IsShown);
      const bool from_left = first != row.begin(), from_right = last != row.end();
      if (first == last || (!from_left && !from_right)) break;
      const auto middle = !from_left ? first : !from_right ? last : first + (last - first) / 2;
      if (from_left) std::fill(first, middle, UnseenLike(*(first - 1)));
      if (from_right) std::fill(middle, last, UnseenLike(*last));
      first = last;
    }
    filled[y] = std::ranges::any_of(row, IsShown);
  }
  const auto copy = [&](size_t from, size_t to) {
    if (filled[to] || !filled[from]) return;
    for (size_t x = 0; x < width; ++x) {
      const uint32_t pixel = pixels[from * width + x];
      pixels[to * width + x] = IsShown(pixel) ? UnseenLike(pixel) : pixel;
    }
    filled[to] = true;
  };
  for (size_t y = 1; y < rows; ++y) copy(y - 1, y);
  for (size_t y = rows; y-- > 1;) copy(y, y - 1);
}

}  // namespace

CairoSurface OpaquePicture(const BitmapSource& picture, const RECTL& rect) {
  const PixelReader pixels(picture);
  const LONG width = rect.right - rect.left, height = rect.bottom - rect.top;
  Rows rows(CAIRO_FORMAT_RGB24, width, height);
  for (LONG y = 0; y < height; ++y) {
    unsigned char* row = rows.Row(y);
    for (LONG x = 0; x < width; ++x) {
      const uint32_t colour = pixels.Colour(rect.left + x, rect.top + y) & 0xFFFFFF;
      std::memcpy(row + size_t{4} * static_cast<size_t>(x), &colour, sizeof colour);
    }
  }
  return rows.Named();
}

CairoSurface AlphaPicture(std::vector<uint32_t> pixels, LONG width, LONG height) {
  SpreadColours(pixels, static_cast<size_t>(width));
  Rows rows(CAIRO_FORMAT_ARGB32, width, height);
  const size_t bytes = size_t{4} * static_cast<size_t>(width);
  for (LONG y = 0; y < height; ++y) {
    std::memcpy(rows.Row(y), pixels.data() + static_cast<size_t>(y) * static_cast<size_t>(width),
                bytes);
  }
  return rows.Named();
}

CairoSurface BitMask(const BitmapSource& picture, const RECTL& rect) {
  const PixelReader pixels(picture);
  const LONG width = rect.right - rect.left, height = rect.bottom - rect.top;
  Rows rows(CAIRO_FORMAT_A1, width, height);
  for (LONG y = 0; y < height; ++y) {
    unsigned char* row = rows.Row(y);
    for (LONG x = 0; x < width; ++x) {
      // Words of 32 bits, the first pixel in the lowest bit.
      if (pixels.Raw(rect.left + x, rect.top + y) != 0) {
        row[x / 8] = static_cast<unsigned char>(row[x / 8] | 1u << x % 8);
      }
    }
  }
  return rows.Named();
}

}  // namespace quillo::host::pdf
