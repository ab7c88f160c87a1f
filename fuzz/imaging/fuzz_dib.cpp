#include "imaging/damaged_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  quillo::imaging::TryDib(std::as_bytes(std::span(data, size)));
  return 0;
}
