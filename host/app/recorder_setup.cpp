#include "host/app/recorder_setup.h"

#include "base/windows.h"

#include "host/base/failure.h"
#include "host/installation/installation.h"
#include "host/printer/printer_setup.h"

namespace quillo::host {

namespace {

namespace fs = std::filesystem;

constexpr wchar_t kRecorderFile[] = L"quillo-app.drv";
constexpr wchar_t kDevice[] = L"quillo-app.drv,NUL:";  // as the profile names driver and port

}  // namespace

void InstallRecorder(const fs::path& folder) {
  PrintSystem system;
  const fs::path source = folder / kRecorderFile;
  const fs::path target = system.DriverFolder() / kRecorderFile;
  if (!PrintSystem::HasSameContent(source, target)) {
    // One that a program has loaded can be renamed, but neither be overwritten nor removed.
    const fs::path old = fs::path(target) += L".old";
    if (fs::exists(target)) system.Rename(target, old);
    system.PutFile(source, target);
    std::error_code in_use;
    fs::remove(old, in_use);
    system.WriteNote(DescribePart({PartKind::kFile, kRecorderFile}), {});
  }
  if (!WriteProfileStringW(L"devices", kPrinterName, kDevice)) {
    throw SystemFailure("cannot name the recorder of the printer", "WriteProfileString");
  }
  // On that port GDI asks for a file at each document.
  const std::wstring printer =
      std::wstring(L"System\\CurrentControlSet\\Control\\Print\\Printers\\") + kPrinterName;
  RegSetKeyValueW(HKEY_LOCAL_MACHINE, printer.c_str(), L"Port", REG_SZ, kNullPort, sizeof(L"NUL:"));
  if (system.DefaultPrinter() != kPrinterName) system.MakeDefault(kPrinterName);
}

}  // namespace quillo::host
