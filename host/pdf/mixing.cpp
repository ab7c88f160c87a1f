#include "host/pdf/mixing.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace quillo::host::pdf {

namespace {

constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kOpaque = 0xFF000000;

constexpr const char* kRop2Names[] = {
    "R2_BLACK",      "R2_NOTMERGEPEN", "R2_MASKNOTPEN", "R2_NOTCOPYPEN",
    "R2_MASKPENNOT", "R2_NOT",         "R2_XORPEN",     "R2_NOTMASKPEN",
    "R2_MASKPEN",    "R2_NOTXORPEN",   "R2_NOP",        "R2_MERGENOTPEN",
    "R2_COPYPEN",    "R2_MERGEPENNOT", "R2_MERGEPEN",   "R2_WHITE"};

constexpr struct {
  uint8_t rop3;
  const char* name;
} kRop3Names[] = {{0x00, "BLACKNESS"}, {0x11, "NOTSRCERASE"}, {0x33, "NOTSRCCOPY"},
                  {0x44, "SRCERASE"},  {0x55, "DSTINVERT"},   {0x5A, "PATINVERT"},
                  {0x66, "SRCINVERT"}, {0x88, "SRCAND"},      {0xBB, "MERGEPAINT"},
                  {0xC0, "MERGECOPY"}, {0xCC, "SRCCOPY"},     {0xEE, "SRCPAINT"},
                  {0xF0, "PATCOPY"},   {0xFB, "PATPAINT"},    {0xFF, "WHITENESS"}};

/// Whether every channel is 0 or 255.
bool IsPure(uint32_t colour) {
  for (int shift = 0; shift < 24; shift += 8) {
    const uint32_t channel = colour >> shift & 0xFF;
    if (channel != 0 && channel != 0xFF) return false;
  }
  return true;
}

}  // namespace

uint8_t TernaryOf(uint8_t rop2) {
  const unsigned binary = rop2 - 1u;  // bit 2 * pen + page
  unsigned ternary = 0;               // bit 4 * brush + 2 * source + page
  for (unsigned i = 0; i < 8; ++i) ternary |= (binary >> (i / 4 * 2 + i % 2) & 1) << i;
  return static_cast<uint8_t>(ternary);
}

std::string NameOfRop2(uint8_t rop2) {
  return rop2 >= 1 && rop2 <= std::size(kRop2Names) ? kRop2Names[rop2 - 1] : "R2_?";
}

std::string NameOfRop3(uint8_t rop3) {
  for (const auto& known : kRop3Names) {
    if (known.rop3 == rop3) return known.name;
  }
  char name[16];
  std::snprintf(name, sizeof name, "ROP3 0x%02X", rop3);
  return name;
}

Mixing MixingOf(uint8_t rop3, uint32_t brush, uint32_t source) {
  uint32_t on_black = 0, on_white = 0;
  for (unsigned i = 0; i < 8; ++i) {
    if ((rop3 >> i & 1) == 0) continue;
    const uint32_t bits = ((i & 4) != 0 ? brush : ~brush) & ((i & 2) != 0 ? source : ~source);
    ((i & 1) != 0 ? on_white : on_black) |= bits & kWhite;
  }
  return {on_black ^ on_white, on_black};
}

Layers LayersOf(const std::vector<Mixing>& mixings) {
  const auto all = [&](auto holds) { return std::ranges::all_of(mixings, holds); };
  const auto is_copy = [](const Mixing& m) { return m.keep == 0; };
  const auto stays = [](const Mixing& m) { return m.keep == kWhite && m.flip == 0; };
  Layers layers;
  const auto add = [&](Blend blend, auto pixel_of) {
    Layers::Layer& layer = layers.list.emplace_back(Layers::Layer{blend, {}});
    layer.pixels.reserve(mixings.size());
    for (const Mixing& mixing : mixings) layer.pixels.push_back(pixel_of(mixing));
  };
  const auto kept = [](const Mixing& m) { return m.keep | kOpaque; };
  const auto flipped = [](const Mixing& m) { return m.flip | kOpaque; };

  if (all(stays)) return layers;
  if (all([&](const Mixing& m) { return is_copy(m) || stays(m); })) {
    add(Blend::kNormal, [&](const Mixing& m) { return is_copy(m) ? flipped(m) : 0; });
    return layers;
  }
  layers.exact = all([](const Mixing& m) { return IsPure(m.keep) && IsPure(m.flip); });
  if (all([](const Mixing& m) { return m.keep == (m.flip ^ kWhite); })) {
    add(Blend::kScreen, flipped);
    return layers;
  }
  if (!all([](const Mixing& m) { return m.keep == kWhite; })) add(Blend::kMultiply, kept);
  if (all([](const Mixing& m) { return m.flip == 0; })) return layers;
  const bool only_sets = all([](const Mixing& m) { return (m.keep & m.flip) == 0; });
  add(only_sets ? Blend::kScreen : Blend::kDifference, flipped);
  return layers;
}

}  // namespace quillo::host::pdf
