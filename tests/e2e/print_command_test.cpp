#include "base/windows.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <span>
#include <sstream>
#include <tlhelp32.h>

#include "base/gdi_owners.h"
#include "base/system_owners.h"
#include "host/base/com_apartment.h"
#include "host/base/text.h"
#include "host/emf/metafile_script.h"
#include "host/pictures/picture_decoder.h"
#include "support/built_file.h"
#include "support/case_table.h"
#include "support/corpus.h"
#include "support/line.h"
#include "support/program.h"

// The print command as its users meet it: the shipped driver, the client in its own process.
namespace quillo::test {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

/// A page as GDI reads it: its header, and the characters of its text but for glyph indexes.
struct Page {
  explicit Page(const fs::path& path) {
    const EnhMetafile metafile(GetEnhMetaFileW(path.c_str()));
    EXPECT_NE(GetEnhMetaFileHeader(metafile.Get(), sizeof header, &header), 0u);
    EnumEnhMetaFile(nullptr, metafile.Get(), TakeText, &text, nullptr);
  }

  ENHMETAHEADER header{};
  std::wstring text;

 private:
  static int CALLBACK TakeText(HDC, HANDLETABLE*, const ENHMETARECORD* record, int, LPARAM text) {
    if (record->iType != EMR_EXTTEXTOUTW) return 1;
    const EMRTEXT& line = reinterpret_cast<const EMREXTTEXTOUTW*>(record)->emrtext;
    const auto* units = reinterpret_cast<const char*>(record) + line.offString;
    if ((line.fOptions & ETO_GLYPH_INDEX) == 0) {
      reinterpret_cast<std::wstring*>(text)->append(reinterpret_cast<const wchar_t*>(units),
                                                    line.nChars);
    }
    return 1;
  }
};

/// Whether a process of this program runs.
bool Runs(const wchar_t* program) {
  const KernelHandle list(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  PROCESSENTRY32W process{};
  process.dwSize = sizeof process;
  for (BOOL more = Process32FirstW(list.Get(), &process); more;
       more = Process32NextW(list.Get(), &process)) {
    if (_wcsicmp(process.szExeFile, program) == 0) return true;
  }
  return false;
}

/// Runs a script of tests/corpus/e2e; the head of print.txt says what its lines mean.
class PrintScript : public testing::Test {
 protected:
  PrintScript() {
    // Wine's desktop process inherits the open files of whoever is the first to need it, and keeps
    // them: that should be no run of the command.
    GetDesktopWindow();
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    fs::copy_file(BuiltFile(L"../tests/printing-program.exe"), folder_ / kProgram);
  }
  ~PrintScript() override {
    fs::remove_all(folder_);
    for (const auto& entry : fs::recursive_directory_iterator(fs::temp_directory_path())) {
      const fs::path kind = entry.path().extension();
      EXPECT_TRUE(kind != L".stg" && kind != L".fpt") << "left behind: " << entry.path();
    }
  }

  void RunScript(const std::string& name) {
    std::ifstream script(QUILLO_SOURCE_DIR "/tests/corpus/e2e/" + name);
    ASSERT_TRUE(script);
    std::string run;
    for (std::string line; std::getline(script, line);) {
      const size_t blank = line.find(' ');
      if (const std::string_view word = std::string_view(line).substr(0, blank);
          word == "print" || word == "run") {
        run = line;
      }
      SCOPED_TRACE(Line(run, "\n", line));
      if (line.empty() || line[0] == '#') continue;
      Execute(line.substr(0, blank), blank == std::string::npos ? "" : line.substr(blank + 1),
              script);
    }
  }

 private:
  /// `more`: where a line takes those from that belong to it.
  void Execute(const std::string& word, const std::string& rest, std::istream& more) {
    if (word == "print" || word == "run") {
      result_ = RunProgram(BuiltFile(L"quillo-print.exe"),
                           WithPaths(word == "run" ? rest : rest + " -o [out]"), folder_);
      EXPECT_FALSE(Runs(kProgram));
      const std::string report = ReadText(folder_ / L"out" / L"job.json");
      report_ = report.empty() ? Json() : Json::parse(report);
    } else if (word == "exit") {
      EXPECT_EQ(std::to_string(result_.exit_code), rest) << result_.errors;
    } else if (word == "output" || word == "errors") {
      const std::string& text = word == "output" ? result_.output : result_.errors;
      EXPECT_TRUE(rest.empty() ? text.empty() : text.find(rest) != std::string::npos) << text;
    } else if (word == "calls") {
      std::string calls;
      for (const Json& call : report_["notifications"]) calls += " " + Initials(call["method"]);
      EXPECT_EQ(calls, rest.empty() ? "" : " " + rest);
    } else if (word == "words") {
      std::string words = ReadText(folder_ / rest);
      std::erase(words, '\n');
      EXPECT_EQ(WordsOfPages(), words);
    } else if (word == "papers") {
      StorePapers(std::stoi(rest));
    } else if (word == "exists" || word == "absent") {
      EXPECT_EQ(fs::exists(folder_ / rest), word == "exists");
    } else if (word[0] == '/') {
      const std::string line = word + " " + rest;
      const size_t end = line.find(' ', line.rfind('/'));  // a face name holds blanks, too
      const Json::json_pointer place(line.substr(0, end));
      EXPECT_EQ(report_.contains(place) ? report_[place] : Json(), Json::parse(line.substr(end)));
    } else {
      std::istringstream fields(rest);
      std::string name;
      fields >> name;
      ExecuteOnFile(word, folder_ / name, fields, more);
    }
  }

  void ExecuteOnFile(const std::string& word, const fs::path& file, std::istream& fields,
                     std::istream& more) {
    std::string text;
    double width = 0, height = 0, difference = 0;
    if (word == "metafile") {
      std::stringstream lines;
      while (std::getline(more, text) && !text.empty()) lines << text << '\n';
      WriteWhole(file, host::emf::ReadScript(lines, "print.txt").front().metafile);
    } else if (word == "file") {
      std::getline(fields >> std::ws, text);
      text = Unescaped(text);
      WriteWhole(file, std::as_bytes(std::span(text)));
    } else if (word == "copy") {
      std::getline(fields >> std::ws, text);
      fs::copy_file(file, folder_ / host::ToWide(text), fs::copy_options::overwrite_existing);
    } else if (word == "text") {
      std::getline(fields >> std::ws, text);
      EXPECT_EQ(host::ToUtf8(Page(file).text), Unescaped(text));
    } else if (word == "pixel") {
      size_t x = 0, y = 0;
      fields >> x >> y >> text;
      EXPECT_EQ(ColourOf(file, x, y), text);
    } else if (word == "smaller") {
      fields >> width;
      EXPECT_LT(static_cast<double>(fs::file_size(file)), width);
    } else if (fields >> width >> height; word == "sheet") {
      const ENHMETAHEADER page = Page(file).header;
      EXPECT_EQ(page.rclFrame.right, width);
      EXPECT_EQ(page.rclFrame.bottom, height);
      EXPECT_GE(page.szlMillimeters.cx * 100, width);
      EXPECT_GE(page.szlMillimeters.cy * 100, height);
    } else if (fields >> difference; word == "drawn") {
      const ENHMETAHEADER page = Page(file).header;
      const double scale = 1.0 * page.szlMillimeters.cx / page.szlDevice.cx;
      EXPECT_NEAR((page.rclBounds.right - page.rclBounds.left) * scale, width, difference);
      EXPECT_NEAR((page.rclBounds.bottom - page.rclBounds.top) * scale, height, difference);
    } else {
      ADD_FAILURE() << "no such line: " << word;
    }
  }

  /// "RRGGBB"; each channel is rounded to one hexadecimal digit, twice.
  static std::string ColourOf(const fs::path& picture, size_t x, size_t y) {
    const std::vector<std::byte> bytes = ReadFile(picture);
    const host::BitmapSource pixels = host::PictureDecoder(bytes).Frame(0, 1'000'000);
    std::string colour;
    for (const size_t channel : {2, 1, 0}) {
      const size_t place = y * pixels.Stride() + x * 3 + channel;
      const auto value = LoadOrZero<std::byte>(pixels.bits, place);
      colour.append(2, "0123456789ABCDEF"[(std::to_integer<int>(value) + 8) / 17]);
    }
    return colour;
  }
  /// Leaves the printer with that many custom papers, or without its settings.
  static void StorePapers(int count) {
    const std::wstring path =
        L"Software\\Wow6432Node\\Halvard Technologies, Inc.\\Quillo 6.0\\VORNIX Quillo 6";
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, path.c_str());
    if (count == 0) return;
    for (int i = 0; i < count; ++i) {
      RegistryKey paper;
      RegCreateKeyW(HKEY_LOCAL_MACHINE, (path + L"\\Paper " + std::to_wstring(i)).c_str(),
                    paper.Receive());
    }
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, path.c_str(), L"Custom Papers Count", REG_DWORD, &count,
                    sizeof count);
  }
  /// Arguments with the quoted path of each [NAME].
  std::wstring WithPaths(std::string_view arguments) const {
    std::wstring line = host::ToWide(arguments);
    for (size_t at; (at = line.find(L'[')) != std::wstring::npos;) {
      const size_t end = line.find(L']', at);
      const fs::path path = folder_ / line.substr(at + 1, end - at - 1);
      line.replace(at, end + 1 - at, L"\"" + path.wstring() + L"\"");
    }
    return line;
  }
  /// Those of the pages' text that begin with "w", each with a blank.
  std::string WordsOfPages() const {
    std::string words;
    for (const Json& page : report_["pages"]) {
      for (const Json& run : page["text"]) {
        std::istringstream all(run.get<std::string>());
        for (std::string word; all >> word;) words += word[0] == 'w' ? word + " " : "";
      }
    }
    return words;
  }
  static std::string Initials(std::string method) {
    std::erase_if(method, [](char c) { return c < 'A' || c > 'Z'; });
    return method.substr(method[0] == 'N' ? 1 : 0);
  }

  const host::ComApartment apartment_;
  static constexpr wchar_t kProgram[] = L"printing-program.exe";
  const fs::path folder_ = fs::temp_directory_path() / L"quillo print";
  ProgramResult result_;
  Json report_;
};

TEST_F(PrintScript, OfFiles_Holds) { RunScript("print.txt"); }

TEST_F(PrintScript, OfPrograms_Holds) { RunScript("programs.txt"); }

}  // namespace
}  // namespace quillo::test
