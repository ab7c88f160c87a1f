// The shipped driver's drawing calls with random objects, whose buffers end at pages that cannot be
// touched; so do the driver's own. Each run is a job of one page; a run's number is its seed.
#include "base/ddi.h"

#include <array>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "fuzz/harness/guarded_heap.h"
#include "fuzz/harness/interposer.h"
#include "fuzz/harness/runs.h"
#include "host/base/com_apartment.h"
#include "host/engine/driver_module.h"
#include "host/engine/print_session.h"
#include "host/engine/services/brushes.h"
#include "host/engine/services/clips.h"
#include "host/engine/services/colours.h"
#include "host/engine/services/fonts.h"
#include "host/engine/services/paths.h"
#include "host/engine/services/strings.h"
#include "host/engine/services/transforms.h"
#include "host/printer/printer_setup.h"
#include "host/printer/sheet.h"
#include "host/printer/spool_job.h"
#include "support/built_file.h"

namespace quillo::fuzz {
namespace {

using harness::interposer;

constexpr int kCalls = 100;  // of a page

int WINAPI NobodyReads(HWND, LPCWSTR, LPCWSTR, UINT) { return IDOK; }

/// Numbers of which many are at some edge.
class Dice {
 public:
  explicit Dice(unsigned seed) : engine_(seed) {}

  uint32_t Below(uint32_t end) { return engine_() % end; }
  bool OneIn(uint32_t n) { return Below(n) == 0; }
  LONG Number() {
    static constexpr LONG kEdges[] = {
        0,   1,     -1,    2,     31,        32,        33,        255,
        256, 32767, 32768, 65536, 0x7FFFFFF, INT32_MAX, INT32_MIN, INT32_MAX - 1};
    if (OneIn(8)) return kEdges[Below(std::size(kEdges))];
    if (OneIn(40)) return static_cast<LONG>(engine_());
    return static_cast<LONG>(Below(220)) - 10;
  }
  float Real() {
    static constexpr float kEdges[] = {0.f, -1.f, 1e30f, -1e30f, 1e-30f};
    if (OneIn(60)) return std::nanf("");
    return OneIn(20) ? kEdges[Below(std::size(kEdges))] : static_cast<float>(Number()) / 4;
  }
  RECTL Rect() { return {Number(), Number(), Number(), Number()}; }
  POINTL Point() { return {Number(), Number()}; }

 private:
  std::mt19937 engine_;
};

struct GuardedDeleter {
  void operator()(void* block) const { harness::FreeGuarded(block); }
};
template <typename T>
using Guarded = std::unique_ptr<T, GuardedDeleter>;

/// A copy whose end is a guard page's beginning, but for alignment.
template <typename T>
Guarded<T> GuardedCopy(const std::vector<T>& items) {
  const size_t size = items.size() * sizeof(T);
  Guarded<T> copy(static_cast<T*>(harness::AllocateGuarded(size)));
  if (size != 0) std::memcpy(copy.get(), items.data(), size);
  return copy;
}

/// A surface and its bits.
struct Picture {
  explicit Picture(Dice& dice) {
    static constexpr ULONG kFormats[] = {BMF_1BPP,  BMF_4BPP, BMF_8BPP, BMF_16BPP, BMF_24BPP,
                                         BMF_32BPP, BMF_4RLE, BMF_8RLE, BMF_JPEG};
    const ULONG format = kFormats[dice.Below(std::size(kFormats))];
    const SIZEL size = {1 + static_cast<LONG>(dice.Below(70)),
                        1 + static_cast<LONG>(dice.Below(40))};
    const ULONG depth = format == BMF_4RLE   ? 4
                        : format == BMF_8RLE ? 8
                                             : host::BitsPerPixel(format);
    const auto row =
        static_cast<LONG>(DibStride(static_cast<uint64_t>(size.cx), depth == 0 ? 8 : depth));
    std::vector<BYTE> all(static_cast<size_t>(row) * static_cast<size_t>(size.cy));
    for (BYTE& byte : all)
      byte = static_cast<BYTE>(dice.OneIn(3) ? dice.Below(5) : dice.Below(256));
    if (dice.OneIn(10)) all.resize(dice.Below(static_cast<uint32_t>(all.size()) + 1));
    bits = GuardedCopy(all);
    surface = std::make_unique<host::Surface>(size, format, dice.OneIn(2), bits.get(),
                                              static_cast<ULONG>(all.size()), row);
    if (dice.OneIn(30)) surface->sizlBitmap = {dice.Number(), dice.Number()};
    if (dice.OneIn(30)) surface->iType = static_cast<USHORT>(dice.Below(5));
  }
  Guarded<BYTE> bits;
  std::unique_ptr<host::Surface> surface;
};

std::vector<host::PathRun> RandomRuns(Dice& dice) {
  std::vector<host::PathRun> runs(dice.Below(4));
  for (host::PathRun& run : runs) {
    run.flags = dice.Below(32);
    run.points.resize(dice.Below(10));
    for (POINTFIX& point : run.points) point = {dice.Number() * 16, dice.Number() * 16};
  }
  return runs;
}

/// The objects of one call; each may be missing.
struct Objects {
  explicit Objects(Dice& dice, SURFOBJ* target) : source(dice), mask(dice), path(RandomRuns(dice)) {
    const RECTL bounds = dice.Rect();
    clip = dice.OneIn(2)
               ? std::make_unique<host::ClipObject>(static_cast<BYTE>(dice.Below(5)), bounds)
               : std::make_unique<host::ClipObject>(bounds, RandomRuns(dice));
    std::vector<ULONG> colours(dice.Below(300));
    for (ULONG& colour : colours) colour = dice.Below(1 << 24);
    vector = GuardedCopy(colours);
    translation = std::make_unique<host::XlateObject>(colours);
    if (!colours.empty()) translation->pulXlate = vector.get();
    const host::BrushObject::Pattern pattern = {
        nullptr, target, source.surface.get(), nullptr, translation.get(), dice.Below(8)};
    brush = dice.OneIn(2) ? std::make_unique<host::BrushObject>(dice.Below(1 << 24))
                          : std::make_unique<host::BrushObject>(pattern);
    std::vector<FLOAT_LONG> entries(dice.Below(20));
    pen.fl = dice.Below(16);
    for (FLOAT_LONG& entry : entries) {
      if ((pen.fl & LA_GEOMETRIC) != 0)
        entry.e = dice.Real();
      else
        entry.l = dice.Number();
    }
    style = GuardedCopy(entries);
    pen.iJoin = dice.Below(4);
    pen.iEndCap = dice.Below(4);
    pen.elWidth = entries.empty() ? FLOAT_LONG{.l = 1} : entries[0];
    pen.eMiterLimit = dice.Real();
    pen.cstyle = static_cast<ULONG>(entries.size());
    pen.pstyle = entries.empty() ? nullptr : style.get();
    const XFORML map = {dice.Real(), dice.Real(), dice.Real(),
                        dice.Real(), dice.Real(), dice.Real()};
    transform = std::make_unique<host::XformObject>(map);
    IFIMETRICS metrics = {};
    metrics.fwdUnitsPerEm = static_cast<FWORD>(dice.Number());
    metrics.fsSelection = static_cast<USHORT>(dice.Below(256));
    metrics.usWinWeight = static_cast<USHORT>(dice.Number());
    font = std::make_unique<host::FontObject>(
        metrics, host::FontNames{L"Liberation Sans", L"Regular", L"Full"}, map,
        dice.OneIn(3) ? dice.Below(1 << 16) : FO_TYPE_TRUETYPE);
    std::vector<GLYPHPOS> glyphs(1 + dice.Below(20));
    std::vector<wchar_t> units(glyphs.size());
    for (size_t i = 0; i < glyphs.size(); ++i) {
      glyphs[i] = {dice.Below(100), nullptr, dice.Point()};
      units[i] = static_cast<wchar_t>(dice.Below(0x3000));
    }
    positions = GuardedCopy(glyphs);
    characters = GuardedCopy(units);
    const size_t batch = dice.OneIn(2) ? 0 : 1 + dice.Below(7);
    text = std::make_unique<host::StringObject>(std::move(glyphs),
                                                std::wstring(units.begin(), units.end()),
                                                dice.Below(512), dice.Rect(), batch);
    if (batch == 0) text->pgp = positions.get();
    text->pwszOrg = dice.OneIn(10) ? nullptr : characters.get();
  }

  Picture source, mask;
  host::PathObject path;
  std::unique_ptr<host::ClipObject> clip;
  Guarded<ULONG> vector;
  std::unique_ptr<host::XlateObject> translation;
  std::unique_ptr<host::BrushObject> brush;
  Guarded<FLOAT_LONG> style;
  LINEATTRS pen = {};
  std::unique_ptr<host::XformObject> transform;
  std::unique_ptr<host::FontObject> font;
  Guarded<GLYPHPOS> positions;
  Guarded<wchar_t> characters;
  std::unique_ptr<host::StringObject> text;
};

void Call(const host::DriverFunctions& driver, SURFOBJ* to, Dice& dice) {
  const Objects with(dice, to);
  // The engine always passes what the interface requires.
  const auto maybe = [&dice](auto* object) { return dice.OneIn(6) ? nullptr : object; };
  auto* path = const_cast<host::PathObject*>(&with.path);
  auto* pen = const_cast<LINEATTRS*>(&with.pen);
  SURFOBJ* source = with.source.surface.get();
  SURFOBJ* mask = dice.OneIn(2) ? nullptr : with.mask.surface.get();
  CLIPOBJ* clip = maybe(with.clip.get());
  XLATEOBJ* colours = maybe(with.translation.get());
  BRUSHOBJ* brush = maybe(with.brush.get());
  RECTL target = dice.Rect(), from = dice.Rect();
  POINTL origin = dice.Point(), second = dice.Point();
  const MIX mix = dice.Below(17) | dice.Below(17) << 8;
  const ROP4 rop4 = dice.Below(1 << 16);
  COLORADJUSTMENT adjustment = {sizeof adjustment, 0, 1, 20000, 20000, 20000, 0, 10000, 0, 0, 0, 0};
  BLENDOBJ blend = {
      {AC_SRC_OVER, 0, static_cast<BYTE>(dice.Below(256)), static_cast<BYTE>(dice.Below(2))}};
  switch (dice.Below(10)) {
    case 0:
      driver.StrokePath(to, path, clip, maybe(with.transform.get()), brush, &origin, pen, mix);
      break;
    case 1:
      driver.FillPath(to, path, clip, brush, &origin, mix, 1 + dice.Below(2));
      break;
    case 2:
      driver.StrokeAndFillPath(to, path, clip, maybe(with.transform.get()), brush, pen, brush,
                               &origin, mix, 1 + dice.Below(2));
      break;
    case 3:
      driver.BitBlt(to, source, mask, clip, colours, &target, &origin, &second, brush, &origin,
                    rop4);
      break;
    case 4:
      driver.StretchBlt(to, source, mask, clip, colours, maybe(&adjustment), &origin, &target,
                        &from, &second, 1 + dice.Below(4));
      break;
    case 5:
      driver.CopyBits(to, source, clip, colours, &target, &origin);
      break;
    case 6:
      driver.AlphaBlend(to, source, clip, colours, &target, &from, &blend);
      break;
    case 7:
      driver.TextOut(to, with.text.get(), with.font.get(), clip, nullptr, maybe(&target), brush,
                     brush, &origin, mix);
      break;
    case 8:
      driver.LineTo(to, clip, brush, dice.Number(), dice.Number(), dice.Number(), dice.Number(),
                    nullptr, mix);
      break;
    default:
      if (clip != nullptr) driver.Paint(to, clip, brush, &origin, mix);
  }
}

int Main(int count, char** arguments) {
  harness::Runs runs(count, arguments);
  const host::ComApartment apartment;
  host::EnsurePrinter(host::kPrinterName, 150, {});
  const host::SpoolJob spool(host::kPrinterName, L"Random");
  const host::DriverModule driver(test::BuiltFile(L"QXDRV06X.dll"));
  interposer.TakeOver(driver.Module());
  harness::GuardHeap();
  interposer.Replace("MessageBoxW", &NobodyReads);
  const DeviceMode mode = host::MakeDeviceMode(host::kPrinterName, {.paper = DMPAPER_A4}, 150);
  size_t blocks = 0;
  const auto run = [&](unsigned number) {
    Dice dice(number);
    {
      host::PrintSession session(driver.Functions(),
                                 {spool.Printer(), host::kPrinterName, L"FILE:"}, mode.pub);
      session.StartDocument(L"Random", spool.Id());
      // Without a client the first page is refused.
      try {
        session.StartPage(mode.pub);
      } catch (const host::DriverFailure&) {
        session.StartPage(mode.pub);
      }
      for (int i = 0; i < kCalls; ++i) Call(driver.Functions(), session.Device().Surface(), dice);
      session.SendPage();
      session.EndDocument();
    }
    // The first job leaves what the process keeps.
    if (blocks != 0 && harness::GuardedBlocks() > blocks)
      runs.Report("leaks a block of the driver");
    blocks = harness::GuardedBlocks();
  };
  return runs.Make(100'000, run, [] { return std::string("a page of random calls"); });
}

}  // namespace
}  // namespace quillo::fuzz

int main(int count, char** arguments) { return quillo::fuzz::Main(count, arguments); }
