#include "base/windows.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <span>
#include <sstream>

#include "base/gdi_owners.h"
#include "base/system_owners.h"
#include "e2e/command.h"
#include "host/base/text.h"
#include "host/emf/metafile_builder.h"
#include "support/case_table.h"

// The print command as its users meet it: the shipped driver, the client in its own process.
namespace quillo::test {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

class PrintCommand : public testing::Test {
 protected:
  PrintCommand() {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  ~PrintCommand() override {
    fs::remove_all(folder_);
    for (const auto& entry : fs::recursive_directory_iterator(fs::temp_directory_path())) {
      const fs::path kind = entry.path().extension();
      EXPECT_TRUE(kind != L".stg" && kind != L".fpt") << "left behind: " << entry.path();
    }
  }

  /// A metafile of 100 mm by 100 mm.
  void Draw(const wchar_t* name, const std::function<void(HDC)>& draw) const {
    const RECT frame{0, 0, 10'000, 10'000};
    MetafileDc dc(CreateEnhMetaFileW(nullptr, (folder_ / name).c_str(), &frame, nullptr));
    draw(dc.Get());
    const EnhMetafile closed = dc.Close();
  }
  void Write(const fs::path& name, Bytes content) const {
    std::ofstream(folder_ / name, std::ios::binary)
        .write(reinterpret_cast<const char*>(content.data()),
               static_cast<std::streamsize>(content.size()));
  }

  std::wstring Quoted(const fs::path& name) const {
    return L" \"" + (folder_ / name).wstring() + L"\"";
  }
  CommandResult Print(const std::wstring& arguments) const {
    return RunPrint(arguments + L" -o" + Quoted(L"out"));
  }

  const fs::path folder_ = fs::temp_directory_path() / L"quillo print";
  const fs::path out_ = folder_ / L"out";
};

/// Runs tests/corpus/e2e/print.txt, whose head says what its lines mean.
class PrintScript : public PrintCommand {
 protected:
  PrintScript() {
    for (const wchar_t* name : {L"a.emf", L"b.emf", L"ü c.emf"}) {
      Draw(name, [](HDC dc) {  // a red square in the middle
        const int side = MulDiv(100, GetDeviceCaps(dc, HORZRES), GetDeviceCaps(dc, HORZSIZE));
        const Brush red(CreateSolidBrush(RGB(255, 0, 0)));
        const SelectScope filled_with(dc, red.Get());
        Rectangle(dc, side / 4, side / 4, side * 3 / 4, side * 3 / 4);
      });
    }
    Draw(L"flood.emf", [](HDC dc) { ExtFloodFill(dc, 1, 1, RGB(0, 0, 0), FLOODFILLBORDER); });
    Draw(L"font.emf", [](HDC dc) {
      const Font missing(CreateFontW(20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, L"Nowhere Sans"));
      const SelectScope written_in(dc, missing.Get());
      TextOutW(dc, 1, 1, L"x", 1);
    });
  }

  void Execute(const std::string& word, const std::string& rest) {
    std::istringstream fields(rest);
    std::string name;
    if (word == "print" || word == "run") {
      const std::wstring arguments = WithPaths(rest);
      result_ = word == "run" ? RunPrint(arguments) : Print(arguments);
      report_ = ReadJobReport(out_);
    } else if (word == "exit") {
      EXPECT_EQ(std::to_string(result_.exit_code), rest) << result_.errors;
    } else if (word == "output" || word == "errors") {
      const std::string& text = word == "output" ? result_.output : result_.errors;
      EXPECT_TRUE(rest.empty() ? text.empty() : text.find(rest) != std::string::npos) << text;
    } else if (word == "calls") {
      std::string calls;
      for (const Json& call : report_["notifications"]) calls += " " + Initials(call["method"]);
      EXPECT_EQ(calls, rest.empty() ? "" : " " + rest);
    } else if (word == "exists" || word == "absent") {
      EXPECT_EQ(fs::exists(folder_ / rest), word == "exists");
    } else if (word[0] == '/') {
      const std::string line = word + " " + rest;
      const size_t end = line.find(' ', line.rfind('/'));  // a face name holds blanks, too
      const Json::json_pointer place(line.substr(0, end));
      EXPECT_EQ(report_.contains(place) ? report_[place] : Json(), Json::parse(line.substr(end)));
    } else {
      fields >> name;
      ExecuteOnFile(word, name, fields);
    }
  }

 private:
  void ExecuteOnFile(const std::string& word, const std::string& name, std::istream& fields) {
    std::string text;
    double width = 0, height = 0, difference = 0;
    if (word == "file") {
      std::getline(fields >> std::ws, text);
      text = Unescaped(text);
      Write(name, std::as_bytes(std::span(text)));
    } else if (word == "move") {
      fields >> text;
      fs::rename(folder_ / name, folder_ / text);
    } else if (word == "smaller") {
      fields >> width;
      EXPECT_LT(static_cast<double>(fs::file_size(folder_ / name)), width);
    } else if (fields >> width >> height; word == "sheet") {
      const ENHMETAHEADER page = HeaderOf(folder_ / name);
      EXPECT_EQ(page.rclFrame.right, width);
      EXPECT_EQ(page.rclFrame.bottom, height);
      EXPECT_GE(page.szlMillimeters.cx * 100, width);
      EXPECT_GE(page.szlMillimeters.cy * 100, height);
    } else if (fields >> difference; word == "drawn") {
      const ENHMETAHEADER page = HeaderOf(folder_ / name);
      const double scale = 1.0 * page.szlMillimeters.cx / page.szlDevice.cx;
      EXPECT_NEAR((page.rclBounds.right - page.rclBounds.left) * scale, width, difference);
      EXPECT_NEAR((page.rclBounds.bottom - page.rclBounds.top) * scale, height, difference);
    } else {
      ADD_FAILURE() << "no such line: " << word;
    }
  }

  static ENHMETAHEADER HeaderOf(const fs::path& page) {
    ENHMETAHEADER header{};
    const EnhMetafile metafile(GetEnhMetaFileW(page.c_str()));
    EXPECT_NE(GetEnhMetaFileHeader(metafile.Get(), sizeof header, &header), 0u);
    return header;
  }
  /// Arguments with the quoted path of each [NAME].
  std::wstring WithPaths(std::string_view arguments) const {
    std::wstring line = host::ToWide(arguments);
    for (size_t at; (at = line.find(L'[')) != std::wstring::npos;) {
      const size_t end = line.find(L']', at);
      line.replace(at, end + 1 - at, Quoted(line.substr(at + 1, end - at - 1)));
    }
    return line;
  }
  static std::string Initials(std::string method) {
    std::erase_if(method, [](char c) { return c < 'A' || c > 'Z'; });
    return method.substr(method[0] == 'N' ? 1 : 0);
  }

  CommandResult result_;
  Json report_;
};

TEST_F(PrintScript, Lines_Hold) {
  std::ifstream script(QUILLO_SOURCE_DIR "/tests/corpus/e2e/print.txt");
  ASSERT_TRUE(script);
  int number = 0;
  for (std::string line; std::getline(script, line);) {
    SCOPED_TRACE("print.txt:" + std::to_string(++number));
    const size_t blank = line.find(' ');
    if (line.empty() || line[0] == '#') continue;
    Execute(line.substr(0, blank), blank == std::string::npos ? "" : line.substr(blank + 1));
  }
}

/// The characters of a page as GDI reads them; those of glyph indexes do not count.
std::wstring TextOf(const fs::path& page) {
  std::wstring text;
  const auto take = [](HDC, HANDLETABLE*, const ENHMETARECORD* record, int, LPARAM text_pointer) {
    if (record->iType != EMR_EXTTEXTOUTW) return 1;
    const EMRTEXT& line = reinterpret_cast<const EMREXTTEXTOUTW*>(record)->emrtext;
    const auto* units = reinterpret_cast<const char*>(record) + line.offString;
    if ((line.fOptions & ETO_GLYPH_INDEX) == 0) {
      reinterpret_cast<std::wstring*>(text_pointer)
          ->append(reinterpret_cast<const wchar_t*>(units), line.nChars);
    }
    return 1;
  };
  const EnhMetafile metafile(GetEnhMetaFileW(page.c_str()));
  EnumEnhMetaFile(nullptr, metafile.Get(), take, &text, nullptr);
  return text;
}

TEST_F(PrintCommand, WideDashedLine_IsWholeOnThePage) {
  host::emf::MetafileBuilder input;
  input.Add(host::emf::kEmrSETMITERLIMIT, {4});
  input.Add(host::emf::kEmrEXTCREATEPEN, {1, 0, 0, 0, 0, PS_GEOMETRIC | PS_DASH | PS_JOIN_MITER, 3,
                                          BS_SOLID, RGB(255, 0, 0), 0, 0, 0});
  input.Add(host::emf::kEmrSELECTOBJECT, {1});
  input.Add(host::emf::kEmrMOVETOEX, {10, 10});
  input.Add(host::emf::kEmrLINETO, {90, 40});
  Write(L"dashed.emf", input.Finish());
  EXPECT_EQ(Print(Quoted(L"dashed.emf") + L" --preview 0").exit_code, 0);
  const Json records = ReadJobReport(out_)["pages"][0]["records"];
  for (const char* name : {"EMR_EXTCREATEPEN", "EMR_SETMITERLIMIT", "EMR_STROKEPATH"}) {
    EXPECT_EQ(records.value(name, 0), 1) << records.dump();
  }
  EXPECT_FALSE(records.contains("EMR_GDICOMMENT"));
}

TEST_F(PrintCommand, Text_FillsPagesAndStaysText) {
  // Cyrillic, Greek, marks that combine, Chinese and a character above U+FFFF, which the main font
  // lacks, and Hebrew.
  std::wstring text = L"Пр Ωή e\x0301 q\x0301 漢字\tx\r\nשלום (עולם) 𝔸!\x00A0-\x00AD\n";
  std::wstring printed = L"Пр Ωή \x00E9 q\x0301 漢字  xשלום (עולם) 𝔸!\x00A0-\x00AD";
  for (int i = 0; i < 100; ++i) {
    text += L"line " + std::to_wstring(i) + L"\n";
    printed += L"line " + std::to_wstring(i);
  }
  text.insert(0, 1, L'\xFEFF').append(L"\fend");
  Write(L"text", std::as_bytes(std::span(text)));
  EXPECT_EQ(Print(Quoted(L"text") + L" --paper A4 --dpi 300").exit_code, 0);
  const Json report = ReadJobReport(out_);
  ASSERT_EQ(report["pages"].size(), 3u);
  std::wstring on_pages;
  for (const Json& page : report["pages"]) {
    std::u8string reported;
    for (const std::string call : page["text"]) reported.append(call.begin(), call.end());
    std::wstring page_text = TextOf(out_ / page["file"].get<std::string>());
    on_pages += page_text;
    std::ranges::replace(page_text, L'\x00A0', L' ');
    std::ranges::replace(page_text, L'\x00AD', L'-');
    EXPECT_EQ(page_text, fs::path(reported).wstring());
    EXPECT_EQ(page["lost_characters"].size(), 0u) << page;
  }
  EXPECT_EQ(on_pages, printed + L"end");
}

TEST_F(PrintCommand, GlyphIndexes_BecomeTheirCharacters) {
  // None of these shares its glyph with another character.
  const std::wstring text = L"Größe,Ξένος,12";
  const struct {
    const wchar_t* face;
    wchar_t one_more;  // a glyph that is none of the font's; 0: none
    std::wstring on_page;
  } lines[] = {
      {L"Liberation Sans", 0, text},
      {L"Liberation Mono", 0xFFF0, text + L"\x0640"},
      // The last of its character maps is one of another format.
      {L"DejaVu Sans", 0, std::wstring(text.size(), L'\0')},
  };
  Draw(L"glyphs.emf", [&](HDC dc) {
    for (const auto& line : lines) {
      const Font font(
          CreateFontW(-20, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, line.face));
      const SelectScope selected(dc, font.Get());
      std::wstring glyphs(text.size(), L'\0');
      GetGlyphIndicesW(dc, text.c_str(), static_cast<int>(glyphs.size()),
                       reinterpret_cast<WORD*>(glyphs.data()), 0);
      if (line.one_more != 0) glyphs += line.one_more;
      ExtTextOutW(dc, 10, 30 * static_cast<int>(&line - lines), ETO_GLYPH_INDEX, nullptr,
                  glyphs.c_str(), static_cast<UINT>(glyphs.size()), nullptr);
    }
  });
  const CommandResult result = Print(Quoted(L"glyphs.emf"));
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  std::wstring expected;
  for (const auto& line : lines) expected += line.on_page;
  EXPECT_EQ(TextOf(out_ / L"page-0001.emf"), expected);
  const Json lost = {{"DejaVu Sans", text.size()}, {"Liberation Mono", 1}};
  EXPECT_EQ(ReadJobReport(out_)["pages"][0]["lost_characters"], lost);
  EXPECT_NE(result.errors.find("glyphs of \"DejaVu Sans\" have no characters"), std::string::npos)
      << result.errors;
}

TEST_F(PrintCommand, OneCustomPaperTooMany_IsRefusedInTheDriversWords) {
  const std::wstring path =
      L"Software\\Wow6432Node\\Halvard Technologies, Inc.\\Quillo 6.0\\VORNIX Quillo 6";
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, path.c_str());
  for (int i = 0; i < 4096; ++i) {
    RegistryKey paper;
    RegCreateKeyW(HKEY_LOCAL_MACHINE, (path + L"\\Paper " + std::to_wstring(i)).c_str(),
                  paper.Receive());
  }
  const DWORD count = 4096;
  RegSetKeyValueW(HKEY_LOCAL_MACHINE, path.c_str(), L"Custom Papers Count", REG_DWORD, &count,
                  sizeof count);
  const CommandResult result = RunPrint(L"--custom-paper \"One more,300,86x54\"");
  EXPECT_EQ(result.exit_code, 4);
  EXPECT_NE(result.errors.find("\"One more\": Can not add another custom paper!"),
            std::string::npos)
      << result.errors;
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, path.c_str());
}

}  // namespace
}  // namespace quillo::test
