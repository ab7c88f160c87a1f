#pragma once

#include "base/windows.h"

#include <cstddef>
#include <cstdint>
#include <memory>

#include "capture/records/packed_dib.h"
#include "capture/records/payloads.h"
#include "config/device_mode/device_mode.h"
#include "fonts/font_map_manager.h"
#include "playback/heap_list.h"
#include "playback/reduction.h"

namespace quillo {

/// What playback reports to the job that it plays for.
struct PlaybackEvents {
  /// The page cannot be completed: the job has failed, no further page begins.
  virtual void JobFailed() = 0;
  /// An embedded font file is ready. S_OK when the client took it, and when none is connected.
  virtual HRESULT FontEmbedded(const wchar_t* path) = 0;

 protected:
  ~PlaybackEvents() = default;
};

/// What playback uses of the job that its context is embedded in. All pointers are the job's and
/// outlive the context.
struct JobLink {
  HANDLE printer;               // opens a printer DC for mask bitmaps
  HANDLE heap;                  // the job's private heap
  DeviceMode* device_settings;  // written by REC_DEVMODE; may be null
  BitmapLimits bitmap_limits;
  const wchar_t* font_directory;  // where embedded fonts go; empty = nothing is embedded
  PlaybackEvents* events;
};

/// Run-length pixels that the sources of one page may have together: two of the largest.
inline constexpr uint64_t kRunLengthPixelsPerPage = 2 * records::kMaxRunLengthPixels;

/// One entry of the seen-font list. The key is a LOGFONTW whose height went through the world
/// transform.
struct SeenFont {
  uint32_t flag;  // 0
  LOGFONTW key;
};

/// State of playback for one job. Objects named "current" are owned; objects named "previous" were
/// in the DC before and are only put back.
struct PlaybackContext {
  explicit PlaybackContext(const JobLink& link)
      : seen_fonts(link.heap), run_list(link.heap), job(link) {}

  HDC page_dc = nullptr;  // metafile of the current page; null = no page is open
  std::byte band_header[records::kBandHeaderBytes] = {};  // header of the page bitmap to come
  records::Point page_value = {};  // physical offset of the last REC_PAGEVALUE
  HGDIOBJ previous_pen = nullptr;
  HGDIOBJ previous_brush = nullptr;
  HGDIOBJ previous_font = nullptr;
  HBRUSH current_brush = nullptr;
  HPEN current_pen = nullptr;
  HFONT current_font = nullptr;
  uint32_t pen_brush_pending = 0;  // once 1, every REC_EXTCREATEPEN takes pen_brush
  LOGBRUSH pen_brush = {};         // lbHatch of BS_DIBPATTERNPT is a copy on the job's heap
  std::unique_ptr<CFontMapManager> glyph_translator =
      CFontMapManager::Create();  // null = no memory; made by the next run of glyphs
  HeapList<SeenFont> seen_fonts;
  HeapList<uint32_t> run_list;  // glyphs of each text run of the page
  XFORM world_transform = {};   // last transform set, kept when the DC's is reset
  uint32_t non_ascii_text_seen = 0;
  uint64_t run_length_pixels_left = kRunLengthPixelsPerPage;  // of the page
  JobLink job;
};

}  // namespace quillo
