#include "host/printer/printer_setup.h"

#include "base/windows.h"

#include <filesystem>
#include <fstream>

#include "base/gdi_owners.h"
#include "base/system_owners.h"
#include "host/base/failure.h"
#include "host/base/named_mutex.h"
#include "host/base/platform.h"
#include "host/base/text.h"

namespace quillo::host {

namespace {

constexpr wchar_t kDescriptionFile[] = L"quillo.ppd";
constexpr wchar_t kPlatformDriver[] = L"wineps.drv";

PrinterHandle TryOpenPrinter(const std::wstring& name) {
  PrinterHandle printer;
  std::wstring copy = name;
  if (!OpenPrinterW(copy.data(), printer.Receive(), nullptr)) return PrinterHandle();
  return printer;
}

/// Writes the printer description to where the spooler looks for version 3 drivers' files.
void WriteDescription(const std::string& ppd) {
  wchar_t folder[MAX_PATH];
  DWORD needed = 0;
  if (!GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<BYTE*>(folder),
                                  sizeof folder, &needed)) {
    throw SystemFailure("cannot set up the printer", "GetPrinterDriverDirectory");
  }
  const auto path = std::filesystem::path(folder) / L"3" / kDescriptionFile;
  std::error_code ignored;
  std::filesystem::create_directories(path.parent_path(), ignored);
  std::ofstream file(path, std::ios::binary);
  file << ppd;
  file.close();
  if (!file) {
    throw SystemFailure("cannot set up the printer", "writing " + ToUtf8(path.wstring()));
  }
}

void RegisterDriver(std::wstring name) {
  std::wstring platform_driver = kPlatformDriver;
  std::wstring description = kDescriptionFile;
  std::wstring environment = L"Windows x64";
  std::wstring data_type = L"RAW";
  DRIVER_INFO_3W driver{};
  driver.cVersion = 3;
  driver.pName = name.data();
  driver.pEnvironment = environment.data();
  driver.pDriverPath = platform_driver.data();
  driver.pConfigFile = platform_driver.data();
  driver.pDataFile = description.data();
  driver.pDefaultDataType = data_type.data();
  if (!AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&driver),
                           APD_COPY_NEW_FILES | APD_COPY_FROM_DIRECTORY)) {
    throw SystemFailure("cannot set up the printer", "AddPrinterDriverEx");
  }
}

void RegisterPrinter(std::wstring name) {
  std::wstring port = L"FILE:";
  std::wstring processor = L"WinPrint";
  std::wstring data_type = L"RAW";
  PRINTER_INFO_2W info{};
  info.pPrinterName = name.data();
  info.pPortName = port.data();
  info.pDriverName = name.data();
  info.pPrintProcessor = processor.data();
  info.pDatatype = data_type.data();
  const PrinterHandle printer(AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&info)));
  if (!printer) throw SystemFailure("cannot set up the printer", "AddPrinter");
}

}  // namespace

void EnsurePrinter(const std::wstring& name, int dpi, const std::map<int, PaperSize>& user_sizes) {
  if (!RunsUnderWine()) {
    if (TryOpenPrinter(name)) return;
    throw SystemFailure("the printer \"" + ToUtf8(name) + "\" is not installed", "OpenPrinter");
  }
  // Another process may ask for another resolution: nobody else may write the description until
  // this process has read it, which Wine's driver does once, at the first DC.
  const NamedMutex only_one(L"Local\\QuilloPrintPrinterSetup");
  WriteDescription(MakePpd(dpi, user_sizes));
  if (!TryOpenPrinter(name)) {
    RegisterDriver(name);
    RegisterPrinter(name);
  }
  const CreatedDc dc(CreateDCW(nullptr, name.c_str(), nullptr, nullptr));
  if (!dc) throw SystemFailure("cannot set up the printer", "CreateDC");
}

}  // namespace quillo::host
