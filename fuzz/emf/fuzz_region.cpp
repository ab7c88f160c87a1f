// Region data of any bytes, under any transform: read, or refused with a reason, in bounded work.
#include "base/ddi.h"

#include <cstdlib>
#include <string>

#include "host/emf_player/region_data.h"
#include "platform/input.h"

namespace {

// Rectangles that were made into regions, and outlines of paths: each costs more than its bytes.
size_t work = 0;

}  // namespace

// The shapes themselves are GDI's work.
namespace quillo::host {

struct ClipShape::State {};
ClipShape::ClipShape() = default;
ClipShape::ClipShape(const RECTL&) {}
ClipShape ClipShape::OfRegion(HRGN) { return {}; }
ClipShape ClipShape::OfPath(const Path& path, FillMode) {
  work += path.Figures().size();
  return {};
}

}  // namespace quillo::host

extern "C" {
HRGN WINAPI CreateRectRgn(INT, INT, INT, INT) { return static_cast<HRGN>(std::malloc(++work > 0)); }
INT WINAPI CombineRgn(HRGN, HRGN, HRGN, INT) { return COMPLEXREGION; }
BOOL WINAPI DeleteObject(HGDIOBJ region) {
  std::free(region);
  return TRUE;
}
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace quillo::host;
  quillo::fuzz::Input input(std::as_bytes(std::span(data, size)));
  const auto map = input.Take<emf::Transform>();
  const size_t stated = input.Take<uint16_t>();
  const quillo::Bytes rest = input.TakeBytes(size);
  emf::PayloadReader record(rest);
  std::string what;
  work = 0;
  const auto shape = emf::ReadRegion(record, stated, map, what);
  if (!shape && record.ok() && what.empty()) std::abort();
  if (work > size) std::abort();
  return 0;
}
