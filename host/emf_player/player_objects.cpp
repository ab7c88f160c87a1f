// Records that create, select and delete pens, brushes, fonts and palettes.

#include <utility>

#include "host/emf_player/bitmap_data.h"
#include "host/emf_player/playback.h"

namespace quillo::host::emf {

namespace {

/// Fills a brush of style BS_SOLID, BS_HOLLOW or BS_HATCHED; false for other styles.
bool MakeBrush(Playback& dc, uint32_t style, COLORREF color, uint64_t hatch, BrushObject& brush) {
  brush.color = color;
  switch (style) {
    case BS_SOLID:
      brush.kind = BrushObject::Kind::kSolid;
      return true;
    case BS_HOLLOW:
      brush.kind = BrushObject::Kind::kNull;
      return true;
    case BS_HATCHED:
      break;
    default:
      return false;
  }
  // Behind the six hatches stand six that are one colour all over.
  constexpr uint64_t kSolidColor = 6, kSolidText = 8, kSolidBackground = 10, kEnd = 12;
  brush.kind = hatch < kSolidColor ? BrushObject::Kind::kHatched : BrushObject::Kind::kSolid;
  brush.hatch = static_cast<uint32_t>(hatch);
  if (hatch >= kSolidBackground) {
    brush.color = dc.state().background_color;
  } else if (hatch >= kSolidText) {
    brush.color = dc.state().text_color;
  }
  if (hatch >= kEnd) dc.Fault("there is no hatch " + std::to_string(hatch));
  return hatch < kEnd;
}

void CreateBrush(Playback& dc, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  const auto style = record.Read<uint32_t>();
  const auto color = record.Read<COLORREF>();
  const auto hatch = record.Read<uint32_t>();
  BrushObject brush;
  if (!record.ok()) return;
  if (!MakeBrush(dc, style, color, hatch, brush)) {
    dc.Fault("there is no plain brush of style " + std::to_string(style));
    return;
  }
  dc.StoreObject(index, std::make_shared<const BrushObject>(brush));
}

template <BrushObject::Kind kind>
void CreatePatternBrush(Playback& dc, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  const auto colors = record.Read<uint32_t>();
  const DibPlace place = ReadDibPlace(record);
  if (!record.ok()) return;
  BrushObject brush;
  brush.pattern = ReadBitmap(dc, record, place, colors);
  if (brush.pattern == nullptr) return;
  // "Monochrome" brushes of more colours exist in files; they have their own.
  brush.kind = brush.pattern->bits_per_pixel == 1 ? kind : BrushObject::Kind::kPattern;
  dc.StoreObject(index, std::make_shared<const BrushObject>(std::move(brush)));
}

void CreatePen(Playback& dc, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  PenObject pen;
  pen.style = record.Read<uint32_t>() & PS_STYLE_MASK;
  const auto width = record.Read<int32_t>();
  record.Skip(4);  // the second half of a POINT that holds the width
  pen.width = width < 0 ? 0u - static_cast<uint32_t>(width) : static_cast<uint32_t>(width);
  pen.brush.color = record.Read<COLORREF>();
  if (record.ok()) dc.StoreObject(index, std::make_shared<const PenObject>(std::move(pen)));
}

void ExtCreatePen(Playback& dc, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  const DibPlace place = ReadDibPlace(record);
  PenObject pen;
  pen.simple = false;
  pen.style = record.Read<uint32_t>();
  pen.width = record.Read<uint32_t>();
  const auto brush_style = record.Read<uint32_t>();
  const auto color = record.Read<COLORREF>();
  const auto hatch = record.Read<uint32_t>();
  const auto dash_count = record.Read<uint32_t>();
  if (pen.LineStyle() == PS_USERSTYLE) pen.dashes = record.ReadArray<uint32_t>(dash_count);
  if (!record.ok()) return;
  if (!place.Empty() && brush_style != BS_SOLID && brush_style != BS_HATCHED) {
    // As BS_DIBPATTERN has it, the hatch says what the bitmap's colour table holds.
    const bool device_bitmap = brush_style == BS_PATTERN;
    pen.brush.pattern = ReadBitmap(dc, record, place, device_bitmap ? 0 : hatch & 0xFFFF);
    if (pen.brush.pattern == nullptr) return;
    pen.brush.kind = device_bitmap && pen.brush.pattern->bits_per_pixel == 1
                         ? BrushObject::Kind::kMonoPattern
                         : BrushObject::Kind::kPattern;
  } else if (!MakeBrush(dc, brush_style, color, hatch, pen.brush)) {
    dc.Fault("there is no brush of style " + std::to_string(brush_style) + " for a pen");
    return;
  }
  dc.StoreObject(index, std::make_shared<const PenObject>(std::move(pen)));
}

void CreateFont(Playback& dc, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  FontObject font;
  font.font = record.Read<LOGFONTW>();
  font.font.lfFaceName[LF_FACESIZE - 1] = L'\0';
  dc.StoreObject(index, std::make_shared<const FontObject>(font));
}

/// A colour space holds its place in the table, so that its deletion finds it.
void CreateOther(Playback& dc, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  if (record.ok()) dc.StoreObject(index, std::make_shared<const OtherObject>());
}

void SelectObject(Playback& dc, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  const Object object = dc.objects().Get(index);
  if (const auto* pen = std::get_if<Shared<PenObject>>(&object)) {
    dc.state().pen = *pen;
  } else if (const auto* brush = std::get_if<Shared<BrushObject>>(&object)) {
    dc.state().brush = *brush;
  } else if (const auto* font = std::get_if<Shared<FontObject>>(&object)) {
    dc.state().font = *font;
  } else {
    dc.Fault("object " + std::to_string(index) + " is no pen, brush or font");
  }
}

void DeleteObject(Playback& dc, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  if (!dc.objects().Delete(index)) dc.Fault("there is no object " + std::to_string(index));
}

// -- Palettes ----------------------------------------------------------------------------------

/// `count` PALETTEENTRYs: red, green, blue, flags.
std::vector<uint32_t> ReadPaletteEntries(PayloadReader& record, size_t count) {
  std::vector<uint32_t> colors = record.ReadArray<uint32_t>(count);
  for (uint32_t& color : colors) color = ToRgb(color);
  return colors;
}

void CreatePalette(Playback& dc, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  record.Skip(2);  // version
  const auto count = record.Read<uint16_t>();
  PaletteObject palette{ReadPaletteEntries(record, count)};
  if (record.ok()) dc.StoreObject(index, std::make_shared<const PaletteObject>(std::move(palette)));
}

Shared<PaletteObject> FindPalette(Playback& dc, uint32_t index) {
  const Object object = dc.objects().Get(index);
  const auto* palette = std::get_if<Shared<PaletteObject>>(&object);
  if (palette != nullptr) return *palette;
  dc.Fault("object " + std::to_string(index) + " is no palette");
  return nullptr;
}

void SelectPalette(Playback& dc, PayloadReader& record) {
  if (auto palette = FindPalette(dc, record.Read<uint32_t>())) dc.state().palette = palette;
}

/// Puts a changed palette in the place of the old one, also where that is selected.
void ReplacePalette(Playback& dc, uint32_t index, const Shared<PaletteObject>& old,
                    PaletteObject changed) {
  auto palette = std::make_shared<const PaletteObject>(std::move(changed));
  if (dc.state().palette == old) dc.state().palette = palette;
  dc.objects().Set(index, std::move(palette));
}

void SetPaletteEntries(Playback& dc, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  const auto start = record.Read<uint32_t>();
  const auto colors = ReadPaletteEntries(record, record.Read<uint32_t>());
  if (!record.ok()) return;
  const auto old = FindPalette(dc, index);
  if (old == nullptr) return;
  if (!RangeFits(old->colors.size(), start, colors.size())) {
    dc.Fault("entries beyond the palette's end");
    return;
  }
  PaletteObject changed = *old;
  std::copy(colors.begin(), colors.end(), changed.colors.begin() + static_cast<ptrdiff_t>(start));
  ReplacePalette(dc, index, old, std::move(changed));
}

void ResizePalette(Playback& dc, PayloadReader& record) {
  constexpr uint32_t kMostEntries = 1024;  // as ResizePalette takes
  const auto index = record.Read<uint32_t>();
  const auto count = record.Read<uint32_t>();
  const auto old = FindPalette(dc, index);
  if (old == nullptr) return;
  if (count > kMostEntries) {
    dc.Fault("a palette of " + std::to_string(count) + " entries");
    return;
  }
  PaletteObject changed = *old;
  changed.colors.resize(count);
  ReplacePalette(dc, index, old, std::move(changed));
}

}  // namespace

void AddObjectHandlers(HandlerTable& table) {
  table[kEmrCREATEBRUSHINDIRECT] = CreateBrush;
  table[kEmrCREATEMONOBRUSH] = CreatePatternBrush<BrushObject::Kind::kMonoPattern>;
  table[kEmrCREATEDIBPATTERNBRUSHPT] = CreatePatternBrush<BrushObject::Kind::kPattern>;
  table[kEmrCREATEPEN] = CreatePen;
  table[kEmrEXTCREATEPEN] = ExtCreatePen;
  table[kEmrEXTCREATEFONTINDIRECTW] = CreateFont;
  table[kEmrCREATECOLORSPACE] = CreateOther;
  table[kEmrCREATECOLORSPACEW] = CreateOther;
  table[kEmrSELECTOBJECT] = SelectObject;
  table[kEmrDELETEOBJECT] = DeleteObject;
  table[kEmrDELETECOLORSPACE] = DeleteObject;
  table[kEmrCREATEPALETTE] = CreatePalette;
  table[kEmrSELECTPALETTE] = SelectPalette;
  table[kEmrSETPALETTEENTRIES] = SetPaletteEntries;
  table[kEmrRESIZEPALETTE] = ResizePalette;
}

}  // namespace quillo::host::emf
