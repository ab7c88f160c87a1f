#include "host/engine/page_records.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

#include "base/bytes.h"
#include "base/dib.h"
#include "base/gdi_owners.h"
#include "host/base/file_content.h"
#include "host/emf_format/carried_records.h"

namespace quillo::host {
namespace {

namespace fs = std::filesystem;

// -- Records -----------------------------------------------------------------------------------

/// A record from its double words; fills in the size.
std::vector<std::byte> MakeRecord(const std::vector<uint32_t>& words) {
  const Bytes bytes = std::as_bytes(std::span(words));
  std::vector<std::byte> record(bytes.begin(), bytes.end());
  Store(MutableBytes(record), 4, static_cast<uint32_t>(record.size()));
  return record;
}

/// A packed DIB in memory, as GDI takes it for a pattern.
struct Pattern {
  Bytes info;  // header and colour table
  Bytes bits;
};

/// The pattern of a pen's brush; nothing for coded bits, palette indexes and invalid sizes.
std::optional<Pattern> FindPattern(const LOGBRUSH& brush) {
  const auto* dib = reinterpret_cast<const std::byte*>(brush.lbHatch);
  if (dib == nullptr || LOWORD(brush.lbColor) != DIB_RGB_COLORS) return std::nullopt;
  BITMAPINFOHEADER header;
  std::memcpy(&header, dib, sizeof header);
  constexpr LONG kMaxSide = 1 << 14;
  const int64_t height = std::abs(int64_t{header.biHeight});
  if (header.biSize != sizeof header || header.biWidth < 1 || header.biWidth > kMaxSide ||
      height < 1 || height > kMaxSide || header.biBitCount > 32 || header.biClrUsed > 256 ||
      (header.biCompression != BI_RGB && header.biCompression != BI_BITFIELDS)) {
    return std::nullopt;
  }
  size_t colours = header.biCompression == BI_BITFIELDS ? 3 : 0;
  if (header.biBitCount <= 8 && header.biClrUsed == 0) colours += size_t{1} << header.biBitCount;
  colours += header.biClrUsed;
  const size_t stride = DibStride(static_cast<uint64_t>(header.biWidth), header.biBitCount);
  const size_t info_size = sizeof header + colours * sizeof(RGBQUAD);
  return Pattern{{dib, info_size}, {dib + info_size, stride * static_cast<size_t>(height)}};
}

/// The record of an extended pen, without its object index; empty if it cannot hold the brush.
std::vector<std::byte> MakePenRecord(DWORD style, DWORD width, const LOGBRUSH& brush, DWORD count,
                                     const DWORD* entries) {
  Pattern pattern;
  if (brush.lbStyle == BS_DIBPATTERNPT) {
    const auto found = FindPattern(brush);
    if (!found) return {};
    pattern = *found;
  } else if (brush.lbStyle > BS_HATCHED) {
    return {};
  }
  const DWORD hatch = brush.lbStyle == BS_HATCHED ? static_cast<DWORD>(brush.lbHatch) : 0;
  std::vector<uint32_t> words = {
      EMR_EXTCREATEPEN, 0, 0, 0, 0, 0, 0, style, width, brush.lbStyle, brush.lbColor, hatch, count};
  words.insert(words.end(), entries, entries + count);
  if (count == 0) words.push_back(0);  // the structure ends in one entry
  const auto info_at = static_cast<uint32_t>(words.size() * 4);
  const auto info_size = static_cast<uint32_t>(pattern.info.size());
  const auto bits_size = static_cast<uint32_t>(pattern.bits.size());
  const uint32_t place[] = {info_at, info_size, info_at + info_size, bits_size};
  std::copy(std::begin(place), std::end(place), words.begin() + 3);
  words.resize(words.size() + (info_size + bits_size) / 4);
  const auto bytes = std::as_writable_bytes(std::span(words));
  std::copy(pattern.info.begin(), pattern.info.end(), bytes.begin() + info_at);
  std::copy(pattern.bits.begin(), pattern.bits.end(), bytes.begin() + info_at + info_size);
  return MakeRecord(words);
}

// -- Pages -------------------------------------------------------------------------------------

/// The metafiles in files that are being recorded, on all threads.
class OpenPages {
 public:
  void Add(HDC dc, const wchar_t* path) {
    const std::scoped_lock lock(mutex_);
    pages_[dc] = {path, false};
  }

  /// Puts a record into a page's metafile as a comment; does nothing for any other DC.
  void Carry(HDC dc, const std::vector<std::byte>& record) {
    const std::scoped_lock lock(mutex_);
    const auto page = pages_.find(dc);
    if (page == pages_.end()) return;
    const std::vector<std::byte> data = emf::CarryRecord(record);
    page->second.carries |= GdiComment(dc, static_cast<UINT>(data.size()),
                                       reinterpret_cast<const BYTE*>(data.data())) != FALSE;
  }

  /// Forgets a page; returns the file of one that carries records.
  std::optional<fs::path> Remove(HDC dc) {
    const std::scoped_lock lock(mutex_);
    const auto page = pages_.extract(dc);
    if (page.empty() || !page.mapped().carries) return std::nullopt;
    return std::move(page.mapped().path);
  }

 private:
  struct Page {
    fs::path path;
    bool carries = false;
  };
  std::mutex mutex_;
  std::map<HDC, Page> pages_;
};

OpenPages& Pages() {
  static OpenPages pages;
  return pages;
}

/// Unpacks the records that a closed page file carries. The file is replaced as a whole or, when
/// that fails, left alone.
bool UnpackFile(const fs::path& path) {
  auto content = ReadContent(path);
  if (!content) return false;
  const auto size = emf::UnpackCarriedRecords(*content);
  if (!size) return false;

  fs::path rewritten = path;
  rewritten += L".new";
  std::ofstream out(rewritten, std::ios::binary);
  out.write(reinterpret_cast<const char*>(content->data()), static_cast<std::streamsize>(*size));
  out.close();
  if (out && MoveFileExW(rewritten.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING)) return true;
  DeleteFileW(rewritten.c_str());
  return false;
}

/// Runs `work`. If it runs out of memory or a file fails, the page stays as GDI recorded it.
template <typename Work>
void Try(const Work& work) noexcept {
  try {
    work();
  } catch (const std::exception&) {
  }
}

// -- The calls ---------------------------------------------------------------------------------

/// The extended pen that this thread created last, until it is selected: the recorder writes a pen
/// when it is first selected into a DC.
thread_local struct {
  HGDIOBJ pen = nullptr;
  std::vector<std::byte> record;
} new_pen;

HDC WINAPI CreatePage(HDC reference, LPCWSTR path, const RECT* frame, LPCWSTR description) {
  const HDC dc = CreateEnhMetaFileW(reference, path, frame, description);
  if (dc != nullptr && path != nullptr) Try([&] { Pages().Add(dc, path); });
  return dc;
}

HENHMETAFILE WINAPI ClosePage(HDC dc) {
  std::optional<fs::path> path;
  Try([&] { path = Pages().Remove(dc); });
  HENHMETAFILE metafile = CloseEnhMetaFile(dc);
  if (metafile == nullptr || !path) return metafile;
  DeleteEnhMetaFile(metafile);  // it holds the file open
  bool complete = false;
  Try([&] { complete = UnpackFile(*path); });
  if (!complete) {
    std::fputs("a page's file cannot be rewritten: it lacks pens and state that this GDI drops\n",
               stderr);
  }
  return GetEnhMetaFileW(path->c_str());
}

HPEN WINAPI CreateExtendedPen(DWORD style, DWORD width, const LOGBRUSH* brush, DWORD count,
                              const DWORD* entries) {
  const HPEN pen = ExtCreatePen(style, width, brush, count, entries);
  new_pen.pen = nullptr;
  if (pen == nullptr) return pen;
  Try([&] {
    new_pen.record = MakePenRecord(style, width, *brush, count, entries);
    if (!new_pen.record.empty()) new_pen.pen = pen;
  });
  return pen;
}

HGDIOBJ WINAPI Select(HDC dc, HGDIOBJ object) {
  if (object != nullptr && object == new_pen.pen) {
    new_pen.pen = nullptr;
    Try([&] { Pages().Carry(dc, new_pen.record); });
  }
  return SelectObject(dc, object);
}

/// The record has an integer, as documented and as in spooled pages of Windows.
BOOL WINAPI LimitMiters(HDC dc, FLOAT limit, FLOAT* old) {
  const BOOL done = SetMiterLimit(dc, limit, old);
  if (done && limit >= 1) {
    const auto rounded = static_cast<uint32_t>(std::lround(std::min(limit, 1e6f)));
    Try([&] { Pages().Carry(dc, MakeRecord({EMR_SETMITERLIMIT, 0, rounded})); });
  }
  return done;
}

BOOL WINAPI MoveBrushOrigin(HDC dc, int x, int y, POINT* old) {
  const BOOL done = SetBrushOrgEx(dc, x, y, old);
  if (done) {
    Try([&] {
      Pages().Carry(dc, MakeRecord({EMR_SETBRUSHORGEX, 0, static_cast<uint32_t>(x),
                                    static_cast<uint32_t>(y)}));
    });
  }
  return done;
}

/// GDI's result is ignored: a recorder without the record also fails the call.
BOOL WINAPI AdjustColours(HDC dc, const COLORADJUSTMENT* adjustment) {
  const BOOL done = SetColorAdjustment(dc, adjustment);
  if (adjustment == nullptr || adjustment->caSize != sizeof *adjustment) return done;
  Try([&] {
    std::vector<uint32_t> words = {EMR_SETCOLORADJUSTMENT, 0};
    words.resize(2 + sizeof *adjustment / 4);
    std::memcpy(&words[2], adjustment, sizeof *adjustment);
    Pages().Carry(dc, MakeRecord(words));
  });
  return TRUE;
}

constexpr DWORD kAnyRecord = 0;

struct RecordingCall {
  std::string_view name;
  DWORD record;  // it is needed where this one is dropped
  void* address;
};

const RecordingCall kRecordingCalls[] = {
    {"CreateEnhMetaFileW", kAnyRecord, reinterpret_cast<void*>(&CreatePage)},
    {"CloseEnhMetaFile", kAnyRecord, reinterpret_cast<void*>(&ClosePage)},
    {"ExtCreatePen", EMR_EXTCREATEPEN, reinterpret_cast<void*>(&CreateExtendedPen)},
    {"SelectObject", EMR_EXTCREATEPEN, reinterpret_cast<void*>(&Select)},
    {"SetMiterLimit", EMR_SETMITERLIMIT, reinterpret_cast<void*>(&LimitMiters)},
    {"SetBrushOrgEx", EMR_SETBRUSHORGEX, reinterpret_cast<void*>(&MoveBrushOrigin)},
    {"SetColorAdjustment", EMR_SETCOLORADJUSTMENT, reinterpret_cast<void*>(&AdjustColours)},
};

int CALLBACK TakeType(HDC, HANDLETABLE*, const ENHMETARECORD* record, int, LPARAM dropped) {
  std::erase(*reinterpret_cast<std::vector<DWORD>*>(dropped), record->iType);
  return 1;
}

}  // namespace

std::vector<DWORD> DroppedRecords() {
  MetafileDc dc(CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr));
  const LOGBRUSH brush = {BS_HATCHED, 0, HS_CROSS};
  const Pen pen(ExtCreatePen(PS_GEOMETRIC | PS_DASH, 3, &brush, 0, nullptr));
  { const SelectScope drawn_with(dc.Get(), pen.Get()); }
  SetMiterLimit(dc.Get(), 3, nullptr);
  SetBrushOrgEx(dc.Get(), 1, 2, nullptr);
  constexpr WORD kGamma = 10000, kWhite = 10000;  // neither changes anything
  const COLORADJUSTMENT adjustment = {sizeof adjustment, 0, 0, kGamma, kGamma, kGamma, 0, kWhite,
                                      /*contrast*/ 1,    0, 0, 0};
  SetColorAdjustment(dc.Get(), &adjustment);
  const EnhMetafile metafile = dc.Close();
  if (!metafile) return {};
  std::vector<DWORD> dropped = {EMR_EXTCREATEPEN, EMR_SETMITERLIMIT, EMR_SETBRUSHORGEX,
                                EMR_SETCOLORADJUSTMENT};
  EnumEnhMetaFile(nullptr, metafile.Get(), TakeType, &dropped, nullptr);
  return dropped;
}

void* FindRecordingCall(std::string_view name, const std::vector<DWORD>& dropped) {
  for (const RecordingCall& call : kRecordingCalls) {
    const bool needed = call.record == kAnyRecord
                            ? !dropped.empty()
                            : std::ranges::find(dropped, call.record) != dropped.end();
    if (needed && name == call.name) return call.address;
  }
  return nullptr;
}

}  // namespace quillo::host
