#include "base/windows.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>

#include "base/gdi_owners.h"
#include "base/system_owners.h"
#include "e2e/command.h"
#include "host/emf/metafile_builder.h"

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
    for (const wchar_t* name : {L"a.emf", L"b.emf", L"ü c.emf"}) DrawInput(folder_ / name);
  }
  ~PrintCommand() override { fs::remove_all(folder_); }

  /// A red square in the middle of a square picture.
  static void DrawInput(const fs::path& path) {
    const RECT frame{0, 0, 10'000, 10'000};
    MetafileDc dc(CreateEnhMetaFileW(nullptr, path.c_str(), &frame, nullptr));
    const int side =
        MulDiv(100, GetDeviceCaps(dc.Get(), HORZRES), GetDeviceCaps(dc.Get(), HORZSIZE));
    const Brush red(CreateSolidBrush(RGB(255, 0, 0)));
    const SelectScope filled_with(dc.Get(), red.Get());
    Rectangle(dc.Get(), side / 4, side / 4, side * 3 / 4, side * 3 / 4);
    const EnhMetafile closed = dc.Close();
  }

  std::wstring Quoted(const wchar_t* name) const {
    return L" \"" + (folder_ / name).wstring() + L"\"";
  }
  CommandResult Print(const std::wstring& arguments) {
    return RunPrint(arguments + L" -o" + Quoted(L"out"));
  }

  const fs::path folder_ = fs::temp_directory_path() / L"quillo print";
  const fs::path out_ = folder_ / L"out";
};

ENHMETAHEADER HeaderOf(const fs::path& page) {
  ENHMETAHEADER header{};
  const EnhMetafile metafile(GetEnhMetaFileW(page.c_str()));
  EXPECT_NE(GetEnhMetaFileHeader(metafile.Get(), sizeof header, &header), 0u) << page;
  return header;
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

TEST_F(PrintCommand, ThreeSheets_AreThreePagesOfOneJob) {
  const CommandResult result =
      Print(L"--paper A4" + Quoted(L"a.emf") + L" --paper A3 --landscape" + Quoted(L"b.emf") +
            L" --paper Letter --portrait" + Quoted(L"ü c.emf") + L" --document \"Drei Blätter\"");
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  EXPECT_EQ(result.errors, "");
  const Json report = ReadJobReport(out_);
  EXPECT_EQ(report["printer"], "VORNIX Quillo 6");
  EXPECT_EQ(report["document"], "Drei Blätter");
  EXPECT_EQ(report["job_end_event"], true);

  const struct {
    LONG width, height;  // 0.1 mm
  } sheets[] = {{2100, 2970}, {4200, 2970}, {2159, 2794}};
  ASSERT_EQ(report["pages"].size(), std::size(sheets));
  for (size_t i = 0; i < std::size(sheets); ++i) {
    const Json& page = report["pages"][i];
    SCOPED_TRACE(page.dump(1));
    EXPECT_EQ(page["sheet"]["width"], sheets[i].width);
    EXPECT_EQ(page["sheet"]["height"], sheets[i].height);
    EXPECT_EQ(page["dpi"], 600);
    EXPECT_GE(page["ddi_calls"]["DrvStrokeAndFillPath"], 1);
    EXPECT_EQ(page["records"]["EMR_HEADER"], 1);
    const ENHMETAHEADER header = HeaderOf(out_ / page["file"].get<std::string>());
    EXPECT_EQ(header.rclFrame.right, sheets[i].width * 10);
    EXPECT_EQ(header.rclFrame.bottom, sheets[i].height * 10);
    EXPECT_TRUE(fs::exists(out_ / page["preview"].get<std::string>()));
    // The square fills the middle half of what fits into the sheet, but for a pixel of the input.
    const double side = 5.0 * std::min(sheets[i].width, sheets[i].height);
    EXPECT_NEAR(static_cast<double>(header.rclBounds.right - header.rclBounds.left),
                side * 600 / 2540, 20);
  }
  std::vector<std::string> heard;
  for (const Json& call : report["notifications"]) heard.push_back(call["method"]);
  std::vector<std::string> expected{"NotifyJobStart"};
  for (int page = 0; page < 3; ++page) {
    expected.insert(expected.end(), {"GetPageObject", "NotifyPageStart", "NotifyPage"});
  }
  expected.insert(expected.end(), {"NotifyFontsFile", "NotifyDocumentEnd", "NotifyJobEnd"});
  EXPECT_EQ(heard, expected);
  const Json& delivery = report["notifications"][6];
  EXPECT_EQ(delivery["page"], 2);
  EXPECT_EQ(delivery["file"], "page-0002.emf");
  const Json described = {{"kind", 1}, {"width", 4200.0}, {"height", 2970.0},
                          {"mode", 3}, {"x_dpi", 600},    {"y_dpi", 600}};
  for (const auto& [key, value] : described.items()) {
    EXPECT_EQ(delivery["page_object"][key], value) << key;
  }
  EXPECT_EQ(report["notifications"][10]["fonts"], Json::array());
}

TEST_F(PrintCommand, SheetAndResolution_GiveThePagesScale) {
  const CommandResult result = Print(Quoted(L"a.emf") +
                                     L" --paper 123.4x98.7 --dpi 96 --quiet "
                                     L"--preview 0 --actual-size");
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  EXPECT_EQ(result.output, "");
  EXPECT_FALSE(fs::exists(out_ / L"page-0001.png"));
  const ENHMETAHEADER header = HeaderOf(out_ / L"page-0001.emf");
  EXPECT_EQ(header.rclFrame.right, 12'340);
  EXPECT_EQ(header.rclFrame.bottom, 9'870);
  // 50 mm of the picture are 50 mm of the page.
  EXPECT_NEAR(static_cast<double>(header.rclBounds.right - header.rclBounds.left), 50 * 96 / 25.4,
              2);
}

TEST_F(PrintCommand, WideDashedLine_IsWholeOnThePage) {
  host::emf::MetafileBuilder input;
  input.Add(host::emf::kEmrSETMITERLIMIT, {4});
  input.Add(host::emf::kEmrEXTCREATEPEN, {1, 0, 0, 0, 0, PS_GEOMETRIC | PS_DASH | PS_JOIN_MITER, 3,
                                          BS_SOLID, RGB(255, 0, 0), 0, 0, 0});
  input.Add(host::emf::kEmrSELECTOBJECT, {1});
  input.Add(host::emf::kEmrMOVETOEX, {10, 10});
  input.Add(host::emf::kEmrLINETO, {90, 40});
  const auto bytes = input.Finish();
  std::ofstream(folder_ / L"dashed.emf", std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  EXPECT_EQ(Print(Quoted(L"dashed.emf") + L" --preview 0").exit_code, 0);
  const Json report = ReadJobReport(out_);
  const Json& records = report["pages"][0]["records"];
  for (const char* name : {"EMR_EXTCREATEPEN", "EMR_SETMITERLIMIT", "EMR_STROKEPATH"}) {
    EXPECT_EQ(records.value(name, 0), 1) << records.dump();
  }
  EXPECT_FALSE(records.contains("EMR_GDICOMMENT"));
}

TEST_F(PrintCommand, InputsThatAreNone_AreNamedAndNothingIsWritten) {
  std::ofstream(folder_ / L"empty.emf") << "";
  std::ofstream(folder_ / L"noise") << std::string("\1\2\3\0\xFF", 5);
  std::ofstream(folder_ / L"cut.png", std::ios::binary) << "\x89PNG\r\n\x1A\n";
  std::ofstream(folder_ / L"cut.jpg", std::ios::binary) << "\xFF\xD8\xFF\xE0";
  std::ofstream(folder_ / L"bell.txt", std::ios::binary) << "BM \adef";
  std::ofstream(folder_ / L"short.emf", std::ios::binary) << std::string("\1\0\0\0\x6C\0\0\0", 8);
  const struct {
    const wchar_t* name;
    const char* said;
  } cases[] = {
      {L"missing.emf", "missing.emf does not exist"},
      {L".", "is a folder"},
      {L"empty.emf", "empty.emf is empty"},
      {L"noise", "noise is of no kind that is printed"},
      {L"short.emf", "short.emf is"},
      {L"cut.png", "cut.png cannot be decoded: it is damaged or cut off"},
      {L"cut.jpg", "cut.jpg cannot be decoded: it is damaged or cut off"},
      {L"bell.txt", "its byte 4 is 0x07, which no text has"},
  };
  for (const auto& test : cases) {
    const CommandResult result = Print(Quoted(test.name));
    EXPECT_EQ(result.exit_code, 3) << test.said;
    EXPECT_NE(result.errors.find(test.said), std::string::npos) << result.errors;
    EXPECT_FALSE(fs::exists(out_)) << test.said;
  }
}

// The preview of a page is a picture of its sheet at 96 dpi.
TEST_F(PrintCommand, Picture_IsDrawnAtItsSizeOrFitted) {
  Print(Quoted(L"a.emf") + L" --paper 50x100");
  fs::rename(out_ / L"page-0001.png", folder_ / L"picture.dat");
  const struct {
    const wchar_t* options;
    double width, height;  // of the picture on the page, mm
  } cases[] = {{L" --actual-size", 50, 100}, {L"", 105, 210}};
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::Message() << test.options);
    const CommandResult result =
        Print(Quoted(L"picture.dat") + L" --paper A4 --landscape --dpi 300" + test.options);
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    const Json page = ReadJobReport(out_)["pages"][0];
    EXPECT_EQ(page["ddi_calls"]["DrvStretchBlt"], 1) << page;
    EXPECT_LT(fs::file_size(out_ / L"page-0001.emf"), 50'000u);  // few colours: 4 bits a pixel
    const RECTL bounds = HeaderOf(out_ / L"page-0001.emf").rclBounds;
    EXPECT_NEAR(static_cast<double>(bounds.right - bounds.left), test.width * 300 / 25.4, 4);
    EXPECT_NEAR(static_cast<double>(bounds.bottom - bounds.top), test.height * 300 / 25.4, 4);
  }
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
  std::ofstream(folder_ / L"text", std::ios::binary)
      .write(reinterpret_cast<const char*>(text.data()),
             static_cast<std::streamsize>(text.size() * sizeof(wchar_t)));
  const CommandResult result = Print(Quoted(L"text") + L" --paper A4 --dpi 300");
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  const Json report = ReadJobReport(out_);
  ASSERT_EQ(report["pages"].size(), 3u);
  std::wstring on_pages;
  for (const Json& page : report["pages"]) {
    std::u8string told;
    for (const std::string call : page["text"]) told.append(call.begin(), call.end());
    std::wstring page_text = TextOf(out_ / page["file"].get<std::string>());
    on_pages += page_text;
    std::ranges::replace(page_text, L'\x00A0', L' ');
    std::ranges::replace(page_text, L'\x00AD', L'-');
    EXPECT_EQ(page_text, fs::path(told).wstring());
    EXPECT_EQ(page["lost_characters"].size(), 0u) << page;
  }
  EXPECT_EQ(on_pages, printed + L"end");
}

TEST_F(PrintCommand, TextThatBeginsAsPicturesDo_IsText) {
  for (const std::string text : {"BM is for bitmap", "GIF89a"}) {
    std::ofstream(folder_ / L"text", std::ios::binary) << text;
    const CommandResult result = Print(Quoted(L"text"));
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_EQ(ReadJobReport(out_)["pages"][0]["text"][0], text);
  }
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
  {
    MetafileDc dc(CreateEnhMetaFileW(nullptr, (folder_ / L"glyphs.emf").c_str(), nullptr, nullptr));
    std::wstring glyphs;
    for (const auto& line : lines) {
      const Font font(
          CreateFontW(-20, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, line.face));
      const SelectScope selected(dc.Get(), font.Get());
      glyphs.resize(text.size());
      GetGlyphIndicesW(dc.Get(), text.c_str(), static_cast<int>(glyphs.size()),
                       reinterpret_cast<WORD*>(glyphs.data()), 0);
      if (line.one_more != 0) glyphs += line.one_more;
      ExtTextOutW(dc.Get(), 10, 30 * static_cast<int>(&line - lines), ETO_GLYPH_INDEX, nullptr,
                  glyphs.c_str(), static_cast<UINT>(glyphs.size()), nullptr);
    }
    const EnhMetafile closed = dc.Close();
  }
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

TEST_F(PrintCommand, CustomPaper_IsListedAndPrintedOn) {
  const CommandResult listed = RunPrint(L"--custom-paper \"Name, badge,300,86x54\" --list-papers");
  EXPECT_EQ(listed.exit_code, 0) << listed.errors;
  EXPECT_NE(listed.output.find("    9  A4                     210.0 x  297.0 mm"),
            std::string::npos);
  EXPECT_NE(listed.output.find("  300  Name, badge             86.0 x   54.0 mm    3.39 x   2.13 in"
                               "  custom"),
            std::string::npos)
      << listed.output;
  const CommandResult result = Print(Quoted(L"a.emf") + L" --paper \"name, BADGE\" --landscape");
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  const ENHMETAHEADER header = HeaderOf(out_ / L"page-0001.emf");
  EXPECT_EQ(header.rclFrame.right, 5400);
  EXPECT_EQ(header.rclFrame.bottom, 8600);
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

TEST_F(PrintCommand, OneBadInput_DoesNotKeepTheOthers) {
  const CommandResult result = Print(Quoted(L"a.emf") + Quoted(L"missing") + Quoted(L"b.emf"));
  EXPECT_EQ(result.exit_code, 3);
  EXPECT_EQ(ReadJobReport(out_)["pages"].size(), 2u);
}

TEST_F(PrintCommand, Losses_AreToldAndFailWhenStrict) {
  const auto draw = [this](const wchar_t* name, auto drawing) {
    MetafileDc dc(CreateEnhMetaFileW(nullptr, (folder_ / name).c_str(), nullptr, nullptr));
    drawing(dc.Get());
    const EnhMetafile closed = dc.Close();
  };
  draw(L"flood.emf", [](HDC dc) { ExtFloodFill(dc, 1, 1, RGB(0, 0, 0), FLOODFILLBORDER); });
  draw(L"font.emf", [](HDC dc) {
    const Font missing(CreateFontW(20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, L"Nowhere Sans"));
    const SelectScope written_in(dc, missing.Get());
    TextOutW(dc, 1, 1, L"x", 1);
  });
  const struct {
    const wchar_t* name;
    const char* warning;  // empty: none
    const char* loss;     // empty: none
  } cases[] = {{L"a.emf", "", ""},
               {L"flood.emf", "EMR_EXTFLOODFILL", "EMR_EXTFLOODFILL"},
               {L"font.emf", "", "\"Nowhere Sans\" is not installed"}};
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::Message() << test.name);
    for (const bool strict : {false, true}) {
      const std::string said = strict ? test.loss : test.warning;
      const CommandResult result = Print(Quoted(test.name) + (strict ? L" --strict" : L""));
      EXPECT_EQ(result.exit_code, strict && !said.empty() ? 3 : 0);
      EXPECT_NE(result.errors.find(said), std::string::npos) << result.errors;
      EXPECT_EQ(result.errors.empty(), said.empty()) << result.errors;
      EXPECT_EQ(ReadJobReport(out_)["pages"][0]["losses"].empty(), *test.loss == '\0');
    }
  }
}

TEST_F(PrintCommand, OutputThatCannotBe_IsToldBeforePrinting) {
  const CommandResult result = RunPrint(Quoted(L"a.emf") + L" -o" + Quoted(L"b.emf"));
  EXPECT_EQ(result.exit_code, 5);
  EXPECT_NE(result.errors.find("b.emf"), std::string::npos) << result.errors;
}

// Whatever the client does, the job goes on and leaves nothing behind.
TEST_F(PrintCommand, FaultyClients_GiveTheirExitCode) {
  using Calls = std::map<std::string, int>;
  const Calls all = {{"NotifyJobStart", 1}, {"GetPageObject", 2},   {"NotifyPageStart", 2},
                     {"NotifyPage", 2},     {"NotifyFontsFile", 1}, {"NotifyDocumentEnd", 1},
                     {"NotifyJobEnd", 1}};
  Calls without_objects = all;
  without_objects.erase("NotifyPageStart");
  const struct {
    const wchar_t* client;
    int exit_code;
    Calls calls;
    const char* said;
  } cases[] = {
      {L"absent", 4, {}, "DrvStartPage"},
      {L"late", 0, all, ""},
      {L"hanging", 0, all, ""},
      {L"failing", 5, without_objects, "page 1 did not arrive"},
      {L"dying",
       5,
       {{"NotifyJobStart", 1}, {"GetPageObject", 1}, {"NotifyPageStart", 1}},
       "page 1 did not arrive"},
      {L"without-text-runs", 0, all, ""},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::Message() << test.client);
    const CommandResult result =
        Print(Quoted(L"a.emf") + Quoted(L"b.emf") + L" --client " + test.client);
    EXPECT_EQ(result.exit_code, test.exit_code);
    EXPECT_NE(result.errors.find(test.said), std::string::npos) << result.errors;
    // Each run also takes the pages of the one before away.
    EXPECT_EQ(fs::exists(out_ / L"page-0002.emf"), test.exit_code == 0);
    Calls heard;
    const Json report = ReadJobReport(out_);
    for (const Json& call : report["notifications"]) ++heard[call["method"]];
    EXPECT_EQ(heard, test.calls);
    EXPECT_EQ(report["job_end_event"], test.calls.contains("NotifyJobEnd"));
    for (const auto& entry : fs::recursive_directory_iterator(fs::temp_directory_path())) {
      EXPECT_NE(entry.path().extension(), L".stg") << entry.path();
      EXPECT_NE(entry.path().extension(), L".fpt") << entry.path();
    }
  }
}

}  // namespace
}  // namespace quillo::test
