#include "host/plain_text/font_chain.h"

#include <algorithm>
#include <new>

#include "base/gdi_owners.h"

namespace quillo::host {

namespace {

constexpr wchar_t kMainFace[] = L"Courier New";

int CALLBACK TakeFace(const LOGFONTW* font, const TEXTMETRICW*, DWORD type, LPARAM faces) {
  // A face that begins with @ is another one for vertical lines.
  if ((type & TRUETYPE_FONTTYPE) != 0 && font->lfFaceName[0] != L'@') {
    reinterpret_cast<std::vector<std::wstring>*>(faces)->push_back(font->lfFaceName);
  }
  return 1;
}

/// The faces of the system, those of fixed pitch first.
std::vector<std::wstring> InstalledFaces() {
  std::vector<std::wstring> faces;
  const ScreenDc screen(GetDC(nullptr));
  LOGFONTW any{};
  any.lfCharSet = DEFAULT_CHARSET;
  EnumFontFamiliesExW(screen.Get(), &any, TakeFace, reinterpret_cast<LPARAM>(&faces), 0);
  std::ranges::sort(faces);
  faces.erase(std::unique(faces.begin(), faces.end()), faces.end());
  std::stable_partition(faces.begin(), faces.end(), [](const std::wstring& face) {
    return face.find(L"Mono") != std::wstring::npos;
  });
  return faces;
}

}  // namespace

FontChain::FontChain(LONG height) : height_(height), main_(OpenFont(kMainFace)) {
  if (!main_) throw std::bad_alloc();
}

const std::shared_ptr<const TextFont>& FontChain::FontFor(wchar_t unit) {
  if (main_->GlyphOf(unit) != 0) return main_;
  auto known = known_.find(unit);
  if (known == known_.end()) {
    const FontPointer* other = FindOther(unit);
    if (other == nullptr) ++unknown_;
    known = known_.insert({unit, other != nullptr ? other : &main_}).first;
  }
  return *known->second;
}

const FontChain::FontPointer* FontChain::FindOther(wchar_t unit) {
  if (faces_.empty()) {
    faces_ = InstalledFaces();
    others_.reserve(faces_.size());  // what known_ points to stays in its place
  }
  for (size_t i = 0; i < faces_.size(); ++i) {
    if (i == others_.size()) others_.push_back(OpenFont(faces_[i]));
    if (others_[i] && others_[i]->GlyphOf(unit) != 0) return &others_[i];
  }
  return nullptr;
}

FontChain::FontPointer FontChain::OpenFont(const std::wstring& face) const {
  LOGFONTW font{};
  font.lfHeight = -height_;
  font.lfCharSet = DEFAULT_CHARSET;
  font.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
  lstrcpynW(font.lfFaceName, face.c_str(), LF_FACESIZE);
  try {
    return std::make_shared<const TextFont>(font);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace quillo::host
