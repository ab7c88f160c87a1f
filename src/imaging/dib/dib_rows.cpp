#include "imaging/dib/dib_rows.h"

#include "imaging/dib/bit_fields.h"
#include "imaging/dib/rle.h"
#include "imaging/dib/yuv.h"
#include "imaging/pixels/result.h"

namespace quillo::imaging {
namespace {

/// Hands source rows of `stride` bytes to `convert`, which fills the scratch row.
template <typename Convert>
int ConvertEach(const DibDescription& dib, Bytes bits, size_t stride, MutableBytes scratch,
                RowStore store, Convert convert) {
  for (uint32_t row = 0; row < dib.height; ++row) {
    convert(bits.subspan(row * stride, stride));
    const int result = store(row, scratch);
    if (result != kSuccess) return result;
  }
  return kSuccess;
}

int StoreRows(const DibDescription& dib, Bytes bits, RowStore store) {
  const size_t stride = SourceSize(dib) / dib.height;
  for (uint32_t row = 0; row < dib.height; ++row) {
    const int result = store(row, bits.subspan(row * stride, stride));
    if (result != kSuccess) return result;
  }
  return kSuccess;
}

int ConvertBitFields(const DibDescription& dib, Bytes bits, MutableBytes scratch, RowStore store) {
  const BitFieldConverter converter(dib.source_bits, dib.masks);
  const size_t stride = SourceSize(dib) / dib.height;
  return ConvertEach(dib, bits, stride, scratch, store,
                     [&](Bytes source) { converter.Convert(source, dib.width, scratch); });
}

/// Planes of luma and of two chroma channels; in both directions, one chroma sample serves `ratio`
/// luma samples.
int ConvertPlanar(const DibDescription& dib, Bytes bits, uint32_t ratio, bool v_first,
                  MutableBytes scratch, RowStore store) {
  const size_t luma_size = size_t{dib.width} * dib.height;
  const size_t chroma_width = dib.width / ratio;
  const size_t chroma_size = chroma_width * (dib.height / ratio);
  const Bytes first = bits.subspan(luma_size, chroma_size);
  const Bytes second = bits.subspan(luma_size + chroma_size, chroma_size);
  const Bytes u = v_first ? second : first;
  const Bytes v = v_first ? first : second;
  const auto convert = ratio == 2 ? PlanarRow420 : PlanarRow410;
  for (uint32_t row = 0; row < dib.height; ++row) {
    const size_t chroma = row / ratio * chroma_width;
    convert(bits.data() + size_t{row} * dib.width, u.data() + chroma, v.data() + chroma, dib.width,
            scratch.data());
    const int result = store(row, scratch);
    if (result != kSuccess) return result;
  }
  return kSuccess;
}

}  // namespace

int ConvertDibRows(const DibDescription& dib, Bytes bits, MutableBytes scratch, RowStore store) {
  if (bits.size() < SourceSize(dib)) return kInvalidArgument;
  if (dib.width == 0 || dib.height == 0) return kSuccess;
  const auto packed = [&](size_t stride, auto row) {
    return ConvertEach(dib, bits, stride, scratch, store,
                       [&](Bytes source) { row(source, dib.width, scratch.data()); });
  };
  switch (dib.layout) {
    case DibLayout::kRows:
      return StoreRows(dib, bits, store);
    case DibLayout::kBitFields:
      return ConvertBitFields(dib, bits, scratch, store);
    case DibLayout::kRle8:
    case DibLayout::kRle4:
      return ExpandRle(bits, dib.layout == DibLayout::kRle4 ? 4 : 8, dib.width, dib.height, scratch,
                       store);
    case DibLayout::kPlanar420:
      return ConvertPlanar(dib, bits, 2, false, scratch, store);
    case DibLayout::kPlanar420VFirst:
      return ConvertPlanar(dib, bits, 2, true, scratch, store);
    case DibLayout::kPlanar410:
      return ConvertPlanar(dib, bits, 4, true, scratch, store);
    case DibLayout::kYuy2:
      return packed(size_t{dib.width} * 2, Yuy2Row);
    case DibLayout::kPacked422:
      return packed(size_t{dib.width} * 2, UyvyRow);
    case DibLayout::kPacked422YFirst:
      return packed(size_t{dib.width} * 2, YvyuRow);
    case DibLayout::kPacked411:
      return packed(size_t{dib.width} * 3 / 2, Packed411Row);
    case DibLayout::kPacked211:
      return packed(dib.width, Packed211Row);
    case DibLayout::kJpeg:
      break;
  }
  return kUnsupportedFormat;
}

}  // namespace quillo::imaging
