#pragma once

#include <cstdint>

// Payloads of the record stream: one struct a record, its fields in wire order, without padding.
// Builders fill them, playback reads them, and the size rules come from them.
// Coordinates are device pixels of the page surface; colours are COLORREF values (0x00BBGGRR);
// offsets count from the first byte of the payload.
namespace quillo::records {

struct Point {
  int32_t x;
  int32_t y;
};

struct Rect {
  int32_t left;
  int32_t top;
  int32_t right;   // exclusive
  int32_t bottom;  // exclusive
};

/// An XFORM: x' = m11 x + m21 y + dx, y' = m12 x + m22 y + dy.
struct Transform {
  float m11;
  float m12;
  float m21;
  float m22;
  float dx;
  float dy;
};

/// A LOGPEN.
struct CreatePenPayload {
  uint32_t style;  // PS_SOLID to PS_DASHDOTDOT
  int32_t width;   // device pixels
  int32_t unused;  // 0
  uint32_t colour;
};

/// Followed by `count` style entries (u32, device pixels) and then the zero word.
struct ExtCreatePenPayload {
  uint32_t style;  // PS_* flags as ExtCreatePen takes them
  uint32_t width;  // device pixels
  uint32_t count;
  uint32_t zero;  // after the entries
};
inline constexpr uint32_t kPenEntriesOffset = 12;

enum BrushUsage : uint32_t {
  kFillBrush = 0,  // selected at once
  kPenBrush = 1,   // kept for the next REC_EXTCREATEPEN
};

/// Followed by the pattern, a packed bitmap, and one zero byte.
///
/// Compatibility: no field needs that byte; existing streams carry it.
struct CreateBrushPayload {
  uint32_t style;   // BS_SOLID, BS_HATCHED or BS_DIBPATTERNPT
  uint32_t colour;  // 0 for a pattern
  uint32_t hatch;   // HS_*, else 0
  uint32_t usage;   // BrushUsage
  uint32_t pattern_size;
};
inline constexpr uint32_t kBrushPatternOffset = sizeof(CreateBrushPayload);
inline constexpr uint32_t kBrushTrailer = 1;

/// Followed by `count` points and a zero word.
struct PolyPayload {
  uint32_t count;
  uint32_t zero_1;  // only without points
  uint32_t zero_2;
};
inline constexpr uint32_t kPolyPointsOffset = 4;

/// Followed by the source and then the mask, both packed bitmaps.
struct MaskBltPayload {
  Rect destination;
  Point source_origin;
  Point mask_origin;
  uint32_t rop4;  // as GDI passed it
  uint32_t mask_offset;
  uint32_t source_offset;
};

/// Followed by the source, a packed bitmap.
struct BitBltPayload {
  Rect destination;
  Point source_origin;
  uint32_t rop;  // ternary raster operation code
  uint32_t source_offset;
};

struct PatBltPayload {
  Rect destination;
  uint32_t rop;  // ternary raster operation code
};

/// A LOGFONTW.
struct LogFont {
  int32_t height;
  int32_t width;
  int32_t escapement;
  int32_t orientation;
  int32_t weight;
  uint8_t italic;
  uint8_t underline;
  uint8_t strike_out;
  uint8_t char_set;
  uint8_t out_precision;
  uint8_t clip_precision;
  uint8_t quality;
  uint8_t pitch_and_family;
  uint16_t face_name[32];
};

/// Followed by `count` UTF-16 units (or glyph indexes), one zero unit, and the advances if there
/// are any.
struct ExtTextOutHeader {
  Point reference;
  uint32_t options;  // ETO_OPAQUE, ETO_GLYPH_INDEX
  Rect rectangle;
  uint32_t count;
  uint32_t advances_offset;  // 0 = none
};
/// The smallest text payload: no characters, only the zero unit.
#pragma pack(push, 2)
struct ExtTextOutPayload {
  ExtTextOutHeader header;
  uint16_t zero;
};
#pragma pack(pop)

/// Followed by the source, a packed bitmap.
struct SetDibitsPayload {
  Rect destination;
  Point source_origin;
  uint32_t source_offset;
};

/// Followed by the source, a packed bitmap.
struct StretchBltPayload {
  Rect destination;
  Rect source;
  uint32_t has_adjustment;  // 1 when `adjustment` is set
  uint8_t adjustment[24];   // a COLORADJUSTMENT
  uint32_t stretch_mode;    // as GDI passed it
  uint32_t source_offset;
};

/// Followed by the source, a packed bitmap.
struct AlphaBlendPayload {
  Rect destination;
  Rect source;
  uint32_t blend_function;  // BlendOp, BlendFlags, SourceConstantAlpha, AlphaFormat
  uint32_t source_offset;
};

/// Precedes the text records of one run.
#pragma pack(push, 2)
struct TextRunPayload {
  Point reference;
  uint8_t zero_1[20];
  uint32_t glyph_count;
  uint8_t zero_2[6];
};
#pragma pack(pop)

static_assert(sizeof(CreatePenPayload) == 16);
static_assert(sizeof(ExtCreatePenPayload) == 16);
static_assert(sizeof(CreateBrushPayload) == 20);
static_assert(sizeof(PolyPayload) == 12);
static_assert(sizeof(MaskBltPayload) == 44);
static_assert(sizeof(BitBltPayload) == 32);
static_assert(sizeof(PatBltPayload) == 20);
static_assert(sizeof(LogFont) == 92);
static_assert(sizeof(ExtTextOutHeader) == 36);
static_assert(sizeof(ExtTextOutPayload) == 38);
static_assert(sizeof(SetDibitsPayload) == 28);
static_assert(sizeof(StretchBltPayload) == 68);
static_assert(sizeof(AlphaBlendPayload) == 40);
static_assert(sizeof(TextRunPayload) == 38);
static_assert(sizeof(Transform) == 24);

/// Maximum payload of REC_DIBHEADER: a BITMAPINFOHEADER and one double word.
inline constexpr uint32_t kBandHeaderBytes = 44;

}  // namespace quillo::records
