#include "host/client/type_library.h"

#include "base/windows.h"

#include <oleauto.h>

#include "base/com_owners.h"
#include "base/system_owners.h"
#include "host/base/failure.h"
#include "host/base/platform.h"

// Missing in mingw-w64's header.
extern "C" HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* path, OLECHAR* help);

namespace quillo::host {

namespace {

constexpr char kCannotRegister[] = "cannot register the client's interface";
constexpr wchar_t kInterfaceKey[] = L"Interface\\{7A3E5D12-9B41-4C6F-A8D2-3F5B9C0E1D47}\\TypeLib";

bool InterfaceIsRegistered() {
  RegistryKey key;
  return RegOpenKeyExW(HKEY_CLASSES_ROOT, kInterfaceKey, 0, KEY_READ, key.Receive()) ==
         ERROR_SUCCESS;
}

}  // namespace

void RegisterTypeLibrary() {
  if (!RunsUnderWine() && InterfaceIsRegistered()) return;
  wchar_t program[MAX_PATH];
  const DWORD length = GetModuleFileNameW(nullptr, program, MAX_PATH);
  if (length == 0 || length == MAX_PATH) throw SystemFailure(kCannotRegister, "GetModuleFileName");
  ComPtr<ITypeLib> library;
  CheckResult(LoadTypeLibEx(program, REGKIND_NONE, library.Receive()), kCannotRegister,
              "LoadTypeLibEx");
  // Only an administrator may register for the whole machine.
  if (FAILED(RegisterTypeLib(library.Get(), program, nullptr))) {
    CheckResult(RegisterTypeLibForUser(library.Get(), program, nullptr), kCannotRegister,
                "RegisterTypeLibForUser");
  }
}

}  // namespace quillo::host
