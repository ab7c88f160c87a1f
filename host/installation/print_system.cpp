#include "host/installation/print_system.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <oleauto.h>
#include <optional>
#include <span>
#include <vector>
#include <winspool.h>

#include "base/com_owners.h"
#include "base/system_owners.h"
#include "base/text.h"
#include "config/platform/late_library.h"
#include "config/settings/printer_settings.h"
#include "host/base/failure.h"
#include "host/base/file_content.h"
#include "host/base/platform.h"
#include "host/base/text.h"

namespace quillo::host {

namespace {

namespace fs = std::filesystem;

constexpr wchar_t kEnvironment[] = L"Windows x64";
constexpr wchar_t kSystemSpooler[] = L"winspool.drv";
constexpr wchar_t kNotesKey[] = L"Software\\Halvard Technologies, Inc.\\Quillo 6.0\\Installation";

[[noreturn]] void Fail(const char* what, const char* call, DWORD error = GetLastError()) {
  throw SystemFailure(what, call, error);
}

void Check(bool done, const char* what, const char* call) {
  if (!done) Fail(what, call);
}

void CheckStatus(LSTATUS status, const char* what, const char* call) {
  if (status != ERROR_SUCCESS) Fail(what, call, static_cast<DWORD>(status));
}

/// The spooler's list of structures of one kind; empty when it refuses.
template <typename Info, typename Enumerate>
class SpoolerList {
 public:
  explicit SpoolerList(Enumerate enumerate) {
    DWORD size = 0;
    enumerate(nullptr, 0, &size, &count_);
    block_.resize(size);
    if (!enumerate(block_.data(), size, &size, &count_)) count_ = 0;
  }
  [[nodiscard]] const Info* begin() const { return reinterpret_cast<const Info*>(block_.data()); }
  [[nodiscard]] const Info* end() const { return begin() + count_; }

 private:
  std::vector<BYTE> block_;
  DWORD count_ = 0;
};

auto Drivers() {
  const auto list = [](BYTE* buffer, DWORD size, DWORD* needed, DWORD* count) {
    return EnumPrinterDriversW(nullptr, const_cast<wchar_t*>(kEnvironment), 3, buffer, size, needed,
                               count);
  };
  return SpoolerList<DRIVER_INFO_3W, decltype(list)>(list);
}

auto Ports() {
  const auto list = [](BYTE* buffer, DWORD size, DWORD* needed, DWORD* count) {
    return EnumPortsW(nullptr, 1, buffer, size, needed, count);
  };
  return SpoolerList<PORT_INFO_1W, decltype(list)>(list);
}

bool SameName(const wchar_t* a, const std::wstring& b) {
  return a != nullptr && _wcsicmp(FileNamePart(a), b.c_str()) == 0;
}

PrinterHandle Open(std::wstring name, ACCESS_MASK access) {
  PRINTER_DEFAULTSW defaults{nullptr, nullptr, access};
  PrinterHandle printer;
  if (!OpenPrinterW(name.data(), printer.Receive(), &defaults)) return PrinterHandle();
  return printer;
}

/// Asks the monitor of local ports to add or delete one.
void ChangePort(const wchar_t* change, std::wstring name, const char* what) {
  const PrinterHandle monitor = Open(L",XcvMonitor Local Port", SERVER_ACCESS_ADMINISTER);
  if (!monitor) Fail(what, "OpenPrinter");
  DWORD needed = 0;
  DWORD status = ERROR_SUCCESS;
  Check(XcvDataW(monitor.Get(), change, reinterpret_cast<BYTE*>(name.data()),
                 static_cast<DWORD>((name.size() + 1) * sizeof(wchar_t)), nullptr, 0, &needed,
                 &status),
        what, "XcvData");
  CheckStatus(static_cast<LSTATUS>(status), what, "XcvData");
}

/// A function of the spooler's client that this system may lack.
template <typename Function>
Function* FindSpoolerFunction(const LateLibrary& spooler, const char* name, const char* what) {
  auto* function = spooler.Find<Function>(name);
  if (function == nullptr) Fail(what, name, ERROR_PROC_NOT_FOUND);
  return function;
}

void DeleteKeyIfEmpty(HKEY root, const std::wstring& path) {
  RegistryKey key;
  DWORD subkeys = 0, values = 0;
  if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, key.Receive()) != ERROR_SUCCESS) return;
  RegQueryInfoKeyW(key.Get(), nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, &values,
                   nullptr, nullptr, nullptr, nullptr);
  key.Reset();
  if (subkeys == 0 && values == 0) RegDeleteKeyW(root, path.c_str());
}

/// Deletes a key where it is empty, then those of its two parents that are.
void DeleteEmptyKeys(HKEY root, std::wstring path) {
  for (int level = 0; level < 3; ++level) {
    DeleteKeyIfEmpty(root, path);
    path.resize(std::min(path.rfind(L'\\'), path.size()));
  }
}

ComPtr<ITypeLib> LoadInterface(const fs::path& program, const char* what) {
  ComPtr<ITypeLib> library;
  CheckResult(LoadTypeLibEx(program.c_str(), REGKIND_NONE, library.Receive()), what,
              "LoadTypeLibEx");
  return library;
}

}  // namespace

fs::path PrintSystem::DriverFolder() {
  wchar_t folder[MAX_PATH];
  DWORD needed = 0;
  Check(GetPrinterDriverDirectoryW(nullptr, const_cast<wchar_t*>(kEnvironment), 1,
                                   reinterpret_cast<BYTE*>(folder), sizeof folder, &needed),
        "cannot find the folder of printer drivers", "GetPrinterDriverDirectory");
  return fs::path(folder) / L"3";
}

bool PrintSystem::HasContent(const fs::path& file, const std::string& content) {
  const auto held = ReadContent(file);
  return held && std::ranges::equal(*held, std::as_bytes(std::span(content)));
}

bool PrintSystem::HasSameContent(const fs::path& a, const fs::path& b) {
  const auto content = ReadContent(a);
  return content && content == ReadContent(b);
}

void PrintSystem::PutFile(const fs::path& from, const fs::path& to) {
  Begin("CopyFile");
  std::error_code ignored;
  fs::create_directories(to.parent_path(), ignored);
  if (CopyFileW(from.c_str(), to.c_str(), FALSE)) return;
  const DWORD error = GetLastError();
  DeleteFileW(to.c_str());
  throw SystemFailure("cannot copy " + ToUtf8(from.wstring()), "CopyFile", error);
}

void PrintSystem::PutText(const fs::path& to, const std::string& content) {
  Begin("WriteFile");
  std::error_code ignored;
  fs::create_directories(to.parent_path(), ignored);
  std::ofstream file(to, std::ios::binary);
  file << content;
  file.close();
  if (!file) throw SystemFailure("cannot write " + ToUtf8(to.wstring()), "WriteFile");
}

void PrintSystem::Rename(const fs::path& from, const fs::path& to) {
  Begin("MoveFileEx");
  if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING)) return;
  throw SystemFailure("cannot replace " + ToUtf8(from.wstring()), "MoveFileEx");
}

void PrintSystem::RemoveFile(const fs::path& file) {
  Begin("DeleteFile");
  if (DeleteFileW(file.c_str()) || GetLastError() == ERROR_FILE_NOT_FOUND ||
      GetLastError() == ERROR_PATH_NOT_FOUND ||
      MoveFileExW(file.c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT)) {
    return;
  }
  throw SystemFailure("cannot remove " + ToUtf8(file.wstring()), "DeleteFile");
}

std::wstring PrintSystem::UploadPackage(const fs::path& inf) {
  constexpr char kWhat[] = "cannot add the driver package";
  Begin("UploadPrinterDriverPackage");
  const LateLibrary spooler(kSystemSpooler);
  auto* upload = FindSpoolerFunction<decltype(UploadPrinterDriverPackageW)>(
      spooler, "UploadPrinterDriverPackageW", kWhat);
  std::wstring stored(MAX_PATH, L'\0');
  ULONG size = MAX_PATH;
  CheckResult(upload(nullptr, inf.c_str(), kEnvironment, 0, nullptr, stored.data(), &size), kWhat,
              "UploadPrinterDriverPackage");
  stored.resize(wcsnlen(stored.c_str(), stored.size()));
  return stored;
}

void PrintSystem::RemovePackage(const std::wstring& stored_inf) {
  constexpr char kWhat[] = "cannot remove the driver package";
  Begin("DeletePrinterDriverPackage");
  const LateLibrary spooler(kSystemSpooler);
  auto* remove = FindSpoolerFunction<decltype(DeletePrinterDriverPackageW)>(
      spooler, "DeletePrinterDriverPackageW", kWhat);
  const HRESULT result = remove(nullptr, stored_inf.c_str(), kEnvironment);
  if (result != HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)) {
    CheckResult(result, kWhat, "DeletePrinterDriverPackage");
  }
}

void PrintSystem::InstallDriver(const std::wstring& stored_inf, const std::wstring& name) {
  constexpr char kWhat[] = "cannot install the driver";
  Begin("InstallPrinterDriverFromPackage");
  const LateLibrary spooler(kSystemSpooler);
  // Missing in mingw-w64's header.
  using Install =
      HRESULT WINAPI(LPCWSTR server, LPCWSTR inf, LPCWSTR driver, LPCWSTR environment, DWORD flags);
  auto* install = FindSpoolerFunction<Install>(spooler, "InstallPrinterDriverFromPackageW", kWhat);
  constexpr DWORD kCopyAllFiles = 1;
  CheckResult(install(nullptr, stored_inf.c_str(), name.c_str(), kEnvironment, kCopyAllFiles),
              kWhat, "InstallPrinterDriverFromPackage");
}

bool PrintSystem::HasDriver(const std::wstring& name) {
  return std::ranges::any_of(
      Drivers(), [&](const DRIVER_INFO_3W& info) { return SameName(info.pName, name); });
}

bool PrintSystem::HasDriver(const DriverFiles& driver) {
  return std::ranges::any_of(Drivers(), [&](const DRIVER_INFO_3W& info) {
    return SameName(info.pName, driver.name) && SameName(info.pDriverPath, driver.driver) &&
           SameName(info.pConfigFile, driver.config) && SameName(info.pDataFile, driver.data);
  });
}

void PrintSystem::AddDriver(DriverFiles driver) {
  Begin("AddPrinterDriverEx");
  std::wstring environment = kEnvironment;
  std::wstring data_type = L"RAW";
  DRIVER_INFO_3W info{};
  info.cVersion = 3;
  info.pName = driver.name.data();
  info.pEnvironment = environment.data();
  info.pDriverPath = driver.driver.data();
  info.pConfigFile = driver.config.data();
  info.pDataFile = driver.data.data();
  info.pDefaultDataType = data_type.data();
  Check(AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&info),
                            APD_COPY_NEW_FILES | APD_COPY_FROM_DIRECTORY),
        "cannot add the driver", "AddPrinterDriverEx");
}

void PrintSystem::RemoveDriver(std::wstring name) {
  Begin("DeletePrinterDriverEx");
  if (!HasDriver(name)) return;
  // Wine knows no flags.
  const DWORD flags = RunsUnderWine() ? 0 : DPD_DELETE_UNUSED_FILES;
  Check(DeletePrinterDriverExW(nullptr, const_cast<wchar_t*>(kEnvironment), name.data(), flags, 3),
        "cannot remove the driver", "DeletePrinterDriverEx");
}

bool PrintSystem::HasPort(const std::wstring& name) {
  return std::ranges::any_of(Ports(),
                             [&](const PORT_INFO_1W& info) { return SameName(info.pName, name); });
}

void PrintSystem::MakePort(const std::wstring& name) {
  Begin("AddPort");
  ChangePort(L"AddPort", name, "cannot add the port");
}

void PrintSystem::RemovePort(const std::wstring& name) {
  Begin("DeletePort");
  if (HasPort(name)) ChangePort(L"DeletePort", name, "cannot remove the port");
}

bool PrintSystem::HasPrinter(const std::wstring& name) {
  return static_cast<bool>(Open(name, PRINTER_ACCESS_USE));
}

void PrintSystem::MakePrinter(std::wstring name, std::wstring driver, std::wstring port) {
  Begin("AddPrinter");
  std::wstring processor = L"WinPrint";
  std::wstring data_type = L"RAW";
  PRINTER_INFO_2W info{};
  info.pPrinterName = name.data();
  info.pPortName = port.data();
  info.pDriverName = driver.data();
  info.pPrintProcessor = processor.data();
  info.pDatatype = data_type.data();
  // Not PRINTER_ATTRIBUTE_RAW_ONLY: documents are spooled as EMF, and drawn in the spooler.
  const PrinterHandle printer(AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&info)));
  Check(static_cast<bool>(printer), "cannot add the printer", "AddPrinter");
  // Wine's own printer driver, which makes the DCs there, takes the device mode that the spooler
  // has stored for one of its own and measures the sheet by the scale in it. Without one it works.
  if (RunsUnderWine()) {
    const std::wstring key = L"System\\CurrentControlSet\\Control\\Print\\Printers\\" + name;
    RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"Default DevMode");
  }
}

void PrintSystem::RemovePrinter(const std::wstring& name) {
  constexpr char kWhat[] = "cannot remove the printer";
  Begin("DeletePrinter");
  if (HasPrinter(name)) {
    const PrinterHandle printer = Open(name, PRINTER_ALL_ACCESS);
    if (!printer) Fail(kWhat, "OpenPrinter");
    SetPrinterW(printer.Get(), 0, nullptr, PRINTER_CONTROL_PURGE);
    Check(DeletePrinter(printer.Get()), kWhat, "DeletePrinter");
  }
  for (HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
    RegDeleteTreeW(root, (std::wstring(kBuiltInProductKey) + L"\\" + name).c_str());
    DeleteEmptyKeys(root, kBuiltInProductKey);
  }
}

std::wstring PrintSystem::DefaultPrinter() {
  wchar_t name[MAX_PATH] = {};
  DWORD size = MAX_PATH;
  return GetDefaultPrinterW(name, &size) ? name : std::wstring();
}

void PrintSystem::MakeDefault(const std::wstring& name) {
  Begin("SetDefaultPrinter");
  Check(SetDefaultPrinterW(name.c_str()), "cannot make the printer the default one",
        "SetDefaultPrinter");
}

void PrintSystem::RegisterInterface(const fs::path& program) {
  constexpr char kWhat[] = "cannot register the client's interface";
  Begin("RegisterTypeLib");
  const ComPtr<ITypeLib> library = LoadInterface(program, kWhat);
  CheckResult(RegisterTypeLib(library.Get(), const_cast<wchar_t*>(program.c_str()), nullptr), kWhat,
              "RegisterTypeLib");
}

bool PrintSystem::HasInterface(const fs::path& program) {
  ComPtr<ITypeLib> library;
  TLIBATTR* attributes = nullptr;
  if (FAILED(LoadTypeLibEx(program.c_str(), REGKIND_NONE, library.Receive())) ||
      FAILED(library->GetLibAttr(&attributes))) {
    return false;
  }
  Bstr path;
  const HRESULT found =
      QueryPathOfRegTypeLib(attributes->guid, attributes->wMajorVerNum, attributes->wMinorVerNum,
                            attributes->lcid, path.Receive());
  library->ReleaseTLibAttr(attributes);
  return SUCCEEDED(found) && _wcsicmp(path.Get(), program.c_str()) == 0;
}

void PrintSystem::UnregisterInterface(const fs::path& program) {
  constexpr char kWhat[] = "cannot remove the registration of the client's interface";
  Begin("UnRegisterTypeLib");
  // Another client may have taken the place of this one since.
  if (!HasInterface(program)) return;
  const ComPtr<ITypeLib> library = LoadInterface(program, kWhat);
  TLIBATTR* attributes = nullptr;
  CheckResult(library->GetLibAttr(&attributes), kWhat, "GetLibAttr");
  const HRESULT result =
      UnRegisterTypeLib(attributes->guid, attributes->wMajorVerNum, attributes->wMinorVerNum,
                        attributes->lcid, attributes->syskind);
  library->ReleaseTLibAttr(attributes);
  CheckResult(result, kWhat, "UnRegisterTypeLib");
}

std::map<std::wstring, std::wstring> PrintSystem::Notes() {
  std::map<std::wstring, std::wstring> notes;
  RegistryKey key;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kNotesKey, 0, KEY_READ, key.Receive()) != ERROR_SUCCESS) {
    return notes;
  }
  wchar_t name[512], remark[MAX_PATH + 1];
  for (DWORD i = 0;; ++i) {
    DWORD name_size = std::size(name), remark_size = sizeof remark - sizeof(wchar_t);
    DWORD type = REG_NONE;
    const LSTATUS status = RegEnumValueW(key.Get(), i, name, &name_size, nullptr, &type,
                                         reinterpret_cast<BYTE*>(remark), &remark_size);
    if (status == ERROR_MORE_DATA) continue;  // none of ours
    if (status != ERROR_SUCCESS) return notes;
    remark[remark_size / sizeof(wchar_t)] = L'\0';
    notes[name] = type == REG_SZ ? remark : L"";
  }
}

void PrintSystem::WriteNote(const std::wstring& name, const std::wstring& remark) {
  Begin("RegSetValueEx");
  CheckStatus(RegSetKeyValueW(HKEY_LOCAL_MACHINE, kNotesKey, name.c_str(), REG_SZ, remark.c_str(),
                              static_cast<DWORD>((remark.size() + 1) * sizeof(wchar_t))),
              "cannot note what is installed", "RegSetKeyValue");
}

void PrintSystem::DeleteNote(const std::wstring& name) {
  Begin("RegDeleteValue");
  RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kNotesKey, name.c_str());
  DeleteEmptyKeys(HKEY_LOCAL_MACHINE, kNotesKey);
}

}  // namespace quillo::host
