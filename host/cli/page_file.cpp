#include "host/cli/page_file.h"

#include "base/windows.h"

#include <cstring>
#include <fstream>
#include <iterator>

#include "base/checked.h"
#include "host/base/failure.h"
#include "host/base/text.h"
#include "host/emf/reader.h"
#include "host/emf/record_types.h"

namespace quillo::host {

namespace {

std::vector<std::byte> ReadAll(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> content{std::istreambuf_iterator<char>(file), {}};
  if (!file) throw ResultFailure("cannot read " + ToUtf8(path.wstring()), "opening it");
  const auto* first = reinterpret_cast<const std::byte*>(content.data());
  return {first, first + content.size()};
}

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

}  // namespace

PageContent ReadPageFile(const std::filesystem::path& path) {
  const std::vector<std::byte> bytes = ReadAll(path);
  PageContent content;
  try {
    emf::MetafileReader reader(bytes);
    while (const auto record = reader.Next()) {
      ++content.records[emf::RecordName(record->type)];
      if (record->type != emf::kEmrEXTTEXTOUTW) continue;
      const std::wstring text = TextOf(record->bytes);
      if (text.empty()) continue;
      content.characters += text.size();
      content.text.push_back(ToUtf8(text));
    }
  } catch (const emf::UnreadableMetafile& refused) {
    throw ResultFailure("the page " + ToUtf8(path.wstring()) + " " + refused.what(), "reading it",
                        ERROR_INVALID_DATA);
  }
  return content;
}

}  // namespace quillo::host
