#include <cstring>
#include <type_traits>

#include "base/module_instance.h"
#include "config/device_mode/device_mode.h"
#include "ui/papers.h"
#include "ui/print_qualities.h"
#include "ui/printer_interface.h"
#include "ui/resource_ids.h"

// What the printer can do, as applications ask before they draw.
namespace quillo {

namespace {

constexpr DWORD kNotSupported = GDI_ERROR;
constexpr DWORD kLandscapeTurn = 90;  // degrees against the clock

// The sides that a device mode takes for DMPAPER_USER, 0.1 mm.
constexpr DWORD kMinExtent = MAKELONG(kMinSide, kMinSide);
constexpr DWORD kMaxExtent = MAKELONG(kMaxSide, kMaxSide);

/// The entries of a list: counted, and written where there is a buffer with room for them.
class ListWriter {
 public:
  ListWriter(void* buffer, size_t room) : next_(static_cast<std::byte*>(buffer)), room_(room) {}

  template <typename T>
  bool Add(const T& entry) {
    static_assert(std::is_trivially_copyable_v<T>);
    ++count_;
    if (next_ == nullptr) return true;
    if (room_ < sizeof entry) {
      fits_ = false;
      return false;
    }
    std::memcpy(next_, &entry, sizeof entry);
    next_ += sizeof entry;
    room_ -= sizeof entry;
    return true;
  }

  /// The number of entries; kNotSupported with ERROR_INSUFFICIENT_BUFFER when they did not fit.
  [[nodiscard]] DWORD Result() const {
    if (fits_) return count_;
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return kNotSupported;
  }

 private:
  std::byte* next_;  // null: count only
  size_t room_;      // bytes
  DWORD count_ = 0;
  bool fits_ = true;
};

template <size_t size>
struct Text {
  wchar_t characters[size];
};

void ListPaperNumbers(const wchar_t* printer, ListWriter& list) {
  OfferedPapers(printer).ForEach(
      [&](const OfferedPaper& paper) { return list.Add(static_cast<WORD>(paper.number)); });
}

void ListPaperSizes(const wchar_t* printer, ListWriter& list) {
  OfferedPapers(printer).ForEach([&](const OfferedPaper& paper) {
    return list.Add(POINT{paper.size.width, paper.size.height});
  });
}

void ListPaperNames(const wchar_t* printer, ListWriter& list) {
  OfferedPapers(printer).ForEach([&](const OfferedPaper& paper) {
    Text<64> name;
    static_assert(sizeof name == sizeof paper.name);
    std::memcpy(&name, paper.name, sizeof name);
    return list.Add(name);
  });
}

void ListBins(const wchar_t* /*printer*/, ListWriter& list) { list.Add(WORD{DMBIN_AUTO}); }

void ListBinNames(const wchar_t* /*printer*/, ListWriter& list) {
  Text<24> name = {};
  LoadStringW(g_module_instance, IDS_AUTOMATIC_BIN, name.characters, ARRAYSIZE(name.characters));
  list.Add(name);
}

void ListResolutions(const wchar_t* /*printer*/, ListWriter& list) {
  for (const PrintQuality& quality : kPrintQualities) list.Add(SIZE{quality.dpi, quality.dpi});
}

/// A capability: a number, or a list where `list` is not null.
struct Capability {
  WORD number;  // DC_*
  DWORD answer;
  void (*list)(const wchar_t* printer, ListWriter& list);
};

constexpr Capability kCapabilities[] = {
    {DC_FIELDS, kModeFields, nullptr},
    {DC_PAPERS, 0, ListPaperNumbers},
    {DC_PAPERSIZE, 0, ListPaperSizes},
    {DC_MINEXTENT, kMinExtent, nullptr},
    {DC_MAXEXTENT, kMaxExtent, nullptr},
    {DC_BINS, 0, ListBins},
    {DC_DUPLEX, 0, nullptr},
    {DC_SIZE, sizeof(DEVMODEW), nullptr},
    {DC_EXTRA, kDriverExtra, nullptr},
    {DC_VERSION, kSpecVersion, nullptr},
    {DC_DRIVER, kDriverVersion, nullptr},
    {DC_BINNAMES, 0, ListBinNames},
    {DC_ENUMRESOLUTIONS, 0, ListResolutions},
    {DC_FILEDEPENDENCIES, 0, nullptr},
    {DC_TRUETYPE, DCTT_DOWNLOAD, nullptr},
    {DC_PAPERNAMES, 0, ListPaperNames},
    {DC_ORIENTATION, kLandscapeTurn, nullptr},
    {DC_COPIES, 1, nullptr},
    {DC_COLLATE, 0, nullptr},
    {DC_MEDIAREADY, 0, ListPaperNames},
    {DC_STAPLE, 0, nullptr},
    {DC_COLORDEVICE, 1, nullptr},
};

/// `room`: bytes at `output`, which is null to ask for the number of entries.
DWORD Query(const wchar_t* printer, WORD number, void* output, size_t room) {
  for (const Capability& capability : kCapabilities) {
    if (capability.number != number) continue;
    if (capability.list == nullptr) return capability.answer;
    ListWriter list(output, room);
    capability.list(printer, list);
    return list.Result();
  }
  SetLastError(ERROR_NOT_SUPPORTED);
  return kNotSupported;
}

}  // namespace
}  // namespace quillo

extern "C" {

// What the printer can do does not depend on a document's device mode. The size of the output is
// the caller's business: it asks for the number of entries first.
DWORD WINAPI DrvDeviceCapabilities(HANDLE /*printer*/, PWSTR name, WORD capability, PVOID output,
                                   DEVMODEW* /*mode*/) {
  return quillo::Query(name, capability, output, SIZE_MAX);
}

DWORD WINAPI DrvSplDeviceCaps(HANDLE /*printer*/, PWSTR name, WORD capability, PVOID output,
                              DWORD characters, DEVMODEW* /*mode*/) {
  return quillo::Query(name, capability, output, size_t{characters} * sizeof(wchar_t));
}

}  // extern "C"
