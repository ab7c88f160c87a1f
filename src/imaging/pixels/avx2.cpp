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

namespace {

/// Sixteen channel values to bytes, limited to 0..255.
__attribute__((target("avx2"))) __m128i ToBytes(__m256i values) {
  const __m256i fraction_gone = _mm256_srai_epi16(values, 6);
  return _mm_packus_epi16(_mm256_castsi256_si128(fraction_gone),
                          _mm256_extracti128_si256(fraction_gone, 1));
}

/// Eight chroma bytes, each for two pixels, less 128.
__attribute__((target("avx2"))) __m256i LoadChroma(const std::byte* from) {
  const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
  const __m256i pairs = _mm256_cvtepu8_epi16(_mm_unpacklo_epi8(bytes, bytes));
  return _mm256_sub_epi16(pairs, _mm256_set1_epi16(128));
}

__attribute__((target("avx2"))) __m256i Times(__m256i values, int16_t factor) {
  return _mm256_mullo_epi16(values, _mm256_set1_epi16(factor));
}

/// A shuffle that puts byte i of a channel at 3 * i + `channel` of 48 bytes; this is the part for
/// bytes 16 * `third` on, with zero for what other channels fill.
struct Spread {
  alignas(16) int8_t at[16];
};
constexpr Spread SpreadOf(int channel, int third) {
  Spread spread{};
  for (int i = 0; i < 16; ++i) {
    const int place = third * 16 + i - channel;
    spread.at[i] = static_cast<int8_t>(place >= 0 && place % 3 == 0 ? place / 3 : -1);
  }
  return spread;
}
constexpr Spread kSpreads[3][3] = {{SpreadOf(0, 0), SpreadOf(1, 0), SpreadOf(2, 0)},
                                   {SpreadOf(0, 1), SpreadOf(1, 1), SpreadOf(2, 1)},
                                   {SpreadOf(0, 2), SpreadOf(1, 2), SpreadOf(2, 2)}};

__attribute__((target("avx2"))) __m128i Apply(const Spread& spread, __m128i channel) {
  return _mm_shuffle_epi8(channel, _mm_load_si128(reinterpret_cast<const __m128i*>(spread.at)));
}

}  // namespace

// The sums below may saturate; what saturates is limited to 0 or 255 in any case.
__attribute__((target("avx2"))) size_t PlanarRow420Avx2(const std::byte* y, const std::byte* u,
                                                        const std::byte* v, size_t width,
                                                        std::byte* rgb) {
  constexpr size_t kStep = 16;
  size_t x = 0;
  for (; x + kStep <= width; x += kStep) {
    const __m256i grey =
        _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(y + x)));
    const __m256i twice = _mm256_or_si256(grey, _mm256_slli_epi16(grey, 8));  // Y * 257
    const __m256i luma = _mm256_sub_epi16(_mm256_mulhi_epu16(twice, _mm256_set1_epi16(19003)),
                                          _mm256_set1_epi16(1160));
    const __m256i d = LoadChroma(u + x / 2);
    const __m256i e = LoadChroma(v + x / 2);
    const __m128i blue = ToBytes(_mm256_adds_epi16(luma, Times(d, 129)));
    const __m128i green =
        ToBytes(_mm256_subs_epi16(luma, _mm256_add_epi16(Times(d, 25), Times(e, 52))));
    const __m128i red = ToBytes(_mm256_adds_epi16(luma, Times(e, 102)));
    for (size_t third = 0; third < 3; ++third) {
      const __m128i part = _mm_or_si128(
          Apply(kSpreads[third][0], blue),
          _mm_or_si128(Apply(kSpreads[third][1], green), Apply(kSpreads[third][2], red)));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(rgb + x * 3 + third * 16), part);
    }
  }
  return x;
}

}  // namespace quillo::imaging
