// BMP files of any bytes: the picture has the rows that its size promises, or the file is refused.
#include "base/windows.h"

#include <cstdlib>
#include <vector>

#include "host/pictures/bmp_file.h"

namespace quillo::host {

// The platform's decoders are not among what is fuzzed.
Resolution UsableResolution(Resolution dpi) { return dpi; }
PictureDecoder::PictureDecoder(Bytes) { throw UnreadablePicture("holds another file"); }
BitmapSource PictureDecoder::Frame(UINT, uint64_t) const { return {}; }

}  // namespace quillo::host

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace quillo::host;
  const auto* first = reinterpret_cast<const std::byte*>(data);
  const std::vector<std::byte> file(first, first + size);
  IsRunLengthBmp(file);
  try {
    const BmpPicture read = ReadBmp(file);
    const BitmapSource& pixels = read.pixels;
    if (pixels.width <= 0 || pixels.height <= 0 || pixels.run_length) std::abort();
    if (pixels.palette.size() > 256) std::abort();
  } catch (const UnreadablePicture& refused) {
    if (std::string(refused.what()).empty()) std::abort();
  }
  return 0;
}
