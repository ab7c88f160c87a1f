#include "playback/page.h"

namespace quillo::test {
namespace {

int CALLBACK CollectRecord(HDC, HANDLETABLE*, const ENHMETARECORD* record, int, LPARAM out) {
  if (record->iType == EMR_HEADER || record->iType == EMR_EOF) return 1;
  const auto* words = reinterpret_cast<const DWORD*>(record);
  reinterpret_cast<EmfRecords*>(out)->emplace_back(words, words + record->nSize / sizeof(DWORD));
  return 1;
}

EmfRecords ReadRecords(const EnhMetafile& metafile) {
  EmfRecords records;
  EnumEnhMetaFile(nullptr, metafile.Get(), CollectRecord, &records, nullptr);
  return records;
}

}  // namespace

EmfRecords RecordDirect(const std::function<void(HDC)>& draw) {
  MetafileDc dc(CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr));
  draw(dc.Get());
  return ReadRecords(dc.Close());
}

Page::Page(size_t heap_limit)
    : heap_(HeapCreate(0, 0, heap_limit)),
      dc_(CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr)),
      context({.printer = nullptr,
               .heap = heap_,
               .device_settings = &settings,
               .bitmap_limits = kDefaultBitmapLimits,
               .font_directory = L"",
               .events = this}) {
  context.page_dc = dc_.Get();
}

Page::~Page() {
  ReleaseDrawingObjects(context);
  context.seen_fonts.Clear();
  context.run_list.Clear();
  HeapDestroy(heap_);
}

EnhMetafile Page::Close() {
  ReleaseDrawingObjects(context);
  context.page_dc = nullptr;
  return dc_.Close();
}

EmfRecords Page::Records() { return ReadRecords(Close()); }

}  // namespace quillo::test
