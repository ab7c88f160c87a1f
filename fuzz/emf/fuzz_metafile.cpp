// Every record of a metafile, and the bitmaps that its records place, out of any bytes; again after
// the records that comments carry have been unpacked.
#include <cstdint>
#include <string>
#include <vector>

#include "host/emf_format/carried_records.h"
#include "host/emf_format/comment.h"
#include "host/emf_format/page_mapping.h"
#include "host/emf_format/payload_reader.h"
#include "host/emf_format/reader.h"
#include "host/pictures/dib.h"

namespace {

using quillo::Bytes;
using namespace quillo::host::emf;

/// Takes four numbers anywhere in a record for a bitmap's place, as its handler would.
void TryBitmap(const Record& record, size_t at) {
  PayloadReader reader(record.bytes);
  reader.Skip(at);
  const auto info_offset = reader.Read<uint32_t>();
  const auto info_size = reader.Read<uint32_t>();
  const auto bits_offset = reader.Read<uint32_t>();
  const auto bits_size = reader.Read<uint32_t>();
  const auto colours = static_cast<DibColors>(reader.Read<uint32_t>());
  const auto rows = reader.Read<uint32_t>();
  const Bytes info = reader.Slice(info_offset, info_size);
  const Bytes bits = reader.Slice(bits_offset, bits_size);
  if (!reader.ok()) return;
  std::string what;
  const auto dib = ParseDib(info, bits, colours, rows, {0x112233, 0x445566}, what);
  if (!dib == what.empty()) __builtin_trap();  // a refusal says why
  if (!dib || dib->coding != Dib::Coding::kPlain) return;
  // What a caller relies on: each row lies in the bits.
  const size_t row = (static_cast<size_t>(dib->width) * dib->depth + 7) / 8;
  for (size_t y = 0; y < static_cast<size_t>(dib->height); ++y) {
    volatile auto last = dib->bits[dib->Stride() * y + row - 1];
    (void)last;
  }
}

void TryMetafile(Bytes metafile) {
  try {
    MetafileReader reader(metafile);
    const Transform map = FitFrame(reader.header(), {5100, 6600});
    if (!map.Usable() || !ActualSize(reader.header(), 600).Usable()) __builtin_trap();
    DrawingSurvey survey;
    while (const auto record = reader.Next()) {
      FindCommentFault(record->bytes);
      survey.Take(record->type, record->bytes);
      for (size_t at = 0; at < 128; at += 4) TryBitmap(*record, at);
    }
    for (const MetafileFault& fault : reader.faults()) Describe(fault);
  } catch (const UnreadableMetafile&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<std::byte> metafile(reinterpret_cast<const std::byte*>(data),
                                  reinterpret_cast<const std::byte*>(data) + size);
  TryMetafile(metafile);
  if (const auto unpacked = UnpackCarriedRecords(metafile)) {
    if (*unpacked > size) __builtin_trap();
    metafile.resize(*unpacked);
    TryMetafile(metafile);
  }
  return 0;
}
