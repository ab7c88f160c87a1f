#include "capture/records/ternary_rop.h"

#include <gtest/gtest.h>
#include <string_view>

namespace quillo::records {
namespace {

/// Computes the operation that the low word of a code spells, for all eight inputs at once.
///
/// Bits 0-1: operands of the template to skip; bits 2-4: template; bit 5: final NOT; bits 6-15:
/// five operations, the first one lowest. A template is read in a circle; its '*' stands for the
/// next operation, all others follow the operands.
class RopInterpreter {
 public:
  explicit RopInterpreter(uint32_t code) : code_(code) {}

  /// The truth table, or -1 when the word is malformed.
  int TruthTable() {
    static constexpr std::string_view kTemplates[8] = {"SPDD", "SPD",    "SDP",     "",
                                                       "",     "SSP*DS", "SSP*PDS", "SSD*PDS"};
    const std::string_view operands = kTemplates[(code_ >> 2) & 7];
    if (operands.empty()) return -1;

    int missing = 1;
    for (int i = 0; i < kOperations; ++i) missing += Operation(i) != kNot;
    for (size_t at = code_ & 3; missing > 0; ++at) {
      const char operand = operands[at % operands.size()];
      if (operand == '*') {
        Apply(Operation(applied_++));
      } else {
        stack_[depth_++] = operand == 'P' ? 0xF0 : operand == 'S' ? 0xCC : 0xAA;
        --missing;
      }
    }
    while (applied_ < kOperations) Apply(Operation(applied_++));
    if ((code_ & 0x20) != 0) Apply(kNot);
    return depth_ == 1 ? stack_[0] : -1;
  }

 private:
  static constexpr int kOperations = 5;
  enum { kNot, kXor, kOr, kAnd };

  [[nodiscard]] int Operation(int index) const { return (code_ >> (6 + 2 * index)) & 3; }

  void Apply(int operation) {
    if (operation == kNot) {
      stack_[depth_ - 1] ^= 0xFF;
      return;
    }
    ASSERT_GE(depth_, 2);
    const uint8_t right = stack_[--depth_];
    uint8_t& left = stack_[depth_ - 1];
    left = operation == kXor ? left ^ right : operation == kOr ? left | right : left & right;
  }

  uint32_t code_;
  uint8_t stack_[kOperations + 1] = {};
  int depth_ = 0;
  int applied_ = 0;
};

TEST(TernaryRop, EveryCode_SpellsTheTruthTableOfItsIndex) {
  for (uint32_t index = 0; index < 256; ++index) {
    const uint32_t code = TernaryRop(index);
    EXPECT_EQ(code >> 16, index);
    EXPECT_EQ(TernaryRop(0xFFFFAA00 | index), code);
    EXPECT_EQ(RopInterpreter(code).TruthTable(), static_cast<int>(index)) << std::hex << code;
  }
}

// One function has several spellings; these are the ones that have names.
TEST(TernaryRop, NamedOperations_HaveTheirPublishedCode) {
  const uint32_t codes[] = {0x00000042, 0x001100A6, 0x00330008, 0x00440328, 0x00550009,
                            0x005A0049, 0x00660046, 0x008800C6, 0x00BB0226, 0x00C000CA,
                            0x00CC0020, 0x00EE0086, 0x00F00021, 0x00FB0A09, 0x00FF0062};
  for (const uint32_t code : codes) EXPECT_EQ(TernaryRop(code >> 16), code);
}

}  // namespace
}  // namespace quillo::records
