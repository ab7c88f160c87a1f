#include "support/import_patch.h"

#include <cstring>
#include <gtest/gtest.h>

namespace quillo::test {
namespace {

template <typename T>
T* At(std::byte* image, DWORD offset) {
  return reinterpret_cast<T*>(image + offset);
}

void** FindImport(const char* name) {
  auto* const image = reinterpret_cast<std::byte*>(GetModuleHandleW(nullptr));
  const auto* dos = At<IMAGE_DOS_HEADER>(image, 0);
  const auto* headers = At<IMAGE_NT_HEADERS64>(image, static_cast<DWORD>(dos->e_lfanew));
  const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  for (const auto* dll = At<IMAGE_IMPORT_DESCRIPTOR>(image, directory.VirtualAddress);
       dll->Name != 0; ++dll) {
    const auto* names = At<IMAGE_THUNK_DATA64>(image, dll->OriginalFirstThunk);
    auto* entries = At<void*>(image, dll->FirstThunk);
    for (; names->u1.AddressOfData != 0; ++names, ++entries) {
      if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) continue;
      const auto* import =
          At<IMAGE_IMPORT_BY_NAME>(image, static_cast<DWORD>(names->u1.AddressOfData));
      if (std::strcmp(import->Name, name) == 0) return entries;
    }
  }
  return nullptr;
}

void Write(void** entry, void* value) {
  DWORD protection = 0;
  VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &protection);
  *entry = value;
  VirtualProtect(entry, sizeof *entry, protection, &protection);
}

}  // namespace

ImportPatch::ImportPatch(const char* name, void* replacement, int) : entry_(FindImport(name)) {
  if (entry_ == nullptr) {
    ADD_FAILURE() << name << " is not imported";
    return;
  }
  original_ = *entry_;
  Write(entry_, replacement);
}

ImportPatch::~ImportPatch() {
  if (entry_ != nullptr) Write(entry_, original_);
}

}  // namespace quillo::test
