#pragma once

namespace quillo::imaging {

// Errors of the imaging kernel: operations that can fail return one of these codes as int, or the
// stopping code of a progress callback; those that make a handle return null.
constexpr int kSuccess = 1;
constexpr int kOutOfMemory = -1;
constexpr int kNoStorage = -2;             // the operation needs pixel storage
constexpr int kTooLargeForOldForm = -3;    // more data than the 228-byte record can describe
constexpr int kFileError = -5;             // the temporary file could not be read or extended
constexpr int kEmptyData = -11;            // storage asked for a bitmap without pixels
constexpr int kInvalidArgument = -13;      //
constexpr int kUnsupportedFormat = -16;    // a DIB that is not converted
constexpr int kUnsupportedDepth = -27;     // bits per pixel outside the list
constexpr int kWrongStructureSize = -789;  // neither 272 nor 228
constexpr int kInvalidBitmap = -1486;      // a record that contradicts itself

}  // namespace quillo::imaging
