#include <cstring>

#include "ui/client_start.h"
#include "ui/printer_interface.h"

// The steps of a document in the application's process.
namespace quillo {

namespace {

/// Tells the spooler which events are wanted: the start of a job, once its number is known.
int ListEvents(ULONG size, void* out) {
  if (out == nullptr || size < sizeof(DOCEVENT_FILTER)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return DOCUMENTEVENT_FAILURE;
  }
  auto& filter = *static_cast<DOCEVENT_FILTER*>(out);
  filter.cElementsNeeded = 1;
  filter.cElementsReturned = filter.cElementsAllocated >= 1 ? 1 : 0;
  if (filter.cElementsReturned != 0) filter.aDocEventCall[0] = DOCUMENTEVENT_STARTDOCPOST;
  return DOCUMENTEVENT_SUCCESS;
}

/// A job whose client cannot be started fails here, where the application can say so: its pages
/// would reach nobody.
int StartJob(ULONG size, const void* in) {
  LONG job_id = 0;
  if (in != nullptr && size >= sizeof job_id) std::memcpy(&job_id, in, sizeof job_id);
  if (job_id <= 0) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return DOCUMENTEVENT_FAILURE;
  }
  return StartClient(static_cast<DWORD>(job_id)) ? DOCUMENTEVENT_SUCCESS : DOCUMENTEVENT_FAILURE;
}

}  // namespace
}  // namespace quillo

extern "C" int WINAPI DrvDocumentEvent(HANDLE /*printer*/, HDC /*dc*/, int event, ULONG in_size,
                                       PVOID in, ULONG out_size, PVOID out) {
  switch (DOCUMENTEVENT_EVENT(event)) {
    case DOCUMENTEVENT_QUERYFILTER:
      return quillo::ListEvents(out_size, out);
    case DOCUMENTEVENT_STARTDOCPOST:
      return quillo::StartJob(in_size, in);
    default:
      return DOCUMENTEVENT_UNSUPPORTED;
  }
}
