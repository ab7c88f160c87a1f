#include "host/printer/printer_setup.h"

#include "base/windows.h"

#include <filesystem>

#include "base/gdi_owners.h"
#include "base/system_owners.h"
#include "host/base/failure.h"
#include "host/base/named_mutex.h"
#include "host/base/platform.h"
#include "host/base/text.h"
#include "host/installation/installation.h"

namespace quillo::host {

namespace {

PrinterHandle TryOpenPrinter(const std::wstring& name) {
  PrinterHandle printer;
  std::wstring copy = name;
  if (!OpenPrinterW(copy.data(), printer.Receive(), nullptr)) return PrinterHandle();
  return printer;
}

std::filesystem::path DriverSource() {
  const auto folder = ProgramFolder();
  return exists(folder / L"QXDRV06X.dll") ? folder : folder.parent_path() / L"bin";
}

}  // namespace

std::filesystem::path ProgramFolder() {
  wchar_t program[MAX_PATH];
  const DWORD length = GetModuleFileNameW(nullptr, program, MAX_PATH);
  if (length == 0 || length == MAX_PATH) {
    throw SystemFailure("cannot find this program's folder", "GetModuleFileName");
  }
  return std::filesystem::path(program).parent_path();
}

void EnsurePrinter(const std::wstring& name, int dpi, const std::map<int, PaperSize>& user_sizes) {
  if (!RunsUnderWine()) {
    if (TryOpenPrinter(name)) return;
    throw SystemFailure("the printer \"" + ToUtf8(name) + "\" is not installed", "OpenPrinter");
  }
  // Another process may ask for another resolution: nobody else may write the description until
  // this process has read it, which Wine's driver does once, at the first DC.
  const NamedMutex only_one(L"Local\\QuilloPrintPrinterSetup");
  PrintSystem system;
  Installation(system, {.source = DriverSource(),
                        .printer = name,
                        .with_client = false,
                        .data_file = {kDescriptionFile, MakePpd(dpi, user_sizes)}})
      .Install();
  const CreatedDc dc(CreateDCW(nullptr, name.c_str(), nullptr, nullptr));
  if (!dc) throw SystemFailure("cannot set up the printer", "CreateDC");
}

}  // namespace quillo::host
