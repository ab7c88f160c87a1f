#include "host/app_recorder/dc_state.h"

#include <iterator>

namespace quillo::app {

namespace {

/// A property that is a number, in the order in which they are set: those on which others depend
/// come first.
struct Number {
  int (*get)(HDC dc);
  void (*set)(HDC dc, int value);
  int initial;
};

#define QUILLO_NUMBER(Get, Set, Type, initial)                                                  \
  {                                                                                             \
    [](HDC dc) { return static_cast<int>(Get(dc)); },                                           \
        [](HDC dc, int value) { Set(dc, static_cast<Type>(value)); }, static_cast<int>(initial) \
  }
constexpr Number kNumbers[] = {
    QUILLO_NUMBER(GetLayout, SetLayout, DWORD, 0),
    QUILLO_NUMBER(GetGraphicsMode, SetGraphicsMode, int, GM_COMPATIBLE),
    QUILLO_NUMBER(GetMapMode, SetMapMode, int, MM_TEXT),
    QUILLO_NUMBER(GetTextColor, SetTextColor, COLORREF, 0),
    QUILLO_NUMBER(GetBkColor, SetBkColor, COLORREF, 0xFFFFFF),
    QUILLO_NUMBER(GetBkMode, SetBkMode, int, OPAQUE),
    QUILLO_NUMBER(GetROP2, SetROP2, int, R2_COPYPEN),
    QUILLO_NUMBER(GetPolyFillMode, SetPolyFillMode, int, ALTERNATE),
    QUILLO_NUMBER(GetStretchBltMode, SetStretchBltMode, int, BLACKONWHITE),
    QUILLO_NUMBER(GetTextAlign, SetTextAlign, UINT, TA_LEFT | TA_TOP),
    QUILLO_NUMBER(GetTextCharacterExtra, SetTextCharacterExtra, int, 0),
    QUILLO_NUMBER(GetArcDirection, SetArcDirection, int, AD_COUNTERCLOCKWISE),
};
/// The same, of the pen and the brush that have the DC's own colours: recorded once they are
/// selected.
constexpr Number kColours[] = {
    QUILLO_NUMBER(GetDCPenColor, SetDCPenColor, COLORREF, 0),
    QUILLO_NUMBER(GetDCBrushColor, SetDCBrushColor, COLORREF, 0xFFFFFF),
};
#undef QUILLO_NUMBER
static_assert(std::size(kNumbers) == DcState::kNumbers);
static_assert(std::size(kColours) == DcState::kColours);
constexpr size_t kMapMode = 2;

bool Differ(const SIZE& a, const SIZE& b) { return a.cx != b.cx || a.cy != b.cy; }
bool Differ(const POINT& a, const POINT& b) { return a.x != b.x || a.y != b.y; }
bool Differ(const XFORM& a, const XFORM& b) {
  return a.eM11 != b.eM11 || a.eM12 != b.eM12 || a.eM21 != b.eM21 || a.eM22 != b.eM22 ||
         a.eDx != b.eDx || a.eDy != b.eDy;
}

/// A copy of a region of the DC; null when it has none. `which`: 1 the clip, 2 the meta region.
HRGN RegionOf(HDC dc, int which) {
  const HRGN region = CreateRectRgn(0, 0, 0, 0);
  if (region != nullptr && GetRandomRgn(dc, region, which) == 1) return region;
  DeleteObject(region);
  return nullptr;
}

bool SameRegion(HRGN a, HRGN b) {
  return a == nullptr || b == nullptr ? a == b : EqualRgn(a, b) != FALSE;
}

DcState InitialState() {
  DcState state = {};
  for (size_t i = 0; i < DcState::kNumbers; ++i) state.numbers[i] = kNumbers[i].initial;
  for (size_t i = 0; i < DcState::kColours; ++i) state.colours[i] = kColours[i].initial;
  state.window_extent = state.viewport_extent = {1, 1};
  state.world = {1, 0, 0, 1, 0, 0};
  state.miter_limit = 10;
  state.pen = GetStockObject(BLACK_PEN);
  state.brush = GetStockObject(WHITE_BRUSH);
  state.font = GetStockObject(SYSTEM_FONT);
  state.palette = GetStockObject(DEFAULT_PALETTE);
  return state;
}

DcState StateOf(HDC dc) {
  DcState state = {};
  for (size_t i = 0; i < DcState::kNumbers; ++i) state.numbers[i] = kNumbers[i].get(dc);
  for (size_t i = 0; i < DcState::kColours; ++i) state.colours[i] = kColours[i].get(dc);
  GetWindowExtEx(dc, &state.window_extent);
  GetViewportExtEx(dc, &state.viewport_extent);
  GetWindowOrgEx(dc, &state.window_origin);
  GetViewportOrgEx(dc, &state.viewport_origin);
  GetCurrentPositionEx(dc, &state.position);
  GetBrushOrgEx(dc, &state.brush_origin);
  GetWorldTransform(dc, &state.world);
  GetMiterLimit(dc, &state.miter_limit);
  state.pen = GetCurrentObject(dc, OBJ_PEN);
  state.brush = GetCurrentObject(dc, OBJ_BRUSH);
  state.font = GetCurrentObject(dc, OBJ_FONT);
  state.palette = GetCurrentObject(dc, OBJ_PAL);
  state.clip = RegionOf(dc, 1);
  state.meta_clip = RegionOf(dc, 2);
  return state;
}

void SetMapping(HDC dc, const DcState& from, const DcState& to) {
  const int mode = to.numbers[kMapMode];
  const bool free = mode == MM_ISOTROPIC || mode == MM_ANISOTROPIC;
  if (free && (Differ(from.window_extent, to.window_extent) || mode != from.numbers[kMapMode])) {
    SetWindowExtEx(dc, to.window_extent.cx, to.window_extent.cy, nullptr);
  }
  if (free &&
      (Differ(from.viewport_extent, to.viewport_extent) || mode != from.numbers[kMapMode])) {
    SetViewportExtEx(dc, to.viewport_extent.cx, to.viewport_extent.cy, nullptr);
  }
  if (Differ(from.window_origin, to.window_origin)) {
    SetWindowOrgEx(dc, to.window_origin.x, to.window_origin.y, nullptr);
  }
  if (Differ(from.viewport_origin, to.viewport_origin)) {
    SetViewportOrgEx(dc, to.viewport_origin.x, to.viewport_origin.y, nullptr);
  }
  if (Differ(from.world, to.world)) SetWorldTransform(dc, &to.world);
}

void SetClipping(HDC dc, const DcState& from, const DcState& to) {
  const bool meta_differs = !SameRegion(from.meta_clip, to.meta_clip);
  if (meta_differs && to.meta_clip != nullptr) {
    ExtSelectClipRgn(dc, to.meta_clip, RGN_COPY);
    SetMetaRgn(dc);
  }
  if (meta_differs || !SameRegion(from.clip, to.clip)) ExtSelectClipRgn(dc, to.clip, RGN_COPY);
}

/// Makes the calls that turn the one state into the other.
void Change(HDC dc, const DcState& from, const DcState& to) {
  for (size_t i = 0; i < DcState::kNumbers; ++i) {
    if (from.numbers[i] != to.numbers[i]) kNumbers[i].set(dc, to.numbers[i]);
  }
  SetMapping(dc, from, to);
  SetClipping(dc, from, to);
  if (from.pen != to.pen) SelectObject(dc, to.pen);
  if (from.brush != to.brush) SelectObject(dc, to.brush);
  if (from.font != to.font) SelectObject(dc, to.font);
  if (from.palette != to.palette) {
    SelectPalette(dc, static_cast<HPALETTE>(to.palette), FALSE);
  }
  const bool selects[] = {from.pen != to.pen, from.brush != to.brush};
  for (size_t i = 0; i < DcState::kColours; ++i) {
    if (selects[i] || from.colours[i] != to.colours[i]) kColours[i].set(dc, to.colours[i]);
  }
  if (Differ(from.brush_origin, to.brush_origin)) {
    SetBrushOrgEx(dc, to.brush_origin.x, to.brush_origin.y, nullptr);
  }
  if (from.miter_limit != to.miter_limit) SetMiterLimit(dc, to.miter_limit, nullptr);
  if (Differ(from.position, to.position)) MoveToEx(dc, to.position.x, to.position.y, nullptr);
}

}  // namespace

void TakeStates(HDC dc, DcStates& states) {
  const int saved = SaveDC(dc) - 1;
  RestoreDC(dc, -1);
  const int carried = saved < DcStates::kMost - 1 ? saved : DcStates::kMost - 1;
  states.count = carried + 1;
  states.states[carried] = StateOf(dc);
  for (int level = carried; level > 0; --level) {
    RestoreDC(dc, level);
    states.states[level - 1] = StateOf(dc);
  }
}

void GiveStates(HDC dc, DcStates& states) {
  DcState last = InitialState();
  for (int i = 0; i < states.count; ++i) {
    if (i != 0) SaveDC(dc);
    Change(dc, last, states.states[i]);
    if (i != 0) {
      DeleteObject(last.clip);
      DeleteObject(last.meta_clip);
    }
    last = states.states[i];
  }
  DeleteObject(last.clip);
  DeleteObject(last.meta_clip);
  states.count = 0;
}

}  // namespace quillo::app
