#include "host/emf_player/text_line.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "host/engine/clusters.h"

namespace quillo::host::emf {

namespace {

UINT CodePageOf(BYTE charset) {
  CHARSETINFO info{};
  // The "pointer" is the number itself.
  if (!TranslateCharsetInfo(reinterpret_cast<DWORD*>(static_cast<uintptr_t>(charset)), &info,
                            TCI_SRCCHARSET)) {
    return CP_ACP;
  }
  return info.ciACP;
}

/// Appends text of a code page to `line` as UTF-16; adds up the advances of a character's bytes.
void AppendWide(Bytes bytes, BYTE charset, TextLine& line) {
  const auto* text = reinterpret_cast<const char*>(bytes.data());
  const bool symbols = charset == SYMBOL_CHARSET;
  const UINT code_page = symbols ? CP_ACP : CodePageOf(charset);
  std::vector<double> dx;
  for (size_t i = 0; i < bytes.size();) {
    const size_t size =
        !symbols && i + 1 < bytes.size() && IsDBCSLeadByteEx(code_page, static_cast<BYTE>(text[i]))
            ? 2
            : 1;
    wchar_t units[2] = {static_cast<unsigned char>(text[i]), 0};
    int count = 1;
    if (!symbols) {
      count = MultiByteToWideChar(code_page, 0, text + i, static_cast<int>(size), units, 2);
    }
    line.text.append(units, static_cast<size_t>(std::max(count, 0)));
    double advance = 0;
    for (size_t byte = i; byte < i + size && byte < line.dx.size(); ++byte) {
      advance += line.dx[byte];
    }
    for (int unit = 0; unit < count; ++unit) dx.push_back(unit == 0 ? advance : 0);
    i += size;
  }
  if (!line.dx.empty()) line.dx = std::move(dx);
}

/// Reads the advances of `count` characters at `offset`; offset 0: the record has none.
void ReadAdvances(PayloadReader& record, size_t offset, size_t count, TextLine& line) {
  if (offset == 0 || count == 0) return;
  const size_t numbers = (line.options & ETO_PDY) != 0 ? 2 : 1;
  const Bytes bytes = record.Slice(offset, count * numbers * 4);
  for (size_t i = 0; record.ok() && i < count; ++i) {
    line.dx.push_back(LoadOrZero<int32_t>(bytes, i * numbers * 4));
    if (numbers == 2) line.dy.push_back(LoadOrZero<int32_t>(bytes, i * numbers * 4 + 4));
  }
}

}  // namespace

void ReadCharacters(EmfPlayer& player, PayloadReader& record, size_t offset, size_t count,
                    bool wide, TextLine& line) {
  if (count == 0) return;
  wide = wide || (line.options & ETO_GLYPH_INDEX) != 0;  // glyph indexes have 16 bits everywhere
  const Bytes bytes = record.Slice(offset, wide ? count * 2 : count);
  if (!record.ok()) return;
  if (wide) {
    line.text.resize(count);
    std::memcpy(line.text.data(), bytes.data(), bytes.size());
    if ((line.options & ETO_GLYPH_INDEX) == 0 && ReplaceLoneSurrogates(line.text)) {
      player.Fault("its text has an unpaired surrogate");
    }
  } else {
    AppendWide(bytes, player.state().font->font.lfCharSet, line);
  }
}

TextLine ReadTextLine(EmfPlayer& player, PayloadReader& record, bool advanced, bool wide) {
  TextLine line;
  line.advanced = advanced;
  line.reference = record.Read<PointL>();
  const auto count = record.Read<uint32_t>();
  const auto text_offset = record.Read<uint32_t>();
  line.options = record.Read<uint32_t>();
  line.rectangle = record.Read<RectL>();
  const auto advance_offset = record.Read<uint32_t>();
  ReadAdvances(record, advance_offset, count, line);
  ReadCharacters(player, record, text_offset, count, wide, line);
  return line;
}

}  // namespace quillo::host::emf
