#include "host/pdf/pictures.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
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

CairoSurface AlphaPicture(const std::vector<uint32_t>& pixels, LONG width, LONG height) {
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
