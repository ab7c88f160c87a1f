#pragma once

#include <cairo.h>
#include <memory>

namespace quillo::host {

template <auto destroy>
struct CairoDeleter {
  template <typename T>
  void operator()(T* object) const {
    destroy(object);
  }
};

using CairoContext = std::unique_ptr<cairo_t, CairoDeleter<cairo_destroy>>;
using CairoSurface = std::unique_ptr<cairo_surface_t, CairoDeleter<cairo_surface_destroy>>;
using CairoPattern = std::unique_ptr<cairo_pattern_t, CairoDeleter<cairo_pattern_destroy>>;
using CairoFontFace = std::unique_ptr<cairo_font_face_t, CairoDeleter<cairo_font_face_destroy>>;

}  // namespace quillo::host
