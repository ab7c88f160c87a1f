#include "playback/font_embedding.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "capture/records/types.h"
#include "playback/page.h"
#include "support/holdings.h"
#include "support/renamed_font.h"
#include "support/watch.h"

namespace quillo::test {
namespace {

class FontEmbeddingTest : public testing::Test {
 protected:
  FontEmbeddingTest() {
    std::filesystem::create_directories(folder_);
    page_.context.job.font_directory = folder_text_.c_str();
    page_.on_font = [this](const wchar_t* path) {
      EXPECT_TRUE(std::filesystem::exists(path)) << "announced before it was written";
      announced_.emplace_back(path);
      return answer_;
    };
  }
  ~FontEmbeddingTest() override { std::filesystem::remove_all(folder_); }

  void Play(const wchar_t* face, LONG height = 100) {
    EXPECT_EQ(page_.Play(records::REC_CREATEFONT, PayloadOf(FontNamed(face, height))), 1);
    EXPECT_NE(page_.context.current_font, nullptr);
  }

  std::filesystem::path folder_ = std::filesystem::temp_directory_path() /
                                  (L"font-embedding-" + std::to_wstring(GetCurrentProcessId()));
  std::wstring folder_text_ = folder_.wstring();
  std::vector<std::filesystem::path> announced_;
  HRESULT answer_ = S_OK;
  Page page_;
};

TEST_F(FontEmbeddingTest, TemporaryFont_GoesIntoTheFolderOnceAHeight) {
  auto file = RenamedFont(u"Abc.TMP");
  DWORD count = 0;
  const HANDLE installed =
      AddFontMemResourceEx(file.data(), static_cast<DWORD>(file.size()), nullptr, &count);
  ASSERT_NE(installed, nullptr);
  page_.context.world_transform.eM11 = 1;
  Play(L"Abc.TMP");
  Play(L"Abc.TMP");
  ASSERT_EQ(announced_.size(), 1u);
  EXPECT_EQ(announced_[0], folder_ / L"Abc.TMP");
  EXPECT_EQ(ReadFile(announced_[0]), file);

  // Another height is another font; where the name is taken, a number goes behind it.
  Play(L"Abc.TMP", 200);
  Play(L"Abc.TMP", 300);
  ASSERT_EQ(announced_.size(), 3u);
  const std::wstring plain = announced_[0];
  const int number = std::stoi(announced_[1].wstring().substr(plain.size()));
  EXPECT_EQ(announced_[1].wstring(), plain + std::to_wstring(number));
  EXPECT_EQ(announced_[2].wstring(), plain + std::to_wstring(number + 1));
  EXPECT_EQ(ReadFile(announced_[2]), file);
  // Nothing is written through a link.
  const std::wstring next = plain + std::to_wstring(number + 2);
  std::filesystem::create_hard_link(announced_[2], next);
  Play(L"Abc.TMP", 400);
  EXPECT_EQ(announced_.size(), 3u);
  RemoveFontMemResourceEx(installed);
}

TEST_F(FontEmbeddingTest, ClientThatRefuses_LeavesNoFile) {
  answer_ = E_ACCESSDENIED;
  Play(L"Abc.TMP");
  EXPECT_EQ(announced_.size(), 1u);
  EXPECT_TRUE(std::filesystem::is_empty(folder_));
}

TEST_F(FontEmbeddingTest, WithoutUsableFolder_FontIsRememberedOnly) {
  const std::wstring endless = folder_text_ + L'\\' + std::wstring(400, L'x');
  for (const wchar_t* folder : {L"", endless.c_str()}) {
    page_.context.job.font_directory = folder;
    Play(L"Abc.TMP");
  }
  page_.context.job.font_directory = folder_text_.c_str();
  Play(L"Abc.TMP");
  EXPECT_EQ(page_.context.seen_fonts.Count(), 1u);
  EXPECT_TRUE(announced_.empty());
}

TEST_F(FontEmbeddingTest, FaceName_MustMarkATemporaryFontAndNameAFile) {
  // The last name is as long as the field, without a terminator.
  for (const wchar_t* face : {L".tmp", L"A.Tmp", L"b.tmp.regular", L"\u0416.tmp", L"console.tmp",
                              L"com.tmp", L"com10.tmp", L"3456789012345678901234567890.tmp"}) {
    EXPECT_TRUE(EmbedFont(page_.context, FontNamed(face))) << std::filesystem::path(face);
    ASSERT_FALSE(announced_.empty());
    EXPECT_EQ(announced_.back(), folder_ / face);
  }
  announced_.clear();
  for (const wchar_t* face : {L"", L"Arial tmp", L"a\\b.tmp", L"..\\b.tmp", L"a/b.tmp", L"c:b.tmp",
                              L"b.tmp:stream", L"a..tmp", L"con.tmp", L"Nul .tmp", L"LPT1.tmp",
                              L"com\u00B2.tmp", L"CONIN$.tmp", L"a?.tmp", L"a\n.tmp"}) {
    EXPECT_FALSE(EmbedFont(page_.context, FontNamed(face))) << std::filesystem::path(face);
  }
  EXPECT_TRUE(announced_.empty());
}

TEST_F(FontEmbeddingTest, AnyStepThatFails_LeavesNoFileAndNoObject) {
  const uintptr_t before = LiveGdiObjects();
  const auto embed = [this](const char* failing) {
    EXPECT_FALSE(EmbedFont(page_.context, FontNamed(L"Abc.TMP"))) << failing;
    EXPECT_TRUE(announced_.empty() && std::filesystem::is_empty(folder_)) << failing;
  };
#define FAIL_WITH(function, answer)      \
  do {                                   \
    const WATCH(function) watch(answer); \
    embed(#function);                    \
  } while (false)
  FAIL_WITH(GetFileAttributesW, DWORD{FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT});
  FAIL_WITH(GetDC, nullptr);
  FAIL_WITH(CreateFontIndirectW, nullptr);
  FAIL_WITH(SelectObject, nullptr);
  FAIL_WITH(GetFontData, 0u);
  FAIL_WITH(GetFontData, GDI_ERROR);
  // The size is known, the content cannot be read.
  FAIL_WITH(GetFontData, ([](auto, auto, auto, void* out, auto) -> DWORD {
              return out == nullptr ? 100 : GDI_ERROR;
            }));
  FAIL_WITH(WriteFile, FALSE);
  FAIL_WITH(CreateFileW, INVALID_HANDLE_VALUE);
#undef FAIL_WITH
  EXPECT_LE(LiveGdiObjects(), before);  // the system may let go of a DC of its own
}

}  // namespace
}  // namespace quillo::test
