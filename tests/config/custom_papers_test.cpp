#include "config/papers/custom_papers.h"

#include <functional>
#include <gtest/gtest.h>

#include "config/papers/paper_geometry.h"
#include "config/settings_test.h"
#include "support/import_patch.h"
#include "support/late_functions.h"

namespace quillo {
namespace {

using namespace test;

struct Paper {
  std::wstring name;
  uint16_t number;
  int16_t kind;
  uint16_t length, width;
  friend bool operator==(const Paper&, const Paper&) = default;
};
using List = std::vector<Paper>;

const Paper kNote = {L"Note", 300, 0, 1500, 1000};
const Paper kCard = {L"Card", 301, 1, 60, 40};
const Paper kRoll = {L"Roll", 302, 3, 65535, 2100};
const HKEY kMachine = HKEY_LOCAL_MACHINE;
const HKEY kUser = HKEY_CURRENT_USER;

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

void PutPapers(HKEY root, const List& papers) {
  for (size_t i = 0; i < papers.size(); ++i) PutPaper(root, static_cast<int>(i), papers[i]);
  PutCount(root, static_cast<DWORD>(papers.size()));
}

List Load() {
  CustomPapers papers;
  const bool any = LoadCustomPapers(kTestPrinter, papers);
  EXPECT_EQ(any, static_cast<bool>(papers));
  List list;
  for (const CustomPaper* paper = papers.Get(); paper != nullptr; paper = paper->next) {
    list.push_back({paper->name, paper->number, paper->kind, paper->length, paper->width});
  }
  return list;
}

SettingsResult Save(const List& papers) {
  CustomPapers list;
  for (const Paper& paper : papers) {
    CustomPaper* entry = NewCustomPaper();
    *entry = {{}, paper.number, paper.kind, paper.length, paper.width, nullptr};
    paper.name.copy(entry->name, 63);
    list.Reset(Join(list.Detach(), entry));
  }
  return SaveCustomPapers(kTestPrinter, list.Get());
}

class CustomPapersTest : public SettingsTest {
 protected:
  LateFunctions functions_;  // without "EqualSid" nobody is an administrator
};

TEST_F(CustomPapersTest, Load_WhatCannotBeReadIsLeftOut) {
  const std::wstring full_name(63, L'n');
  const auto put = [](const wchar_t* name, const StoredValue& value) {
    return [=] { PutValue(kMachine, Subkey(0), name, value); };
  };
  const auto put_paper = [](int index, const Paper& paper) {
    return [=] { PutPaper(kMachine, index, paper); };
  };
  const Paper longest = {full_name, 300, 0, 1, 2}, too_long = {full_name + L"n", 300, 0, 1, 2};
  const struct {
    const char* what;
    std::function<void()> change;  // to a store of Note, Card and Roll
    List expected;
  } cases[] = {
      {"nothing changed", [] {}, {kNote, kCard, kRoll}},
      {"key missing", [] { RegDeleteTreeW(kMachine, Subkey(1).c_str()); }, {kNote, kRoll}},
      {"count 0", [] { PutCount(kMachine, 0); }, {}},
      {"count too high", [] { PutCount(kMachine, ~0u); }, {kNote, kCard, kRoll}},
      {"count too low", [] { PutCount(kMachine, 2); }, {kNote, kCard}},
      {"count of another type",
       [] { PutValue(kMachine, kOwnKey, L"Custom Papers Count", Binary(3)); },
       {}},
      {"dimensions short", put(L"CustomPaperDim", Zeros(5)), {kCard, kRoll}},
      {"dimensions long", put(L"CustomPaperDim", Zeros(7)), {kCard, kRoll}},
      {"dimensions a text", put(L"CustomPaperDim", Terminated(L"ab")), {kCard, kRoll}},
      {"number short", put(L"PaperID", Zeros(1)), {kCard, kRoll}},
      {"name missing",
       [] { RegDeleteTreeW(kMachine, (Subkey(2) + L"\\CustomName").c_str()); },
       {kNote, kCard}},
      {"name of 63 characters", put_paper(0, longest), {longest, kCard, kRoll}},
      {"name of 64 characters", put_paper(0, too_long), {kCard, kRoll}},
      {"number twice", put_paper(2, {L"2nd", 300, 0, 1, 2}), {kNote, kCard}},
  };
  for (const auto& c : cases) {
    StartAfresh();
    PutPapers(kMachine, {kNote, kCard, kRoll});
    c.change();
    EXPECT_EQ(Load(), c.expected) << c.what;
  }
}

TEST_F(CustomPapersTest, Load_TakesWhateverLiesBelowTheCount) {
  const Paper deleted = {L"Deleted", 400, kDeletedPaper, 1, 2};
  const Paper small = {L"Small number", 9, 0, 1, 2}, large = {L"Large", 65535, 0, 65535, 65535};
  PutPaper(kMachine, 9, large);
  PutPaper(kMachine, 10, small);
  PutPaper(kMachine, 100'000, deleted);
  PutPaper(kMachine, 5000, kCard);
  PutPaper(kMachine, 100'001, kRoll);
  PutCount(kMachine, 100'001);
  EXPECT_EQ(Load(), (List{large, small, kCard, deleted}));
}

TEST_F(CustomPapersTest, Add_KeepsWhatElseIsStored) {
  const auto add = [](const Paper& paper) {
    CustomPaper added = {{}, paper.number, paper.kind, paper.length, paper.width, nullptr};
    paper.name.copy(added.name, 63);
    return AddCustomPaper(kTestPrinter, added);
  };
  const Paper deleted = {L"Deleted", 400, kDeletedPaper, 1, 2}, other_card = {L"2nd", 301, 0, 1, 2};
  PutPapers(kMachine, {deleted, kNote, kCard});
  RegDeleteTreeW(kMachine, Subkey(1).c_str());
  EXPECT_EQ(add(kRoll), SETTINGS_OK);       // in the gap
  EXPECT_EQ(add(other_card), SETTINGS_OK);  // in the place of its number
  EXPECT_EQ(add(kNote), SETTINGS_OK);
  EXPECT_EQ(Load(), (List{deleted, kRoll, other_card, kNote}));
  for (const Paper& bad : {Paper{L"", 256, 0, 1, 1},
                           {L"", 32768, 0, 1, 1},
                           {L"", 500, 0, 0, 1},
                           {L"", 500, 0, 1, 0}}) {
    EXPECT_EQ(add(bad), SETTINGS_BAD_ARGUMENT) << bad.number;
  }
  functions_.Miss("EqualSid");
  EXPECT_EQ(add(kCard), SETTINGS_WRITE_FAILED);  // the machine's would hide it
  PutCount(kUser, ~0u);
  EXPECT_EQ(add({L"Own", 500, 1, 1, 2}), SETTINGS_OK);
  EXPECT_TRUE(GetValue(kUser, Subkey(0), L"PaperID"));

  // 4096 papers are enough; one of them may still change.
  for (int i = 1; i < 4096; ++i) PutValue(kUser, Subkey(i), L"PaperID", Binary(i));
  EXPECT_EQ(add({L"Own", 500, 1, 3, 4}), SETTINGS_OK);
  EXPECT_EQ(add({L"One more", 5000, 1, 3, 4}), SETTINGS_WRITE_FAILED);
}

TEST_F(CustomPapersTest, Load_UsersBehindTheMachines) {
  const Paper users_note = {L"My note", 300, 0, 1, 2};
  PutPapers(kMachine, {kNote});
  PutPapers(kUser, {users_note, kCard});
  EXPECT_EQ(Load(), List{kNote});  // administrators see the machine's only
  functions_.Miss("EqualSid");
  EXPECT_EQ(Load(), (List{kNote, kCard}));
  sandbox_->SwitchUser(L"another user");
  EXPECT_EQ(Load(), List{kNote});
  RegDeleteTreeW(kMachine, kOwnKey.c_str());
  EXPECT_EQ(Load(), List{});
  sandbox_->SwitchUser(L"user");
  EXPECT_EQ(Load(), (List{users_note, kCard}));
}

TEST_F(CustomPapersTest, Save_InOneStoreWithoutGaps) {
  const Paper deleted = {L"Deleted", 400, kDeletedPaper, 1, 2};
  for (const auto& [root, other] : {std::pair{kMachine, kUser}, std::pair{kUser, kMachine}}) {
    StartAfresh();
    if (root == kUser) functions_.Miss("EqualSid");
    ASSERT_EQ(Save({kNote, deleted, kCard, kRoll}), SETTINGS_OK);
    EXPECT_EQ(GetValue(root, kOwnKey, L"Custom Papers Count"), Number(3));
    EXPECT_FALSE(GetValue(other, kOwnKey, L"Custom Papers Count"));
    const uint16_t card[] = {1, 60, 40};
    EXPECT_EQ(GetValue(root, Subkey(1), L"CustomPaperDim"), Binary(card));
    EXPECT_EQ(GetValue(root, Subkey(1), L"PaperID"), Binary(uint16_t{301}));
    EXPECT_EQ(GetValue(root, Subkey(1) + L"\\CustomName", nullptr), Terminated(L"Card"));
    EXPECT_EQ(Load(), (List{kNote, kCard, kRoll}));

    // A shorter list: its papers are read, the keys behind them stay.
    ASSERT_EQ(Save({kRoll, deleted}), SETTINGS_OK);
    EXPECT_EQ(Load(), List{kRoll});
    EXPECT_TRUE(GetValue(root, Subkey(2), L"PaperID"));
  }
  EXPECT_EQ(SaveCustomPapers(L"no such printer", nullptr), SETTINGS_NOT_OPEN);

  static std::wstring unwritable;
  static decltype(RegSetValueExW)* set;
  const ImportPatch patch(
      "RegSetValueExW",
      +[](HKEY key, const wchar_t* name, DWORD zero, DWORD type, const BYTE* data, DWORD size)
           WINAPI -> LSTATUS {
        return name == unwritable ? ERROR_DISK_FULL : set(key, name, zero, type, data, size);
      });
  set = patch.Original<decltype(RegSetValueExW)>();
  for (const wchar_t* name : {L"CustomPaperDim", L"PaperID", L"Custom Papers Count"}) {
    unwritable = name;
    EXPECT_EQ(Save({kNote}), SETTINGS_SET_FAILED);
  }
}

TEST_F(CustomPapersTest, ResolveSheet_OfTheUsersPapers) {
  functions_.Miss("EqualSid");
  PutPapers(kMachine, {kNote, kRoll});
  const struct {
    const wchar_t* user;
    List papers;
    int16_t paper;
    Extent tenths;
  } cases[] = {
      {L"user", {kCard, {L"Mine", 300, 0, 1, 2}}, 300, {1000, 1500}},
      {L"user", {kCard}, 301, {1016, 1524}},
      {L"user", {kCard}, 303, {2159, 2794}},
      {L"another", {{L"Card", 301, 2, 900, 500}}, 301, {500, 900}},
      {L"a third", {}, 301, {2159, 2794}},
  };
  for (const auto& c : cases) {
    sandbox_->SwitchUser(c.user);
    PutPapers(kUser, c.papers);
    DeviceMode mode;
    BuildDefaultDeviceMode(mode, kTestPrinter);
    mode.pub.dmPaperSize = c.paper;
    EXPECT_EQ(ResolveSheet(mode).tenths.size, c.tenths) << c.paper;
    mode.pub.dmOrientation = DMORIENT_LANDSCAPE;
    EXPECT_EQ(ResolveSheet(mode).tenths.size, (Extent{c.tenths.height, c.tenths.width}));
  }
}

}  // namespace
}  // namespace quillo
