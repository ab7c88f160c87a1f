#include "capture/pen.h"

#include <algorithm>
#include <span>

#include "base/arithmetic.h"
#include "base/system_owners.h"
#include "capture/brush.h"
#include "capture/builders.h"
#include "capture/records/conversions.h"

namespace quillo {
namespace {

using namespace records;

/// As many as fit a pen record; a longer array is not read.
constexpr size_t kMaxStyleEntries = (UINT32_MAX - sizeof(ExtCreatePenPayload)) / sizeof(uint32_t);

std::span<const FLOAT_LONG> StyleOf(const LINEATTRS& attributes) {
  if (attributes.pstyle == nullptr) return {};
  return {attributes.pstyle, attributes.cstyle};
}

uint32_t JoinStyle(ULONG join) {
  switch (join) {
    case JOIN_BEVEL:
      return PS_JOIN_BEVEL;
    case JOIN_MITER:
      return PS_JOIN_MITER;
    default:
      return PS_JOIN_ROUND;
  }
}

uint32_t EndCapStyle(ULONG end_cap) {
  switch (end_cap) {
    case ENDCAP_SQUARE:
      return PS_ENDCAP_SQUARE;
    case ENDCAP_BUTT:
      return PS_ENDCAP_FLAT;
    default:
      return PS_ENDCAP_ROUND;
  }
}

void WriteGeometricPen(DEVICE_PDEV& device, LINEATTRS& attributes, XFORMOBJ* transform) {
  if (attributes.eMiterLimit < 1.0f) attributes.eMiterLimit = 1.0f;
  EmitSetMiterLimit(device, attributes.eMiterLimit);

  const uint32_t style =
      PS_GEOMETRIC | JoinStyle(attributes.iJoin) | EndCapStyle(attributes.iEndCap);
  const auto width = static_cast<uint32_t>(DeviceWidth(attributes.elWidth.e, transform));
  // Without memory for the entries the pen is solid.
  std::span<const FLOAT_LONG> entries = StyleOf(attributes);
  HeapBlock lengths;
  if (!entries.empty() && entries.size() <= kMaxStyleEntries) {
    lengths = HeapBlock(entries.size() * sizeof(uint32_t));
  }
  if (!lengths) entries = {};
  std::transform(entries.begin(), entries.end(), lengths.As<uint32_t>(),
                 [transform](FLOAT_LONG entry) {
                   return static_cast<uint32_t>(DeviceWidth(entry.e, transform));
                 });
  EmitExtCreatePen(device, style, width, {lengths.As<uint32_t>(), entries.size()});
}

/// The stock line style that a cosmetic pen's style array stands for, else PS_USERSTYLE.
uint32_t CosmeticLineStyle(std::span<const FLOAT_LONG> entries) {
  static constexpr struct {
    uint32_t style;
    size_t count;
    LONG entries[8];
  } kLineStyles[] = {{PS_SOLID, 0, {}},
                     {PS_DASH, 2, {6, 2}},
                     {PS_DASHDOT, 4, {3, 2, 1, 2}},
                     {PS_DASHDOTDOT, 6, {3, 1, 1, 1, 1, 1}},
                     {PS_DOT, 8, {1, 1, 1, 1, 1, 1, 1, 1}}};
  for (const auto& known : kLineStyles) {
    if (std::equal(entries.begin(), entries.end(), known.entries, known.entries + known.count,
                   [](FLOAT_LONG entry, LONG length) { return entry.l == length; })) {
      return known.style;
    }
  }
  return PS_USERSTYLE;
}

void WriteCosmeticPen(DEVICE_PDEV& device, const LINEATTRS& attributes, const BRUSHOBJ* brush) {
  const LONG width = attributes.elWidth.l;
  const std::span<const FLOAT_LONG> entries = StyleOf(attributes);
  const uint32_t style = CosmeticLineStyle(entries);
  if ((attributes.fl & LA_ALTERNATE) != 0) {
    EmitExtCreatePen(device, style | PS_ALTERNATE, static_cast<uint32_t>(width), {});
  } else if (style == PS_USERSTYLE) {
    EmitExtCreatePen(device, style, static_cast<uint32_t>(width),
                     {reinterpret_cast<const uint32_t*>(entries.data()), entries.size()});
  } else {
    EmitCreatePen(device, style, width, brush != nullptr ? SwapRedBlue(brush->iSolidColor) : 0);
  }
}

}  // namespace

int32_t DeviceWidth(float width, XFORMOBJ* transform) {
  XFORML matrix = {};
  if (transform != nullptr && XFORMOBJ_iGetXform(transform, &matrix) != DDI_ERROR) {
    width *= matrix.eM11;
  }
  return TruncateToInt(width + 0.5f);
}

void WritePen(DEVICE_PDEV& device, LINEATTRS* attributes, XFORMOBJ* transform, BRUSHOBJ* brush) {
  WriteBrush(device, brush, kPenBrush);
  if (attributes == nullptr) return;
  if ((attributes->fl & LA_GEOMETRIC) != 0) {
    WriteGeometricPen(device, *attributes, transform);
  } else {
    WriteCosmeticPen(device, *attributes, brush);
  }
}

}  // namespace quillo
