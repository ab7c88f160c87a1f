#include "capture/records/ternary_rop.h"

#include <gtest/gtest.h>
#include <string_view>
#include <vector>

namespace quillo::records {
namespace {

/// The truth table of the operation that the low word of a code spells, or -1 when it is malformed.
///
/// Bits 0-1: operands of the template to skip; bits 2-4: template; bit 5: final NOT; bits 6-15:
/// five operations, the first one lowest. A template is read in a circle; its '*' stands for the
/// next operation, all others follow the operands.
int TruthTable(uint32_t code) {
  enum : uint32_t { kNot, kXor, kOr, kAnd };
  static constexpr uint32_t kOperations = 5;
  static constexpr std::string_view kTemplates[8] = {"SPDD", "SPD",    "SDP",     "",
                                                     "",     "SSP*DS", "SSP*PDS", "SSD*PDS"};
  const std::string_view operands = kTemplates[(code >> 2) & 7];
  if (operands.empty()) return -1;
  const auto operation = [code](uint32_t index) { return (code >> (6 + 2 * index)) & 3; };

  std::vector<int> stack;
  const auto apply = [&stack](uint32_t op) {
    const int right = stack.empty() ? -1 : stack.back();
    if (op != kNot && !stack.empty()) stack.pop_back();
    if (stack.empty()) return;
    int& left = stack.back();
    left = op == kNot   ? left ^ 0xFF
           : op == kXor ? left ^ right
           : op == kOr  ? left | right
                        : left & right;
  };
  size_t missing = 1;
  for (uint32_t i = 0; i < kOperations; ++i) missing += operation(i) != kNot;
  uint32_t applied = 0;
  for (size_t at = code & 3; missing > 0; ++at) {
    const char operand = operands[at % operands.size()];
    if (operand == '*') {
      apply(operation(applied++));
    } else {
      stack.push_back(operand == 'P' ? 0xF0 : operand == 'S' ? 0xCC : 0xAA);
      --missing;
    }
  }
  while (applied < kOperations) apply(operation(applied++));
  if ((code & 0x20) != 0) apply(kNot);
  return stack.size() == 1 ? stack[0] : -1;
}

TEST(TernaryRop, EveryCode_SpellsTheTruthTableOfItsIndex) {
  for (uint32_t index = 0; index < 256; ++index) {
    const uint32_t code = TernaryRop(0xFFFFAA00 | index);
    EXPECT_EQ(code >> 16, index);
    EXPECT_EQ(TruthTable(code), static_cast<int>(index)) << std::hex << code;
  }
}

// One function has several spellings; these are the ones that have names.
TEST(TernaryRop, NamedOperations_HaveTheirPublishedCode) {
  for (const uint32_t code : {0x00000042u, 0x001100A6u, 0x00330008u, 0x00440328u, 0x00550009u,
                              0x005A0049u, 0x00660046u, 0x008800C6u, 0x00BB0226u, 0x00C000CAu,
                              0x00CC0020u, 0x00EE0086u, 0x00F00021u, 0x00FB0A09u, 0x00FF0062u}) {
    EXPECT_EQ(TernaryRop(code >> 16), code);
  }
}

}  // namespace
}  // namespace quillo::records
