#include "host/engine/symbol_encodings.h"

#include "base/windows.h"

#include <iterator>

namespace quillo::host {

namespace {

constexpr char32_t kFirst = 0x20, kLast = 0xFF;
constexpr char32_t kPrivate = 0xF000;  // the same codes as fonts of symbols map them
constexpr char32_t kNone = 0xFFFD;

// Sixteen codes a line, from kFirst on: for Symbol Adobe's encoding, for Wingdings the characters
// that Unicode adopted from it.
// clang-format off
constexpr char32_t kSymbol[] =
    U" !∀#∃%&∋()∗+,−./"
    U"0123456789:;<=>?"
    U"≅ΑΒΧΔΕΦΓΗΙϑΚΛΜΝΟ"
    U"ΠΘΡΣΤΥςΩΞΨΖ[∴]⊥_"
    U"‾αβχδεφγηιϕκλμνο"
    U"πθρστυϖωξψζ{|}∼�"
    U"����������������"
    U"����������������"
    U"€ϒ′≤⁄∞ƒ♣♦♥♠↔←↑→↓"
    U"°±″≥×∝∂•÷≠≡≈…⏐⎯↵"
    U"ℵℑℜ℘⊗⊕∅∩∪⊃⊇⊄⊂⊆∈∉"
    U"∠∇®©™∏√⋅¬∧∨⇔⇐⇑⇒⇓"
    U"◊⟨®©™∑⎛⎜⎝⎡⎢⎣⎧⎨⎩⎪"
    U"�⟩∫⌠⎮⌡⎞⎟⎠⎤⎥⎦⎫⎬⎭�";
constexpr char32_t kWingdings[] =
    U" 🖉✂✁👓🕭🕮🕯🕿✆🖂🖃📪📫📬📭"
    U"📁📂📄🗏🗐🗄⌛🖮🖰🖲🖳🖴🖫🖬✇✍"
    U"🖎✌👌👍👎☜☞☝☟🖐☺😐☹💣☠🏳"
    U"🏱✈☼💧❄🕆✞🕈✠✡☪☯ॐ☸♈♉"
    U"♊♋♌♍♎♏♐♑♒♓🙰🙵●🔾■□"
    U"🞐❑❒⬧⧫◆❖⬥⌧⮹⌘🏵🏶🙶🙷�"
    U"⓪①②③④⑤⑥⑦⑧⑨⑩⓿❶❷❸❹"
    U"❺❻❼❽❾❿🙢🙠🙡🙣🙞🙜🙝🙟·•"
    U"⬝⭘🞆🞈🞊🞋🔿▪🞎🟂🟀★🟋🟏🟓🟑"
    U"⯐⌖⯎⯏⯑✪✰🕐🕑🕒🕓🕔🕕🕖🕗🕘"
    U"🕙🕚🕛⮰⮱⮲⮳⮴⮵⮶⮷🙪🙫🙕🙔🙗"
    U"🙖🙐🙑🙒🙓⌫⌦⮘⮚⮙⮛⮈⮊⮉⮋🡨"
    U"🡪🡩🡫🡬🡭🡯🡮🡸🡺🡹🡻🡼🡽🡿🡾⇦"
    U"⇨⇧⇩⬄⇳⬁⬀⬃⬂🢬🢭🗶✔🗷🗹�";
// clang-format on
static_assert(std::size(kSymbol) == kLast - kFirst + 2);
static_assert(std::size(kWingdings) == kLast - kFirst + 2);

constexpr struct {
  const wchar_t* face;
  const char32_t* characters;
} kEncodings[] = {{L"Symbol", kSymbol}, {L"Wingdings", kWingdings}};

}  // namespace

char32_t UnicodeOfSymbol(const wchar_t* face, wchar_t code) {
  const char32_t place = code >= kPrivate ? code - kPrivate : code;
  if (place < kFirst || place > kLast) return 0;
  for (const auto& encoding : kEncodings) {
    if (CompareStringOrdinal(face, -1, encoding.face, -1, TRUE) != CSTR_EQUAL) continue;
    const char32_t character = encoding.characters[place - kFirst];
    return character == kNone ? 0 : character;
  }
  return 0;
}

}  // namespace quillo::host
