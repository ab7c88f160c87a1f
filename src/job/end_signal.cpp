#include "job/end_signal.h"

#include "base/system_owners.h"

namespace quillo {

namespace {

/// Of this driver generation's interface; part of the event's name.
constexpr int kInterfaceVersion = 5;

}  // namespace

void SignalJobEnd(DWORD job_id) {
  // Compatibility: the blank before "version" is part of the name that clients wait for.
  wchar_t name[64];
  wsprintfW(name, L"Global\\VORNIXQUILLO5_JOB_END%d version%d", static_cast<int>(job_id),
            kInterfaceVersion);
  const KernelHandle event(CreateEventW(nullptr, TRUE, FALSE, name));
  if (event) SetEvent(event.Get());
}

}  // namespace quillo
