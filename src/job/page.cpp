#include "job/page.h"

#include "base/gdi_owners.h"
#include "config/papers/paper_geometry.h"
#include "config/settings/printer_dc.h"
#include "config/user/as_user.h"
#include "config/user/user_files.h"
#include "job/notifications.h"
#include "job/text_runs.h"
#include "playback/dispatcher.h"

namespace quillo {

namespace {

constexpr wchar_t kPageFilePrefix[] = L"VXPrinter";

/// Application and title, each ended by a null character.
constexpr wchar_t kDescription[] = L"VORNIX Quillo\0Image\0";

// Fixed arguments of the page object.
constexpr LONG kPageFileKind = 1;
constexpr LONG kPageMode = 3;

/// Makes a new, empty file in the user's TEMP folder. The path is empty on failure.
void CreatePageFile(CQloPrinter& job) {
  wchar_t folder[MAX_PATH];
  job.page_path[0] = L'\0';
  if (!UserFilesFolder(folder)) return;
  const AsUser user;
  if (!user) return;
  if (GetTempFileNameW(folder, kPageFilePrefix, 0, job.page_path) == 0) job.page_path[0] = L'\0';
}

/// Describes the page to its object; stops at the first call that fails.
void DescribePage(IQuilloPage& page, const wchar_t* path, LONG dpi, const Extent& sheet) {
  const Bstr file(SysAllocString(path));
  if (!file) return;
  if (FAILED(page.SetFile(file.Get(), kPageFileKind))) return;
  if (FAILED(page.SetResolutionX(dpi))) return;
  if (FAILED(page.SetResolutionY(dpi))) return;
  if (FAILED(page.SetWidth(sheet.width))) return;
  if (FAILED(page.SetHeight(sheet.height))) return;
  page.SetMode(kPageMode);
}

/// A metafile on the job's own printer; GDI takes the display when there is no DC for the printer.
/// `sheet` in tenths of a millimetre.
MetafileDc CreatePageMetafile(const CQloPrinter& job, const Extent& sheet) {
  if (job.page_path[0] == L'\0') return MetafileDc();
  const CreatedDc reference = CreatePrinterDc(job.printer, &job.device_settings->pub);
  // In hundredths of a millimetre.
  const RECT frame = {0, 0, sheet.width * 10, sheet.height * 10};
  // The client knows the path by now.
  const AsUser user;
  if (!user || !IsPlainFileOrFree(job.page_path)) return MetafileDc();
  return MetafileDc(CreateEnhMetaFileW(reference.Get(), job.page_path, &frame, kDescription));
}

}  // namespace

bool BeginPage(CQloPrinter& job) {
  // A page that was begun and never sent is dropped.
  ClosePageMetafile(job);
  DropPageFile(job);
  CreatePageFile(job);
  job.page_object = OpenClientPage(job);

  DeviceMode& settings = *job.device_settings;
  UseInchMargins(settings);
  const Sheet sheet = ResolveSheet(settings);
  if (job.page_object) {
    DescribePage(*job.page_object.Get(), job.page_path, ResolutionOf(settings.pub),
                 sheet.tenths.size);
  }

  MetafileDc metafile = CreatePageMetafile(job, sheet.tenths.size);
  if (!metafile) {
    const DWORD last_error = GetLastError();
    NotifyPageError(job);
    DropPageFile(job);
    SetLastError(last_error);
    return false;
  }
  job.playback.page_dc = metafile.Detach();
  job.playback.run_length_pixels_left = kRunLengthPixelsPerPage;

  // Records use coordinates of the printable area; the page is the whole sheet.
  const Margins& margins = sheet.pixels.margins;
  SetViewportOrgEx(job.playback.page_dc, margins.left, margins.top, nullptr);
  job.state |= kPageFilePending;
  return true;
}

bool ClosePageMetafile(CQloPrinter& job) {
  if (job.playback.page_dc == nullptr) return false;
  EndPagePlayback(job.playback);
  MetafileDc metafile(std::exchange(job.playback.page_dc, nullptr));
  const AsUser user;  // GDI may open the file again
  if (metafile.Close()) return true;
  job.state |= kJobFailed;
  return false;
}

bool FinishPage(CQloPrinter& job) {
  const bool closed = ClosePageMetafile(job);
  if (!closed) NotifyPageError(job);
  if (closed && (job.state & kJobValid) != 0 && (job.state & kPageFilePending) != 0) {
    if (job.page_object) HandOverTextRuns(*job.page_object.Get(), job.playback.run_list);
    NotifyPage(job, job.page_object.Get());
  }
  DropPageFile(job);
  return closed;
}

void DropPageFile(CQloPrinter& job) {
  job.page_object.Reset();
  if (job.page_path[0] != L'\0') {
    const AsUser user;
    if (user) DeleteFileW(job.page_path);
  }
  job.page_path[0] = L'\0';
  job.state &= ~kPageFilePending;
  job.playback.run_list.Clear();
}

}  // namespace quillo
