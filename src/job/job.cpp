#include "job/job.h"

#include <new>

#include "base/module_instance.h"
#include "config/printer_settings.h"
#include "config/user_paths.h"
#include "fonts/font_map.h"
#include "job/connection.h"
#include "job/end_signal.h"
#include "job/notifications.h"
#include "job/page.h"
#include "playback/bitmap_limits.h"
#include "playback/dispatcher.h"
#include "playback/pens_brushes.h"

namespace quillo {

namespace {

constexpr SIZE_T kInitialHeapBytes = 8192;
constexpr wchar_t kFontFolderName[] = L"QLOFNT500";
constexpr wchar_t kResourceModule[] = L"QXRES06X.DLL";

HRESULT AnnounceFont(void* job, const wchar_t* path) {
  return NotifyEmbeddedFont(*static_cast<const CQloPrinter*>(job), path);
}

void MakeFontFolder(CQloPrinter& job) {
  wchar_t folder[MAX_PATH];
  if (UserTempFolder(folder, MAX_PATH) == 0) return;
  if (FAILED(StringCchPrintfW(job.font_folder, MAX_PATH, L"%s\\%s", folder, kFontFolderName))) {
    job.font_folder[0] = L'\0';
    return;
  }
  CreateDirectoryW(job.font_folder, nullptr);
}

/// The job's own copy of the settings: the printer's stored ones until REC_DEVMODE brings the
/// device's.
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

/// Loads the resource module that lies beside the driver.
Library LoadResources() {
  wchar_t path[MAX_PATH];
  const DWORD length = GetModuleFileNameW(g_module_instance, path, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return Library();
  wchar_t* name = path + length;
  while (name > path && name[-1] != L'\\') --name;
  const auto room = static_cast<size_t>(path + MAX_PATH - name);
  if (FAILED(StringCchCopyW(name, room, kResourceModule))) return Library();
  return Library(LoadLibraryW(path));
}

/// Opens the connection and announces the job on it.
bool ConnectClient(CQloPrinter& job) {
  if (FAILED(OpenConnection(job.job_id, job.client))) return false;
  NotifyJobStart(job);
  return true;
}

void LeaveCom(HRESULT entered) {
  if (SUCCEEDED(entered)) CoUninitialize();
}

/// Ends the object; its heap takes every block with it.
void DestroyHeap(CQloPrinter* job) {
  const HANDLE heap = job->heap;
  delete job->playback.glyph_translator;
  job->~CQloPrinter();
  HeapDestroy(heap);
}

}  // namespace
