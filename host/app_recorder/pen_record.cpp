#include "host/app_recorder/pen_record.h"

#include <cstdint>
#include <cstring>
#include <span>

#include "host/app_recorder/wine_gdi.h"

namespace quillo::app {

namespace {

constexpr DWORD kMostDashes = 16;  // GDI's own limit

/// EMR_EXTCREATEPEN; on 64-bit systems the header's has another hatch.
struct ExtendedPenRecord {
  EMR emr;
  DWORD index;
  DWORD bitmap_offset, bitmap_bytes, bits_offset, bits_bytes;  // none
  DWORD style, width, brush_style;
  COLORREF colour;
  uint32_t hatch;
  DWORD dash_count;
};

struct NewPen {
  EMRCREATEPEN create;
  EMRSELECTOBJECT select;
};

}  // namespace

void MendPenRecord(HDC dc, HPEN pen) {
  union {
    EXTLOGPEN description;
    std::byte room[sizeof(EXTLOGPEN) + kMostDashes * sizeof(DWORD)];
  };
  if (GetObjectType(pen) != OBJ_EXTPEN || GetObjectW(pen, 0, nullptr) > int{sizeof room} ||
      GetObjectW(pen, sizeof room, room) == 0 || description.elpBrushStyle > BS_HATCHED ||
      description.elpNumEntries > kMostDashes) {
    return;
  }
  const std::span<std::byte> last = LastRecords(dc, sizeof(NewPen));
  NewPen made;
  if (last.empty()) return;
  std::memcpy(&made, last.data(), sizeof made);
  if (made.create.emr.iType != EMR_CREATEPEN || made.create.emr.nSize != sizeof made.create ||
      made.select.emr.iType != EMR_SELECTOBJECT || made.select.ihObject != made.create.ihPen) {
    return;
  }
  const size_t dash_bytes = description.elpNumEntries * sizeof(DWORD);
  const ExtendedPenRecord record = {
      {EMR_EXTCREATEPEN, static_cast<DWORD>(sizeof(ExtendedPenRecord) + dash_bytes)},
      made.create.ihPen,
      0,
      0,
      0,
      0,
      description.elpPenStyle,
      description.elpWidth,
      description.elpBrushStyle,
      description.elpColor,
      static_cast<uint32_t>(description.elpHatch),
      description.elpNumEntries};
  std::byte records[sizeof record + kMostDashes * sizeof(DWORD) + sizeof made.select];
  std::memcpy(records, &record, sizeof record);
  std::memcpy(records + sizeof record, description.elpStyleEntry, dash_bytes);
  std::memcpy(records + record.emr.nSize, &made.select, sizeof made.select);
  ReplaceLastRecords(dc, sizeof made,
                     std::span(records).first(record.emr.nSize + sizeof made.select));
}

}  // namespace quillo::app
