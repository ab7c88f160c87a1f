#include "base/windows.h"

#include <utility>

#include "base/arithmetic.h"
#include "base/system_owners.h"
#include "capture/records/packed_dib.h"
#include "playback/actions.h"
#include "playback/current_objects.h"

// Pens and fill brushes of the page DC, and the brush that is kept for pens.
namespace quillo {
namespace {

using namespace records;

constexpr UINT kNoSavedStyle = 0xFFFFFFFF;

// Whether the payload holds as many pattern bytes as a pattern brush announces.
bool HoldsPattern(const CreateBrushPayload& record, Bytes payload) {
  return record.style != BS_DIBPATTERNPT ||
         RangeFits(payload.size(), kBrushPatternOffset, record.pattern_size);
}

// A copy of a brush record's pattern that GDI can read without leaving it; empty when memory is
// short or the pattern is not a bitmap (one that did not pack is all zeros). GDI finds the bits by
// the colour count, which above 8 bits per pixel has to state the one entry that precedes them.
HeapBlock CopyPattern(HANDLE heap, Bytes pattern) {
  auto dib = LocatePackedDib(pattern, 0);
  if (!dib) return HeapBlock();
  if (dib->info.header.bit_count > 8) dib->info.header.colours_used = 1;
  HeapBlock copy(pattern.size(), heap, 0);
  if (!copy) return HeapBlock();
  std::memcpy(copy.Get(), pattern.data(), pattern.size());
  std::memcpy(copy.Get(), &dib->info.header, sizeof dib->info.header);
  return copy;
}

// Fills an empty block from a brush record that holds its pattern. Without a copy of the pattern
// the block gets a null one; a style that no capture writes gets neither hatch nor pattern.
void CopyBrush(HANDLE heap, Bytes payload, LOGBRUSH& block) {
  const auto record = LoadOrZero<CreateBrushPayload>(payload);
  block.lbStyle = record.style;
  block.lbColor = record.colour;
  if (record.style == BS_HATCHED) block.lbHatch = record.hatch;
  if (record.style == BS_DIBPATTERNPT) {
    const Bytes pattern = payload.subspan(kBrushPatternOffset, record.pattern_size);
    block.lbColor = DIB_RGB_COLORS;
    block.lbHatch = reinterpret_cast<ULONG_PTR>(CopyPattern(heap, pattern).Detach());
  }
}

// Frees a pattern copy and zeroes the block. Only the style shows whether there is a copy.
void FreeBrush(HANDLE heap, LOGBRUSH& block) {
  if (block.lbStyle == BS_DIBPATTERNPT && block.lbHatch != 0) {
    HeapFree(heap, 0, reinterpret_cast<void*>(block.lbHatch));
  }
  block = {};
}

// Keeps a brush for later pens.
// Compatibility: the pending flag is never cleared, so that from the first such brush on every
// extended pen of the job takes the stored one; kept for pages.
void KeepPenBrush(PlaybackContext& context, Bytes payload) {
  if (context.pen_brush_pending != 0) FreeBrush(context.job.heap, context.pen_brush);
  CopyBrush(context.job.heap, payload, context.pen_brush);
  context.pen_brush_pending = 1;
}

void SelectFillBrush(PlaybackContext& context, Bytes payload) {
  ReleaseBrush(context);
  LOGBRUSH block = {};
  CopyBrush(context.job.heap, payload, block);
  MakeCurrent(context.page_dc, CreateBrushIndirect(&block), context.current_brush,
              context.previous_brush);
  FreeBrush(context.job.heap, block);
}

// Cosmetic pens become one unit wide. Pens of that width take a solid brush: makes `brush` one and
// returns its style, or kNoSavedStyle where the brush stays.
UINT ForceSolidBrush(ExtCreatePenPayload& record, LOGBRUSH& brush) {
  UINT saved_style = kNoSavedStyle;
  if ((record.style & PS_TYPE_MASK) == PS_COSMETIC) {
    saved_style = std::exchange(brush.lbStyle, BS_SOLID);
    record.width = 1;
  }
  if (record.width == 1) saved_style = std::exchange(brush.lbStyle, BS_SOLID);
  return saved_style;
}

// Compatibility: the restore after a pen is inverted. A style that was saved is not put back, while
// a brush whose style stayed gets the "nothing saved" mark as its style. So a wide geometric pen
// spoils the stored brush (its pattern copy then lives as long as the heap), and a thin pen leaves
// it solid; kept for pages.
void RestoreBrushStyleInverted(UINT saved_style, LOGBRUSH& brush) {
  if (saved_style == kNoSavedStyle) brush.lbStyle = saved_style;
}

}  // namespace

int32_t PlayCreatePen(PlaybackContext& context, Bytes payload) {
  static_assert(sizeof(LOGPEN) == sizeof(CreatePenPayload));
  ReleasePen(context);
  const auto pen = LoadOrZero<LOGPEN>(payload);
  MakeCurrent(context.page_dc, CreatePenIndirect(&pen), context.current_pen, context.previous_pen);
  return 1;
}

int32_t PlayExtCreatePen(PlaybackContext& context, Bytes payload) {
  auto record = LoadOrZero<ExtCreatePenPayload>(payload);
  const size_t entry_bytes = size_t{record.count} * sizeof(DWORD);
  if (!RangeFits(payload.size(), kPenEntriesOffset, entry_bytes)) return 0;

  ReleasePen(context);
  LOGBRUSH black = {};
  LOGBRUSH& brush = context.pen_brush_pending != 0 ? context.pen_brush : black;
  const UINT saved_style = ForceSolidBrush(record, brush);

  // When memory is short, GDI gets the count without the entries.
  HeapBlock entries;
  if (record.count != 0) entries = HeapBlock(entry_bytes, context.job.heap, 0);
  if (entries) std::memcpy(entries.Get(), payload.data() + kPenEntriesOffset, entry_bytes);

  const HPEN pen =
      ExtCreatePen(record.style, record.width, &brush, record.count, entries.As<DWORD>());
  MakeCurrent(context.page_dc, pen, context.current_pen, context.previous_pen);
  RestoreBrushStyleInverted(saved_style, brush);
  return 1;
}

int32_t PlayCreateBrush(PlaybackContext& context, Bytes payload) {
  const auto record = LoadOrZero<CreateBrushPayload>(payload);
  if (!HoldsPattern(record, payload)) return 0;
  if (record.usage != kFillBrush) {
    KeepPenBrush(context, payload);
  } else {
    SelectFillBrush(context, payload);
  }
  return 1;
}

}  // namespace quillo
