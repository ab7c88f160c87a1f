#include "host/app_recorder/wine_gdi.h"

#include <cstdint>
#include <cstring>
#include <winternl.h>

extern "C" NTSYSAPI PPEB NTAPI RtlGetCurrentPeb();

namespace quillo::app {

namespace {

/// GDI's recorder.
struct Recorder {
  ENHMETAHEADER* metafile;  // a block of the process heap: the records so far
  struct DcAttributes* dc;  // that it belongs to
  UINT handle_room;
  UINT handle_count;
  HGDIOBJ* handles;
  HANDLE file;
  HBRUSH dc_brush;
  HPEN dc_pen;
  BOOL in_path;
};
constexpr UINT kFirstHandleRoom = 20;

/// The part of a DC that lies in the program's own memory.
struct DcAttributes {
  UINT handle;
  LONG disabled;
  int save_level;
  COLORREF background_colour, brush_colour, pen_colour, text_colour;
  uint8_t unused[124];
  RECTL metafile_bounds;
  uint64_t recorder;
};
static_assert(offsetof(DcAttributes, text_colour) == 24);
static_assert(offsetof(DcAttributes, metafile_bounds) == 152);
static_assert(offsetof(DcAttributes, recorder) == 168);

/// An entry of the table of GDI handles.
struct HandleEntry {
  uint64_t object;
  uint32_t owner;
  uint16_t unique;
  uint8_t type;
  uint8_t flags;
  uint64_t user_pointer;
};
static_assert(sizeof(HandleEntry) == 24);
constexpr size_t kPebHandleTable = 0xF8;  // the table's address, in the process environment block

bool IsReadable(const void* data, size_t size) {
  MEMORY_BASIC_INFORMATION block;
  const auto* at = static_cast<const std::byte*>(data);
  if (at == nullptr || VirtualQuery(at, &block, sizeof block) == 0) return false;
  const auto offset = static_cast<size_t>(at - static_cast<std::byte*>(block.BaseAddress));
  return block.State == MEM_COMMIT && (block.Protect & (PAGE_NOACCESS | PAGE_GUARD)) == 0 &&
         size <= block.RegionSize - offset;
}

/// Null when they cannot be read.
DcAttributes* AttributesOf(HDC dc) {
  const auto* environment = reinterpret_cast<const std::byte*>(RtlGetCurrentPeb());
  uintptr_t table = 0;
  std::memcpy(&table, environment + kPebHandleTable, sizeof table);
  const auto* entry =
      reinterpret_cast<const HandleEntry*>(table) + LOWORD(reinterpret_cast<uintptr_t>(dc));
  if (table == 0 || !IsReadable(entry, sizeof *entry)) return nullptr;
  auto* attributes = reinterpret_cast<DcAttributes*>(entry->user_pointer);
  const bool fits =
      IsReadable(attributes, sizeof *attributes) && attributes->handle == HandleToULong(dc);
  return fits ? attributes : nullptr;
}

/// Null when it has none.
Recorder* RecorderOf(const DcAttributes* attributes) {
  if (attributes == nullptr) return nullptr;
  auto* recorder = reinterpret_cast<Recorder*>(attributes->recorder);
  return IsReadable(recorder, sizeof *recorder) ? recorder : nullptr;
}

bool HasFreshRecorder(HDC dc) {
  DcAttributes* attributes = AttributesOf(dc);
  const Recorder* recorder = RecorderOf(attributes);
  if (recorder == nullptr || recorder->dc != attributes ||
      recorder->handle_room != kFirstHandleRoom || recorder->handle_count != 1 ||
      recorder->in_path || !IsReadable(recorder->metafile, sizeof(ENHMETAHEADER)) ||
      recorder->metafile->iType != EMR_HEADER ||
      recorder->metafile->dSignature != ENHMETA_SIGNATURE || recorder->metafile->nRecords != 1) {
    return false;
  }
  constexpr COLORREF kSomeColour = 0x123456;
  SetTextColor(dc, kSomeColour);
  MoveToEx(dc, 1, 2, nullptr);
  LineTo(dc, 30, 40);
  return attributes->text_colour == kSomeColour && attributes->save_level == 0 &&
         attributes->metafile_bounds.bottom == 40 && recorder->metafile->nRecords == 4;
}

}  // namespace

void PushDevice(PhysicalDevice** stack, PhysicalDevice* device, const DriverTable* functions) {
  device->functions = functions;
  device->next = *stack;
  device->dc = (*stack)->dc;
  *stack = device;
}

int NextDeviceCaps(PhysicalDevice* device, int capability) {
  using Function = int(PhysicalDevice*, int);
  PhysicalDevice* next = device->next;
  while (next->functions->functions[kGetDeviceCaps] == nullptr) next = next->next;
  return reinterpret_cast<Function*>(const_cast<void*>(next->functions->functions[kGetDeviceCaps]))(
      next, capability);
}

bool LayoutsFit() {
  const HDC dc = CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr);
  if (dc == nullptr) return false;
  const bool fit = HasFreshRecorder(dc);
  DeleteEnhMetaFile(CloseEnhMetaFile(dc));
  return fit;
}

bool StartRecording(HDC dc, const RECT& frame) {
  const HDC lender = CreateEnhMetaFileW(dc, nullptr, &frame, nullptr);
  DcAttributes* from = AttributesOf(lender);
  DcAttributes* to = AttributesOf(dc);
  Recorder* recorder = RecorderOf(from);
  const bool started = recorder != nullptr && to != nullptr && to->recorder == 0;
  if (started) {
    recorder->dc = to;
    to->recorder = from->recorder;
    to->metafile_bounds = from->metafile_bounds;
    from->recorder = 0;
  }
  DeleteDC(lender);
  return started;
}

HENHMETAFILE StopRecording(HDC dc) {
  DcAttributes* from = AttributesOf(dc);
  const Recorder* recorder = RecorderOf(from);
  if (recorder == nullptr) return nullptr;
  const HDC closer = CreateCompatibleDC(dc);  // CloseEnhMetaFile ends it
  DcAttributes* to = AttributesOf(closer);
  if (to == nullptr) return nullptr;
  // The recorder still has the handle of its own DC, and that DC still has the recorder: objects
  // selected into it are released by that handle, and what it deletes of its own is recorded.
  to->recorder = from->recorder;
  to->metafile_bounds = from->metafile_bounds;
  const HENHMETAFILE metafile = CloseEnhMetaFile(closer);
  from->recorder = 0;
  return metafile;
}

bool IsRecordingPath(HDC dc) {
  const Recorder* recorder = RecorderOf(AttributesOf(dc));
  return recorder != nullptr && recorder->in_path;
}

std::span<std::byte> LastRecords(HDC dc, size_t size) {
  const Recorder* recorder = RecorderOf(AttributesOf(dc));
  if (recorder == nullptr) return {};
  const size_t used = recorder->metafile->nBytes;
  if (used < sizeof(ENHMETAHEADER) + size) return {};
  return {reinterpret_cast<std::byte*>(recorder->metafile) + used - size, size};
}

bool ReplaceLastRecords(HDC dc, size_t old_size, std::span<const std::byte> records) {
  Recorder* recorder = RecorderOf(AttributesOf(dc));
  if (recorder == nullptr) return false;
  const size_t kept = recorder->metafile->nBytes - old_size;
  const size_t size = kept + records.size();
  if (size > HeapSize(GetProcessHeap(), 0, recorder->metafile)) {
    void* grown = HeapReAlloc(GetProcessHeap(), 0, recorder->metafile, size + size / 2);
    if (grown == nullptr) return false;
    recorder->metafile = static_cast<ENHMETAHEADER*>(grown);
  }
  std::memcpy(reinterpret_cast<std::byte*>(recorder->metafile) + kept, records.data(),
              records.size());
  recorder->metafile->nBytes = static_cast<DWORD>(size);
  return true;
}

}  // namespace quillo::app
