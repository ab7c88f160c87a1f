// Device modes of any shape through the merge; stored papers, options and device modes out of a
// registry of any content.
#include "base/windows.h"

#include <cstdlib>
#include <cwchar>
#include <vector>

#include "config/merge/device_mode_merge.h"
#include "config/papers/custom_papers.h"
#include "config/papers/paper_geometry.h"
#include "config/settings/printer_options.h"
#include "config/settings/stored_device_mode.h"
#include "platform/input.h"

namespace quillo {
namespace {

void Check(bool holds) {
  if (!holds) std::abort();
}

/// A block of the size that the mode states, and the fields that no mode lacks.
void TryMerge(fuzz::Input& input) {
  constexpr size_t kLeast = offsetof(DEVMODEW, dmFields) + sizeof(DWORD);
  const Bytes given =
      input.TakeBytes(input.Take<uint8_t>() % 2 != 0 ? sizeof(DeviceMode) : input.Take<uint16_t>());
  std::vector<std::byte> caller(given.begin(), given.end());
  caller.resize(std::max(caller.size(), kLeast));
  const auto stated = size_t{LoadOrZero<WORD>(caller, offsetof(DEVMODEW, dmSize))} +
                      LoadOrZero<WORD>(caller, offsetof(DEVMODEW, dmDriverExtra));
  caller.resize(std::max(stated, kLeast));
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, nullptr);
  MergeDeviceMode(mode, reinterpret_cast<const DEVMODEW*>(caller.data()));
  Check(HasOwnShape(mode.pub) && mode.pub.dmCopies == 1);
  UseInchMargins(mode);
  const Sheet sheet = ResolveSheet(mode);
  Check(sheet.pixels.printable.width >= 0 && sheet.pixels.printable.height >= 0);
}

void TryPapers() {
  CustomPapers papers;
  if (LoadCustomPapers(L"printer", papers)) {
    for (const CustomPaper* paper = papers.Get(); paper != nullptr; paper = paper->next) {
      Check(std::wcslen(paper->name) < ARRAYSIZE(paper->name));
    }
    SaveCustomPapers(L"printer", papers.Get());
  }
  const CustomPaper added = {L"Name",
                             fuzz::platform.Take<uint16_t>(),
                             0,
                             fuzz::platform.Take<uint16_t>(),
                             fuzz::platform.Take<uint16_t>(),
                             nullptr};
  AddCustomPaper(L"printer", added);
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, nullptr);
  mode.pub.dmPaperSize = fuzz::platform.Take<int16_t>();
  ExactSize size{};
  uint32_t unit_class = 0;
  LookUpPaperSize(mode, &size.width, &size.height, &unit_class);
  Extent extent{};
  ConvertPaperSize(&mode, &size.width, &size.height, unit_class, fuzz::platform.Take<uint8_t>(),
                   &extent);
  Margins margins{};
  GetMargins(mode, &margins, fuzz::platform.Take<uint8_t>());
}

void TrySettings() {
  const PrinterSettings by_name(L"printer", 0);
  int handle = 0;
  const PrinterSettings by_handle(&handle);
  for (const PrinterSettings* settings : {&by_name, &by_handle}) {
    PrinterOptions options;
    if (LoadOptions(*settings, &options) == SETTINGS_OK) StoreOptions(*settings, options);
    std::vector<std::byte> room(fuzz::platform.Take<uint8_t>());
    ValueBuffer value;
    value.data = room.data();
    value.capacity = static_cast<DWORD>(room.size());
    settings->Read(L"value", &value, SettingsPlace::kRegistry);
    settings->ReadLegacy(L"value", &value);
  }
}

void TryStoredMode() {
  int handle = 0;
  DeviceMode stored;
  if (!LoadStoredDeviceMode(&handle, stored)) return;
  Check(HasOwnShape(stored.pub));
  WriteDeviceData(PrinterSettings(&handle), stored);
}

}  // namespace
}  // namespace quillo

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  quillo::fuzz::Input input(std::as_bytes(std::span(data, size)));
  const auto what = input.Take<uint8_t>() % 4;
  quillo::fuzz::platform = input;
  if (what == 0) quillo::TryMerge(quillo::fuzz::platform);
  if (what == 1) quillo::TryPapers();
  if (what == 2) quillo::TrySettings();
  if (what == 3) quillo::TryStoredMode();
  return 0;
}
