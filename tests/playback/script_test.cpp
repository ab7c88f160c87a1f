#include "support/script.h"

#include "base/windows.h"

#include <gtest/gtest.h>
#include <iomanip>
#include <map>
#include <optional>
#include <sstream>
#include <winspool.h>

#include "capture/records/types.h"
#include "imaging/painting/display_mode.h"
#include "playback/page.h"
#include "playback/picture.h"
#include "support/canvas.h"
#include "support/case_table.h"
#include "support/holdings.h"
#include "support/watch.h"

namespace quillo::test {
namespace {

/// Colours and codes, which are large, in hexadecimal.
template <typename T>
void ShowNumber(std::ostream& out, T number) {
  const bool large = std::is_integral_v<T> && number > T{0x7FFF};
  out << ' ' << (large ? "0x" : "") << (large ? std::hex : std::dec) << number << std::dec;
}

template <typename T>
void ShowFields(std::ostream& out, const void* fields, size_t count) {
  for (size_t i = 0; i < count; ++i) ShowNumber(out, static_cast<const T*>(fields)[i]);
}

std::string Narrow(std::wstring_view text) {
  std::ostringstream out;
  for (const wchar_t c : text) {
    if (c >= 32 && c < 127) out << static_cast<char>(c);
    if (c < 32 || c > 126) out << "\\x" << std::hex << int{c};
  }
  return out.str();
}

const HANDLE kPrinter = reinterpret_cast<HANDLE>(0x1234);

/// Knows the printer alone.
BOOL WINAPI FakeGetPrinter(HANDLE printer, DWORD level, BYTE* info, DWORD size, DWORD* needed) {
  static wchar_t name[] = L"A printer";
  *needed = sizeof(PRINTER_INFO_4W);
  if (printer != kPrinter || level != 4 || size < *needed) return FALSE;
  *reinterpret_cast<PRINTER_INFO_4W*>(info) = {name, nullptr, 0};
  return TRUE;
}

/// Runs a script of tests/corpus/playback; the README there describes them.
class PlaybackScript : public testing::TestWithParam<const char*> {
 protected:
  void Run() {
    const uintptr_t objects = LiveGdiObjects();
    for (const ScriptLine& line : ReadScriptLines(std::string("playback/") + GetParam() + ".txt")) {
      SCOPED_TRACE(line.place);
      if (line.begins_case) BeginCase();
      calls_.clear();
      const uint32_t mode = imaging::SetDisplayMode(0, 0);
      CarryOut(line.text);
      EXPECT_EQ(Outcome(), line.expected);
      EXPECT_EQ(imaging::SetDisplayMode(0, 0), mode);
    }
    canvas_.reset();
    page_.reset();
    EXPECT_LE(LiveGdiObjects(), objects + 10);
  }

 private:
  std::string Outcome() const {
    std::string outcome;
    for (const std::string& call : calls_) outcome += (outcome.empty() ? "" : " | ") + call;
    return outcome;
  }

  void BeginCase() {
    page_.emplace(/*heap_limit=*/0x10000);
    page_->context.glyph_translator.reset();  // as when there was no memory for it
    answers_.clear();
    no_section_.reset();
    canvas_.reset();
    objects_.clear();
    dc_ = page_->context.page_dc;
    calls_.clear();
  }

  void CarryOut(const std::string& line) {
    std::istringstream words(line);
    std::string name;
    words >> name;
    if (name == "answer") {
      int64_t answer = 0;
      words >> name >> answer;
      answers_[name] = answer;
    } else if (name == "limits") {
      words >> page_->context.job.bitmap_limits.width >> page_->context.job.bitmap_limits.height;
    } else if (name == "unshown") {
      no_section_.emplace(nullptr);
    } else if (name == "canvas") {
      int width = 0, height = 0;
      words >> width >> height;
      dc_ = page_->context.page_dc = canvas_.emplace(width, height).Dc();
    } else if (name == "pageless") {
      page_->context.page_dc = nullptr;
    } else if (name == "printer") {
      page_->context.job.printer = kPrinter;
    } else if (name == "room") {
      words >> page_->context.run_length_pixels_left;
    } else if (name == "pixels") {
      ShowPixels(words);
    } else if (name == "state") {
      ShowState();
    } else {
      size_t times = 1;
      if (name == "repeat") words >> times >> name;
      Play("REC_" + name, words, times);
    }
  }

  void Play(const std::string& name, std::istream& words, size_t times) {
    const auto* info = std::ranges::find(records::kRecordInfos, name, &records::RecordInfo::name);
    ASSERT_NE(info, std::end(records::kRecordInfos)) << name;
    // At an odd address, as records may lie.
    Payload bytes(1);
    for (std::string word; words >> std::quoted(word, '\'');) AppendWord(bytes, word);
    int32_t result = 0;
    while (times-- > 0) {
      calls_.clear();
      result = DispatchRecord(page_->context, info->type, Bytes(bytes).subspan(1));
    }
    if (result != 1) calls_.push_back("returns " + std::to_string(result));
  }

  static void AppendWord(Payload& bytes, const std::string& word) {
    const size_t colon = word.find(':');
    const std::string kind = word.substr(0, colon), value = word.substr(colon + 1);
    if (colon == word.npos && word.find('.') != word.npos) {
      AppendPart(bytes, std::stof(word));
    } else if (colon == word.npos) {
      AppendPart(bytes, static_cast<uint32_t>(std::stoll(word, nullptr, 0)));
    } else if (kind == "byte") {
      AppendPart(bytes, static_cast<uint8_t>(std::stoi(value, nullptr, 0)));
    } else if (kind == "zeros") {
      bytes.resize(bytes.size() + std::stoul(value));
    } else if (kind == "dib") {
      int bits = 0, width = 5, height = 3;
      sscanf(value.c_str(), "%d,%d,%d", &bits, &width, &height);
      AppendPart(bytes, Picture{static_cast<uint16_t>(bits), width, height}.Packed());
    } else {
      const size_t size = bytes.size() + (kind == "face" ? 64 : 2 * Unescaped(value).size());
      for (const char c : Unescaped(value)) AppendPart(bytes, static_cast<uint16_t>(c & 0xFF));
      bytes.resize(size);
    }
  }

  /// The rows of the page's top left part.
  void ShowPixels(std::istream& words) {
    int width = 0, height = 0;
    words >> width >> height;
    if (canvas_) {
      ReleaseDrawingObjects(page_->context);
    } else {
      canvas_.emplace(width, height).Play(page_->Close().Get());
    }
    calls_.clear();
    for (int y = 0; y < height; ++y) {
      std::ostringstream row;
      for (int x = 0; x < width; ++x) {
        row << (x == 0 ? "" : " ") << std::hex << std::setw(6) << std::setfill('0')
            << canvas_->Pixel(x, y);
      }
      calls_.push_back(row.str());
    }
  }

  /// What playback keeps beside the page DC.
  void ShowState() {
    PlaybackContext& context = page_->context;
    std::ostringstream out;
    out << "page value " << context.page_value.x << ' ' << context.page_value.y << " | non-ASCII "
        << context.non_ascii_text_seen << " | fonts";
    context.seen_fonts.ForEach([&](const SeenFont& font) { out << ' ' << font.key.lfHeight; });
    if (page_->job_failed) out << " | job failed";
    calls_.push_back(out.str());
  }

  // What follows shows the arguments of a call. `before` and `behind` are the numbers beside one.

  std::string NumberOf(HGDIOBJ object) {
    const auto found = std::find(objects_.rbegin(), objects_.rend(), object);
    if (object == nullptr) return " none";
    return found == objects_.rend() ? " another" : " #" + std::to_string(objects_.rend() - found);
  }
  template <typename T>
  void Show(std::ostream& out, T argument, int64_t before, int64_t behind) {
    if constexpr (std::is_same_v<T, HDC>) {
      BITMAP bitmap = {};
      if (argument == dc_) return;
      GetObjectW(GetCurrentObject(argument, OBJ_BITMAP), sizeof bitmap, &bitmap);
      out << ' ' << bitmap.bmWidth << 'x' << bitmap.bmHeight;
    } else if constexpr (std::is_same_v<T, HGDIOBJ> || std::is_same_v<T, HBRUSH> ||
                         std::is_same_v<T, HBITMAP> || std::is_same_v<T, HPALETTE>) {
      out << NumberOf(argument);
    } else if constexpr (std::is_same_v<T, BLENDFUNCTION>) {
      ShowNumber(out, std::bit_cast<DWORD>(argument));
    } else if constexpr (!std::is_pointer_v<T>) {
      ShowNumber(out, argument);
    } else if (argument == nullptr) {
      out << " none";
    } else if constexpr (std::is_same_v<T, const LOGFONTW*>) {
      ShowFields<LONG>(out, argument, 5);
      out << ' ' << int{argument->lfItalic} << ' ' << int{argument->lfStrikeOut} << ' '
          << Narrow(argument->lfFaceName);
    } else if constexpr (std::is_same_v<T, const LOGBRUSH*>) {
      ShowFields<DWORD>(out, argument, 2);
      const auto* dib = reinterpret_cast<const records::DibHeader*>(argument->lbHatch);
      if (argument->lbStyle != BS_DIBPATTERNPT || dib == nullptr) {
        ShowNumber(out, argument->lbHatch);
      } else {
        out << ' ' << dib->width << 'x' << dib->height << 'x' << dib->bit_count;
      }
    } else if constexpr (std::is_same_v<T, const COLORADJUSTMENT*>) {
      ShowFields<WORD>(out, argument, sizeof *argument / sizeof(WORD));
    } else if constexpr (std::is_same_v<T, const XFORM*>) {
      ShowFields<float>(out, argument, 6);
    } else if constexpr (std::is_same_v<T, const void*>) {
      ShowFields<DWORD>(out, argument, 1);
    } else if constexpr (std::is_same_v<T, const BITMAPINFO*>) {
      ShowFields<DWORD>(out, argument->bmiColors, 2);
    } else if constexpr (std::is_same_v<T, const wchar_t*>) {
      out << " '" << Narrow({argument, static_cast<size_t>(behind)}) << '\'';
    } else {
      const bool points = std::is_same_v<T, const POINT*>;
      EXPECT_EQ(reinterpret_cast<uintptr_t>(argument) % alignof(DWORD), 0u);
      const bool array = std::is_same_v<T, const DWORD*>;
      ShowFields<LONG>(out, argument,
                       static_cast<size_t>(points  ? 2 * behind
                                           : array ? before
                                                   : 4));
    }
  }

  template <typename T>
  static int64_t Number(T argument) {
    if constexpr (std::is_integral_v<T>) return argument;
    return 0;
  }

  template <typename T>
  static T Answer(int64_t answer) {
    if constexpr (std::is_pointer_v<T>) return reinterpret_cast<T>(answer);
    if constexpr (!std::is_pointer_v<T>) return static_cast<T>(answer);
  }

  /// Notes a call and makes it, unless the script has an answer.
  template <typename Watch, typename... Arguments>
  auto Call(const std::string& name, const Watch& watch, Arguments... arguments)
      -> decltype(watch.CallOriginal(arguments...)) {
    using Result = decltype(watch.CallOriginal(arguments...));
    const std::tuple all(arguments...);
    std::ostringstream out;
    out << name;
    [&]<size_t... kIndex>(std::index_sequence<kIndex...>) {
      constexpr size_t kLast = sizeof...(kIndex) - 1;
      (Show(out, std::get<kIndex>(all), Number(std::get < kIndex == 0 ? 0 : kIndex - 1 > (all)),
            Number(std::get < kIndex == kLast ? kLast : kIndex + 1 > (all))),
       ...);
    }
    (std::index_sequence_for<Arguments...>());
    const auto answer = answers_.find(name);
    const Result result = answer != answers_.end() ? Answer<Result>(answer->second)
                                                   : watch.CallOriginal(arguments...);
    if constexpr (std::is_pointer_v<Result>) {
      if (!name.starts_with("Select") && result != nullptr) {
        objects_.push_back(result);
        out << " = #" << objects_.size();
      }
    }
    // Objects and DCs of the imaging kernel are its own.
    const bool others = name == "SelectObject" ? out.str().find('x') != std::string::npos
                                               : out.str() == "DeleteObject another";
    if (!others) calls_.push_back(out.str());
    return result;
  }

  std::optional<Page> page_;
  HDC dc_ = nullptr;
  std::optional<Canvas> canvas_;
  std::vector<std::string> calls_;          // and other outcomes of the last line
  std::map<std::string, int64_t> answers_;  // of functions that are not to be called
  std::vector<HGDIOBJ> objects_;            // by their number
  std::optional<WATCH(CreateDIBSection)> no_section_;
  const WATCH(GetPrinterW) printers_{FakeGetPrinter};
  WATCH(GetDeviceCaps)
  sizes_{[this](HDC dc, int index) {  // every device is 8 pixels wide and high
    return index == HORZRES || index == VERTRES ? 8 : sizes_.CallOriginal(dc, index);
  }};
  const WATCH(CreateDCW) printer_dcs_{
      [this](auto, const WCHAR* printer, auto, const DEVMODEW* settings) {
        EXPECT_EQ(settings, &page_->settings.pub);
        calls_.push_back("CreateDCW " + Narrow(printer));
        return answers_.contains("CreateDCW") ? nullptr : CreateCompatibleDC(nullptr);
      }};

#define CALL(function) \
  WATCH(function)      \
  function##_{[this](auto... arguments) { return Call(#function, function##_, arguments...); }};
  // clang-format off
  CALL(SaveDC) CALL(RestoreDC) CALL(BeginPath) CALL(EndPath) CALL(CloseFigure) CALL(StrokePath)
  CALL(FillPath) CALL(StrokeAndFillPath) CALL(SelectClipPath) CALL(MoveToEx) CALL(LineTo)
  CALL(PolyBezier) CALL(PolyBezierTo) CALL(Polyline) CALL(PolylineTo) CALL(Rectangle) CALL(Ellipse)
  CALL(FillRect) CALL(SetBkColor) CALL(SetBkMode) CALL(SetPolyFillMode) CALL(SetROP2) CALL(PatBlt)
  CALL(SetMiterLimit) CALL(SetBrushOrgEx) CALL(SetGraphicsMode) CALL(SetWorldTransform)
  CALL(ModifyWorldTransform) CALL(CreatePenIndirect) CALL(ExtCreatePen) CALL(CreateBrushIndirect)
  CALL(CreateFontIndirectW) CALL(SelectObject) CALL(DeleteObject) CALL(SetTextAlign)
  CALL(SetTextColor) CALL(ExtTextOutW) CALL(BitBlt) CALL(StretchBlt) CALL(AlphaBlend)
  CALL(SetColorAdjustment) CALL(SetStretchBltMode) CALL(CreateDIBitmap) CALL(MaskBlt)
  CALL(SelectPalette) CALL(RealizePalette)
  // clang-format on
#undef CALL
};

TEST_P(PlaybackScript, RecordsMakeTheirCalls) { Run(); }

INSTANTIATE_TEST_SUITE_P(Playback, PlaybackScript,
                         testing::Values("blits", "drawing", "objects", "text"),
                         [](const auto& script) { return std::string(script.param); });

}  // namespace
}  // namespace quillo::test
