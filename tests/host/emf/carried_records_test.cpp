#include "host/emf_format/carried_records.h"

#include <gtest/gtest.h>

#include "host/emf/metafile_builder.h"

namespace quillo::host::emf {
namespace {

std::vector<std::byte> RecordOf(uint32_t type, const std::vector<uint32_t>& payload) {
  MetafileBuilder file;
  const size_t start = file.Add(type, payload);
  const auto bytes = file.Finish();
  return {bytes.begin() + static_cast<ptrdiff_t>(start), bytes.end() - 20};
}

void AddComment(MetafileBuilder& file, const std::vector<std::byte>& data) {
  std::vector<uint32_t> payload = {static_cast<uint32_t>(data.size())};
  payload.resize(1 + (data.size() + 3) / 4);
  std::memcpy(&payload[1], data.data(), data.size());
  file.Add(kEmrGDICOMMENT, payload);
}

const std::vector<uint32_t> kPen = {0, 56, 0, 56, 0, 0x12100, 7, 0, 0xFF, 0, 0, 0};

TEST(CarriedRecords, StandWhereTheirCommentsWere) {
  const auto pen = CarryRecord(RecordOf(kEmrEXTCREATEPEN, kPen));
  auto longer = CarryRecord(RecordOf(kEmrSETMITERLIMIT, {3}));
  longer.resize(longer.size() + 4);
  auto other = CarryRecord(RecordOf(kEmrSETMITERLIMIT, {3}));
  other[0] = std::byte{'q'};
  const auto tiny = CarryRecord(RecordOf(kEmrSETBRUSHORGEX, {1}));

  MetafileBuilder file, expected;
  AddComment(file, CarryRecord(RecordOf(kEmrSETBRUSHORGEX, {1, 2})));
  expected.Add(kEmrSETBRUSHORGEX, {1, 2});
  AddComment(file, pen);
  file.Add(kEmrCREATEPEN, {5, 0x12100, 7, 0, 0});
  auto with_index = kPen;
  with_index[0] = 5;
  expected.Add(kEmrEXTCREATEPEN, with_index);
  // A pen that the recorder knew already, and one that it makes without a carried one.
  AddComment(file, pen);
  for (MetafileBuilder* each : {&file, &expected}) {
    each->Add(kEmrSELECTOBJECT, {5});
    each->Add(kEmrCREATEPEN, {6, 0, 1, 0, 0});
    // Comments that carry nothing.
    for (const auto& comment : {longer, other, tiny, std::vector<std::byte>(3)}) {
      AddComment(*each, comment);
    }
  }
  AddComment(file, CarryRecord(RecordOf(kEmrSETMITERLIMIT, {3})));
  expected.Add(kEmrSETMITERLIMIT, {3});

  auto bytes = file.Finish();
  const auto size = UnpackCarriedRecords(bytes);
  ASSERT_TRUE(size);
  bytes.resize(*size);
  EXPECT_EQ(bytes, expected.Finish());
}

TEST(CarriedRecords, BrokenMetafiles_AreRefused) {
  MetafileBuilder file;
  AddComment(file, CarryRecord(RecordOf(kEmrSETBRUSHORGEX, {1, 2})));
  const size_t last = file.Add(kEmrSAVEDC);
  const auto whole = file.Finish();
  for (size_t size = 0; size < whole.size(); ++size) {
    std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
    EXPECT_FALSE(UnpackCarriedRecords(cut)) << size;
  }
  for (const auto& [offset, value] : {std::pair<size_t, uint32_t>{0, kEmrSAVEDC},
                                      {4, 84},
                                      {last + 4, 0},
                                      {last + 4, 10},
                                      {last + 4, UINT32_MAX}}) {
    auto bad = whole;
    Store(MutableBytes(bad), offset, value);
    EXPECT_FALSE(UnpackCarriedRecords(bad)) << offset << " " << value;
  }
}

}  // namespace
}  // namespace quillo::host::emf
