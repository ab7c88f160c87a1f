#include "host/emf_format/reader.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>

#include "host/emf/metafile_builder.h"
#include "host/emf/metafile_script.h"
#include "host/emf_format/comment.h"
#include "host/emf_format/payload_reader.h"

namespace quillo::host::emf {
namespace {

/// What reading `file` comes to, in a script's words.
std::string Outcome(Bytes file) {
  // A block of the exact size, so that the sanitizer sees every read past the end.
  const auto block = std::make_unique<std::byte[]>(file.size());
  if (!file.empty()) std::memcpy(block.get(), file.data(), file.size());
  try {
    MetafileReader reader(Bytes(block.get(), file.size()));
    std::string seen = ">";
    while (const auto record = reader.Next()) {
      seen += " " + RecordName(record->type);
      if (record->type != kEmrGDICOMMENT) continue;
      const std::string what = FindCommentFault(record->bytes);
      if (!what.empty()) reader.Remark(*record, what);
    }
    for (const MetafileFault& fault : reader.faults()) {
      seen += (fault.harmless ? "\n~ " : "\n! ") + Describe(fault);
    }
    if (const uint64_t lost = reader.unrepeated_emf_plus()) {
      seen += "\n- EMF+ " + std::to_string(lost);
    }
    return seen + "\n";
  } catch (const UnreadableMetafile& refusal) {
    return std::string("- ") + refusal.what() + "\n";
  }
}

TEST(MetafileReader, Script_GivesItsRecordsAndFaults) {
  for (const ScriptCase& c : ReadScript("reading.txt")) {
    EXPECT_EQ(Outcome(c.metafile), c.expected) << c.place;
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
    EXPECT_EQ(reader.header().millimetres, (SizeL{200, 100}));
    EXPECT_EQ(reader.header().frame, (RectL{0, 0, 2000, 1000}));
    EXPECT_EQ(reader.header().handle_count, 16u);
    EXPECT_TRUE(reader.faults().empty());
  }
}

TEST(MetafileReader, OtherKindsOfFile_AreNamed) {
  using namespace std::string_view_literals;
  const struct {
    std::string_view file;
    const char* kind;
  } cases[] = {
      {""sv, "is empty"},
      {"hello"sv, "does not begin with EMR_HEADER"},
      {"\xD7\xCD\xC6\x9A...................."sv, "placeable Windows metafile"},
      {"\1\0\x09\0\0\3"sv, "a Windows metafile (WMF)"},
      {"%PDF-1.4"sv, "a PDF document"},
      {"\1\0\0\0"sv, "damaged: record 1 (EMR_HEADER)"},
  };
  for (const auto& [file, kind] : cases) {
    EXPECT_NE(Outcome(AsBytes(file)).find(kind), std::string::npos) << Outcome(AsBytes(file));
  }
}

TEST(MetafileReader, EveryTruncation_IsRefusedOrLeavesAFault) {
  MetafileBuilder builder;
  for (uint32_t type = 1; type < kRecordTypeEnd; ++type) {
    if (type != kEmrHEADER && type != kEmrEOF) {
      builder.Add(type, std::vector<uint32_t>(MinRecordBytes(type) / 4 - 2));
    }
  }
  const auto file = builder.Finish();
  EXPECT_EQ(Outcome(file).find_first_of("!~"), std::string::npos);
  for (size_t size = 0; size < file.size(); ++size) {
    const std::string outcome = Outcome(Bytes(file).first(size));
    EXPECT_NE(outcome.find_first_of("!-"), std::string::npos) << size << ": " << outcome;
  }
}

TEST(MetafileReader, ManyFaults_AreCountedNotKept) {
  MetafileBuilder builder;
  for (int i = 0; i < 1000; ++i) builder.Add(kEmrLINETO);
  const auto file = builder.Finish();
  MetafileReader reader(file);
  while (reader.Next()) {
  }
  EXPECT_EQ(reader.faults().size(), MetafileReader::kMaxFaults);
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
