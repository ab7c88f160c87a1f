#include "config/papers/custom_paper_list.h"

#include <gtest/gtest.h>
#include <vector>

namespace quillo {
namespace {

/// Papers of some numbers, linked in this order.
class Papers {
 public:
  explicit Papers(const std::vector<uint16_t>& numbers) : papers_(numbers.size()) {
    for (size_t i = 0; i < numbers.size(); ++i) {
      papers_[i].number = numbers[i];
      papers_[i].next = i + 1 < numbers.size() ? &papers_[i + 1] : nullptr;
    }
  }
  CustomPaper* Head() { return papers_.data(); }

 private:
  std::vector<CustomPaper> papers_;
};

std::vector<uint16_t> Numbers(const CustomPaper* head) {
  std::vector<uint16_t> numbers;
  for (; head != nullptr; head = head->next) numbers.push_back(head->number);
  return numbers;
}

TEST(CustomPaperList, TakeDuplicates_FirstOfANumberStays) {
  using List = std::vector<uint16_t>;
  Papers papers({300, 301, 300, 302, 301, 0, 65535, 0});
  EXPECT_EQ(Numbers(TakeDuplicates(papers.Head())), (List{0, 301, 300}));
  EXPECT_EQ(Numbers(papers.Head()), (List{300, 301, 302, 0, 65535}));
  EXPECT_EQ(TakeDuplicates(papers.Head()), nullptr);
  EXPECT_EQ(TakeDuplicates(nullptr), nullptr);
}

}  // namespace
}  // namespace quillo
