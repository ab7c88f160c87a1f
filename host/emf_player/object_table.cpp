#include "host/emf_player/object_table.h"

#include <utility>

namespace quillo::host::emf {

namespace {

constexpr uint32_t kStockBit = 0x80000000;

Object StockBrush(BrushObject::Kind kind, COLORREF colour) {
  return std::make_shared<const BrushObject>(BrushObject{.kind = kind, .colour = colour});
}

Object StockPen(uint32_t style, COLORREF colour) {
  return std::make_shared<const PenObject>(PenObject{.style = style, .brush = {.colour = colour}});
}

/// `face`: the outline font closest to the stock font.
Object StockFont(const wchar_t* face, LONG height, LONG weight, BYTE pitch_and_family) {
  FontObject object;
  object.font.lfHeight = height;
  object.font.lfWeight = weight;
  object.font.lfPitchAndFamily = pitch_and_family;
  wcsncpy(object.font.lfFaceName, face, LF_FACESIZE - 1);
  return std::make_shared<const FontObject>(object);
}

}  // namespace

bool ObjectTable::Set(uint32_t index, Object object) {
  if (index == 0 || index > UINT16_MAX) return false;
  objects_[index] = std::move(object);
  return true;
}

bool ObjectTable::Delete(uint32_t index) {
  if ((index & kStockBit) != 0) return true;  // GDI accepts the call and keeps the object
  return objects_.erase(index) != 0;
}

Object ObjectTable::Get(uint32_t index) const {
  if ((index & kStockBit) != 0) return StockObject(index & ~kStockBit);
  const auto found = objects_.find(index);
  return found != objects_.end() ? found->second : Object();
}

Object StockObject(uint32_t number) {
  using Kind = BrushObject::Kind;
  switch (number) {
    case WHITE_BRUSH:
    case DC_BRUSH:
      return StockBrush(Kind::kSolid, RGB(255, 255, 255));
    case LTGRAY_BRUSH:
      return StockBrush(Kind::kSolid, RGB(192, 192, 192));
    case GRAY_BRUSH:
      return StockBrush(Kind::kSolid, RGB(128, 128, 128));
    case DKGRAY_BRUSH:
      return StockBrush(Kind::kSolid, RGB(64, 64, 64));
    case BLACK_BRUSH:
      return StockBrush(Kind::kSolid, RGB(0, 0, 0));
    case NULL_BRUSH:
      return StockBrush(Kind::kNull, 0);
    case WHITE_PEN:
      return StockPen(PS_SOLID, RGB(255, 255, 255));
    case BLACK_PEN:
    case DC_PEN:
      return StockPen(PS_SOLID, RGB(0, 0, 0));
    case NULL_PEN:
      return StockPen(PS_NULL, 0);
    case OEM_FIXED_FONT:
    case ANSI_FIXED_FONT:
      return StockFont(L"Courier New", 12, FW_NORMAL, FIXED_PITCH | FF_MODERN);
    case ANSI_VAR_FONT:
      return StockFont(L"Arial", 12, FW_NORMAL, VARIABLE_PITCH | FF_SWISS);
    case SYSTEM_FONT:
    case DEVICE_DEFAULT_FONT:
      return StockFont(L"Arial", 16, FW_BOLD, VARIABLE_PITCH | FF_SWISS);
    case SYSTEM_FIXED_FONT:
      return StockFont(L"Courier New", 16, FW_NORMAL, FIXED_PITCH | FF_MODERN);
    case DEFAULT_GUI_FONT:
      return StockFont(L"Tahoma", -11, FW_NORMAL, VARIABLE_PITCH | FF_SWISS);
    case DEFAULT_PALETTE:
      return std::make_shared<const PaletteObject>();
    default:
      return {};
  }
}

}  // namespace quillo::host::emf
