#include "imaging/storage/section.h"

#include <cstring>

#include "base/spare.h"
#include "base/system_owners.h"

namespace quillo::imaging {
namespace {

Spare<Section> g_spare;

void Release(const Section& section) {
  if (section.view != nullptr) UnmapViewOfFile(section.view);
  const KernelHandle handle(section.handle);
}

}  // namespace

Section TakeSection(uint64_t size) {
  const Section spare = g_spare.Exchange({});
  if (ServesAsSpare(spare.size, size)) {
    std::memset(spare.view, 0, static_cast<size_t>(size));
    return spare;
  }
  Release(spare);
  KernelHandle handle(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE | SEC_COMMIT,
                                         static_cast<DWORD>(size >> 32), static_cast<DWORD>(size),
                                         nullptr));
  if (!handle) return {};
  auto* view = static_cast<std::byte*>(MapViewOfFile(handle.Get(), FILE_MAP_WRITE, 0, 0, 0));
  if (view == nullptr) return {};
  return {handle.Detach(), view, size};
}

void GiveBackSection(const Section& section) {
  Release(section.size <= kMaxSpareSize ? g_spare.Exchange(section) : section);
}

void DropSpareSection() { Release(g_spare.Exchange({})); }

}  // namespace quillo::imaging
