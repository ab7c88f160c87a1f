#include "host/engine/services/fonts.h"

#include <cstring>

#include "host/engine/services/guard.h"

namespace quillo::host {
namespace {

/// Appends a terminated string and returns its offset in the block.
PTRDIFF AppendName(std::vector<std::byte>& block, const std::wstring& name) {
  const size_t offset = block.size();
  const size_t bytes = (name.size() + 1) * sizeof(wchar_t);
  block.resize(offset + bytes);
  std::memcpy(block.data() + offset, name.c_str(), bytes);
  return static_cast<PTRDIFF>(offset);
}

}  // namespace

FontObject::FontObject(const IFIMETRICS& metrics, const FontNames& names, const XFORML& transform,
                       FLONG font_type)
    : FONTOBJ{}, transform_(transform), block_(sizeof(IFIMETRICS)) {
  IFIMETRICS filled = metrics;
  filled.dpwszFamilyName = AppendName(block_, names.family);
  filled.dpwszStyleName = AppendName(block_, names.style);
  filled.dpwszFaceName = AppendName(block_, names.face);
  filled.dpwszUniqueName = filled.dpwszFaceName;
  filled.cjThis = static_cast<ULONG>(block_.size());
  std::memcpy(block_.data(), &filled, sizeof filled);
  flFontType = font_type;
}

}  // namespace quillo::host

using namespace quillo::host;

extern "C" XFORMOBJ* APIENTRY FONTOBJ_pxoGetXform(FONTOBJ* pfo) {
  return pfo == nullptr ? nullptr : &static_cast<FontObject*>(pfo)->Transform();
}

extern "C" IFIMETRICS* APIENTRY FONTOBJ_pifi(FONTOBJ* pfo) {
  if (pfo == nullptr || TakeFailure("FONTOBJ_pifi")) return nullptr;
  return static_cast<FontObject*>(pfo)->Metrics();
}
