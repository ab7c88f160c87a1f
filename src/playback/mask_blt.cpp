#include "base/windows.h"

#include "base/gdi_owners.h"
#include "capture/records/packed_dib.h"
#include "config/settings/printer_dc.h"
#include "playback/actions.h"
#include "playback/rectangles.h"
#include "playback/source_bitmap.h"

namespace quillo {
namespace {

using namespace records;

// The mask as a bitmap of the job's printer.
// Compatibility: black and white replace the two colours that the mask carries, and MaskBlt gets
// the ROP4 of the record unchanged; kept for pages.
Bitmap CreateMask(const JobLink& job, Bytes payload, uint32_t offset) {
  auto dib = LocatePackedDib(payload, offset);
  if (!dib || dib->info.header.bit_count != 1) return Bitmap();
  dib->info.colours[0] = 0x00000000;
  dib->info.colours[1] = 0xFFFFFFFF;
  const auto* info = reinterpret_cast<const BITMAPINFO*>(&dib->info);

  const DEVMODEW* settings = job.device_settings != nullptr ? &job.device_settings->pub : nullptr;
  const CreatedDc printer_dc = CreatePrinterDc(job.printer, settings);
  if (!printer_dc) return Bitmap();
  return Bitmap(CreateDIBitmap(printer_dc.Get(), &info->bmiHeader, CBM_INIT, dib->bits.data(), info,
                               DIB_RGB_COLORS));
}

}  // namespace

int32_t PlayMaskBlt(PlaybackContext& context, Bytes payload) {
  const auto record = LoadOrZero<MaskBltPayload>(payload);
  const Bitmap mask = CreateMask(context.job, payload, record.mask_offset);
  SourceBitmap source;
  if (!source.Load(context, payload, record.source_offset)) return 0;
  const HDC source_dc = source.Present();
  if (!mask || source_dc == nullptr) return 0;

  const Rect& to = record.destination;
  const Point& from = record.source_origin;
  return MaskBlt(context.page_dc, to.left, to.top, Width(to), Height(to), source_dc, from.x, from.y,
                 mask.Get(), record.mask_origin.x, record.mask_origin.y, record.rop4);
}

}  // namespace quillo
