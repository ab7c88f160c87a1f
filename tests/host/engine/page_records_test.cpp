#include "host/engine/page_records.h"

#include <array>
#include <bit>
#include <filesystem>
#include <gtest/gtest.h>

#include "base/gdi_owners.h"

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

  /// What is in the page's file once it is closed, header and end aside.
  Records Close() {
    const EnhMetafile metafile(CALL(CloseEnhMetaFile)(dc_));
    Records records;
    EnumEnhMetaFile(nullptr, metafile.Get(), TakeRecord, &records, nullptr);
    ENHMETAHEADER header = {};
    GetEnhMetaFileHeader(metafile.Get(), sizeof header, &header);
    EXPECT_EQ(header.nRecords, records.size());
    EXPECT_EQ(header.nBytes, fs::file_size(path_));
    if (records.size() < 2) return {};
    return {records.begin() + 1, records.end() - 1};
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
  const auto adjusted = std::bit_cast<std::array<DWORD, 6>>(adjustment);
  adjustment.caSize = 0;
  CALL(SetColorAdjustment)(dc_, &adjustment);
  EXPECT_FALSE(CALL(SetColorAdjustment)(dc_, nullptr));
  RestoreDC(dc_, -1);
  EXPECT_EQ(Close(), (Records{{EMR_SAVEDC, 8},
                              {EMR_SETBRUSHORGEX, 16, static_cast<DWORD>(-3), 4},
                              {EMR_SETMITERLIMIT, 12, 5},
                              {EMR_SETMITERLIMIT, 12, 1'000'000},
                              {EMR_MOVETOEX, 16, 1, 2},
                              {EMR_SETCOLORADJUSTMENT, 32, adjusted[0], adjusted[1], adjusted[2],
                               adjusted[3], adjusted[4], adjusted[5]},
                              {EMR_RESTOREDC, 12, static_cast<DWORD>(-1)}}));
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
  std::vector<DWORD> with_pattern = {EMR_EXTCREATEPEN, 112, 1, 56, 48, 104, 8, kWide, 9,
                                     BS_DIBPATTERNPT,  0,   0, 0,  0};
  const auto* words = reinterpret_cast<const DWORD*>(&pattern);
  with_pattern.insert(with_pattern.end(), words, words + sizeof pattern / 4);
  Records expected;
  const auto use = [&](DWORD style, const LOGBRUSH& brush, DWORD dash_count,
                       const std::vector<DWORD>& record) {
    const Pen pen(
        CALL(ExtCreatePen)(style, 9, &brush, dash_count, dash_count == 0 ? nullptr : kDashes));
    expected.push_back(record);
    for (int twice = 0; twice < 2; ++twice) {
      const HGDIOBJ previous = CALL(SelectObject)(dc_, pen.Get());
      CALL(SelectObject)(dc_, previous);
      expected.push_back({EMR_SELECTOBJECT, 12, 1});
      expected.push_back({EMR_SELECTOBJECT, 12, 0x80000007});
    }
    expected.push_back({EMR_DELETEOBJECT, 12, 1});
  };
  constexpr DWORD kDashed = kWide | PS_USERSTYLE;
  use(kDashed, {BS_SOLID, 0x123456, 0}, 2,
      {EMR_EXTCREATEPEN, 60, 1, 60, 0, 60, 0, kDashed, 9, BS_SOLID, 0x123456, 0, 2, 10, 5});
  use(kWide, {BS_HATCHED, 0xFF, HS_CROSS}, 0,
      {EMR_EXTCREATEPEN, 56, 1, 56, 0, 56, 0, kWide, 9, BS_HATCHED, 0xFF, HS_CROSS, 0, 0});
  use(kWide, {BS_DIBPATTERNPT, DIB_RGB_COLORS, pattern_at}, 0, with_pattern);
  // What cannot be carried stays as GDI records it.
  use(kWide, {BS_DIBPATTERNPT, DIB_PAL_COLORS, pattern_at}, 0,
      {EMR_CREATEPEN, 28, 1, kWide, 9, 0, 0});
  const LOGBRUSH no_brush = {0xFFFF, 0, 0};
  EXPECT_EQ(CALL(ExtCreatePen)(kWide, 9, &no_brush, 0, nullptr), nullptr);
  EXPECT_EQ(Close(), expected);
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
