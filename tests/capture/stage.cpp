#include "capture/stage.h"

#include <array>
#include <cstring>
#include <deque>
#include <functional>
#include <iomanip>
#include <sstream>
#include <stdexcept>
#include <tuple>
#include <vector>

#include "capture/brush.h"
#include "capture/clip.h"
#include "capture/fill.h"
#include "capture/hooks.h"
#include "capture/pen.h"
#include "host/engine/services/brushes.h"
#include "host/engine/services/clips.h"
#include "host/engine/services/colours.h"
#include "host/engine/services/fonts.h"
#include "host/engine/services/guard.h"
#include "host/engine/services/paths.h"
#include "host/engine/services/strings.h"
#include "host/engine/services/surfaces.h"
#include "host/engine/services/transforms.h"
#include "support/line.h"

namespace quillo::test {
namespace {

#define NAME(name) \
  { #name, static_cast < uint32_t>(name) }
const std::map<std::string, uint32_t> kNames = {
    // clang-format off
    {"begin", PD_BEGINSUBPATH}, {"end", PD_ENDSUBPATH}, {"close", PD_CLOSEFIGURE}, {"curve", PD_BEZIERS},
    NAME(BMF_1BPP), NAME(BMF_4BPP), NAME(BMF_8BPP), NAME(BMF_24BPP), NAME(BMF_32BPP), NAME(BMF_JPEG), NAME(COLORONCOLOR), NAME(HALFTONE),
    NAME(DC_TRIVIAL), NAME(DC_RECT), NAME(DC_COMPLEX), NAME(FP_ALTERNATEMODE), NAME(FP_WINDINGMODE),
    NAME(HS_HORIZONTAL), NAME(HS_DIAGCROSS), NAME(HS_DDI_MAX), NAME(R2_COPYPEN), NAME(R2_WHITE),
    NAME(LA_GEOMETRIC), NAME(LA_ALTERNATE), NAME(JOIN_ROUND), NAME(JOIN_BEVEL), NAME(JOIN_MITER),
    NAME(ENDCAP_ROUND), NAME(ENDCAP_SQUARE), NAME(ENDCAP_BUTT),
    NAME(FM_SEL_ITALIC), NAME(FM_SEL_STRIKEOUT), NAME(FM_SEL_OUTLINED), NAME(FO_SIM_BOLD), NAME(FO_SIM_ITALIC),
    NAME(SO_FLAG_DEFAULT_PLACEMENT), NAME(SO_HORIZONTAL), NAME(SO_VERTICAL), NAME(SO_GLYPHINDEX_TEXTOUT),
    // clang-format on
};
#undef NAME

[[noreturn]] void Refuse(const std::string& word) {
  throw std::invalid_argument("not understood: '" + word + "'");
}

/// A number with a decimal point, or integers and names joined by |.
double ToNumber(const std::string& word) {
  if (word.find('.') != word.npos || word == "nan") return std::stod(word);
  uint32_t number = 0;
  std::istringstream parts(word);
  for (std::string part; std::getline(parts, part, '|');) {
    const auto name = kNames.find(part);
    if (name == kNames.end() && part.find_first_not_of("-0123456789abcdefABCDEFx") != part.npos) {
      Refuse(part);
    }
    number |=
        name != kNames.end() ? name->second : static_cast<uint32_t>(std::stoll(part, nullptr, 0));
  }
  return static_cast<int32_t>(number);
}

/// The words of a line; quotes hold blanks together.
class LineWords {
 public:
  explicit LineWords(const std::string& line) {
    std::istringstream rest(line);
    for (std::string word; rest >> std::quoted(word, '\'');) words_.push_back(word);
  }

  bool AtEnd() const { return words_.empty(); }
  std::string Next() {
    if (AtEnd()) Refuse("end of line");
    std::string word = words_.front();
    words_.pop_front();
    return word;
  }
  template <typename T>
  T Next() {
    const double number = ToNumber(Next());
    if constexpr (std::is_floating_point_v<T>) return static_cast<T>(number);
    return static_cast<T>(static_cast<int64_t>(number));
  }
  bool Take(std::string_view word) {
    const bool next = !AtEnd() && words_.front() == word;
    if (next) words_.pop_front();
    return next;
  }
  /// The number after `key` when it is the next word, else 0.
  template <typename T>
  T After(std::string_view key) {
    return Take(key) ? Next<T>() : T{};
  }
  /// As many numbers as the struct T has fields, all of one type.
  template <typename T, typename Field>
  T NextFields() {
    T fields;
    for (size_t at = 0; at < sizeof fields; at += sizeof(Field)) {
      const auto field = Next<Field>();
      std::memcpy(reinterpret_cast<std::byte*>(&fields) + at, &field, sizeof field);
    }
    return fields;
  }

 private:
  std::deque<std::string> words_;
};

using Thing = std::shared_ptr<void>;
using Maker = Thing (*)(LineWords& words, const Stage& stage);

template <typename T, typename Field>
Thing MakeFields(LineWords& words, const Stage&) {
  return std::make_shared<T>(words.NextFields<T, Field>());
}

std::vector<host::PathRun> NextRuns(LineWords& words) {
  std::vector<host::PathRun> runs;
  while (!words.AtEnd()) {
    const std::string word = words.Next();
    const size_t comma = word.find(',');
    if (comma == word.npos) {
      runs.push_back({static_cast<FLONG>(ToNumber(word)), {}});
    } else {
      const auto fix = [](const std::string& pixels) {
        return static_cast<FIX>(ToNumber(pixels) * 16);
      };
      runs.at(runs.size() - 1)
          .points.push_back({fix(word.substr(0, comma)), fix(word.substr(comma + 1))});
    }
  }
  return runs;
}

/// A surface and its bits.
struct Picture : host::Surface {
  Picture(SIZEL size, ULONG format, bool top_down, std::vector<std::byte> all, size_t row_size)
      : Surface(size, format, top_down, nullptr, static_cast<ULONG>(all.size()),
                static_cast<LONG>(row_size)),
        bits(std::move(all)) {
    pvBits = bits.data();
  }
  std::vector<std::byte> bits;
};

Thing MakePicture(LineWords& words, const Stage&) {
  const auto format = words.Next<ULONG>();
  const auto size = words.NextFields<SIZEL, LONG>();
  const bool top_down = words.Take("top-down");
  const auto missing = words.After<ULONG>("missing");
  std::vector<std::byte> bits;
  size_t row_size = 0;
  while (!words.AtEnd()) {
    const std::string row = words.Next();
    for (size_t at = 0; at < row.size(); at += 2) {
      bits.push_back(static_cast<std::byte>(std::stoul(row.substr(at, 2), nullptr, 16)));
    }
    if (row_size == 0) row_size = bits.size();
  }
  auto picture = std::make_shared<Picture>(size, format, top_down, std::move(bits), row_size);
  if (missing != 0) picture->cjBits = missing;
  return picture;
}

Thing MakeTranslation(LineWords& words, const Stage&) {
  const bool enquiry = words.Take("enquiry"), palette = words.Take("palette");
  std::vector<ULONG> vector;
  while (!words.AtEnd()) vector.push_back(words.Next<ULONG>());
  auto translation = std::make_shared<host::XlateObject>(std::move(vector));
  if (enquiry || palette) translation->pulXlate = nullptr;
  if (palette) translation->flXlate = 0;
  return translation;
}

Thing MakeBrush(LineWords& words, const Stage& stage) {
  using Brush = host::BrushObject;
  if (words.Take("unrealisable")) return std::make_shared<Brush>(Brush::Pattern());
  if (words.Take("hatch")) {
    return std::make_shared<Brush>(Brush::Pattern{quillo::DrvRealizeBrush, stage.Surface(),
                                                  stage["pattern"], nullptr, stage["translation"],
                                                  words.Next<ULONG>()});
  }
  auto brush = std::make_shared<Brush>(words.Next<ULONG>());
  if (words.Take("realised")) {
    auto* realised = static_cast<RealisedBrush*>(brush->Allocate(kRealisedBrushSize));
    realised->background = words.Next<uint32_t>();
  }
  return brush;
}

/// Attributes of a line and its style array.
struct Pen : LINEATTRS {
  std::vector<FLOAT_LONG> entries;
};

Thing MakePen(LineWords& words, const Stage&) {
  auto pen = std::make_shared<Pen>();
  pen->fl = words.Next<FLONG>();
  const auto next = [&words, geometric = (pen->fl & LA_GEOMETRIC) != 0] {
    return geometric ? FLOAT_LONG{.e = words.Next<float>()} : FLOAT_LONG{.l = words.Next<LONG>()};
  };
  if (words.Take("width")) pen->elWidth = next();
  pen->iJoin = words.After<ULONG>("join");
  pen->iEndCap = words.After<ULONG>("cap");
  pen->eMiterLimit = words.After<float>("miter");
  if (words.Take("style")) {
    while (!words.AtEnd()) pen->entries.push_back(next());
  }
  pen->pstyle = pen->entries.data();
  pen->cstyle = static_cast<ULONG>(pen->entries.size());
  return pen;
}

Thing MakeClip(LineWords& words, const Stage&) {
  const auto complexity = words.Next<BYTE>();
  const auto bounds = words.NextFields<RECTL, LONG>();
  if (complexity == DC_COMPLEX) return std::make_shared<host::ClipObject>(bounds, NextRuns(words));
  return std::make_shared<host::ClipObject>(complexity, bounds);
}

Thing MakeFont(LineWords& words, const Stage&) {
  const std::string family = words.Next();
  IFIMETRICS metrics = {};
  metrics.fwdUnitsPerEm = words.After<FWORD>("em");
  metrics.fwdAveCharWidth = words.After<FWORD>("width");
  metrics.usWinWeight = words.After<USHORT>("weight");
  metrics.jWinCharSet = words.After<BYTE>("charset");
  metrics.jWinPitchAndFamily = words.After<BYTE>("pitch");
  metrics.fsSelection = words.After<USHORT>("selection");
  const auto type = words.After<FLONG>("type");
  const XFORML transform =
      words.Take("transform") ? words.NextFields<XFORML, float>() : XFORML{1, 0, 0, 1, 0, 0};
  const host::FontNames names = {{family.begin(), family.end()}, L"Style", L"Full"};
  return std::make_shared<host::FontObject>(metrics, names, transform, type);
}

/// A glyph a character, 10 pixels apart and slowly sinking.
Thing MakeText(LineWords& words, const Stage&) {
  const std::string text = words.Next();
  std::vector<GLYPHPOS> glyphs;
  for (LONG i = 0; i < static_cast<LONG>(text.size()); ++i) {
    glyphs.push_back({0, nullptr, {120 + 10 * i, 70 + i}});
  }
  const bool nameless = words.Take("nameless");
  const auto batch = words.After<size_t>("batch");
  const auto accelerators = words.AtEnd() ? 0 : words.Next<FLONG>();
  auto string = std::make_shared<host::StringObject>(
      std::move(glyphs), std::wstring(text.begin(), text.end()), accelerators, RECTL{}, batch);
  if (nameless) string->pwszOrg = nullptr;
  return string;
}

template <typename T>
Thing MakeOfRuns(LineWords& words, const Stage&) {
  return std::make_shared<T>(NextRuns(words));
}

Thing MakeTransform(LineWords& words, const Stage&) {
  return std::make_shared<host::XformObject>(words.NextFields<XFORML, float>());
}

const std::map<std::string, Maker> kMakers = {
    // clang-format off
    {"mix", MakeFields<ULONG, ULONG>}, {"mode", MakeFields<ULONG, ULONG>},
    {"options", MakeFields<ULONG, ULONG>}, {"rop4", MakeFields<ULONG, ULONG>},
    {"brush_origin", MakeFields<POINTL, LONG>}, {"mask_origin", MakeFields<POINTL, LONG>},
    {"source_origin", MakeFields<POINTL, LONG>}, {"bounds", MakeFields<records::Rect, LONG>},
    {"opaque_rect", MakeFields<RECTL, LONG>}, {"source_rect", MakeFields<RECTL, LONG>},
    {"target", MakeFields<RECTL, LONG>}, {"blend", MakeFields<BLENDOBJ, BYTE>},
    {"adjustment", MakeFields<COLORADJUSTMENT, WORD>}, {"transform", MakeTransform},
    {"source", MakePicture}, {"mask", MakePicture}, {"pattern", MakePicture},
    {"translation", MakeTranslation}, {"brush", MakeBrush}, {"fill_brush", MakeBrush},
    {"opaque_brush", MakeBrush}, {"pen", MakePen}, {"path", MakeOfRuns<host::PathObject>},
    {"clip", MakeClip}, {"font", MakeFont}, {"text", MakeText},
    // clang-format on
};

using Call = std::function<std::string(const Stage& stage, SURFOBJ* surface)>;

/// A call of a hook with the surface and then what was set under these names.
template <typename... Arguments>
Call Hook(BOOL (*hook)(SURFOBJ*, Arguments...) noexcept,
          const std::array<const char*, sizeof...(Arguments)>& names) {
  return [=](const Stage& stage, SURFOBJ* surface) {
    const auto call = [&](auto... name) {
      return hook(surface, static_cast<Arguments>(stage[name])...);
    };
    return std::apply(call, names) ? "TRUE" : Line("FALSE ", GetLastError());
  };
}

const std::map<std::string, Call> kCalls = {
    // clang-format off
    {"DrvStrokePath", Hook(quillo::DrvStrokePath, {"path", "clip", "transform", "brush", "brush_origin", "pen", "mix"})},
    {"DrvFillPath", Hook(quillo::DrvFillPath, {"path", "clip", "fill_brush", "brush_origin", "mix", "options"})},
    {"DrvStrokeAndFillPath", Hook(quillo::DrvStrokeAndFillPath,
         {"path", "clip", "transform", "brush", "pen", "fill_brush", "brush_origin", "mix", "options"})},
    {"DrvBitBlt", Hook(quillo::DrvBitBlt, {"source", "mask", "clip", "translation", "target", "source_origin",
         "mask_origin", "brush", "brush_origin", "rop4"})},
    {"DrvPaint", Hook(quillo::DrvPaint, {"clip", "brush", "brush_origin", "mix"})},
    {"DrvStretchBlt", Hook(quillo::DrvStretchBlt, {"source", "mask", "clip", "translation", "adjustment",
         "halftone_origin", "target", "source_rect", "mask_origin", "mode"})},
    {"DrvCopyBits", Hook(quillo::DrvCopyBits, {"source", "clip", "translation", "target", "source_origin"})},
    {"DrvAlphaBlend", Hook(quillo::DrvAlphaBlend, {"source", "clip", "translation", "target", "source_rect", "blend"})},
    {"DrvTextOut", Hook(quillo::DrvTextOut, {"text", "font", "clip", "extra_rects", "opaque_rect", "brush",
         "opaque_brush", "brush_origin", "mix"})},
    {"WriteBrush", [](const Stage& stage, SURFOBJ*) {
       WriteBrush(stage.Device(), stage["brush"], records::kFillBrush);
       return std::string("TRUE"); }},
    {"WriteFill", [](const Stage& stage, SURFOBJ*) {
       const records::Rect* rect = stage["bounds"];
       WriteFill(stage.Device(), stage["options"], stage["brush"], stage["brush_origin"], stage["mix"],
                 *rect, FillKind::kRectangle);
       return std::string("TRUE"); }},
    {"WriteClip", [](const Stage& stage, SURFOBJ*) {
       records::Rect b = {};
       const bool written = WriteClip(stage.Device(), stage["clip"], stage["bounds"], &b);
       return Line(written ? "TRUE " : "FALSE ", b.left, ' ', b.top, ' ', b.right, ' ', b.bottom); }},
    {"WritePen", [](const Stage& stage, SURFOBJ*) {
       LINEATTRS* pen = stage["pen"];
       WritePen(stage.Device(), pen, stage["transform"], stage["brush"]);
       return Line("TRUE miter ", pen->eMiterLimit); }},
    // clang-format on
};

}  // namespace

void Stage::Set(const std::string& line) {
  LineWords words(line);
  const std::string name = words.Next();
  if (name == "remembered") {
    device_.remembered_colour = words.Next<uint32_t>();
  } else if (name == "resolution") {
    device_.resolution = words.NextFields<Resolution, uint32_t>();
  } else if (name == "fail") {
    failing_service_ = words.Next();
    host::FailNextCall(failing_service_.c_str());
  } else if (const auto maker = kMakers.find(name); maker == kMakers.end()) {
    Refuse(name);
  } else if (words.Take("none")) {
    things_.erase(name);
  } else {
    things_[name] = maker->second(words, *this);
  }
  if (!words.AtEnd()) Refuse(words.Next());
}

bool Stage::IsCall(const std::string& name) { return kCalls.contains(name); }

std::string Stage::Call(const std::string& name, SURFOBJ* surface) const {
  SetLastError(0);
  return kCalls.at(name)(*this, surface);
}

}  // namespace quillo::test
