#include "host/emf_format/reader.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>

#include "host/emf/metafile_builder.h"
#include "host/emf_format/comment.h"
#include "host/emf_format/payload_reader.h"

namespace quillo::host::emf {
namespace {

/// The reader's answer to `file`, every step taken: refusal, or the records and the faults, the
/// harmless ones with a tilde.
std::string Outcome(Bytes file) {
  // A block of the exact size, so that the sanitizer sees every read behind the end.
  const auto block = std::make_unique<std::byte[]>(file.size());
  if (!file.empty()) std::memcpy(block.get(), file.data(), file.size());
  try {
    MetafileReader reader(Bytes(block.get(), file.size()));
    std::string seen;
    while (const auto record = reader.Next()) seen += RecordName(record->type) + " ";
    for (const MetafileFault& fault : reader.faults()) {
      seen += (fault.harmless ? "~ " : "| ") + Describe(fault) + " ";
    }
    return seen;
  } catch (const UnreadableMetafile& refusal) {
    return std::string("refused: ") + refusal.what();
  }
}

Bytes AsBytes(std::string_view text) { return std::as_bytes(std::span(text)); }

TEST(MetafileReader, Header_IsReadInEachLength) {
  for (const std::initializer_list<uint32_t>& longer :
       {std::initializer_list<uint32_t>{},
        {0, 0, 0},                     // + pixel format
        {0, 0, 0, 200000, 100000}}) {  // + micrometres
    MetafileBuilder file;
    file.Extend<uint32_t>(0, longer);
    file.Extend<char16_t>(0, {u'a', u'\0', u'b', u'\0'});
    file.Patch(60, 4);  // description length
    file.Patch(64, static_cast<uint32_t>(88 + longer.size() * 4));
    const auto bytes = file.Finish();
    const MetafileReader reader(bytes);
    EXPECT_EQ(reader.header().description, std::u16string(u"a\0b\0", 4));
    EXPECT_EQ(reader.header().device, (SizeL{1000, 500}));
    EXPECT_EQ(reader.header().millimeters, (SizeL{200, 100}));
    EXPECT_EQ(reader.header().frame, (RectL{0, 0, 2000, 1000}));
    EXPECT_EQ(reader.header().handle_count, 16u);
    EXPECT_TRUE(reader.faults().empty());
  }
}

TEST(MetafileReader, OtherKindsOfFile_AreNamed) {
  using namespace std::string_view_literals;
  const struct {
    std::string_view file;
    const char* says;
  } cases[] = {
      {""sv, "is empty"},
      {"hello"sv, "does not begin with EMR_HEADER"},
      {"\xD7\xCD\xC6\x9A...................."sv, "placeable Windows metafile"},
      {"\1\0\x09\0\0\3"sv, "a Windows metafile (WMF)"},
      {"%PDF-1.4"sv, "a PDF document"},
      {"\1\0\0\0"sv, "damaged: record 1 (EMR_HEADER)"},
  };
  for (const auto& [file, says] : cases) {
    EXPECT_NE(Outcome(AsBytes(file)).find(says), std::string::npos) << Outcome(AsBytes(file));
  }
}

/// h, H: an EMF+ header, which says dual or EMF+ only; D, G: EMF+ records that draw or let the DC
/// have a part; r, n: the file's own records, which draw or change nothing.
std::vector<std::byte> MetafileOf(std::string_view records) {
  MetafileBuilder file;
  std::vector<uint32_t> no_operation(23);
  no_operation[8] = 0x00AA0029;
  const auto add = [&file](uint32_t type_and_flags) {
    file.Add(kEmrGDICOMMENT, {16, 0x2B464D45, type_and_flags, 12, 0});
  };
  for (const char record : records) {
    if (record == 'h') add(0x14001);
    if (record == 'H') add(0x4001);
    if (record == 'D') add(0x400A);
    if (record == 'G') add(0x4004);
    if (record == 'r') file.Add(kEmrRECTANGLE, {0, 0, 9, 9});
    if (record == 'n') file.Add(kEmrBITBLT, no_operation);
  }
  return file.Finish();
}

TEST(MetafileReader, EmfPlus_IsRefusedUnlessTheFileDrawsItself) {
  constexpr int kRefused = -1;
  const struct {
    std::string_view records;
    int unrepeated;
  } cases[] = {{"h", 0},          {"H", kRefused}, {"hD", kRefused}, {"HDn", kRefused},
               {"hDn", kRefused}, {"D", kRefused}, {"hDr", 0},       {"HDr", 1},
               {"hDGr", 1},       {"hDGrDDGr", 3}, {"hGrDr", 0},     {"Hr", 0},
               {"hHDr", 0},       {"hGr", 0}};
  for (const auto& [records, unrepeated] : cases) {
    const auto file = MetafileOf(records);
    EXPECT_EQ(Outcome(file).starts_with("refused: holds its drawing as EMF+"),
              unrepeated == kRefused)
        << records;
    if (unrepeated == kRefused) continue;
    EXPECT_EQ(MetafileReader(file).unrepeated_emf_plus(), static_cast<uint64_t>(unrepeated))
        << records;
  }
}

TEST(Comment, DamagedEmfPlus_IsNamed) {
  // A comment of one EMF+ record: size of the data, "EMF+", type and flags, size, size of its data.
  const struct {
    uint32_t size, type, record_size, data_size;
    const char* fault;
  } cases[] = {
      {16, 0x4002, 12, 0, ""},
      {0xFFFFFFF4, 0x4002, 12, 0, "its data leave the record"},
      {16, 0x8888, 12, 0, "there is no EMF+ record of type 0x8888"},
      {16, 0x4002, 0, 0, "its EMF+ record of type 0x4002 does not fit"},
      {16, 0x4002, 16, 0, "its EMF+ record of type 0x4002 does not fit"},
      {16, 0x4002, 12, 1, "its EMF+ record of type 0x4002 does not fit"},
  };
  for (const auto& c : cases) {
    MetafileBuilder file;
    const size_t start =
        file.Add(kEmrGDICOMMENT, {c.size, 0x2B464D45, c.type, c.record_size, c.data_size});
    const auto bytes = file.Finish();
    EXPECT_EQ(FindCommentFault(Bytes(bytes).subspan(start, 28)), c.fault);
  }
}

TEST(MetafileReader, Faults_NameTheirRecord) {
  const std::string set_rop2 = "EMR_HEADER | record 2 (EMR_SETROP2): ";
  const struct {
    size_t offset;
    uint32_t value;
    std::string outcome;  // how it begins
  } cases[] = {
      {88 + 8, 1, "EMR_HEADER EMR_SETROP2 EMR_EOF "},  // none
      {88 + 4, 0, set_rop2 + "declares 0 bytes"},
      {88 + 4, 7, set_rop2 + "declares 7 bytes"},
      {88 + 4, 0xFFFFFFFC, set_rop2 + "declares 4294967292 bytes where"},
      {88 + 4, 8, set_rop2 + "holds 8 bytes, needs 12"},
      {88 + 4, 14,
       "EMR_HEADER EMR_SETROP2 ~ record 2 (EMR_SETROP2): its size 14 is no multiple of 4"},
      {88, kEmrGDICOMMENT,
       "EMR_HEADER EMR_GDICOMMENT EMR_EOF | record 3 (EMR_EOF): nothing but comments"},
      {48, 7,
       "EMR_HEADER EMR_SETROP2 EMR_EOF ~ record 1 (EMR_HEADER): declares 7 bytes, the file holds "
       "120 "},
      {52, 70,
       "EMR_HEADER EMR_SETROP2 EMR_EOF ~ record 3 (EMR_EOF): is record 3, the header declares 70 "
       "records "},
  };
  for (const auto& [offset, value, expected] : cases) {
    MetafileBuilder builder;
    builder.Add(kEmrSETROP2, {13});
    auto file = builder.Finish();
    Store(MutableBytes(file), offset, value);
    const std::string outcome = Outcome(file);
    EXPECT_TRUE(outcome.starts_with(expected)) << outcome;
  }
}

TEST(MetafileReader, EveryTruncation_IsRefusedOrLeavesAFault) {
  MetafileBuilder builder;
  for (uint32_t type = 1; type < kRecordTypeEnd; ++type) {
    if (type != kEmrHEADER && type != kEmrEOF) {
      builder.Add(type, std::vector<uint32_t>(LeastRecordBytes(type) / 4 - 2));
    }
  }
  const auto file = builder.Finish();
  EXPECT_EQ(Outcome(file).find_first_of("|~"), std::string::npos);
  for (size_t size = 0; size < file.size(); ++size) {
    const std::string outcome = Outcome(Bytes(file).first(size));
    EXPECT_TRUE(outcome.find('|') != std::string::npos || outcome.starts_with("refused"))
        << size << ": " << outcome;
  }
}

TEST(MetafileReader, ManyFaults_AreCountedNotKept) {
  MetafileBuilder builder;
  for (int i = 0; i < 1000; ++i) builder.Add(kEmrLINETO);
  const auto file = builder.Finish();
  MetafileReader reader(file);
  while (reader.Next()) {
  }
  EXPECT_EQ(reader.faults().size(), MetafileReader::kMostFaults);
  EXPECT_EQ(reader.fault_count(), 1000u);
}

TEST(PayloadReader, Reads_StayInsideTheRecord) {
  MetafileBuilder builder;
  builder.Add(kEmrPOLYGON, {1, 2, 3});
  const auto file = builder.Finish();
  const Bytes record = Bytes(file).subspan(88, 20);
  PayloadReader reader(record);
  EXPECT_EQ(reader.Read<uint32_t>(), 1u);
  EXPECT_TRUE(reader.ReadArray<uint32_t>(0x40000001).empty());  // 4 bytes, were it to wrap
  EXPECT_FALSE(reader.ok());
  EXPECT_EQ(reader.Read<uint32_t>(), 0u);  // it stays failed
  EXPECT_TRUE(reader.Slice(0, 4).empty());
  const struct {
    size_t offset, size;
    bool fits;
  } cases[] = {{8, 12, true}, {20, 0, true}, {8, 13, false}, {21, 0, false}, {8, SIZE_MAX, false}};
  for (const auto& [offset, size, fits] : cases) {
    PayloadReader slicing(record);
    EXPECT_EQ(slicing.Slice(offset, size).size(), fits ? size : 0);
    EXPECT_EQ(slicing.ok(), fits) << offset << " " << size;
  }
}

}  // namespace
}  // namespace quillo::host::emf
