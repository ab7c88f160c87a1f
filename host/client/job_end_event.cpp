#include "host/client/job_end_event.h"

#include "host/base/failure.h"

namespace quillo::host {

KernelHandle MakeJobEndEvent(DWORD job_id) {
  // Compatibility: the driver's name for it has a blank before "version", which clients rely on.
  wchar_t name[80];
  wsprintfW(name, L"Global\\VORNIXQUILLO5_JOB_END%d version%d", job_id, 5);
  KernelHandle event(CreateEventW(nullptr, TRUE, FALSE, name));
  if (!event) throw SystemFailure("cannot make the job-end event", "CreateEvent");
  return event;
}

}  // namespace quillo::host
