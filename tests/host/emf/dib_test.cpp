#include "host/pictures/dib.h"

#include <gtest/gtest.h>
#include <memory>
#include <sstream>

#include "support/case_table.h"

namespace quillo::host::emf {
namespace {

std::string Describe(const Dib& dib) {
  constexpr const char* kCodings[] = {"", " run length", " JPEG", " PNG"};
  std::ostringstream text;
  text << dib.width << 'x' << dib.height << 'x' << dib.depth << kCodings[size_t(dib.coding)]
       << (dib.top_down ? " top-down" : "") << std::hex;
  if (dib.red_mask != 0) text << " masks";
  for (const uint32_t mask : {dib.red_mask, dib.green_mask, dib.blue_mask}) {
    if (dib.red_mask != 0) text << ' ' << mask;
  }
  if (!dib.palette.empty()) text << " colours";
  for (const uint32_t colour : dib.palette) text << ' ' << colour;
  return text.str();
}

TEST(Dib, Table_GivesBitmapsAndReasons) {
  test::CheckCases("host/dibs.txt", [](const std::vector<std::string>& fields) {
    std::istringstream header(fields[0]), table(fields[1]), use(fields[2]);
    int64_t width = 0, height = 0;
    uint32_t depth = 0, compression = 0, colours_used = 0;
    header >> width >> height >> depth;
    const auto columns = static_cast<uint32_t>(width), rows = static_cast<uint32_t>(height);
    std::vector<uint32_t> words = {12, columns | rows << 16, 1 | depth << 16};
    if (header >> compression >> colours_used) {
      words = {40, columns, rows, 1 | depth << 16, compression, 0, 0, 0, colours_used, 0};
    }
    for (uint32_t word = 0; table >> std::hex >> word;) words.push_back(word);
    uint32_t bit_bytes = 0, colours = 0, held_rows = 0;
    use >> bit_bytes >> colours >> held_rows;
    const std::vector<std::byte> bits(bit_bytes);
    const auto parse = [&](Bytes info) {
      std::string what;
      const auto dib = ParseDib(info, bits, static_cast<DibColors>(colours), held_rows,
                                {0x0A0A0A, 0x0B0B0B, 0x0C0C0C}, what);
      return dib ? Describe(*dib) : what;
    };
    // A block of the exact size, so that the sanitizer sees every read past the end.
    const Bytes info = std::as_bytes(std::span(words));
    const std::string header_cut = parse({});
    for (size_t size = 0; size < info.size(); ++size) {
      const auto block = std::make_unique<std::byte[]>(size);
      std::copy_n(info.begin(), size, block.get());
      const std::string cut = parse({block.get(), size});
      EXPECT_EQ(cut == header_cut, size < words[0]) << size;
    }
    return parse(info);
  });
}

}  // namespace
}  // namespace quillo::host::emf
