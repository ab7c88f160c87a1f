#include "host/pictures/orientation.h"

#include <gtest/gtest.h>
#include <string>

#include "support/case_table.h"
#include "tests/host/pictures/picture24.h"

namespace quillo::host {
namespace {

TEST(OrientationOf, Files_GiveTheirs_CutFilesThatOrUpright) {
  for (const test::CaseRow& row : test::ReadCases("host/orientation.txt")) {
    const Bytes file = std::as_bytes(std::span(row.fields[0]));
    const auto frame = static_cast<uint32_t>(std::stoul(row.fields[1]));
    const Orientation whole = OrientationOf(file, frame);
    EXPECT_EQ(std::to_string(whole), row.fields[2]) << row.place;
    for (size_t size = 0; size < file.size(); ++size) {
      const std::vector<std::byte> copy(file.begin(), file.begin() + static_cast<ptrdiff_t>(size));
      const Orientation cut = OrientationOf(copy, frame);
      EXPECT_TRUE(cut == kUpright || cut == whole) << row.place << ", " << size << " bytes";
    }
  }
}

// Six pixels, called by letters, in two rows of three; as they are seen upright.
TEST(TurnUpright, EachOrientation_PutsFirstRowAndColumnWhereTheyBelong) {
  const struct {
    Orientation orientation;
    const char* rows;
    LONG width;
  } cases[] = {{1, "abcdef", 3}, {2, "cbafed", 3}, {3, "fedcba", 3}, {4, "defabc", 3},
               {5, "adbecf", 2}, {6, "daebfc", 2}, {7, "fcebda", 2}, {8, "cfbead", 2}};
  for (const auto& test : cases) {
    const BitmapSource stored = Picture24(3, 2, [](size_t i) { return 'a' + i; });
    const BitmapSource upright = TurnUpright(stored, test.orientation);
    EXPECT_EQ(upright.width, test.width);
    EXPECT_EQ(upright.height, 6 / test.width);
    std::string rows;
    for (LONG i = 0; i < 6; ++i) rows += static_cast<char>(Pixel(upright, i));
    EXPECT_EQ(rows, test.rows) << test.orientation;
  }
}

}  // namespace
}  // namespace quillo::host
