#include "config/custom_papers.h"

#include <functional>
#include <gtest/gtest.h>

#include "config/paper_geometry.h"
#include "config/settings_test.h"
#include "support/late_functions.h"

namespace quillo {
namespace {

struct Paper {
  std::wstring name;
  uint16_t number;
  int16_t kind;
  uint16_t length, width;
  friend bool operator==(const Paper&, const Paper&) = default;
};

const HKEY kRoot = HKEY_LOCAL_MACHINE;

const Paper kNote = {L"Note", 300, 0, 1500, 1000};
const Paper kCard = {L"Card", 301, 1, 60, 40};
const Paper kRoll = {L"Roll", 302, 3, 65535, 2100};

std::wstring Subkey(int index) { return kOwnKey + L"\\Paper " + std::to_wstring(index); }

void PutCount(HKEY root, DWORD count) {
  PutValue(root, kOwnKey, L"Custom Papers Count", Number(count));
}

void PutPaper(HKEY root, int index, const Paper& paper) {
  const uint16_t dimensions[] = {static_cast<uint16_t>(paper.kind), paper.length, paper.width};
  PutValue(root, Subkey(index), L"CustomPaperDim", Binary(dimensions));
  PutValue(root, Subkey(index) + L"\\CustomName", nullptr, Terminated(paper.name));
  PutValue(root, Subkey(index), L"PaperID", Binary(paper.number));
}

void PutPapers(HKEY root, const std::vector<Paper>& papers) {
  for (size_t i = 0; i < papers.size(); ++i) PutPaper(root, static_cast<int>(i), papers[i]);
  PutCount(root, static_cast<DWORD>(papers.size()));
}

std::vector<Paper> Listed(const CustomPaper* head) {
  std::vector<Paper> papers;
  for (; head != nullptr; head = head->next) {
    papers.push_back({head->name, head->number, head->kind, head->length, head->width});
  }
  return papers;
}

std::vector<Paper> Load() {
  CustomPapers papers;
  const bool any = LoadCustomPapers(kTestPrinter, papers);
  EXPECT_EQ(any, static_cast<bool>(papers));
  return Listed(papers.Get());
}

CustomPapers ListOf(const std::vector<Paper>& papers) {
  CustomPapers list;
  for (const Paper& paper : papers) {
    CustomPaper* entry = NewCustomPaper();
    paper.name.copy(entry->name, 63);
    entry->number = paper.number;
    entry->kind = paper.kind;
    entry->length = paper.length;
    entry->width = paper.width;
    list.Reset(Join(list.Detach(), entry));
  }
  return list;
}

class CustomPapersTest : public SettingsTest {
 protected:
  void BecomeOrdinaryUser() { functions_.Miss("EqualSid"); }
  void BecomeAdministrator() { functions_.Restore(); }

 private:
  test::LateFunctions functions_;
};

TEST_F(CustomPapersTest, Load_WhatCannotBeReadIsLeftOut) {
  const std::wstring full_name(63, L'n');
  const struct {
    const char* what;
    std::function<void()> change;  // to a store of Note, Card and Roll
    std::vector<Paper> expected;
  } cases[] = {
      {"nothing changed", [] {}, {kNote, kCard, kRoll}},
      {"subkey missing", [] { RegDeleteTreeW(kRoot, Subkey(1).c_str()); }, {kNote, kRoll}},
      {"count 0", [] { PutCount(kRoot, 0); }, {}},
      {"count beyond the subkeys", [] { PutCount(kRoot, 0xFFFFFFFF); }, {kNote, kCard, kRoll}},
      {"count short of them", [] { PutCount(kRoot, 2); }, {kNote, kCard}},
      {"count of another type",
       [] { PutValue(kRoot, kOwnKey, L"Custom Papers Count", Binary(DWORD{3})); },
       {}},
      {"dimensions missing",
       [] { RegDeleteKeyValueW(kRoot, Subkey(0).c_str(), L"CustomPaperDim"); },
       {kCard, kRoll}},
      {"dimensions short",
       [] { PutValue(kRoot, Subkey(0), L"CustomPaperDim", Binary(DWORD{1})); },
       {kCard, kRoll}},
      {"dimensions long",
       [] { PutValue(kRoot, Subkey(0), L"CustomPaperDim", Binary(uint64_t{1})); },
       {kCard, kRoll}},
      {"dimensions of another type",
       [] { PutValue(kRoot, Subkey(0), L"CustomPaperDim", Text(std::wstring(L"abc"))); },
       {kCard, kRoll}},
      {"number short",
       [] { PutValue(kRoot, Subkey(0), L"PaperID", Binary(uint8_t{1})); },
       {kCard, kRoll}},
      {"name missing",
       [] { RegDeleteTreeW(kRoot, (Subkey(2) + L"\\CustomName").c_str()); },
       {kNote, kCard}},
      {"name of 63 characters",
       [&] {
         PutPaper(kRoot, 0, {full_name, 300, 0, 1, 2});
       },
       {{full_name, 300, 0, 1, 2}, kCard, kRoll}},
      {"name of 64 characters",
       [&] {
         PutPaper(kRoot, 0, {full_name + L"n", 300, 0, 1, 2});
       },
       {kCard, kRoll}},
      {"same number twice",
       [] {
         PutPaper(kRoot, 2, {L"Again", 300, 0, 1, 2});
       },
       {kNote, kCard}},
  };
  for (const auto& c : cases) {
    StartAfresh();
    PutPapers(kRoot, {kNote, kCard, kRoll});
    c.change();
    EXPECT_EQ(Load(), c.expected) << c.what;
  }
}

TEST_F(CustomPapersTest, Load_ReadsNoMoreThan4096) {
  PutPapers(HKEY_LOCAL_MACHINE, {kNote});
  PutPaper(HKEY_LOCAL_MACHINE, 4095, kCard);
  PutPaper(HKEY_LOCAL_MACHINE, 4096, kRoll);
  PutCount(HKEY_LOCAL_MACHINE, 4097);
  EXPECT_EQ(Load(), (std::vector<Paper>{kNote, kCard}));
}

TEST_F(CustomPapersTest, Load_UsersBehindTheMachines) {
  const Paper users_note = {L"My note", 300, 0, 1, 2};
  PutPapers(HKEY_LOCAL_MACHINE, {kNote});
  PutPapers(HKEY_CURRENT_USER, {users_note, kCard});
  EXPECT_EQ(Load(), (std::vector<Paper>{kNote}));  // administrators see the machine's only
  BecomeOrdinaryUser();
  EXPECT_EQ(Load(), (std::vector<Paper>{kNote, kCard}));
  ASSERT_TRUE(sandbox_->SwitchUser(L"another user"));
  EXPECT_EQ(Load(), (std::vector<Paper>{kNote}));
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, kOwnKey.c_str());
  EXPECT_EQ(Load(), (std::vector<Paper>{}));
  ASSERT_TRUE(sandbox_->SwitchUser(L"user"));
  EXPECT_EQ(Load(), (std::vector<Paper>{users_note, kCard}));
}

TEST_F(CustomPapersTest, Save_InOneStoreWithoutGaps) {
  const Paper deleted = {L"Deleted", 400, kDeletedPaper, 1, 2};
  for (const bool administrator : {true, false}) {
    StartAfresh();
    administrator ? BecomeAdministrator() : BecomeOrdinaryUser();
    const HKEY root = administrator ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
    const HKEY other = administrator ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
    ASSERT_EQ(SaveCustomPapers(kTestPrinter, ListOf({kNote, deleted, kCard, kRoll}).Get()),
              SETTINGS_OK);
    EXPECT_EQ(GetValue(root, kOwnKey, L"Custom Papers Count"), Number(3));
    EXPECT_EQ(GetValue(other, kOwnKey, L"Custom Papers Count"), std::nullopt);
    const uint16_t card[] = {1, 60, 40};
    EXPECT_EQ(GetValue(root, Subkey(1), L"CustomPaperDim"), Binary(card));
    EXPECT_EQ(GetValue(root, Subkey(1), L"PaperID"), Binary(uint16_t{301}));
    EXPECT_EQ(GetValue(root, Subkey(1) + L"\\CustomName", nullptr), Terminated(L"Card"));
    EXPECT_EQ(Load(), (std::vector<Paper>{kNote, kCard, kRoll}));

    // A shorter list: its papers are read, the subkeys behind them stay.
    ASSERT_EQ(SaveCustomPapers(kTestPrinter, ListOf({kRoll, deleted}).Get()), SETTINGS_OK);
    EXPECT_EQ(Load(), (std::vector<Paper>{kRoll}));
    EXPECT_TRUE(GetValue(root, Subkey(2), L"PaperID"));
    ASSERT_EQ(SaveCustomPapers(kTestPrinter, nullptr), SETTINGS_OK);
    EXPECT_EQ(Load(), (std::vector<Paper>{}));
  }
  EXPECT_EQ(SaveCustomPapers(L"no such printer", nullptr), SETTINGS_NOT_OPEN);
}

TEST_F(CustomPapersTest, SheetSize_OfEachKind) {
  PutPapers(HKEY_LOCAL_MACHINE, {kNote, kCard, kRoll});
  const struct {
    int16_t paper;
    int16_t orientation;
    Extent pixels, millimetres, tenths;
  } cases[] = {
      {300, DMORIENT_PORTRAIT, {1181, 1771}, {100, 150}, {1000, 1500}},
      {300, DMORIENT_LANDSCAPE, {1771, 1181}, {150, 100}, {1500, 1000}},
      {301, DMORIENT_PORTRAIT, {1200, 1800}, {101, 152}, {1016, 1524}},
      {302, DMORIENT_PORTRAIT, {2480, 77403}, {210, 6553}, {2100, 65535}},
      {303, DMORIENT_PORTRAIT, {2550, 3300}, {215, 279}, {2159, 2794}},
  };
  for (const auto& c : cases) {
    DeviceMode mode;
    BuildDefaultDeviceMode(mode, kTestPrinter);
    mode.pub.dmPaperSize = c.paper;
    mode.pub.dmOrientation = c.orientation;
    mode.pub.dmPrintQuality = DMRES_MEDIUM;
    EXPECT_EQ(SheetSize(mode, PaperUnit::kDevicePixels), c.pixels) << c.paper;
    EXPECT_EQ(SheetSize(mode, PaperUnit::kMillimetres), c.millimetres) << c.paper;
    EXPECT_EQ(SheetSize(mode, PaperUnit::kTenthsOfMillimetre), c.tenths) << c.paper;
  }
}

}  // namespace
}  // namespace quillo
