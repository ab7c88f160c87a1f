#include "host/engine/page_records.h"

#include <filesystem>
#include <gtest/gtest.h>

#include "base/gdi_owners.h"
#include "host/emf/metafile_script.h"

namespace quillo::host {
namespace {

namespace fs = std::filesystem;

const std::vector<DWORD> kEveryRecord = {EMR_EXTCREATEPEN, EMR_SETMITERLIMIT, EMR_SETBRUSHORGEX,
                                         EMR_SETCOLORADJUSTMENT};

template <typename Function>
Function* Call(const char* name, Function*) {
  return reinterpret_cast<Function*>(FindRecordingCall(name, kEveryRecord));
}
#define CALL(function) Call(#function, &(function))

using Records = std::vector<std::vector<DWORD>>;

int CALLBACK TakeRecord(HDC, HANDLETABLE*, const ENHMETARECORD* record, int, LPARAM out) {
  const auto* words = reinterpret_cast<const DWORD*>(record);
  reinterpret_cast<Records*>(out)->emplace_back(words, words + record->nSize / sizeof(DWORD));
  return 1;
}

/// Header and end aside.
Records RecordsOf(HENHMETAFILE metafile) {
  Records records;
  EnumEnhMetaFile(nullptr, metafile, TakeRecord, &records, nullptr);
  if (records.size() < 2) return {};
  return {records.begin() + 1, records.end() - 1};
}

/// Of a case of tests/corpus/emf/recorded.txt.
Records Expected(size_t index) {
  const auto bytes = emf::ReadScript("emf/recorded.txt").at(index).metafile;
  const EnhMetafile metafile(SetEnhMetaFileBits(static_cast<UINT>(bytes.size()),
                                                reinterpret_cast<const BYTE*>(bytes.data())));
  return RecordsOf(metafile.Get());
}

// Fails when Wine records them: then the calls of this system go.
TEST(PageRecords, ThisGdi_DropsThem) { EXPECT_EQ(DroppedRecords(), kEveryRecord); }

TEST(PageRecords, WhatIsRecorded_KeepsGdisOwnCalls) {
  const std::vector<DWORD> only_miter_limits = {EMR_SETMITERLIMIT};
  for (const char* name : {"CreateEnhMetaFileW", "CloseEnhMetaFile", "SetMiterLimit",
                           "SetBrushOrgEx", "SetColorAdjustment", "ExtCreatePen", "SelectObject"}) {
    EXPECT_EQ(FindRecordingCall(name, {}), nullptr) << name;
    EXPECT_NE(FindRecordingCall(name, kEveryRecord), nullptr) << name;
    const std::string_view text = name;
    EXPECT_EQ(FindRecordingCall(name, only_miter_limits) != nullptr,
              text == "SetMiterLimit" || text.ends_with("MetaFileW") || text.starts_with("Close"));
  }
  EXPECT_EQ(FindRecordingCall("LineTo", kEveryRecord), nullptr);
}

class RecordedPage : public testing::Test {
 protected:
  ~RecordedPage() override { fs::remove(path_); }

  /// What is in the page's file once it is closed.
  Records Close() {
    const EnhMetafile metafile(CALL(CloseEnhMetaFile)(dc_));
    Records records = RecordsOf(metafile.Get());
    ENHMETAHEADER header = {};
    GetEnhMetaFileHeader(metafile.Get(), sizeof header, &header);
    EXPECT_EQ(header.nRecords, records.size() + 2);
    EXPECT_EQ(header.nBytes, fs::file_size(path_));
    return records;
  }

  const fs::path path_ = fs::temp_directory_path() / L"quillo page.emf";
  const HDC dc_ = CALL(CreateEnhMetaFileW)(nullptr, path_.c_str(), nullptr, nullptr);
};

TEST_F(RecordedPage, HoldsTheRecordsWhereTheyWereAsked) {
  SaveDC(dc_);
  POINT origin;
  EXPECT_TRUE(CALL(SetBrushOrgEx)(dc_, -3, 4, &origin));
  FLOAT limit = 0;
  EXPECT_TRUE(CALL(SetMiterLimit)(dc_, 4.6f, &limit));
  EXPECT_EQ(limit, 10);
  EXPECT_TRUE(CALL(SetMiterLimit)(dc_, 1e30f, nullptr));
  MoveToEx(dc_, 1, 2, nullptr);
  COLORADJUSTMENT adjustment = {};
  adjustment.caSize = sizeof adjustment;
  adjustment.caContrast = 20;
  EXPECT_TRUE(CALL(SetColorAdjustment)(dc_, &adjustment));
  adjustment.caSize = 0;
  CALL(SetColorAdjustment)(dc_, &adjustment);
  EXPECT_FALSE(CALL(SetColorAdjustment)(dc_, nullptr));
  RestoreDC(dc_, -1);
  EXPECT_EQ(Close(), Expected(0));
}

TEST_F(RecordedPage, HoldsWholePens) {
  constexpr DWORD kDashes[] = {10, 5};
  // Two rows of 2 pixels, their colours packed in front of them.
  const struct {
    BITMAPINFOHEADER header;
    DWORD colours[2];
    DWORD rows[2];
  } pattern = {{40, 2, -2, 1, 1, BI_RGB, 0, 0, 0, 0, 0}, {0x111111, 0x222222}, {0x40, 0x80}};
  const auto pattern_at = reinterpret_cast<ULONG_PTR>(&pattern);
  constexpr DWORD kWide = PS_GEOMETRIC | PS_JOIN_MITER;
  const auto use = [&](DWORD style, const LOGBRUSH& brush, DWORD dash_count) {
    const Pen pen(
        CALL(ExtCreatePen)(style, 9, &brush, dash_count, dash_count == 0 ? nullptr : kDashes));
    for (int twice = 0; twice < 2; ++twice) {
      const HGDIOBJ previous = CALL(SelectObject)(dc_, pen.Get());
      CALL(SelectObject)(dc_, previous);
    }
  };
  use(kWide | PS_USERSTYLE, {BS_SOLID, 0x123456, 0}, 2);
  use(kWide, {BS_HATCHED, 0xFF, HS_CROSS}, 0);
  use(kWide, {BS_DIBPATTERNPT, DIB_RGB_COLORS, pattern_at}, 0);
  use(kWide, {BS_DIBPATTERNPT, DIB_PAL_COLORS, pattern_at}, 0);
  const LOGBRUSH no_brush = {0xFFFF, 0, 0};
  EXPECT_EQ(CALL(ExtCreatePen)(kWide, 9, &no_brush, 0, nullptr), nullptr);
  EXPECT_EQ(Close(), Expected(1));
}

TEST_F(RecordedPage, ThatCannotBeRewritten_StaysAsRecorded) {
  fs::path in_the_way = path_;
  in_the_way += L".new";
  fs::create_directory(in_the_way);
  CALL(SetMiterLimit)(dc_, 5, nullptr);
  const Records records = Close();
  fs::remove(in_the_way);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0][0], static_cast<DWORD>(EMR_GDICOMMENT));
}

}  // namespace
}  // namespace quillo::host
