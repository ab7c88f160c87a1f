#include "base/windows.h"

#include <cstring>

#include "base/arithmetic.h"
#include "base/system_owners.h"
#include "fonts/font_map_manager.h"
#include "playback/actions.h"
#include "playback/current_objects.h"
#include "playback/font_embedding.h"

// Fonts and text of the page. Text always goes out as characters, so that the page can be searched.
namespace quillo {
namespace {

using namespace records;

/// The height under which a font is remembered: scaled by the last transform.
/// Compatibility: the transform's horizontal offset is added to it; kept for clients, which read
/// these keys.
LONG HeightOfKey(LONG height, const XFORM& transform) {
  return TruncateToInt(static_cast<float>(height) * transform.eM11 + transform.eDx);
}

/// Embeds the font when its key is new to the job.
void RememberFont(PlaybackContext& context, const LOGFONTW& font) {
  SeenFont seen{0, font};
  seen.key.lfHeight = HeightOfKey(font.lfHeight, context.world_transform);
  const auto is_same = [&seen](const SeenFont& other) {
    return std::memcmp(&other.key, &seen.key, sizeof(seen.key)) == 0;
  };
  if (context.seen_fonts.Find(is_same) != nullptr) return;
  context.seen_fonts.Append(seen);
  EmbedFont(context, font);
}

/// Whether one of the UTF-16 units is not ASCII.
bool HoldsNonAscii(Bytes units) {
  for (size_t end = units.size(); end != 0; end -= sizeof(uint16_t)) {
    if (LoadOrZero<uint16_t>(units, end - sizeof(uint16_t)) >= 128) return true;
  }
  return false;
}

/// The characters of a run of glyph indexes; all zero when the page's font cannot be read. Empty
/// when memory is short.
HeapBlock TranslateRun(PlaybackContext& context, Bytes glyphs, uint32_t count) {
  if (!context.glyph_translator) context.glyph_translator = CFontMapManager::Create();
  HeapBlock text(glyphs.size(), context.job.heap);
  if (!text) return text;
  // Translated in the copy: the record's indexes may begin at an odd address.
  std::memcpy(text.Get(), glyphs.data(), glyphs.size());
  auto* units = text.As<uint16_t>();
  if (TranslateGlyphs(context.glyph_translator.get(), context.page_dc, count, units, units) == 0) {
    std::memset(text.Get(), 0, glyphs.size());
  }
  return text;
}

}  // namespace

int32_t PlayCreateFont(PlaybackContext& context, Bytes payload) {
  static_assert(sizeof(LOGFONTW) == sizeof(LogFont));
  ReleaseFont(context);
  auto font = LoadOrZero<LOGFONTW>(payload);
  font.lfWidth = 0;
  font.lfHeight = WrappingSubtract(0, font.lfHeight);
  RememberFont(context, font);
  MakeCurrent(context.page_dc, CreateFontIndirectW(&font), context.current_font,
              context.previous_font);
  return 1;
}

int32_t PlayExtTextOut(PlaybackContext& context, Bytes payload) {
  auto record = LoadOrZero<ExtTextOutHeader>(payload);
  const size_t text_bytes = size_t{record.count} * sizeof(uint16_t);
  if (!RangeFits(payload.size(), sizeof record, text_bytes)) return 0;
  Bytes text = payload.subspan(sizeof record, text_bytes);

  HeapBlock translated;
  if ((record.options & ETO_GLYPH_INDEX) != 0) {
    translated = TranslateRun(context, text, record.count);
    if (!translated) return 1;
    text = {translated.As<const std::byte>(), text_bytes};
    record.options &= ~uint32_t{ETO_GLYPH_INDEX};
  }
  if (context.non_ascii_text_seen == 0) context.non_ascii_text_seen = HoldsNonAscii(text);

  const RECT rect = {record.rectangle.left, record.rectangle.top, record.rectangle.right,
                     record.rectangle.bottom};
  // GDI places the characters itself: a spacing array of the record is not used.
  ExtTextOutW(context.page_dc, record.reference.x, record.reference.y, record.options, &rect,
              reinterpret_cast<const wchar_t*>(text.data()), record.count, nullptr);
  return 1;
}

int32_t PlayTextRun(PlaybackContext& context, Bytes payload) {
  context.run_list.Append(LoadOrZero<TextRunPayload>(payload).glyph_count);
  return 1;
}

}  // namespace quillo
