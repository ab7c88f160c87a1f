#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <iomanip>
#include <map>
#include <sstream>

#include "config/papers/custom_papers.h"
#include "config/papers/paper_geometry.h"
#include "config/settings/printer_options.h"
#include "config/settings/stored_device_mode.h"
#include "config/settings_test.h"
#include "config/user/user_files.h"
#include "config/user/user_paths.h"
#include "support/holdings.h"
#include "support/late_functions.h"
#include "support/script.h"
#include "support/watch.h"

// The scripts of tests/corpus/settings. Empty lines stand between cases; each starts with an empty
// registry. A line is a command of commands_ and, after " > ", what it is expected to return.
namespace quillo {
namespace {

using namespace test;

std::wstring Wide(const std::string& text) { return {text.begin(), text.end()}; }

/// A word, or several in quotes.
std::string Word(std::istream& line) {
  std::string word;
  line >> std::quoted(word, '"', '^');
  return word;
}
std::wstring WideWord(std::istream& line) { return Wide(Word(line)); }
template <typename Integer = DWORD>
Integer Integral(std::istream& line) {
  return static_cast<Integer>(std::stoll(Word(line)));
}

/// A mode whose copies tell it from others.
DeviceMode Mode(short copies) {
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, L"stored");
  mode.pub.dmCopies = copies;
  if (copies == 9) mode.pub.dmDriverVersion = kDriverVersion + 1;  // another driver's
  return mode;
}

/// none | NUMBER | text "T" | unterminated "T" | narrow "T" | letters COUNT | words N... | zeros
/// SIZE | mode COPIES, of another type or size with `as TYPE` or `sized SIZE` before it.
std::optional<StoredValue> Value(std::istream& line) {
  const std::string kind = Word(line);
  if (kind == "none") return std::nullopt;
  if (kind == "text") return Terminated(WideWord(line));
  if (kind == "unterminated") return Text(WideWord(line));
  if (kind == "narrow") return Text(Word(line));
  if (kind == "letters") return Text(std::wstring(Integral(line), L'a'));
  if (kind == "zeros") return Zeros(Integral(line));
  if (kind == "mode") return Binary(Mode(Integral<short>(line)));
  if (kind == "as" || kind == "sized") {
    const auto number = Integral(line);
    auto value = Value(line);
    if (kind == "as") value->type = number;
    if (kind == "sized") value->bytes.resize(number);
    return value;
  }
  if (kind != "words") return Number(static_cast<DWORD>(std::stoll(kind)));
  StoredValue value = Zeros(0);
  for (unsigned word = 0; line >> word;) {
    value.bytes.push_back(static_cast<std::byte>(word));
    value.bytes.push_back(static_cast<std::byte>(word >> 8));
  }
  return value;
}

HKEY Hive(std::istream& line) {
  return Word(line) == "user" ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
}

/// HIVE KEY; "own" stands for the printer's own key.
struct HiveKey {
  explicit HiveKey(std::istream& line) : hive(Hive(line)), path(WideWord(line)) {
    if (path.starts_with(L"own")) path.replace(0, 3, kOwnKey);
  }
  HKEY hive;
  std::wstring path;
};

/// NUMBER KIND LENGTH WIDTH NAME
CustomPaper Paper(std::istream& line) {
  CustomPaper paper = {};
  paper.number = Integral<uint16_t>(line);
  paper.kind = Integral<int16_t>(line);
  paper.length = Integral<uint16_t>(line);
  paper.width = Integral<uint16_t>(line);
  WideWord(line).copy(paper.name, 63);
  return paper;
}

std::string Narrow(const wchar_t* text) {
  const std::wstring_view wide = text;
  if (wide.size() > 100) return std::to_string(wide.size()) + " characters";
  return {wide.begin(), wide.end()};
}

const std::map<std::string, SettingsStore> kStores = {{"user", SettingsStore::kUser},
                                                      {"machine", SettingsStore::kMachine}};

SettingsResult ReadFrom(const PrinterSettings& settings, const std::string& place,
                        const wchar_t* name, ValueBuffer* value) {
  if (place == "data") return settings.Read(name, value, SettingsPlace::kPrinterData);
  if (place == "registry") return settings.Read(name, value, SettingsPlace::kRegistry);
  if (place == "legacy") return settings.ReadLegacy(name, value);
  return settings.ReadStore(name, value, kStores.at(place));
}

SettingsResult WriteTo(const PrinterSettings& settings, const std::string& place,
                       const wchar_t* name, const StoredValue& v) {
  if (place == "data") return settings.Write(name, v.type, v.bytes, SettingsPlace::kPrinterData);
  if (place == "registry") return settings.Write(name, v.type, v.bytes, SettingsPlace::kRegistry);
  if (place == "legacy") return settings.WriteLegacy(name, v.type, v.bytes);
  return settings.WriteStore(name, v.type, v.bytes, kStores.at(place));
}

/// Reads a value into too small a buffer, one that just fits, and a larger one.
void ExpectReads(const PrinterSettings& settings, const std::string& place, const wchar_t* name,
                 const std::optional<StoredValue>& stored) {
  ValueBuffer query;
  const SettingsResult asked = ReadFrom(settings, place, name, &query);
  if (!stored) {
    EXPECT_EQ(asked, SETTINGS_READ_FAILED);
    return;
  }
  const size_t size = stored->bytes.size();
  EXPECT_EQ(asked, SETTINGS_SIZE_ONLY);
  EXPECT_EQ(query.size, size);
  for (const size_t capacity : {size - 1, size, size + 8}) {
    if (capacity > size + 8) continue;
    std::vector<std::byte> buffer(capacity + 1);
    ValueBuffer value = {buffer.data(), static_cast<DWORD>(capacity)};
    const bool fits = ReadFrom(settings, place, name, &value) == SETTINGS_OK;
    EXPECT_EQ(fits, capacity >= size);
    if (!fits) continue;
    buffer.resize(value.size);
    EXPECT_EQ((StoredValue{value.type, buffer}), *stored);
  }
}

class SettingsScripts : public SettingsTest {
 protected:
  void RunScript(const std::string& name) {
    for (const ScriptLine& script_line : ReadScriptLines("settings/" + name)) {
      SCOPED_TRACE(script_line.place + ": " + script_line.text);
      if (script_line.begins_case) {
        StartAfresh();
        functions_.Restore();
        spooler_default_.reset();
        get_printer_.calls.clear();
      }
      std::istringstream line(script_line.text);
      const auto command = commands_.find(Word(line));
      ASSERT_NE(command, commands_.end());
      out_.str("");
      command->second(line);
      // Later lines may be dangerous after a wrong one.
      ASSERT_EQ(out_.str(), script_line.expected);
    }
  }

 private:
  using Commands = std::map<std::string, std::function<void(std::istream&)>>;

  std::ostringstream out_;                     // what the command returns
  LateFunctions functions_;                    // without "EqualSid" nobody is an administrator
  std::optional<DeviceMode> spooler_default_;  // of the printer
  WATCH(GetPrinterW)
  get_printer_{[this](HANDLE printer, DWORD level, BYTE* info, DWORD size, DWORD* needed) {
    const BOOL result = get_printer_.CallOriginal(printer, level, info, size, needed);
    if (result && level == 2) {
      reinterpret_cast<PRINTER_INFO_2W*>(info)->pDevMode =
          spooler_default_ ? &spooler_default_->pub : nullptr;
    }
    return result;
  }};

  const Commands commands_ = {
      {"put",  // HIVE KEY NAME VALUE
       [](auto& line) {
         const HiveKey key(line);
         const std::wstring name = WideWord(line);
         PutValue(key.hive, key.path, name.c_str(), *Value(line));
       }},
      {"has",  // HIVE KEY NAME VALUE: it is stored
       [](auto& line) {
         const HiveKey key(line);
         const std::wstring name = WideWord(line);
         EXPECT_EQ(GetValue(key.hive, key.path, name.c_str()), Value(line));
       }},
      {"data",  // NAME VALUE: of the printer's data
       [this](auto& line) {
         const std::wstring name = WideWord(line);
         PutData(name.c_str(), Value(line));
       }},
      {"delete",  // HIVE KEY
       [](auto& line) {
         const HiveKey key(line);
         RegDeleteTreeW(key.hive, key.path.c_str());
       }},
      {"person", [this](auto& line) { sandbox_->SwitchUser(WideWord(line).c_str()); }},  // NAME
      {"without", [this](auto& line) { functions_.Miss(Word(line).c_str()); }},          // FUNCTION
      {"spooler",
       [this](auto& line) { spooler_default_ = Mode(Integral<short>(line)); }},  // COPIES
      {"read",                                                                   // PLACE NAME VALUE
       [this](auto& line) {
         const std::string place = Word(line);
         const std::wstring name = WideWord(line);
         const auto stored = Value(line);
         ExpectReads(PrinterSettings(printer_.Get()), place, name.c_str(), stored);
         const PrinterSettings named(kTestPrinter, PRINTER_ALL_ACCESS);
         ExpectReads(named, place, name.c_str(), stored);
       }},
      {"write",  // PLACE NAME VALUE
       [this](auto& line) {
         const std::string place = Word(line);
         const std::wstring name = WideWord(line);
         out_ << WriteTo(PrinterSettings(printer_.Get()), place, name.c_str(), *Value(line));
       }},
      {"url",  // the product string, and whether such strings are read; none of another name
       [this](auto&) {
         ProductStrings strings;
         const int32_t result = ReadProductStrings(printer_.Get(), &strings);
         EXPECT_FALSE(strings.slots[ProductStrings::kProductName]);
         const GlobalBlock& url = strings.slots[ProductStrings::kUrl];
         out_ << (url ? Narrow(static_cast<const wchar_t*>(url.Get())) : "none") << ", " << result;
       }},
      {"options",  // loads and stores them: bits, texts, entries
       [this](auto&) {
         const PrinterSettings settings(printer_.Get());
         PrinterOptions options;
         EXPECT_EQ(LoadOptions(settings, &options), SETTINGS_OK);
         EXPECT_EQ(StoreOptions(settings, options), SETTINGS_OK);
         EXPECT_EQ(static_cast<bool>(options.save_formats), options.save_formats_count != 0);
         const auto text = [](const GlobalBlock& block) {
           return block ? static_cast<const char*>(block.Get()) : "none";
         };
         out_ << options.options << ' ' << text(options.about_string) << ' '
              << text(options.about_icon) << ' ' << options.save_formats_count;
       }},
      {"load-mode",  // its copies
       [this](auto&) {
         DeviceMode mode = Mode(0);
         const bool found = LoadStoredDeviceMode(printer_.Get(), mode);
         EXPECT_EQ(found, mode.pub.dmCopies != 0);
         out_ << mode.pub.dmCopies;
       }},
      {"save-mode",  // COPIES
       [this](auto& line) {
         const PrinterSettings settings(printer_.Get());
         out_ << WriteDeviceData(settings, Mode(Integral<short>(line)));
         ValueBuffer query;
         EXPECT_EQ(ReadDeviceData(settings, &query), SETTINGS_SIZE_ONLY);
       }},
      {"put-paper",  // HIVE INDEX PAPER; the count becomes INDEX + 1
       [](auto& line) {
         const HKEY hive = Hive(line);
         const auto index = Integral(line);
         const CustomPaper paper = Paper(line);
         const std::wstring key = kOwnKey + L"\\Paper " + std::to_wstring(index);
         PutValue(hive, key, L"CustomPaperDim",
                  Binary(std::array{static_cast<uint16_t>(paper.kind), paper.length, paper.width}));
         PutValue(hive, key + L"\\CustomName", nullptr, Terminated(paper.name));
         PutValue(hive, key, L"PaperID", Binary(paper.number));
         PutValue(hive, kOwnKey, L"Custom Papers Count", Number(index + 1));
       }},
      {"papers",  // loads them: number, kind, length, width, name
       [this](auto&) {
         CustomPapers papers;
         const bool any = LoadCustomPapers(kTestPrinter, papers);
         EXPECT_EQ(any, static_cast<bool>(papers));
         for (const CustomPaper* paper = papers.Get(); paper != nullptr; paper = paper->next) {
           out_ << (paper == papers.Get() ? "" : ", ") << paper->number << ' ' << paper->kind << ' '
                << paper->length << ' ' << paper->width << ' ' << Narrow(paper->name);
         }
       }},
      {"save-papers",  // PAPER...
       [this](auto& line) {
         CustomPapers papers;
         while (line >> std::ws && !line.eof()) {
           CustomPapers paper(NewCustomPaper());
           *paper.Get() = Paper(line);
           papers.Reset(Join(papers.Detach(), paper.Detach()));
         }
         out_ << SaveCustomPapers(kTestPrinter, papers.Get());
       }},
      {"add-paper", [this](auto& line) { out_ << AddCustomPaper(kTestPrinter, Paper(line)); }},
      {"fill-papers",  // HIVE FIRST LAST: each with its index as its number
       [](auto& line) {
         const HKEY hive = Hive(line);
         for (auto i = Integral(line), last = Integral(line); i <= last; ++i) {
           PutValue(hive, kOwnKey + L"\\Paper " + std::to_wstring(i), L"PaperID",
                    Binary(static_cast<uint16_t>(i)));
         }
       }},
      {"sheet",  // NUMBER: its size in 0.1 mm
       [this](auto& line) {
         DeviceMode mode;
         BuildDefaultDeviceMode(mode, kTestPrinter);
         mode.pub.dmPaperSize = Integral<short>(line);
         const auto [width, height] = ResolveSheet(mode).tenths.size;
         out_ << width << 'x' << height;
       }},
      {"temp-folder",  // the result and the folder
       [this](auto&) {
         wchar_t folder[MAX_PATH] = L"x", spoolers[MAX_PATH];
         DWORD session = 0;
         EXPECT_TRUE(PrintingUserSession(session));
         out_ << UserTempFolder(folder, MAX_PATH);
         GetTempPathW(MAX_PATH, spoolers);
         if (folder[0] == L'\0') return;
         out_ << ' ' << (lstrcmpW(folder, spoolers) == 0 ? "the spooler's" : Narrow(folder));
       }},
      {"files-folder",  // DRIVE, its kind: whether files can be there, the folder, the drive asked
       [this](auto& line) {
         const auto kind = Integral<UINT>(line);
         std::wstring root = L"none";
         const WATCH(GetDriveTypeW) drive([&](LPCWSTR asked) {
           root = asked;
           return kind;
         });
         wchar_t folder[MAX_PATH];
         out_ << UserFilesFolder(folder) << ' ' << Narrow(folder);
         out_ << ' ' << Narrow(root.c_str());
       }},
  };
};

TEST_F(SettingsScripts, Corpus) {
  for (const char* name : {"device_mode.txt", "papers.txt", "printer.txt", "temp_folder.txt"}) {
    RunScript(name);
  }
}

TEST_F(SettingsScripts, FiftyRounds_LeaveNothing) {
  RunScript("leaks.txt");
  const auto after_one = Holdings::Now();
  for (int i = 0; i < 50; ++i) RunScript("leaks.txt");
  const auto after_all = Holdings::Now();
  EXPECT_LT(after_all.heap_bytes, after_one.heap_bytes + 4096);
  EXPECT_EQ(after_all.kernel_handles, after_one.kernel_handles);
}

}  // namespace
}  // namespace quillo
