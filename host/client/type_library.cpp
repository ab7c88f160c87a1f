#include "host/client/type_library.h"

#include "base/windows.h"

#include <iterator>
#include <oleauto.h>
#include <string>

#include "base/com_owners.h"
#include "base/system_owners.h"
#include "host/base/failure.h"
#include "host/base/platform.h"
#include "interface/quillo.h"

// Missing in mingw-w64's header.
extern "C" HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* path, OLECHAR* help);

namespace quillo::host {

namespace {

constexpr char kCannotRegister[] = "cannot register the client's interface";

bool InterfaceIsRegistered() {
  wchar_t id[39];  // braces, 36 characters, terminator
  StringFromGUID2(__uuidof(IQuilloClient), id, static_cast<int>(std::size(id)));
  const std::wstring path = std::wstring(L"Interface\\") + id + L"\\TypeLib";
  RegistryKey key;
  return RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, key.Receive()) ==
         ERROR_SUCCESS;
}

std::wstring ThisProgram() {
  wchar_t program[MAX_PATH];
  const DWORD length = GetModuleFileNameW(nullptr, program, MAX_PATH);
  if (length == 0 || length == MAX_PATH) throw SystemFailure(kCannotRegister, "GetModuleFileName");
  return {program, length};
}

}  // namespace

ComPtr<ITypeLib> LoadTypeLibrary(const std::filesystem::path& program) {
  ComPtr<ITypeLib> library;
  CheckResult(LoadTypeLibEx(program.c_str(), REGKIND_NONE, library.Receive()),
              "cannot load the client's interface", "LoadTypeLibEx");
  return library;
}

ComPtr<ITypeLib> RegisterTypeLibrary() {
  std::wstring program = ThisProgram();
  ComPtr<ITypeLib> library = LoadTypeLibrary(program);
  if (!RunsUnderWine() && InterfaceIsRegistered()) return library;
  // Only an administrator may register for the whole machine.
  if (FAILED(RegisterTypeLib(library.Get(), program.data(), nullptr))) {
    CheckResult(RegisterTypeLibForUser(library.Get(), program.data(), nullptr), kCannotRegister,
                "RegisterTypeLibForUser");
  }
  return library;
}

}  // namespace quillo::host
