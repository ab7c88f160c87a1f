#include "imaging/pixels/avx2.h"

#include <immintrin.h>

namespace quillo::imaging {

bool HasAvx2() { return __builtin_cpu_supports("avx2") != 0; }

__attribute__((target("avx2"))) size_t GatherPixelsAvx2(const std::byte* source,
                                                        std::span<const uint32_t> columns,
                                                        std::byte* row) {
  constexpr size_t kStep = 8;
  // The processor foresees what is read, but not beyond a page of its memory. Far addresses are
  // harmless.
  constexpr size_t kAhead = 768;
  size_t x = 0;
  for (; x + kStep <= columns.size(); x += kStep) {
    const std::byte* first = source + size_t{columns[x]} * 4;
    _mm_prefetch(reinterpret_cast<const char*>(first + kAhead), _MM_HINT_T0);
    const __m256i indexes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(&columns[x]));
    const __m256i pixels = _mm256_i32gather_epi32(reinterpret_cast<const int*>(source), indexes, 4);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(row + x * 4), pixels);
  }
  return x;
}

}  // namespace quillo::imaging
