#include "playback/dispatcher.h"

#include <array>
#include <iterator>

#include "capture/records/types.h"
#include "imaging/storage/section.h"
#include "playback/actions.h"
#include "playback/current_objects.h"
#include "playback/gdi_actions.h"

namespace quillo {
namespace {

using namespace records;

/// The action of every record, in the order of the record list.
constexpr struct {
  RecordType type;
  PlaybackAction action;
} kActions[] = {
    {REC_DIBHEADER, PlayDibHeader},
    {REC_PAGEBITMAP, PlayPageBitmap},
    {REC_DEVMODE, PlayDevMode},
    {REC_CREATEPEN, PlayCreatePen},
    {REC_EXTCREATEPEN, PlayExtCreatePen},
    {REC_CREATEBRUSH, PlayCreateBrush},
    {REC_BEGINPATH, PlayCall<BeginPath>},
    {REC_ENDPATH, PlayCall<EndPath>},
    {REC_STROKEPATH, PlayCall<StrokePath>},
    {REC_FILLPATH, PlayCall<FillPath>},
    {REC_CLOSEFIGURE, PlayCall<CloseFigure>},
    {REC_STROKEANDFILLPATH, PlayCall<StrokeAndFillPath>},
    {REC_MOVETO, PlayMoveTo},
    {REC_LINETO, PlayLineTo},
    {REC_POLYBEZIER, PlayPoints<DWORD, PolyBezier>},
    {REC_POLYBEZIERTO, PlayPoints<DWORD, PolyBezierTo>},
    {REC_POLYLINE, PlayPoints<int, Polyline>},
    {REC_POLYLINETO, PlayPoints<DWORD, PolylineTo>},
    {REC_SETBKCOLOR, PlayValue<COLORREF, SetBkColor>},
    {REC_SETBKMODE, PlayValue<int32_t, SetBkMode>},
    {REC_ELLIPSE, PlayShape<Ellipse>},
    {REC_RECTANGLE, PlayShape<Rectangle>},
    {REC_SELECTCLIPPATH, PlaySelectClipPath},
    {REC_SAVEDC, PlayCall<SaveDC>},
    {REC_RESTOREDC, PlayRestoreDc},
    {REC_SETWORLDTRANSFORM, PlaySetWorldTransform},
    {REC_SETMITERLIMIT, PlaySetMiterLimit},
    {REC_SETPOLYFILLMODE, PlayValue<int32_t, SetPolyFillMode>},
    {REC_SETBRUSHORG, PlaySetBrushOrg},
    {REC_SETROP2, PlayValue<int32_t, SetROP2>},
    {REC_FILLRECT, PlayFillRect},
    {REC_MASKBLT, PlayMaskBlt},
    {REC_BITBLT, PlayBitBlt},
    {REC_PATBLT, PlayPatBlt},
    {REC_CREATEFONT, PlayCreateFont},
    {REC_SETTEXTCOLOR, PlayValue<COLORREF, SetTextColor>},
    {REC_EXTTEXTOUT, PlayExtTextOut},
    {REC_SETDIBITSTODEVICE, PlaySetDibitsToDevice},
    {REC_STRETCHBLT, PlayStretchBlt},
    {REC_RESETWORLDTRANSFORM, PlayResetWorldTransform},
    {REC_BEGINGLYPHRUNS, PlayNothing},
    {REC_ENDGLYPHRUNS, PlayNothing},
    {REC_TEXTEXTRA, PlayNothing},
    {REC_SETTEXTALIGN, PlayValue<uint32_t, SetTextAlign>},
    {REC_PAGEVALUE, PlayPageValue},
    {REC_TEXTRUN, PlayTextRun},
    {REC_ALPHABLEND, PlayAlphaBlend},
};

constexpr bool EveryRecordHasItsAction() {
  if (std::size(kActions) != kRecordCount) return false;
  for (uint32_t i = 0; i < kRecordCount; ++i) {
    if (kActions[i].type != kRecordInfos[i].type) return false;
  }
  return true;
}
static_assert(EveryRecordHasItsAction());

struct DispatchRow {
  PlaybackAction action;  // null = the type is skipped
  uint32_t payload_size;  // smallest payload that the action gets
  PayloadRule rule;
};

using DispatchTable = std::array<DispatchRow, kLastPlayedType - kFirstPlayedType + 1>;

constexpr DispatchTable MakeDispatchTable() {
  DispatchTable table{};
  for (uint32_t i = 0; i < kRecordCount; ++i) {
    const RecordInfo& info = kRecordInfos[i];
    table[info.type - kFirstPlayedType] = {kActions[i].action, info.payload_size, info.rule};
  }
  return table;
}

constexpr DispatchTable kTable = MakeDispatchTable();

}  // namespace

int32_t DispatchRecord(PlaybackContext& context, uint32_t type, Bytes payload) {
  const uint32_t index = type - kFirstPlayedType;
  if (index >= kTable.size()) return 0;
  const DispatchRow& row = kTable[index];
  if (row.action == nullptr) return 0;
  if (row.rule == kNeedsPayload && payload.size() < row.payload_size) return 0;
  return row.action(context, payload);
}

void ReleaseDrawingObjects(PlaybackContext& context) {
  ReleasePen(context);
  ReleaseFont(context);
  ReleaseBrush(context);
}

void EndPagePlayback(PlaybackContext& context) {
  ReleaseDrawingObjects(context);
  imaging::DropSpareSection();
}

}  // namespace quillo
