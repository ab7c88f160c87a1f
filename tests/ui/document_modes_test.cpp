#include <algorithm>
#include <cstring>
#include <random>

#include "config/papers/paper_geometry.h"
#include "support/case_table.h"
#include "support/mode_members.h"
#include "ui/printer_interface_test.h"

namespace quillo::test {
namespace {

class DocumentModes : public PrinterInterface {
 protected:
  /// As an application asks; `out` has a byte too many, which stays.
  LONG Ask(const DEVMODEW* in, DWORD mode, DeviceMode* out) const {
    std::byte buffer[sizeof(DeviceMode) + 1];
    std::memset(buffer, 0xA5, sizeof buffer);
    std::wstring name = kUiPrinter;
    const LONG result =
        DocumentPropertiesW(nullptr, printer_.Get(), name.data(),
                            out != nullptr ? reinterpret_cast<DEVMODEW*>(buffer) : nullptr,
                            const_cast<DEVMODEW*>(in), mode);
    EXPECT_EQ(buffer[sizeof(DeviceMode)], std::byte{0xA5});
    if (out != nullptr) std::memcpy(out, buffer, sizeof *out);
    return result;
  }

  /// What holds for every device mode that leaves the DLL.
  static void ExpectValid(DeviceMode mode) {
    UseInchMargins(mode);  // as the driver does
    EXPECT_TRUE(HasOwnShape(mode.pub));
    EXPECT_EQ(mode.pub.dmFields, kModeFields);
    EXPECT_STREQ(mode.pub.dmDeviceName, kUiPrinter);
    EXPECT_TRUE(mode.pub.dmOrientation == DMORIENT_PORTRAIT ||
                mode.pub.dmOrientation == DMORIENT_LANDSCAPE);
    EXPECT_EQ(mode.pub.dmCopies, 1);
    EXPECT_EQ(mode.pub.dmColor, DMCOLOR_COLOR);
    EXPECT_EQ(mode.pub.dmBitsPerPel, 24u);
    const int dpi = ResolutionOf(mode.pub);
    EXPECT_TRUE(dpi >= 50 && dpi <= 1600) << dpi;
    const SheetArea area = ResolveSheet(mode).pixels;
    EXPECT_TRUE(area.printable.width > 0 && area.printable.width <= area.size.width);
    EXPECT_TRUE(area.printable.height > 0 && area.printable.height <= area.size.height);
  }

  DeviceMode default_ = DefaultMode();
};

TEST_F(DocumentModes, Application_SizedDefaultedAndMerged) {
  EXPECT_EQ(Ask(nullptr, 0, nullptr), 1052);
  DeviceMode mode;
  EXPECT_EQ(Ask(nullptr, DM_OUT_BUFFER, &mode), IDOK);
  EXPECT_TRUE(SameModes(mode, default_));
  for (const CaseRow& row : ReadCases("ui/modes.txt")) {
    SCOPED_TRACE(row.place);
    DeviceMode wanted = default_;
    SetMembers(wanted, row.fields[0]);
    // No byte after those that it says it has.
    const GuardedBytes in(size_t{wanted.pub.dmSize} + wanted.pub.dmDriverExtra);
    std::memcpy(in.Get(), &wanted, std::min(in.Size(), sizeof wanted));
    EXPECT_EQ(Ask(in.Mode(), DM_IN_BUFFER | DM_OUT_BUFFER, &mode), IDOK);
    ExpectValid(mode);
    EXPECT_EQ(ExpectMembers(mode, row.fields[1]), "");
  }
}

TEST_F(DocumentModes, Request_SizeIsOnlyWritten) {
  auto* sheets = Export<decltype(DrvDocumentPropertySheets)>("DrvDocumentPropertySheets");
  std::wstring name = kUiPrinter;
  for (const DWORD stale : {0u, 52428u, 1u, ~0u}) {
    DeviceMode mode;
    DOCUMENTPROPERTYHEADER request{sizeof request, 0,         printer_.Get(), name.data(),
                                   nullptr,        &mode.pub, stale,          DM_OUT_BUFFER};
    EXPECT_EQ(sheets(nullptr, reinterpret_cast<LPARAM>(&request)), 1);
    EXPECT_EQ(request.cbOut, 1052u);
    EXPECT_TRUE(SameModes(mode, default_));
    request.pdmOut = nullptr;
    EXPECT_EQ(sheets(nullptr, reinterpret_cast<LPARAM>(&request)), 1052);
    request = {sizeof request, 0,         nullptr, nullptr,
               nullptr,        &mode.pub, stale,   DM_IN_BUFFER | DM_OUT_BUFFER};
    EXPECT_EQ(sheets(nullptr, reinterpret_cast<LPARAM>(&request)), 1);
    EXPECT_STREQ(mode.pub.dmDeviceName, L"VORNIX Quillo 6");
  }
  EXPECT_EQ(sheets(nullptr, 0), -1);
}

TEST_F(DocumentModes, Conversions_RefuseOrFillTheBuffer) {
  auto* convert = Export<decltype(DrvConvertDevMode)>("DrvConvertDevMode");
  std::wstring name = kUiPrinter;
  for (const CaseRow& row : ReadCases("ui/conversions.txt")) {
    SCOPED_TRACE(row.place);
    bool has_in = false, has_out = false;
    LONG room = 0;
    DWORD kind = 0;
    Scan(row.fields[0], has_in, has_out, room, kind);
    const auto error = static_cast<DWORD>(std::stoul(row.fields[1]));
    const GuardedBytes out(sizeof(DeviceMode));
    LONG needed = room;
    SetLastError(0);
    EXPECT_EQ(convert(name.data(), has_in ? &default_.pub : nullptr, has_out ? out.Mode() : nullptr,
                      &needed, kind),
              error == 0);
    EXPECT_EQ(GetLastError(), error);
    EXPECT_EQ(needed, error == ERROR_INVALID_PARAMETER ? room : 1052);
    DeviceMode expected = default_;
    if (!has_in) BuildDefaultDeviceMode(expected, kUiPrinter);
    EXPECT_EQ(SameModes(*reinterpret_cast<const DeviceMode*>(out.Get()), expected), error == 0);
  }
  EXPECT_FALSE(convert(name.data(), &default_.pub, &default_.pub, nullptr, kConvert));
}

TEST_F(DocumentModes, TenThousandRandomMerges_AreValid) {
  auto* convert = Export<decltype(DrvConvertDevMode)>("DrvConvertDevMode");
  std::mt19937 random(20);
  const auto below = [&random](uint32_t limit) { return random() % limit; };
  std::wstring name = kUiPrinter;
  for (int i = 0; i < 10'000 && !HasFailure(); ++i) {
    SCOPED_TRACE(i);
    // Of our shape, cut, or foreign; exactly as long as it says.
    DeviceMode noise = default_;
    auto* bytes = reinterpret_cast<std::byte*>(&noise);
    const size_t first = below(3) == 0 ? 0 : offsetof(DEVMODEW, dmFields);
    for (size_t n = below(200); n != 0; --n) {
      bytes[first + below(sizeof noise - first)] = static_cast<std::byte>(random());
    }
    // Custom papers are looked up in the registry, which takes its time: few are enough.
    if (noise.pub.dmPaperSize > DMPAPER_USER && below(50) != 0) noise.pub.dmPaperSize %= 257;
    constexpr WORD kSizes[] = {220, 220, 220, 72, 76, 80, 92, 98, 148, 156, 188, 212};
    noise.pub.dmSize = kSizes[below(std::size(kSizes))];
    noise.pub.dmDriverExtra = noise.pub.dmSize == 220 && below(2) == 0
                                  ? kDriverExtra
                                  : static_cast<WORD>(below(kDriverExtra));
    const GuardedBytes in(size_t{noise.pub.dmSize} + noise.pub.dmDriverExtra);
    std::memcpy(in.Get(), &noise, in.Size());
    const GuardedBytes out(sizeof(DeviceMode));
    LONG needed = sizeof(DeviceMode);
    ASSERT_TRUE(convert(name.data(), in.Mode(), out.Mode(), &needed, kConvert));
    DeviceMode mode;
    std::memcpy(&mode, out.Get(), sizeof mode);
    ExpectValid(mode);
  }
}

TEST_F(DocumentModes, Events_OnlyTheStartOfAJobIsWanted) {
  auto* on_event = Export<decltype(DrvDocumentEvent)>("DrvDocumentEvent");
  DOCEVENT_FILTER filter{sizeof filter, 1, 0, 0, {0}};
  const auto ask = [&](ULONG size, void* out) {
    return on_event(nullptr, nullptr, DOCUMENTEVENT_QUERYFILTER, 0, nullptr, size, out);
  };
  EXPECT_EQ(ask(sizeof filter, &filter), DOCUMENTEVENT_SUCCESS);
  EXPECT_EQ(filter.cElementsReturned, 1u);
  EXPECT_EQ(filter.aDocEventCall[0], static_cast<DWORD>(DOCUMENTEVENT_STARTDOCPOST));
  filter = {sizeof filter, 0, 0, 9, {7}};
  EXPECT_EQ(ask(sizeof filter, &filter), DOCUMENTEVENT_SUCCESS);
  EXPECT_EQ(filter.cElementsNeeded, 1u);
  EXPECT_EQ(filter.cElementsReturned, 0u);
  EXPECT_EQ(filter.aDocEventCall[0], 7u);
  EXPECT_EQ(ask(sizeof filter - 1, &filter), DOCUMENTEVENT_FAILURE);
  EXPECT_EQ(ask(sizeof filter, nullptr), DOCUMENTEVENT_FAILURE);
  LONG job = 0;
  EXPECT_EQ(on_event(nullptr, nullptr, DOCUMENTEVENT_STARTDOCPOST, sizeof job, &job, 0, nullptr),
            DOCUMENTEVENT_FAILURE);
  EXPECT_EQ(on_event(nullptr, nullptr, DOCUMENTEVENT_STARTDOCPOST, 4, nullptr, 0, nullptr),
            DOCUMENTEVENT_FAILURE);
  EXPECT_EQ(on_event(nullptr, nullptr, DOCUMENTEVENT_ENDDOC, 0, nullptr, 0, nullptr),
            DOCUMENTEVENT_UNSUPPORTED);
}

}  // namespace
}  // namespace quillo::test
