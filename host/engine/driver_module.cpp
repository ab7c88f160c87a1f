#include "host/engine/driver_module.h"

#include <cstdio>
#include <cstring>
#include <string_view>

#include "host/engine/page_records.h"
#include "host/engine/services/service_table.h"

namespace quillo::host {
namespace {

Library LoadSystemLibrary(const wchar_t* name) {
  return Library(LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
}

/// Nobody watches the screen of a printing process, so a box would wait forever.
int WINAPI WriteToErrorStream(HWND, LPCWSTR text, LPCWSTR caption, UINT) {
  std::fwprintf(stderr, L"the driver says: %ls: %ls\n", caption, text);
  return IDOK;
}

/// The replacement for an import of the driver; null if the system's own is used.
void* FindService(std::string_view name) {
  if (name == "MessageBoxW") return reinterpret_cast<void*>(&WriteToErrorStream);
  for (const EngineService& service : EngineServices()) {
    if (name == service.name) return service.address;
  }
  static const std::vector<DWORD> dropped = DroppedRecords();
  return FindRecordingCall(name, dropped);
}

/// Whether only a graphics engine has a function of this name.
bool IsEngineName(std::string_view name) {
  return name.starts_with("Eng") || name.find("OBJ_") != std::string_view::npos;
}

void WriteEntry(void** entry, void* address) {
  DWORD protection = 0;
  if (!VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &protection)) {
    throw DriverFailure("VirtualProtect on the driver's import table", GetLastError());
  }
  *entry = address;
  VirtualProtect(entry, sizeof *entry, protection, &protection);
}

/// Binds the engine services that the module imports by name, and GDI's functions where its
/// recorder drops records, to those of this process.
void BindServices(HMODULE module) {
  auto* base = reinterpret_cast<std::byte*>(module);
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY& directory =
      headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  if (directory.VirtualAddress == 0) return;

  const auto* library = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
  for (; library->Name != 0; ++library) {
    const auto* lookup = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
    auto* entries = reinterpret_cast<void**>(base + library->FirstThunk);
    for (size_t i = 0; lookup[i].u1.AddressOfData != 0; ++i) {
      if (IMAGE_SNAP_BY_ORDINAL(lookup[i].u1.Ordinal)) continue;
      const auto* import =
          reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + lookup[i].u1.AddressOfData);
      const std::string_view name(reinterpret_cast<const char*>(import->Name));
      if (void* service = FindService(name)) {
        WriteEntry(&entries[i], service);
      } else if (IsEngineName(name)) {
        throw DriverFailure("binding " + std::string(name) + ", which this engine does not offer,",
                            ERROR_PROC_NOT_FOUND);
      }
    }
  }
}

template <typename Function>
Function Export(HMODULE module, const char* name) {
  const FARPROC address = GetProcAddress(module, name);
  if (address == nullptr) throw DriverFailure(std::string("finding ") + name, GetLastError());
  return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(address));
}

}  // namespace

DriverModule::DriverModule(const std::wstring& path)
    : used_by_driver_{LoadSystemLibrary(L"wtsapi32.dll"), LoadSystemLibrary(L"userenv.dll")},
      module_(LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
  if (!module_) throw DriverFailure("loading the driver", GetLastError());
  BindServices(module_.Get());

  const auto query = Export<PFN_DrvQueryDriverInfo>(module_.Get(), "DrvQueryDriverInfo");
  const auto enable = Export<PFN_DrvEnableDriver>(module_.Get(), "DrvEnableDriver");
  const auto disable = Export<PFN_DrvDisableDriver>(module_.Get(), "DrvDisableDriver");

  DWORD user_mode = 0, needed = 0;
  SetLastError(ERROR_SUCCESS);
  if (!query(DRVQUERY_USERMODE, &user_mode, sizeof user_mode, &needed) || user_mode == 0) {
    throw DriverFailure("DrvQueryDriverInfo", GetLastError());
  }
  DRVENABLEDATA data{};
  SetLastError(ERROR_SUCCESS);
  if (!enable(DDI_DRIVER_VERSION_NT5_01_SP1, sizeof data, &data)) {
    throw DriverFailure("DrvEnableDriver", GetLastError());
  }
  functions_ = DriverFunctions::FromTable(data);
  disable_driver_ = disable;
}

DriverModule::~DriverModule() { disable_driver_(); }

}  // namespace quillo::host
