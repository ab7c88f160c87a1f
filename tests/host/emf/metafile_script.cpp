#include "host/emf/metafile_script.h"

#include <bit>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <sstream>

#include "host/emf/metafile_builder.h"
#include "host/emf_format/carried_records.h"

namespace quillo::host::emf {
namespace {

using Tokens = std::vector<std::string>;

/// Splits at blanks, but not in quotes; puts in what `names` stand for.
Tokens Split(const std::string& line, const std::map<std::string, Tokens>& names) {
  Tokens tokens;
  for (size_t at = line.find_first_not_of(' '); at < line.size();) {
    const bool quoted = line[at] == '\'' || line[at] == '"';
    size_t end = quoted ? line.find(line[at], at + 1) + 1 : line.find(' ', at);
    end = std::min(end, line.size());
    const std::string token = line.substr(at, end - at);
    const auto known = names.find(token);
    if (known == names.end()) {
      tokens.push_back(token);
    } else {
      tokens.insert(tokens.end(), known->second.begin(), known->second.end());
    }
    at = line.find_first_not_of(' ', end);
  }
  return tokens;
}

uint32_t Number(const std::string& token) {
  return static_cast<uint32_t>(std::stoll(token, nullptr, 0));
}

/// The text between the quotes, as many bytes a character, in words.
std::vector<uint32_t> Packed(const std::string& quoted, size_t character_bytes) {
  const size_t per_word = 4 / character_bytes;
  std::vector<uint32_t> words((quoted.size() - 2 + per_word - 1) / per_word);
  for (size_t i = 0; i + 2 < quoted.size(); ++i) {
    const uint32_t character = static_cast<unsigned char>(quoted[i + 1]);
    words[i / per_word] |= character << (i % per_word * character_bytes * 8);
  }
  return words;
}

std::vector<uint32_t> Fields(const Tokens& tokens) {
  std::vector<uint32_t> words;
  std::map<std::string, uint32_t> places;
  std::vector<std::pair<size_t, std::string>> offsets;
  for (size_t i = 1; i < tokens.size(); ++i) {
    const std::string& token = tokens[i];
    if (token[0] == '\'' || token[0] == '"') {
      const auto text = Packed(token, token[0] == '"' ? 1 : 2);
      words.insert(words.end(), text.begin(), text.end());
    } else if (token.starts_with("...")) {
      words.resize(Number(token.substr(3)));
    } else if (token.ends_with(':')) {
      places[token.substr(0, token.size() - 1)] = static_cast<uint32_t>(8 + 4 * words.size());
    } else if (token[0] == '@') {
      offsets.emplace_back(words.size(), token.substr(1));
      words.push_back(0);
    } else if (const size_t half = token.find(';'); half != token.npos) {
      words.push_back((Number(token) & 0xFFFF) | Number(token.substr(half + 1)) << 16);
    } else if (token.find('.') != token.npos) {
      words.push_back(std::bit_cast<uint32_t>(std::stof(token)));
    } else {
      words.push_back(Number(token));
    }
  }
  for (const auto& [word, place] : offsets) words[word] = places.at(place);
  return words;
}

uint32_t TypeOf(const std::string& name) {
  for (uint32_t type = 1; type < kRecordTypeEnd; ++type) {
    if (RecordName(type) == "EMR_" + name) return type;
  }
  return Number(name);
}

}  // namespace

std::vector<ScriptCase> ReadScript(const std::string& name) {
  std::ifstream script(QUILLO_SOURCE_DIR "/tests/corpus/" + name);
  std::vector<ScriptCase> cases = ReadScript(script, name);
  EXPECT_FALSE(cases.empty()) << name;
  return cases;
}

std::vector<ScriptCase> ReadScript(std::istream& script, const std::string& name) {
  std::vector<ScriptCase> cases;
  std::map<std::string, Tokens> names;
  std::optional<MetafileBuilder> metafile;
  std::vector<std::pair<uint32_t, uint32_t>> patches;
  const auto finish = [&] {
    if (!metafile) return;
    cases.back().metafile = metafile->Finish();
    for (const auto& [offset, value] : patches) {
      Store(MutableBytes(cases.back().metafile), offset, value);
    }
    patches.clear();
    metafile.reset();
  };
  int number = 0;
  for (std::string line; std::getline(script, line);) {
    ++number;
    if (line.empty()) finish();
    const Tokens tokens = Split(line, names);
    if (tokens.empty() || line[0] == '#') continue;
    if (tokens.size() > 1 && tokens[1] == "=") {
      names[tokens[0]] = {tokens.begin() + 2, tokens.end()};
      continue;
    }
    if (!metafile) {
      metafile.emplace();
      cases.emplace_back().place = name + ":" + std::to_string(number);
    }
    ScriptCase& current = cases.back();
    if (std::string_view(">!~-").find(line[0]) != std::string_view::npos) {
      current.expected += line + "\n";
    } else if (tokens[0] == "page") {
      std::istringstream numbers(line.substr(4));
      Transform& map = current.to_page;
      numbers >> map.m11 >> map.m12 >> map.m21 >> map.m22 >> map.dx >> map.dy;
    } else if (tokens[0] == "millimetres") {
      constexpr size_t kMillimetres = 80;  // of the reference device, in the header
      metafile->Patch(kMillimetres, Number(tokens[1]));
      metafile->Patch(kMillimetres + 4, Number(tokens[2]));
    } else if (tokens[0] == "header") {
      metafile->ExtendHeader(Fields(tokens));
    } else if (tokens[0] == "patch") {
      patches.emplace_back(Number(tokens[1]), Number(tokens[2]));
    } else if (tokens[0] == "refuse") {
      current.refusing = tokens[1];
    } else if (tokens[0] == "flat") {
      current.curves = false;
    } else if (tokens[0] == "glyphs") {
      current.glyph_order = tokens[1];
    } else if (tokens[0] == "repeat") {
      const Tokens record(tokens.begin() + 2, tokens.end());
      for (uint32_t left = Number(tokens[1]); left != 0; --left) {
        metafile->Add(TypeOf(record[0]), Fields(record));
      }
    } else if (tokens[0] == "carry") {
      MetafileBuilder carried;
      const size_t start =
          carried.Add(TypeOf(tokens[1]), Fields({tokens.begin() + 1, tokens.end()}));
      constexpr size_t kEndBytes = 20;
      const auto bytes = carried.Finish();
      const auto data = CarryRecord(Bytes(bytes).subspan(start, bytes.size() - start - kEndBytes));
      std::vector<uint32_t> payload(1 + data.size() / 4, static_cast<uint32_t>(data.size()));
      std::memcpy(&payload[1], data.data(), data.size());
      metafile->Add(kEmrGDICOMMENT, payload);
    } else {
      metafile->Add(TypeOf(tokens[0]), Fields(tokens));
    }
  }
  finish();
  return cases;
}

}  // namespace quillo::host::emf
