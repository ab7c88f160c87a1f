#pragma once

#include "base/bytes.h"
#include "imaging/bitmap/bitmap_handle.h"

namespace quillo::imaging {

/// Makes `record` the bitmap that a DIB describes, with its rows, in storage of the thread's
/// default memory type.
///
/// `header` is a BITMAPINFOHEADER (or successor) or BITMAPCOREHEADER with masks and colour table,
/// possibly cut short (AnalyseDib, ReadColourTable); `bits` are the pixels. Nothing outside the
/// two is read: uncompressed bits that are too short are an invalid argument, a run-length stream
/// may end early. Bits with a null address (bits.data()) ask for the record's description alone,
/// without storage.
///
/// Fails with kInvalidArgument (null record, negative width, short bits), kWrongStructureSize,
/// kUnsupportedFormat (a DIB that is not converted; for JPEG the record is described nevertheless),
/// kEmptyData, kOutOfMemory, or another code of Init and AllocateStorage. On failure the record
/// holds no storage.
int ConvertFromDib(BitmapHandle* record, uint32_t structure_size, Bytes header, Bytes bits);

/// The same for a DIB that is known to be whole: masks and colour table follow `header`, `bits` (or
/// null) are as long as the header states. A run-length stream without biSizeImage must
/// end itself.
int ConvertFromDib(BitmapHandle* record, uint32_t structure_size, const void* header,
                   const void* bits);

}  // namespace quillo::imaging
