#include "host/pages/page_file.h"

#include "base/windows.h"

#include <algorithm>
#include <cstring>

#include "base/arithmetic.h"
#include "host/base/failure.h"
#include "host/base/file_content.h"
#include "host/base/text.h"
#include "host/emf_format/reader.h"
#include "host/emf_format/record_types.h"

namespace quillo::host {

namespace {

/// The characters of an EMR_EXTTEXTOUTW record; none when it holds glyph indexes.
std::wstring TextOf(Bytes record) {
  constexpr size_t kText = 36;  // where EMRTEXT begins
  const auto text = LoadOrZero<EMRTEXT>(record, kText);
  const size_t bytes = size_t{text.nChars} * sizeof(wchar_t);
  if ((text.fOptions & ETO_GLYPH_INDEX) != 0 || !RangeFits(record.size(), text.offString, bytes)) {
    return {};
  }
  std::wstring characters(text.nChars, L'\0');
  std::memcpy(characters.data(), record.data() + text.offString, bytes);
  return characters;
}

/// Follows the fonts of a page and collects its text.
class TextCollector {
 public:
  TextCollector(const std::vector<bool>& glyph_texts, PageContent& content)
      : glyph_texts_(glyph_texts), content_(content) {}

  void Take(const emf::Record& record) {
    const auto object = LoadOrZero<uint32_t>(record.bytes, 8);
    switch (record.type) {
      case emf::kEmrEXTCREATEFONTINDIRECTW:
        faces_[object] = FaceOf(record.bytes);
        break;
      case emf::kEmrSELECTOBJECT:
        if (const auto face = faces_.find(object); face != faces_.end()) face_ = face->second;
        break;
      case emf::kEmrDELETEOBJECT:
        faces_.erase(object);
        break;
      case emf::kEmrEXTTEXTOUTW:
        TakeText(TextOf(record.bytes));
        break;
      case emf::kEmrRESTOREDC:
        // The driver puts the DC back after each call, which may have drawn glyph by glyph.
        call_open_ = false;
        break;
    }
  }

 private:
  static std::string FaceOf(Bytes record) {
    auto font = LoadOrZero<LOGFONTW>(record, 12);
    font.lfFaceName[LF_FACESIZE - 1] = L'\0';
    return ToUtf8(font.lfFaceName);
  }

  void TakeText(std::wstring text) {
    if (text.empty()) return;
    if (!call_open_) content_.text.emplace_back();
    call_open_ = true;
    content_.characters += text.size();
    const size_t call = content_.text.size() - 1;
    if (call < glyph_texts_.size() && glyph_texts_[call]) {
      const auto lost = std::ranges::count_if(
          text, [](wchar_t unit) { return unit == L'\0' || unit == kUnmapped; });
      if (lost != 0) content_.lost_characters[face_] += static_cast<uint64_t>(lost);
    }
    for (wchar_t& unit : text) unit = AsSearched(unit);
    content_.text.back() += ToUtf8(text);
  }

  static constexpr wchar_t kUnmapped = 0x0640;  // the driver's character for such glyphs

  const std::vector<bool>& glyph_texts_;
  PageContent& content_;
  std::map<uint32_t, std::string> faces_;  // of the font objects, by number
  std::string face_;                       // of the selected font
  bool call_open_ = false;                 // whether the next text may be of the same call
};

}  // namespace

PageContent ReadPageFile(const std::filesystem::path& path, const std::vector<bool>& glyph_texts) {
  const auto bytes = ReadContent(path);
  if (!bytes) throw ResultFailure("cannot read " + ToUtf8(path.wstring()), "reading it");
  PageContent content;
  TextCollector text(glyph_texts, content);
  try {
    emf::MetafileReader reader(*bytes);
    std::map<uint32_t, uint64_t> counts;  // by record type
    while (const auto record = reader.Next()) {
      ++counts[record->type];
      text.Take(*record);
    }
    for (const auto& [type, count] : counts) content.records[emf::RecordName(type)] = count;
  } catch (const emf::UnreadableMetafile& refused) {
    throw ResultFailure("the page " + ToUtf8(path.wstring()) + " " + refused.what(), "reading it",
                        ERROR_INVALID_DATA);
  }
  return content;
}

}  // namespace quillo::host
