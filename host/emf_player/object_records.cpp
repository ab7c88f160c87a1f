// Records that create, select and delete pens, brushes, fonts and palettes.

#include <utility>

#include "host/emf_player/bitmap_data.h"
#include "host/emf_player/emf_player.h"
#include "host/emf_player/record_handlers.h"

namespace quillo::host::emf {

namespace {

/// Fills a brush of style BS_SOLID, BS_HOLLOW or BS_HATCHED; false for other styles.
bool MakeBrush(EmfPlayer& player, uint32_t style, COLORREF colour, uint64_t hatch,
               BrushObject& brush) {
  brush.colour = colour;
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
  // The six hatches are followed by six that are solid.
  constexpr uint64_t kSolidColour = 6, kSolidText = 8, kSolidBackground = 10, kEnd = 12;
  brush.kind = hatch < kSolidColour ? BrushObject::Kind::kHatched : BrushObject::Kind::kSolid;
  brush.hatch = static_cast<uint32_t>(hatch);
  if (hatch >= kSolidBackground) {
    brush.colour = player.state().background_colour;
  } else if (hatch >= kSolidText) {
    brush.colour = player.state().text_colour;
  }
  if (hatch >= kEnd) player.Fault("unknown hatch " + std::to_string(hatch));
  return hatch < kEnd;
}

void CreateBrush(EmfPlayer& player, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  const auto style = record.Read<uint32_t>();
  const auto colour = record.Read<COLORREF>();
  const auto hatch = record.Read<uint32_t>();
  BrushObject brush;
  if (!record.ok()) return;
  if (!MakeBrush(player, style, colour, hatch, brush)) {
    player.Fault("unsupported brush style " + std::to_string(style));
    return;
  }
  player.StoreObject(index, std::make_shared<const BrushObject>(brush));
}

template <BrushObject::Kind kind>
void CreatePatternBrush(EmfPlayer& player, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  const auto colours = record.Read<uint32_t>();
  const DibPlace place = ReadDibPlace(record);
  if (!record.ok()) return;
  BrushObject brush;
  brush.pattern = ReadBitmap(player, record, place, colours);
  if (brush.pattern == nullptr) return;
  // Some files have "monochrome" brushes of more colours; those keep their own.
  brush.kind = brush.pattern->bits_per_pixel == 1 ? kind : BrushObject::Kind::kPattern;
  player.StoreObject(index, std::make_shared<const BrushObject>(std::move(brush)));
}

void CreatePen(EmfPlayer& player, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  PenObject pen;
  pen.style = record.Read<uint32_t>() & PS_STYLE_MASK;
  const auto width = record.Read<int32_t>();
  record.Skip(4);  // the second half of a POINT that holds the width
  pen.width = width < 0 ? 0u - static_cast<uint32_t>(width) : static_cast<uint32_t>(width);
  pen.brush.colour = record.Read<COLORREF>();
  if (record.ok()) player.StoreObject(index, std::make_shared<const PenObject>(std::move(pen)));
}

void ExtCreatePen(EmfPlayer& player, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  const DibPlace place = ReadDibPlace(record);
  PenObject pen;
  pen.simple = false;
  pen.style = record.Read<uint32_t>();
  pen.width = record.Read<uint32_t>();
  const auto brush_style = record.Read<uint32_t>();
  const auto colour = record.Read<COLORREF>();
  const auto hatch = record.Read<uint32_t>();
  const auto dash_count = record.Read<uint32_t>();
  if (pen.LineStyle() == PS_USERSTYLE) pen.dashes = record.ReadArray<uint32_t>(dash_count);
  if (!record.ok()) return;
  if (!place.Empty() && brush_style != BS_SOLID && brush_style != BS_HATCHED) {
    // As with BS_DIBPATTERN, the hatch is the kind of the bitmap's colour table.
    const bool device_bitmap = brush_style == BS_PATTERN;
    pen.brush.pattern = ReadBitmap(player, record, place, device_bitmap ? 0 : hatch & 0xFFFF);
    if (pen.brush.pattern == nullptr) return;
    pen.brush.kind = device_bitmap && pen.brush.pattern->bits_per_pixel == 1
                         ? BrushObject::Kind::kMonoPattern
                         : BrushObject::Kind::kPattern;
  } else if (!MakeBrush(player, brush_style, colour, hatch, pen.brush)) {
    player.Fault("unsupported brush style " + std::to_string(brush_style) + " of a pen");
    return;
  }
  player.StoreObject(index, std::make_shared<const PenObject>(std::move(pen)));
}

void CreateFont(EmfPlayer& player, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  FontObject font;
  font.font = record.Read<LOGFONTW>();
  font.font.lfFaceName[LF_FACESIZE - 1] = L'\0';
  player.StoreObject(index, std::make_shared<const FontObject>(font));
}

/// A colour space only occupies its index, so that deleting it succeeds.
void CreateOther(EmfPlayer& player, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  if (record.ok()) player.StoreObject(index, std::make_shared<const OtherObject>());
}

void SelectObject(EmfPlayer& player, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  const Object object = player.objects().Get(index);
  if (const auto* pen = std::get_if<Shared<PenObject>>(&object)) {
    player.state().pen = *pen;
  } else if (const auto* brush = std::get_if<Shared<BrushObject>>(&object)) {
    player.state().brush = *brush;
  } else if (const auto* font = std::get_if<Shared<FontObject>>(&object)) {
    player.state().font = *font;
  } else {
    player.Fault("object " + std::to_string(index) + " is not a pen, brush or font");
  }
}

void DeleteObject(EmfPlayer& player, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  if (!player.objects().Delete(index))
    player.Fault("object " + std::to_string(index) + " does not exist");
}

// -- Palettes ----------------------------------------------------------------------------------

/// `count` PALETTEENTRYs: red, green, blue, flags.
std::vector<uint32_t> ReadPaletteEntries(PayloadReader& record, size_t count) {
  std::vector<uint32_t> colours = record.ReadArray<uint32_t>(count);
  for (uint32_t& colour : colours) colour = ToRgb(colour);
  return colours;
}

void CreatePalette(EmfPlayer& player, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  record.Skip(2);  // version
  const auto count = record.Read<uint16_t>();
  PaletteObject palette{ReadPaletteEntries(record, count)};
  if (record.ok())
    player.StoreObject(index, std::make_shared<const PaletteObject>(std::move(palette)));
}

Shared<PaletteObject> FindPalette(EmfPlayer& player, uint32_t index) {
  return player.FindObject<PaletteObject>(index, "palette");
}

void SelectPalette(EmfPlayer& player, PayloadReader& record) {
  if (auto palette = FindPalette(player, record.Read<uint32_t>())) player.state().palette = palette;
}

/// Replaces a palette by a changed one, also where it is selected.
void ReplacePalette(EmfPlayer& player, uint32_t index, const Shared<PaletteObject>& old,
                    PaletteObject changed) {
  auto palette = std::make_shared<const PaletteObject>(std::move(changed));
  if (player.state().palette == old) player.state().palette = palette;
  player.objects().Set(index, std::move(palette));
}

void SetPaletteEntries(EmfPlayer& player, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  const auto start = record.Read<uint32_t>();
  const auto colours = ReadPaletteEntries(record, record.Read<uint32_t>());
  if (!record.ok()) return;
  const auto old = FindPalette(player, index);
  if (old == nullptr) return;
  if (!RangeFits(old->colours.size(), start, colours.size())) {
    player.Fault("entries beyond the palette's end");
    return;
  }
  PaletteObject changed = *old;
  std::copy(colours.begin(), colours.end(),
            changed.colours.begin() + static_cast<ptrdiff_t>(start));
  ReplacePalette(player, index, old, std::move(changed));
}

void ResizePalette(EmfPlayer& player, PayloadReader& record) {
  constexpr uint32_t kMaxEntries = 1024;  // of ResizePalette
  const auto index = record.Read<uint32_t>();
  const auto count = record.Read<uint32_t>();
  const auto old = FindPalette(player, index);
  if (old == nullptr) return;
  if (count > kMaxEntries) {
    player.Fault("a palette cannot have " + std::to_string(count) + " entries");
    return;
  }
  PaletteObject changed = *old;
  changed.colours.resize(count);
  ReplacePalette(player, index, old, std::move(changed));
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
