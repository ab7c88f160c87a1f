#include "base/ddi.h"

#include "capture/builders.h"
#include "capture/writer.h"
#include "driver/callbacks.h"
#include "driver/device/device.h"
#include "job/document_end.h"
#include "job/job.h"

namespace quillo {

BOOL APIENTRY DrvStartDoc(SURFOBJ* surface, LPWSTR /*document*/, DWORD job_id) noexcept {
  DEVICE_PDEV* device = FindDevice(surface);
  if (device == nullptr) return FALSE;
  // A document that continues on a reset device keeps its job; after DrvEndDoc a new one is opened.
  if ((device->flags & kDocumentOpen) == 0 || device->job_ended != 0) {
    device->job = OpenJob(device->printer, job_id);
    device->job_ended = 0;
  }

  // When the job could not be opened, the page callbacks fail.
  const records::Point offset = {device->physical_offset.x, device->physical_offset.y};
  EmitRecordWhole(*device, records::REC_DEVMODE, &device->mode, sizeof device->mode);
  EmitRecordWhole(*device, records::REC_PAGEVALUE, &offset, sizeof offset);
  device->flags |= kDocumentOpen;
  return TRUE;
}

BOOL APIENTRY DrvStartPage(SURFOBJ* surface) noexcept {
  const DEVICE_PDEV* device = FindDevice(surface);
  return device != nullptr && StartPage(LivingJob(*device));
}

BOOL APIENTRY DrvSendPage(SURFOBJ* surface) noexcept {
  const DEVICE_PDEV* device = FindDevice(surface);
  DropSparePayload();
  return device != nullptr && SendPage(LivingJob(*device));
}

BOOL APIENTRY DrvEndDoc(SURFOBJ* surface, FLONG /*flags*/) noexcept {
  DEVICE_PDEV* device = FindDevice(surface);
  if (device == nullptr) return TRUE;
  DropSparePayload();
  // An aborted document ends the same way.
  EndDocument(LivingJob(*device));
  SignalEndAndDestroy(LivingJob(*device));
  device->job_ended = 1;
  return TRUE;
}

}  // namespace quillo
