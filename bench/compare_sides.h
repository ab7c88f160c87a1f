#pragma once

#include "base/windows.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

#include "base/gdi_owners.h"
#include "bench/result.h"

namespace quillo::bench {

/// Draws what is measured, once.
using Draw = std::function<void(HDC page)>;

/// What is compared, and how often.
struct Comparison {
  const char* name;
  double limit;  // of the ratio
  int rounds = 61;
  int calls = 400;  // in each round
};

/// Microseconds of each of so many calls on a fresh metafile.
inline double TimeCall(const Draw& draw, int calls) {
  const MetafileDc page(CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr));
  LARGE_INTEGER frequency, begin, end;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&begin);
  for (int i = 0; i < calls; ++i) draw(page.Get());
  QueryPerformanceCounter(&end);
  return static_cast<double>(end.QuadPart - begin.QuadPart) * 1e6 /
         static_cast<double>(frequency.QuadPart) / calls;
}

/// Records that one call leaves in a metafile.
inline DWORD CountRecords(const Draw& draw) {
  MetafileDc page(CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr));
  draw(page.Get());
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
/// counts. 0, 1 when it is above the limit, 2 when the driver's metafile lacks records.
inline int CompareSides(const Comparison& what, const Draw& driver, const Draw& direct) {
  const DWORD driver_records = CountRecords(driver), direct_records = CountRecords(direct);
  if (driver_records < direct_records) {
    std::printf("%s: driver %lu records, direct %lu: calls are missing\n", what.name,
                driver_records, direct_records);
    return 2;
  }
  std::vector<double> ratios, driver_times, direct_times;
  for (int round = 0; round < what.rounds; ++round) {
    driver_times.push_back(TimeCall(driver, what.calls));
    direct_times.push_back(TimeCall(direct, what.calls));
    ratios.push_back(driver_times.back() / direct_times.back());
  }
  const double ratio = Median(ratios);
  return PrintResult(what.name, Median(driver_times), "GDI", Median(direct_times), ratio,
                     AtMost(what.limit))
             ? 0
             : 1;
}

}  // namespace quillo::bench
