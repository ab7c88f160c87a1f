#pragma once

// The one declaration of every played record, in type order:
//
//   X(name, type, payload size, payload rule)
//
// `payload size` is the smallest payload that playback accepts: the fixed part, without counted
// entries and bitmaps. A kAnySize record is played whatever its size, and missing bytes read as
// zero. Types that are absent here are skipped by playback.
//
// Compatibility: REC_SETTEXTALIGN and REC_PAGEVALUE are kAnySize although they carry fields; kept
// for existing streams.
#define QUILLO_RECORD_LIST(X)                                                   \
  X(REC_DIBHEADER, 0x10010001, 0, kAnySize)                                     \
  X(REC_PAGEBITMAP, 0x10010002, 0, kAnySize)                                    \
  X(REC_DEVMODE, 0x10010003, 0, kAnySize)                                       \
  X(REC_CREATEPEN, 0x10010004, sizeof(CreatePenPayload), kNeedsPayload)         \
  X(REC_EXTCREATEPEN, 0x10010005, sizeof(ExtCreatePenPayload), kNeedsPayload)   \
  X(REC_CREATEBRUSH, 0x10010006, sizeof(CreateBrushPayload), kNeedsPayload)     \
  X(REC_BEGINPATH, 0x10010007, 0, kAnySize)                                     \
  X(REC_ENDPATH, 0x10010008, 0, kAnySize)                                       \
  X(REC_STROKEPATH, 0x10010009, 0, kAnySize)                                    \
  X(REC_FILLPATH, 0x1001000A, 0, kAnySize)                                      \
  X(REC_CLOSEFIGURE, 0x1001000B, 0, kAnySize)                                   \
  X(REC_STROKEANDFILLPATH, 0x1001000C, 0, kAnySize)                             \
  X(REC_MOVETO, 0x1001000D, sizeof(Point), kNeedsPayload)                       \
  X(REC_LINETO, 0x1001000E, sizeof(Point), kNeedsPayload)                       \
  X(REC_POLYBEZIER, 0x1001000F, sizeof(PolyPayload), kNeedsPayload)             \
  X(REC_POLYBEZIERTO, 0x10010011, sizeof(PolyPayload), kNeedsPayload)           \
  X(REC_POLYLINE, 0x10010012, sizeof(PolyPayload), kNeedsPayload)               \
  X(REC_POLYLINETO, 0x10010013, sizeof(PolyPayload), kNeedsPayload)             \
  X(REC_SETBKCOLOR, 0x10010014, sizeof(uint32_t), kNeedsPayload)                \
  X(REC_SETBKMODE, 0x10010015, sizeof(uint32_t), kNeedsPayload)                 \
  X(REC_ELLIPSE, 0x10010016, sizeof(Rect), kNeedsPayload)                       \
  X(REC_RECTANGLE, 0x10010017, sizeof(Rect), kNeedsPayload)                     \
  X(REC_SELECTCLIPPATH, 0x10010018, 0, kAnySize)                                \
  X(REC_SAVEDC, 0x10010019, 0, kAnySize)                                        \
  X(REC_RESTOREDC, 0x1001001A, 0, kAnySize)                                     \
  X(REC_SETWORLDTRANSFORM, 0x1001001B, sizeof(Transform), kNeedsPayload)        \
  X(REC_SETMITERLIMIT, 0x1001001C, sizeof(float), kNeedsPayload)                \
  X(REC_SETPOLYFILLMODE, 0x1001001D, sizeof(uint32_t), kNeedsPayload)           \
  X(REC_SETBRUSHORG, 0x1001001E, sizeof(Point), kNeedsPayload)                  \
  X(REC_SETROP2, 0x1001001F, sizeof(uint32_t), kNeedsPayload)                   \
  X(REC_FILLRECT, 0x10010020, sizeof(Rect), kNeedsPayload)                      \
  X(REC_MASKBLT, 0x10010021, sizeof(MaskBltPayload), kNeedsPayload)             \
  X(REC_BITBLT, 0x10010022, sizeof(BitBltPayload), kNeedsPayload)               \
  X(REC_PATBLT, 0x10010023, sizeof(PatBltPayload), kNeedsPayload)               \
  X(REC_CREATEFONT, 0x10010024, sizeof(LogFont), kNeedsPayload)                 \
  X(REC_SETTEXTCOLOR, 0x10010025, sizeof(uint32_t), kNeedsPayload)              \
  X(REC_EXTTEXTOUT, 0x10010026, sizeof(ExtTextOutPayload), kNeedsPayload)       \
  X(REC_SETDIBITSTODEVICE, 0x10010027, sizeof(SetDibitsPayload), kNeedsPayload) \
  X(REC_STRETCHBLT, 0x10010028, sizeof(StretchBltPayload), kNeedsPayload)       \
  X(REC_RESETWORLDTRANSFORM, 0x10010029, 0, kAnySize)                           \
  X(REC_BEGINGLYPHRUNS, 0x1001002A, 0, kAnySize)                                \
  X(REC_ENDGLYPHRUNS, 0x1001002B, 0, kAnySize)                                  \
  X(REC_TEXTEXTRA, 0x1001002C, 0, kAnySize)                                     \
  X(REC_SETTEXTALIGN, 0x1001002D, 0, kAnySize)                                  \
  X(REC_PAGEVALUE, 0x1001002E, 0, kAnySize)                                     \
  X(REC_TEXTRUN, 0x1001002F, sizeof(TextRunPayload), kNeedsPayload)             \
  X(REC_ALPHABLEND, 0x10010036, sizeof(AlphaBlendPayload), kNeedsPayload)
