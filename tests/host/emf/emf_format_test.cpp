#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "host/emf/metafile_builder.h"
#include "host/emf/metafile_script.h"
#include "host/emf_format/carried_records.h"
#include "host/emf_format/comment.h"
#include "host/emf_format/page_mapping.h"
#include "host/emf_format/payload_reader.h"
#include "host/emf_format/reader.h"
#include "support/case_table.h"
#include "support/line.h"

namespace quillo::host::emf {
namespace {

/// What reading `file` comes to, in a script's words.
std::string Outcome(Bytes file) {
  // A block of the exact size, so that the sanitizer sees every read past the end.
  const auto block = std::make_unique<std::byte[]>(file.size());
  if (!file.empty()) std::memcpy(block.get(), file.data(), file.size());
  try {
    MetafileReader reader(Bytes(block.get(), file.size()));
    const MetafileHeader& header = reader.header();
    std::string seen = ">";
    for (const char16_t unit : header.description)
      seen += static_cast<char>(unit == 0 ? '/' : unit);
    if (!header.description.empty()) {
      seen +=
          test::Line(" ", header.device.x, "x", header.device.y, " pixels ", header.millimetres.x,
                     "x", header.millimetres.y, " mm, frame to ", header.frame.right, ",",
                     header.frame.bottom, ", ", header.handle_count, " handles");
    }
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
  for (const ScriptCase& c : ReadScript("emf/reading.txt")) {
    EXPECT_EQ(Outcome(c.metafile), c.expected) << c.place;
  }
}

TEST(MetafileReader, OtherKindsOfFile_AreNamed) {
  test::CheckCases("host/metafile_kinds.txt", [](const std::vector<std::string>& fields) {
    const std::string outcome = Outcome(std::as_bytes(std::span(fields[0])));
    return outcome.substr(2, outcome.size() - 3);
  });
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
  for (const auto& [offset, size, fits] : std::initializer_list<std::tuple<size_t, size_t, bool>>{
           {8, 12, true}, {20, 0, true}, {8, 13, false}, {21, 0, false}, {8, SIZE_MAX, false}}) {
    PayloadReader slicing(record);
    EXPECT_EQ(slicing.Slice(offset, size).size(), fits ? size : 0);
    EXPECT_EQ(slicing.ok(), fits) << offset << " " << size;
  }
}

TEST(CarriedRecords, ReplaceTheirComments) {
  // Pairs of a metafile with carried records, and what becomes of it.
  const std::vector<ScriptCase> cases = ReadScript("emf/carried.txt");
  for (size_t i = 0; i + 1 < cases.size(); i += 2) {
    auto bytes = cases[i].metafile;
    const auto size = UnpackCarriedRecords(bytes);
    ASSERT_TRUE(size) << cases[i].place;
    bytes.resize(*size);
    EXPECT_EQ(bytes, cases[i + 1].metafile) << cases[i].place;
  }
}

TEST(CarriedRecords, BrokenMetafiles_AreRefused) {
  const auto whole = ReadScript("emf/carried.txt")[0].metafile;
  for (size_t size = 0; size < whole.size(); ++size) {
    std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
    EXPECT_FALSE(UnpackCarriedRecords(cut)) << size;
  }
  const size_t last = whole.size() - 20;  // the end record
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

TEST(Transform, Inverse_UndoesTheMap) {
  const Transform map{2, 1, -3, 4, 5, 6};
  const PointD there = map.Apply(7, 8);
  const PointD back = map.Inverse().Apply(there.x, there.y);
  EXPECT_NEAR(back.x, 7, 1e-12);
  EXPECT_NEAR(back.y, 8, 1e-12);
  EXPECT_FALSE((Transform{1, 2, 2, 4, 0, 0}.Usable()));
  EXPECT_FALSE((Transform{1, 0, 0, NAN, 0, 0}.Usable()));
}

/// Of a device of 1000 by 500 pixels, 200 by 100 mm.
MetafileHeader HeaderOf(RectL frame, RectL bounds) {
  MetafileHeader header;
  header.frame = frame;
  header.bounds = bounds;
  header.device = {1000, 500};
  header.millimetres = {200, 100};
  return header;
}

TEST(PageMapping, EmptyFrame_FallsBackToBoundsThenDevice) {
  test::CheckCases("host/page_frames.txt", [](const auto& fields) {
    RectL frame{}, bounds{};
    test::Scan(fields[0], frame.left, frame.top, frame.right, frame.bottom);
    test::Scan(fields[1], bounds.left, bounds.top, bounds.right, bounds.bottom);
    const FrameRect rect = FrameOf(HeaderOf(frame, bounds));
    return test::Line(rect.left, ",", rect.top, " ", rect.width, "x", rect.height);
  });
}

TEST(PageMapping, FitFrame_KeepsProportionsAndCentres) {
  // The frame is 10 x 5 mm, 50 x 25 pixels from (5, 10).
  const Transform fit = FitFrame(HeaderOf({100, 200, 1100, 700}, {}), {1000, 2000});
  EXPECT_EQ(fit.Apply(5, 10), (PointD{0, 750}));
  EXPECT_EQ(fit.Apply(55, 35), (PointD{1000, 1250}));
}

}  // namespace
}  // namespace quillo::host::emf
