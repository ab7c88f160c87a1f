#include "base/ddi.h"

#include <array>
#include <gtest/gtest.h>

#include "driver/callbacks.h"
#include "support/driver_job.h"

namespace quillo {
namespace {

class EscapeTest : public testing::Test, protected test::DriverJob {
 protected:
  /// The sizes are not looked at, so none are given.
  static ULONG Escape(SURFOBJ* surface, ULONG code, void* input, void* output) {
    return quillo::DrvEscape(surface, code, 0, input, 0, output);
  }
};

TEST_F(EscapeTest, Query_AnswersForTheFour) {
  for (uint32_t code = 0; code < 6000; ++code) {
    const ULONG supported = code == 8 || code == 42 || code == 5000 || code == 5001;
    EXPECT_EQ(Escape(&surface_, QUERYESCSUPPORT, &code, nullptr), supported) << code;
  }
  EXPECT_EQ(Escape(&surface_, QUERYESCSUPPORT, nullptr, nullptr), 0u);
}

TEST_F(EscapeTest, DeviceUnits_ArePrintableSizeAndMargins) {
  device_.sheet.pixels = {.size = {1, 2}, .margins = {3, 4, 5, 6}, .printable = {7, 8}};
  std::array<uint32_t, 5> units = {};
  EXPECT_EQ(Escape(&surface_, GETDEVICEUNITS, nullptr, units.data()), 1u);
  EXPECT_EQ(units, (std::array<uint32_t, 5>{7, 8, 3, 4, 0}));
}

TEST_F(EscapeTest, BadArguments_AnswerZero) {
  uint32_t units[4] = {};
  SetLastError(1234);
  EXPECT_EQ(Escape(&surface_, GETDEVICEUNITS, nullptr, nullptr), 0u);
  EXPECT_EQ(Escape(nullptr, 7, nullptr, nullptr), 0u);
  EXPECT_EQ(GetLastError(), 1234u);
  EXPECT_EQ(Escape(nullptr, 5001, nullptr, nullptr), 1u);
  EXPECT_EQ(Escape(nullptr, GETDEVICEUNITS, nullptr, units), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST_F(EscapeTest, JobMark_IsWrittenOnlyIntoAnOpenJob) {
  EXPECT_EQ(Escape(&surface_, 5000, nullptr, nullptr), 1u);
  EXPECT_EQ(job_.record_count, 0u);
  EXPECT_EQ(Escape(&surface_, 5001, nullptr, nullptr), 1u);
  EXPECT_EQ(job_.record_count, 1u);
  EXPECT_TRUE(job_.record_buffer.Unread().empty());  // whole, and passed over
  device_.job = nullptr;
  EXPECT_EQ(Escape(&surface_, 5001, nullptr, nullptr), 1u);
  EXPECT_EQ(job_.record_count, 1u);
}

}  // namespace
}  // namespace quillo
