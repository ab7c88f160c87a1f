#include "job/job.h"

#include <new>
#include <strsafe.h>
#include <utility>

#include "base/module_instance.h"
#include "base/text.h"
#include "config/settings/stored_device_mode.h"
#include "config/user/as_user.h"
#include "config/user/user_files.h"
#include "job/connection.h"
#include "job/end_signal.h"
#include "job/notifications.h"
#include "job/page.h"
#include "playback/dispatcher.h"

namespace quillo {

namespace {

constexpr SIZE_T kInitialHeapBytes = 8192;
constexpr wchar_t kFontFolderName[] = L"QLOFNT500";
constexpr wchar_t kResourceModule[] = L"QXRES06X.DLL";

void MakeFontFolder(CQloPrinter& job) {
  wchar_t folder[MAX_PATH];
  if (!UserFilesFolder(folder)) return;
  const AsUser user;
  if (!user) return;
  if (FAILED(StringCchPrintfW(job.font_folder, MAX_PATH, L"%s\\%s", folder, kFontFolderName))) {
    job.font_folder[0] = L'\0';
    return;
  }
  CreateDirectoryW(job.font_folder, nullptr);
  // A link in its place may lead to a folder whose files are somebody else's.
  if (!IsPlainFolder(job.font_folder)) job.font_folder[0] = L'\0';
}

/// Allocates the job's own copy of the settings and reads the printer's stored ones into it: a job
/// has settings as soon as it is open, although REC_DEVMODE usually replaces them at once.
bool ReadDeviceSettings(CQloPrinter& job) {
  job.device_settings =
      static_cast<DeviceMode*>(HeapAlloc(job.heap, HEAP_ZERO_MEMORY, sizeof(DeviceMode)));
  if (job.device_settings == nullptr) return false;
  if (!LoadStoredDeviceMode(job.printer, *job.device_settings)) {
    BuildDefaultDeviceMode(*job.device_settings, nullptr);
  }
  job.playback.job.device_settings = job.device_settings;
  return true;
}

/// Loads the resource module that lies beside the driver; what it needs comes from the system.
Library LoadResources() {
  wchar_t path[MAX_PATH];
  const DWORD length = GetModuleFileNameW(g_module_instance, path, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return Library();
  const auto folder = static_cast<size_t>(FileNamePart(path) - path);
  if (FAILED(StringCchCopyW(path + folder, MAX_PATH - folder, kResourceModule))) return Library();
  return Library(LoadLibraryExW(path, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
}

/// Releases what the job holds, each part before what it depends on; the heap goes last.
void DestroyJob(CQloPrinter* job) {
  ClosePageMetafile(*job);
  DropPageFile(*job);

  HeapFree(job->heap, 0, std::exchange(job->device_settings, nullptr));
  ReleaseDrawingObjects(job->playback);
  job->playback.seen_fonts.Clear();
  job->playback.run_list.Clear();

  NotifyJobEnd(*job);
  job->client.Reset();
  if (SUCCEEDED(job->com_result)) CoUninitialize();

  const HANDLE heap = job->heap;
  Library resources = std::move(job->resources);
  job->~CQloPrinter();
  HeapFree(heap, 0, job);
  resources.Reset();
  HeapDestroy(heap);
}

/// The result of refusing a page: false with a last error, the system's where it left one.
bool Refuse() {
  if (GetLastError() == ERROR_SUCCESS) SetLastError(ERROR_CAN_NOT_COMPLETE);
  return false;
}

}  // namespace

void JobEvents::JobFailed() { job_.state |= kJobFailed; }

HRESULT JobEvents::FontEmbedded(const wchar_t* path) { return NotifyEmbeddedFont(job_, path); }

CQloPrinter::CQloPrinter(HANDLE private_heap, HANDLE job_printer, DWORD id)
    : printer(job_printer),
      job_id(id),
      playback(JobLink{.printer = job_printer,
                       .heap = private_heap,
                       .device_settings = nullptr,
                       .bitmap_limits = kDefaultBitmapLimits,
                       .font_directory = font_folder,
                       .events = &events}),
      heap(private_heap),
      record_buffer(private_heap) {}

CQloPrinter* OpenJob(HANDLE printer, DWORD job_id) {
  const HRESULT com_result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  const HANDLE heap = HeapCreate(0, kInitialHeapBytes, 0);
  void* block = heap != nullptr ? HeapAlloc(heap, HEAP_ZERO_MEMORY, sizeof(CQloPrinter)) : nullptr;
  if (block == nullptr) {
    if (heap != nullptr) HeapDestroy(heap);
    if (SUCCEEDED(com_result)) CoUninitialize();
    return nullptr;
  }
  auto* job = new (block) CQloPrinter(heap, printer, job_id);
  job->com_result = com_result;

  MakeFontFolder(*job);
  if (FAILED(OpenConnection(job_id, job->client))) job->state |= kClientNotConnected;
  if (!ReadDeviceSettings(*job)) {
    // The client has not heard of this job yet, so it gets no job-end notification either.
    job->client.Reset();
    DestroyJob(job);
    return nullptr;
  }
  NotifyJobStart(*job);
  job->resources = LoadResources();
  return job;
}

bool StartPage(CQloPrinter* job) {
  if (job == nullptr || job->signature != kJobSignature) return Refuse();
  if ((job->state & (kJobValid | kJobFailed)) != kJobValid) return Refuse();
  if ((job->state & kClientNotConnected) != 0) {
    // Retried once: when it fails, the next page goes ahead without a client.
    job->state &= ~kClientNotConnected;
    if (FAILED(OpenConnection(job->job_id, job->client))) return Refuse();
    NotifyJobStart(*job);
  }
  ++job->pages_started;
  if (BeginPage(*job)) return true;
  job->state |= kJobFailed;
  return Refuse();
}

bool SendPage(CQloPrinter* job) {
  if (job == nullptr) return Refuse();
  job->record_buffer.Reset();
  job->lost_bytes = 0;
  ++job->pages_sent;
  return FinishPage(*job) || Refuse();
}

void SignalEndAndDestroy(CQloPrinter* job) {
  if (job == nullptr) return;
  // Compatibility: the event is set before the last metafile is closed and before the client hears
  // of the job's end; clients wait in this order.
  SignalJobEnd(job->job_id);
  DestroyJob(job);
}

}  // namespace quillo
