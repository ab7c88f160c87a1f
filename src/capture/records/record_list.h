#pragma once

// The one declaration of every played record, in type order:
//
//   X(name, type, payload size, needs payload, playback action)
//
// `payload size` is the smallest payload that the action accepts: the fixed part, without counted
// entries and bitmaps. Where `needs payload` is kAnySize the action is called whatever the size,
// and missing bytes read as zero. Types that are absent here are skipped by playback.
#define QUILLO_RECORD_LIST(X)                                                                   \
  X(REC_DIBHEADER, 0x10010001, 0, kAnySize, PlayDibHeader)                                      \
  X(REC_PAGEBITMAP, 0x10010002, 0, kAnySize, PlayPageBitmap)                                    \
  X(REC_DEVMODE, 0x10010003, 0, kAnySize, PlayDevMode)                                          \
  X(REC_CREATEPEN, 0x10010004, sizeof(CreatePenPayload), kNeedsPayload, PlayCreatePen)          \
  X(REC_EXTCREATEPEN, 0x10010005, sizeof(ExtCreatePenPayload), kNeedsPayload, PlayExtCreatePen) \
  X(REC_CREATEBRUSH, 0x10010006, sizeof(CreateBrushPayload), kNeedsPayload, PlayCreateBrush)    \
  X(REC_BEGINPATH, 0x10010007, 0, kAnySize, PlayBeginPath)                                      \
  X(REC_ENDPATH, 0x10010008, 0, kAnySize, PlayEndPath)                                          \
  X(REC_STROKEPATH, 0x10010009, 0, kAnySize, PlayStrokePath)                                    \
  X(REC_FILLPATH, 0x1001000A, 0, kAnySize, PlayFillPath)                                        \
  X(REC_CLOSEFIGURE, 0x1001000B, 0, kAnySize, PlayCloseFigure)                                  \
  X(REC_STROKEANDFILLPATH, 0x1001000C, 0, kAnySize, PlayStrokeAndFillPath)                      \
  X(REC_MOVETO, 0x1001000D, sizeof(Point), kNeedsPayload, PlayMoveTo)                           \
  X(REC_LINETO, 0x1001000E, sizeof(Point), kNeedsPayload, PlayLineTo)                           \
  X(REC_POLYBEZIER, 0x1001000F, sizeof(PolyPayload), kNeedsPayload, PlayPolyBezier)             \
  X(REC_POLYBEZIERTO, 0x10010011, sizeof(PolyPayload), kNeedsPayload, PlayPolyBezierTo)         \
  X(REC_POLYLINE, 0x10010012, sizeof(PolyPayload), kNeedsPayload, PlayPolyline)                 \
  X(REC_POLYLINETO, 0x10010013, sizeof(PolyPayload), kNeedsPayload, PlayPolylineTo)             \
  X(REC_SETBKCOLOR, 0x10010014, sizeof(uint32_t), kNeedsPayload, PlaySetBkColor)                \
  X(REC_SETBKMODE, 0x10010015, sizeof(uint32_t), kNeedsPayload, PlaySetBkMode)                  \
  X(REC_ELLIPSE, 0x10010016, sizeof(Rect), kNeedsPayload, PlayEllipse)                          \
  X(REC_RECTANGLE, 0x10010017, sizeof(Rect), kNeedsPayload, PlayRectangle)                      \
  X(REC_SELECTCLIPPATH, 0x10010018, 0, kAnySize, PlaySelectClipPath)                            \
  X(REC_SAVEDC, 0x10010019, 0, kAnySize, PlaySaveDc)                                            \
  X(REC_RESTOREDC, 0x1001001A, 0, kAnySize, PlayRestoreDc)                                      \
  X(REC_SETWORLDTRANSFORM, 0x1001001B, sizeof(Transform), kNeedsPayload, PlaySetWorldTransform) \
  X(REC_SETMITERLIMIT, 0x1001001C, sizeof(float), kNeedsPayload, PlaySetMiterLimit)             \
  X(REC_SETPOLYFILLMODE, 0x1001001D, sizeof(uint32_t), kNeedsPayload, PlaySetPolyFillMode)      \
  X(REC_SETBRUSHORG, 0x1001001E, sizeof(Point), kNeedsPayload, PlaySetBrushOrg)                 \
  X(REC_SETROP2, 0x1001001F, sizeof(uint32_t), kNeedsPayload, PlaySetRop2)                      \
  X(REC_FILLRECT, 0x10010020, sizeof(Rect), kNeedsPayload, PlayFillRect)                        \
  X(REC_MASKBLT, 0x10010021, sizeof(MaskBltPayload), kNeedsPayload, PlayMaskBlt)                \
  X(REC_BITBLT, 0x10010022, sizeof(BitBltPayload), kNeedsPayload, PlayBitBlt)                   \
  X(REC_PATBLT, 0x10010023, sizeof(PatBltPayload), kNeedsPayload, PlayPatBlt)                   \
  X(REC_CREATEFONT, 0x10010024, sizeof(LogFont), kNeedsPayload, PlayCreateFont)                 \
  X(REC_SETTEXTCOLOR, 0x10010025, sizeof(uint32_t), kNeedsPayload, PlaySetTextColor)            \
  X(REC_EXTTEXTOUT, 0x10010026, sizeof(ExtTextOutPayload), kNeedsPayload, PlayExtTextOut)       \
  X(REC_SETDIBITSTODEVICE, 0x10010027, sizeof(SetDibitsPayload), kNeedsPayload,                 \
    PlaySetDibitsToDevice)                                                                      \
  X(REC_STRETCHBLT, 0x10010028, sizeof(StretchBltPayload), kNeedsPayload, PlayStretchBlt)       \
  X(REC_RESETWORLDTRANSFORM, 0x10010029, 0, kAnySize, PlayResetWorldTransform)                  \
  X(REC_BEGINGLYPHRUNS, 0x1001002A, 0, kAnySize, PlayNothing)                                   \
  X(REC_ENDGLYPHRUNS, 0x1001002B, 0, kAnySize, PlayNothing)                                     \
  X(REC_TEXTEXTRA, 0x1001002C, 0, kAnySize, PlayNothing)                                        \
  X(REC_SETTEXTALIGN, 0x1001002D, 0, kAnySize, PlaySetTextAlign)                                \
  X(REC_PAGEVALUE, 0x1001002E, 0, kAnySize, PlayPageValue)                                      \
  X(REC_TEXTRUN, 0x1001002F, sizeof(TextRunPayload), kNeedsPayload, PlayTextRun)                \
  X(REC_ALPHABLEND, 0x10010036, sizeof(AlphaBlendPayload), kNeedsPayload, PlayAlphaBlend)
