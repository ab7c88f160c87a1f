// Records that change the DC's settings: modes, colours, mapping, transforms, save and restore; and
// comments.

#include <utility>

#include "host/emf_format/comment.h"
#include "host/emf_player/emf_player.h"
#include "host/emf_player/record_fields.h"
#include "host/emf_player/record_handlers.h"

namespace quillo::host::emf {

namespace {

/// Puts the record's number into `field` if it is in [min, max].
template <auto field, uint32_t min, uint32_t max>
void SetNumber(EmfPlayer& player, PayloadReader& record) {
  const auto value = record.Read<uint32_t>();
  if (value < min || value > max) {
    player.Fault("unknown mode " + std::to_string(value));
    return;
  }
  player.state().*field = value;
}

template <auto field>
void SetColour(EmfPlayer& player, PayloadReader& record) {
  player.state().*field = record.Read<uint32_t>();
}

void SetTextAlign(EmfPlayer& player, PayloadReader& record) {
  player.state().text_align = record.Read<uint32_t>();
}

void SetMiterLimit(EmfPlayer& player, PayloadReader& record) {
  // The format documents an integer; GDI writes a float. A plausible integer read as a float is
  // almost 0.
  const auto as_float = record.Read<float>();
  const auto as_integer = LoadOrZero<uint32_t>(record.record(), 8);
  const float limit = as_integer < 0x00800000 ? static_cast<float>(as_integer) : as_float;
  if (!(limit >= 1)) {
    player.Fault("miter limit below 1");
    return;
  }
  player.state().miter_limit = limit;
}

void SetBrushOrigin(EmfPlayer& player, PayloadReader& record) {
  player.state().brush_origin = record.Read<PointL>();
}

void SetTextJustification(EmfPlayer& player, PayloadReader& record) {
  player.state().break_extra = record.Read<int32_t>();
  player.state().break_count = record.Read<uint32_t>();
}

void SetLayout(EmfPlayer& player, PayloadReader& record) {
  if ((record.Read<uint32_t>() & LAYOUT_RTL) != 0) player.NotCarried();
}

// -- Mapping -----------------------------------------------------------------------------------

void SetMapMode(EmfPlayer& player, PayloadReader& record) {
  const auto mode = record.Read<uint32_t>();
  if (!player.state().page.SetMapMode(mode)) {
    player.Fault("unknown mapping mode " + std::to_string(mode));
  }
  player.TransformChanged();
}

template <auto set>
void SetOrigin(EmfPlayer& player, PayloadReader& record) {
  (player.state().page.*set)(record.Read<PointL>());
  player.TransformChanged();
}

template <auto set>
void SetExtent(EmfPlayer& player, PayloadReader& record) {
  if (!(player.state().page.*set)(record.Read<SizeL>())) player.Fault("extent of 0");
  player.TransformChanged();
}

template <auto scale>
void ScaleExtent(EmfPlayer& player, PayloadReader& record) {
  PointL multiply, divide;
  multiply.x = record.Read<int32_t>();
  divide.x = record.Read<int32_t>();
  multiply.y = record.Read<int32_t>();
  divide.y = record.Read<int32_t>();
  if (!(player.state().page.*scale)(multiply, divide)) player.Fault("extent scaled by 0");
  player.TransformChanged();
}

// -- World transform ---------------------------------------------------------------------------

void ChangeWorld(EmfPlayer& player, const Transform& world) {
  if (!world.Usable()) {
    player.Fault("the transform is not invertible");
    return;
  }
  player.state().world = world;
  player.TransformChanged();
}

void SetWorldTransform(EmfPlayer& player, PayloadReader& record) {
  ChangeWorld(player, ReadTransform(record));
}

void ModifyWorldTransform(EmfPlayer& player, PayloadReader& record) {
  constexpr uint32_t kSet = 4;  // MWT_SET
  const Transform map = ReadTransform(record);
  const Transform& world = player.state().world;
  switch (const auto mode = record.Read<uint32_t>()) {
    case MWT_IDENTITY:
      return ChangeWorld(player, Transform());
    case MWT_LEFTMULTIPLY:
      return ChangeWorld(player, map.Then(world));
    case MWT_RIGHTMULTIPLY:
      return ChangeWorld(player, world.Then(map));
    case kSet:
      return ChangeWorld(player, map);
    default:
      player.Fault("unknown mode " + std::to_string(mode));
  }
}

// -- Save and restore --------------------------------------------------------------------------

void SaveState(EmfPlayer& player, PayloadReader&) {
  if (!player.Save()) player.Fault("too many saved states");
}

void RestoreState(EmfPlayer& player, PayloadReader& record) {
  const auto level = record.Read<int32_t>();
  if (!player.Restore(level)) player.Fault("no saved state " + std::to_string(level));
}

/// Comments leave no trace, but damage in them is reported.
void Comment(EmfPlayer& player, PayloadReader& record) {
  std::string what = FindCommentFault(record.record());
  if (!what.empty()) player.Remark(std::move(what));
}

}  // namespace

void AddStateHandlers(HandlerTable& table) {
  table[kEmrSETBKMODE] = SetNumber<&DcState::background_mode, TRANSPARENT, OPAQUE>;
  table[kEmrSETPOLYFILLMODE] = SetNumber<&DcState::poly_fill_mode, ALTERNATE, WINDING>;
  table[kEmrSETROP2] = SetNumber<&DcState::rop2, R2_BLACK, R2_WHITE>;
  table[kEmrSETSTRETCHBLTMODE] = SetNumber<&DcState::stretch_mode, BLACKONWHITE, HALFTONE>;
  table[kEmrSETARCDIRECTION] =
      SetNumber<&DcState::arc_direction, AD_COUNTERCLOCKWISE, AD_CLOCKWISE>;
  table[kEmrSETTEXTCOLOR] = SetColour<&DcState::text_colour>;
  table[kEmrSETBKCOLOR] = SetColour<&DcState::background_colour>;
  table[kEmrSETTEXTALIGN] = SetTextAlign;
  table[kEmrSETMITERLIMIT] = SetMiterLimit;
  table[kEmrSETBRUSHORGEX] = SetBrushOrigin;
  table[kEmrSETTEXTJUSTIFICATION] = SetTextJustification;
  table[kEmrSETLAYOUT] = SetLayout;
  table[kEmrSETMAPMODE] = SetMapMode;
  table[kEmrSETWINDOWORGEX] = SetOrigin<&PageTransform::SetWindowOrigin>;
  table[kEmrSETVIEWPORTORGEX] = SetOrigin<&PageTransform::SetViewportOrigin>;
  table[kEmrSETWINDOWEXTEX] = SetExtent<&PageTransform::SetWindowExtent>;
  table[kEmrSETVIEWPORTEXTEX] = SetExtent<&PageTransform::SetViewportExtent>;
  table[kEmrSCALEWINDOWEXTEX] = ScaleExtent<&PageTransform::ScaleWindowExtent>;
  table[kEmrSCALEVIEWPORTEXTEX] = ScaleExtent<&PageTransform::ScaleViewportExtent>;
  table[kEmrSETWORLDTRANSFORM] = SetWorldTransform;
  table[kEmrMODIFYWORLDTRANSFORM] = ModifyWorldTransform;
  table[kEmrGDICOMMENT] = Comment;
  table[kEmrSAVEDC] = SaveState;
  table[kEmrRESTOREDC] = RestoreState;
}

}  // namespace quillo::host::emf
