#include "job/document_end.h"

#include "base/system_owners.h"
#include "config/user/as_user.h"
#include "config/user/user_files.h"
#include "job/compound_file.h"
#include "job/job_path.h"
#include "job/notifications.h"
#include "job/page.h"

namespace quillo {

namespace {

constexpr wchar_t kFontsStream[] = L"FONTS OPTIONS";

/// The LOGFONTW of every font that the job used, in order of first use.
HeapBlock CollectFonts(const CQloPrinter& job) {
  HeapBlock fonts(size_t{job.playback.seen_fonts.Count()} * sizeof(LOGFONTW), job.heap);
  if (!fonts) return fonts;
  auto* out = fonts.As<LOGFONTW>();
  job.playback.seen_fonts.ForEach([&out](const SeenFont& font) { *out++ = font.key; });
  return fonts;
}

bool WriteFontsFile(const wchar_t* path, const HeapBlock& fonts, uint32_t count) {
  const AsUser user;
  if (!user || !IsPlainFileOrFree(path)) return false;
  ComPtr<IStorage> storage;
  const auto size = static_cast<ULONG>(count * sizeof(LOGFONTW));
  return SUCCEEDED(WriteCompoundFile(path, kFontsStream, fonts.Get(), size, storage));
}

/// Writes the font-options file, shows it to the client and deletes it: the client reads it during
/// the call.
void DeliverFontsFile(const CQloPrinter& job) {
  const HeapBlock fonts = CollectFonts(job);
  wchar_t folder[MAX_PATH];
  JobPath path;
  if (!fonts || !UserFilesFolder(folder) ||
      !path.Format(L"%s\\%d.fpt", folder, static_cast<int>(job.job_id))) {
    return;
  }
  if (!WriteFontsFile(path.Text(), fonts, job.playback.seen_fonts.Count())) return;
  NotifyFontsFile(job, path.Text());
  const AsUser user;
  if (user) DeleteFileW(path.Text());
}

}  // namespace

void EndDocument(CQloPrinter* job) {
  if (job == nullptr || job->signature != kJobSignature || (job->state & kJobValid) == 0) return;
  ClosePageMetafile(*job);
  DropPageFile(*job);
  DeliverFontsFile(*job);
  NotifyDocumentEnd(*job);
  job->state |= kDocumentEnded;
}

}  // namespace quillo
