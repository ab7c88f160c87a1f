#pragma once

#include "base/windows.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "base/gdi_owners.h"

namespace quillo::bench {

inline constexpr int kRounds = 61;
inline constexpr int kCallsPerRound = 400;

/// Seconds that a round of side.Draw(HDC) on a fresh metafile takes.
template <typename Side>
double TimeRound(Side& side) {
  const MetafileDc page(CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr));
  LARGE_INTEGER frequency, begin, end;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&begin);
  for (int i = 0; i < kCallsPerRound; ++i) side.Draw(page.Get());
  QueryPerformanceCounter(&end);
  return static_cast<double>(end.QuadPart - begin.QuadPart) /
         static_cast<double>(frequency.QuadPart);
}

/// Records that one side.Draw(HDC) leaves in a metafile.
template <typename Side>
DWORD CountRecords(Side& side) {
  MetafileDc page(CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr));
  side.Draw(page.Get());
  ENHMETAHEADER header = {};
  GetEnhMetaFileHeader(page.Close().Get(), sizeof header, &header);
  return header.nRecords;
}

inline double Median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

/// Prints what a call costs through the driver, as a multiple of the same GDI calls made directly.
/// Both sides run in turn, so that the machine's load hits both; the median of the rounds' ratios
/// counts. 0, 1 when it is above `limit`, 2 when the metafiles of both differ in length.
template <typename Driver, typename Direct>
int CompareSides(const char* name, double limit, Driver& driver, Direct& direct) {
  const DWORD driver_records = CountRecords(driver), direct_records = CountRecords(direct);
  if (driver_records != direct_records) {
    std::printf("%s: driver %lu records, direct %lu: not the same calls\n", name, driver_records,
                direct_records);
    return 2;
  }
  std::vector<double> ratios, driver_times, direct_times;
  for (int round = 0; round < kRounds; ++round) {
    driver_times.push_back(TimeRound(driver));
    direct_times.push_back(TimeRound(direct));
    ratios.push_back(driver_times.back() / direct_times.back());
  }
  std::printf("%s: driver %.2f us, direct %.2f us, ratio %.3f (at most %.2f)\n", name,
              Median(driver_times) / kCallsPerRound * 1e6,
              Median(direct_times) / kCallsPerRound * 1e6, Median(ratios), limit);
  return Median(ratios) <= limit ? 0 : 1;
}

}  // namespace quillo::bench
