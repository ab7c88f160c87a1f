#include "imaging/pixels/avx2.h"

#include <immintrin.h>

namespace quillo::imaging {

bool HasAvx2() { return __builtin_cpu_supports("avx2") != 0; }

__attribute__((target("avx2"))) size_t GatherPixelsAvx2(const std::byte* source,
                                                        std::span<const uint32_t> columns,
                                                        std::byte* row) {
  constexpr size_t kStep = 8;
  size_t x = 0;
  for (; x + kStep <= columns.size(); x += kStep) {
    const __m256i indexes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(&columns[x]));
    const __m256i pixels = _mm256_i32gather_epi32(reinterpret_cast<const int*>(source), indexes, 4);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(row + x * 4), pixels);
  }
  return x;
}

}  // namespace quillo::imaging
