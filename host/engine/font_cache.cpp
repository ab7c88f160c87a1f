#include "host/engine/font_cache.h"

#include <algorithm>
#include <new>

#include "host/engine/clusters.h"

namespace quillo::host {

namespace {

// Each open font holds a font handle and two DCs.
constexpr size_t kMaxOpen = 200;

// Larger sizes, in logical units, would only strain the rasteriser.
constexpr LONG kMaxSize = 1 << 20;

constexpr BYTE kFamilyBits = 0xF0;
constexpr wchar_t kLetter = L'A';

bool HasFixedPitch(BYTE pitch_and_family) { return (pitch_and_family & 3) == FIXED_PITCH; }

bool IsSame(const std::wstring& a, const wchar_t* b) {
  return CompareStringOrdinal(a.c_str(), -1, b, -1, TRUE) == CSTR_EQUAL;
}

}  // namespace

FontCache::Font FontCache::Find(const LOGFONTW& font) {
  LOGFONTW bounded = font;
  bounded.lfHeight = std::clamp(font.lfHeight, -kMaxSize, kMaxSize);
  bounded.lfWidth = std::clamp(font.lfWidth, -kMaxSize, kMaxSize);
  const size_t name = wcsnlen(font.lfFaceName, LF_FACESIZE - 1);
  std::fill(bounded.lfFaceName + name, bounded.lfFaceName + LF_FACESIZE, L'\0');

  const std::string key(reinterpret_cast<const char*>(&bounded), sizeof(bounded));
  if (const auto found = fonts_.find(key); found != fonts_.end()) return found->second;
  if (fonts_.size() >= kMaxOpen) fonts_.clear();  // lines that are being drawn keep theirs
  Font opened = Open(bounded, nullptr);
  if (opened != nullptr && opened->Substituted() && !opened->Map().invertible) {
    opened = Substitute(bounded, std::move(opened));
  }
  return fonts_[key] = opened;
}

FontChoice FontCache::Choose(const Font& font, std::wstring_view text) {
  FontChoice choice;
  if (font->Has(text)) return choice;
  for (size_t at = 0, end = 0; at < text.size(); at = end) {
    end = ClusterEnd(text, at);
    const std::wstring_view cluster = text.substr(at, end - at);
    Font used = font;
    if (!font->Has(cluster)) {
      used = Fallback(*font, cluster);
      if (used == nullptr) used = Fallback(*font, cluster.substr(0, IsPair(text, at) ? 2 : 1));
      (used != nullptr ? choice.in_others : choice.missing) += cluster.size();
      if (used == nullptr) used = font;
    }
    choice.fonts.insert(choice.fonts.end(), cluster.size(), used);
  }
  return choice;
}

FontCache::Font FontCache::Open(const LOGFONTW& font, const wchar_t* face) {
  try {
    return std::make_shared<const TextFont>(font, face);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

const std::vector<FontCache::Face>& FontCache::Faces() {
  if (!faces_.empty()) return faces_;
  const auto take = [](const LOGFONTW* font, const TEXTMETRICW*, DWORD type, LPARAM list) {
    // A face that begins with @ is a variant for vertical lines.
    if ((type & TRUETYPE_FONTTYPE) != 0 && font->lfFaceName[0] != L'@' &&
        font->lfCharSet != SYMBOL_CHARSET) {
      reinterpret_cast<std::vector<Face>*>(list)->push_back(
          {font->lfFaceName, font->lfPitchAndFamily});
    }
    return 1;
  };
  const ScreenDc screen(GetDC(nullptr));
  LOGFONTW any{};
  any.lfCharSet = DEFAULT_CHARSET;
  EnumFontFamiliesExW(screen.Get(), &any, static_cast<FONTENUMPROCW>(take),
                      reinterpret_cast<LPARAM>(&faces_), 0);
  std::ranges::sort(faces_, {}, &Face::name);
  const auto same_name = [](const Face& a, const Face& b) { return a.name == b.name; };
  faces_.erase(std::unique(faces_.begin(), faces_.end(), same_name), faces_.end());
  samples_.resize(faces_.size());
  return faces_;
}

/// The font of a face at some size, to look up its characters; null if it cannot be opened.
const TextFont* FontCache::Sample(size_t face) {
  if (!samples_[face]) samples_[face] = Open(LOGFONTW{}, faces_[face].name.c_str());
  return samples_[face]->get();
}

/// A better substitute for a missing font than `found`: an invertible one, preferably of the same
/// pitch and family. `found` if there is none.
FontCache::Font FontCache::Substitute(const LOGFONTW& wanted, Font found) {
  // Common fonts of each kind are preferred to those that merely come first in the alphabet.
  constexpr const wchar_t* kCommon[] = {L"Liberation Sans", L"Liberation Serif",
                                        L"Liberation Mono"};
  const BYTE kind = (wanted.lfPitchAndFamily & kFamilyBits) != FF_DONTCARE
                        ? wanted.lfPitchAndFamily
                        : found->Metrics().jWinPitchAndFamily;
  const auto distance = [&](const Face& face) {
    const bool other_pitch = HasFixedPitch(face.pitch_and_family) != HasFixedPitch(kind);
    const bool other_family = (face.pitch_and_family & kFamilyBits) != (kind & kFamilyBits);
    const bool uncommon = std::ranges::none_of(
        kCommon, [&](const wchar_t* common) { return IsSame(face.name, common); });
    return 4 * other_pitch + 2 * other_family + uncommon;
  };
  std::vector<size_t> order(Faces().size());
  for (size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::ranges::stable_sort(order, {}, [&](size_t i) { return distance(faces_[i]); });
  for (const size_t face : order) {
    const TextFont* const sample = Sample(face);
    if (sample == nullptr || !sample->Map().invertible || sample->GlyphOf(kLetter) == 0) continue;
    if (Font substitute = Open(wanted, faces_[face].name.c_str())) return substitute;
  }
  return found;
}

/// Like `font`, but of the first face that has all of these characters; null if there is none.
FontCache::Font FontCache::Fallback(const TextFont& font, std::wstring_view cluster) {
  const bool fixed = HasFixedPitch(font.Metrics().jWinPitchAndFamily);
  const auto [known, is_new] = known_[fixed].try_emplace(std::wstring(cluster));
  if (is_new) {
    for (const bool of_same_pitch : {true, false}) {
      for (size_t face = 0; !known->second && face < Faces().size(); ++face) {
        if ((HasFixedPitch(faces_[face].pitch_and_family) == fixed) != of_same_pitch) continue;
        const TextFont* const sample = Sample(face);
        if (sample != nullptr && sample->Has(cluster)) known->second = face;
      }
    }
  }
  if (!known->second) return nullptr;
  LOGFONTW wanted = font.Wanted();
  lstrcpynW(wanted.lfFaceName, faces_[*known->second].name.c_str(), LF_FACESIZE);
  wanted.lfCharSet = DEFAULT_CHARSET;
  return Find(wanted);
}

}  // namespace quillo::host
