#include "config/custom_paper_list.h"

#include <gtest/gtest.h>
#include <vector>

namespace quillo {
namespace {

/// Papers of some numbers, linked in this order; the width tells the place.
class Papers {
 public:
  explicit Papers(const std::vector<uint16_t>& numbers) : papers_(numbers.size()) {
    for (size_t i = 0; i < numbers.size(); ++i) {
      papers_[i].number = numbers[i];
      papers_[i].width = static_cast<uint16_t>(i);
      papers_[i].next = i + 1 < numbers.size() ? &papers_[i + 1] : nullptr;
    }
  }
  CustomPaper* Head() { return papers_.empty() ? nullptr : papers_.data(); }

 private:
  std::vector<CustomPaper> papers_;
};

std::vector<int> Places(const CustomPaper* head) {
  std::vector<int> places;
  for (; head != nullptr; head = head->next) places.push_back(head->width);
  return places;
}

TEST(CustomPaperList, TakeDuplicates_FirstOfANumberStays) {
  const struct {
    std::vector<uint16_t> numbers;
    std::vector<int> stay;
  } cases[] = {
      {{}, {}},
      {{300}, {0}},
      {{300, 301, 302}, {0, 1, 2}},
      {{300, 300, 300}, {0}},
      {{300, 301, 300, 302, 301, 0, 65535, 0}, {0, 1, 3, 5, 6}},
  };
  for (const auto& c : cases) {
    Papers papers(c.numbers);
    const CustomPaper* taken = TakeDuplicates(papers.Head());
    EXPECT_EQ(Places(papers.Head()), c.stay);
    EXPECT_EQ(Places(taken).size(), c.numbers.size() - c.stay.size());
  }
}

TEST(CustomPaperList, Join_EitherMayBeEmpty) {
  Papers left({1, 2});
  Papers right({3});
  EXPECT_EQ(Places(Join(nullptr, nullptr)), (std::vector<int>{}));
  EXPECT_EQ(Places(Join(left.Head(), nullptr)), (std::vector<int>{0, 1}));
  EXPECT_EQ(Places(Join(nullptr, left.Head())), (std::vector<int>{0, 1}));
  EXPECT_EQ(Places(Join(left.Head(), right.Head())), (std::vector<int>{0, 1, 0}));
}

TEST(CustomPaperList, UnusedPaperNumber_LowestUntilAllAreTaken) {
  EXPECT_EQ(UnusedPaperNumber(nullptr), 257);
  EXPECT_EQ(UnusedPaperNumber(Papers({257, 259, 256, 40000}).Head()), 258);
  std::vector<uint16_t> all;
  for (uint16_t number = 257; number < 32767; ++number) all.push_back(number);
  EXPECT_EQ(UnusedPaperNumber(Papers(all).Head()), 32767);
  all.push_back(32767);
  EXPECT_EQ(UnusedPaperNumber(Papers(all).Head()), 0);
}

}  // namespace
}  // namespace quillo
