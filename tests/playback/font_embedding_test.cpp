#include "playback/font_embedding.h"

#include <cwchar>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "capture/records/types.h"
#include "playback/page.h"
#include "support/import_patch.h"
#include "support/renamed_font.h"

namespace quillo::test {
namespace {

using namespace records;

LOGFONTW FontNamed(const wchar_t* face, LONG height = 100) {
  LOGFONTW font = {};
  font.lfHeight = height;
  std::wcscpy(font.lfFaceName, face);
  return font;
}

/// GDI objects and blocks that embedding makes, and a system call that is to fail.
class SystemCalls {
 public:
  explicit SystemCalls(std::string failing = "") {
    failing_ = std::move(failing);
    live_ = 0;
    font_data_calls_ = 0;
    get_dc_ = get_dc_patch_.Original<decltype(GetDC)>();
    release_dc_ = release_dc_patch_.Original<decltype(ReleaseDC)>();
    create_font_ = create_font_patch_.Original<decltype(CreateFontIndirectW)>();
    delete_object_ = delete_object_patch_.Original<decltype(DeleteObject)>();
    font_data_ = font_data_patch_.Original<decltype(GetFontData)>();
    create_file_ = create_file_patch_.Original<decltype(CreateFileW)>();
    write_file_ = write_file_patch_.Original<decltype(WriteFile)>();
  }
  static int Live() { return live_; }

 private:
  static HDC WINAPI Get(HWND window) {
    if (failing_ == "GetDC") return nullptr;
    ++live_;
    return get_dc_(window);
  }
  static int WINAPI Release(HWND window, HDC dc) {
    --live_;
    return release_dc_(window, dc);
  }
  static HFONT WINAPI CreateFontIndirect(const LOGFONTW* font) {
    if (failing_ == "CreateFontIndirectW") return nullptr;
    ++live_;
    return create_font_(font);
  }
  static WINBOOL WINAPI Delete(HGDIOBJ object) {
    --live_;
    return delete_object_(object);
  }
  static DWORD WINAPI FontData(HDC dc, DWORD table, DWORD offset, void* buffer, DWORD size) {
    ++font_data_calls_;
    if (failing_ == "size 0") return 0;
    if (failing_ == "size GDI_ERROR") return GDI_ERROR;
    if (failing_ == "content" && font_data_calls_ == 2) return GDI_ERROR;
    return font_data_(dc, table, offset, buffer, size);
  }
  static HANDLE WINAPI CreateFile(const wchar_t* path, DWORD access, DWORD share,
                                  SECURITY_ATTRIBUTES* security, DWORD disposition, DWORD flags,
                                  HANDLE model) {
    if (failing_ == "CreateFileW") return INVALID_HANDLE_VALUE;
    EXPECT_EQ(access, DWORD{GENERIC_ALL});
    EXPECT_EQ(share, 0u);
    EXPECT_EQ(disposition, DWORD{CREATE_ALWAYS});
    EXPECT_EQ(flags, DWORD{FILE_ATTRIBUTE_TEMPORARY});
    return create_file_(path, access, share, security, disposition, flags, model);
  }
  static WINBOOL WINAPI Write(HANDLE file, const void* bytes, DWORD size, DWORD* written,
                              OVERLAPPED* overlapped) {
    if (failing_ == "WriteFile") size /= 2;  // the disk is full
    return write_file_(file, bytes, size, written, overlapped);
  }

  static inline std::string failing_;
  static inline int live_ = 0;
  static inline int font_data_calls_ = 0;
  static inline decltype(GetDC)* get_dc_ = nullptr;
  static inline decltype(ReleaseDC)* release_dc_ = nullptr;
  static inline decltype(CreateFontIndirectW)* create_font_ = nullptr;
  static inline decltype(DeleteObject)* delete_object_ = nullptr;
  static inline decltype(GetFontData)* font_data_ = nullptr;
  static inline decltype(CreateFileW)* create_file_ = nullptr;
  static inline decltype(WriteFile)* write_file_ = nullptr;
  ImportPatch get_dc_patch_{"GetDC", &Get};
  ImportPatch release_dc_patch_{"ReleaseDC", &Release};
  ImportPatch create_font_patch_{"CreateFontIndirectW", &CreateFontIndirect};
  ImportPatch delete_object_patch_{"DeleteObject", &Delete};
  ImportPatch font_data_patch_{"GetFontData", &FontData};
  ImportPatch create_file_patch_{"CreateFileW", &CreateFile};
  ImportPatch write_file_patch_{"WriteFile", &Write};
};

class FontEmbeddingTest : public testing::Test {
 protected:
  FontEmbeddingTest() {
    wchar_t temp[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, temp);
    folder_ =
        std::filesystem::path(temp) / (L"font-embedding-" + std::to_wstring(GetCurrentProcessId()));
    std::filesystem::create_directories(folder_);
    folder_text_ = folder_.wstring();
    page_.context.job.font_directory = folder_text_.c_str();
    page_.context.job.announce_font = Announce;
    page_.context.job.job = this;
  }
  ~FontEmbeddingTest() override { std::filesystem::remove_all(folder_); }

  static HRESULT Announce(void* self, const wchar_t* path) {
    auto* test = static_cast<FontEmbeddingTest*>(self);
    EXPECT_NE(GetFileAttributesW(path), INVALID_FILE_ATTRIBUTES) << "the file is not there yet";
    test->announced_.emplace_back(path);
    return test->answer_;
  }

  [[nodiscard]] size_t FileCount() const {
    const std::filesystem::directory_iterator files(folder_);
    return static_cast<size_t>(std::distance(begin(files), end(files)));
  }

  std::filesystem::path folder_;
  std::wstring folder_text_;
  std::vector<std::filesystem::path> announced_;
  HRESULT answer_ = S_OK;
  Page page_;
};

TEST_F(FontEmbeddingTest, TemporaryFont_GoesIntoTheFolderOnceAHeight) {
  const InstalledFont installed(RenamedFont(u"Abc.TMP"));
  ASSERT_TRUE(installed);
  page_.context.world_transform.eM11 = 1;
  const auto play = [&](LONG height) {
    EXPECT_EQ(page_.Play(REC_CREATEFONT, PayloadOf(FontNamed(L"Abc.TMP", height))), 1);
  };
  play(100);
  play(100);
  ASSERT_EQ(announced_.size(), 1u);
  EXPECT_EQ(announced_[0], folder_ / L"Abc.TMP");
  EXPECT_EQ(ReadFile(announced_[0]), installed.File());

  // Another height is another font; the name is taken, so a number goes behind it.
  play(200);
  play(300);
  ASSERT_EQ(announced_.size(), 3u);
  const std::wstring plain = announced_[0];
  const int number = std::stoi(announced_[1].wstring().substr(plain.size()));
  EXPECT_EQ(announced_[1].wstring(), plain + std::to_wstring(number));
  EXPECT_EQ(announced_[2].wstring(), plain + std::to_wstring(number + 1));
  EXPECT_EQ(ReadFile(announced_[2]), installed.File());

  // The name is free again as soon as the client has taken the file away.
  std::filesystem::remove(announced_[0]);
  play(400);
  EXPECT_EQ(announced_.back(), folder_ / L"Abc.TMP");
}

TEST_F(FontEmbeddingTest, ClientThatRefuses_LeavesNoFile) {
  answer_ = E_ACCESSDENIED;
  page_.Play(REC_CREATEFONT, PayloadOf(FontNamed(L"Abc.TMP")));
  EXPECT_EQ(announced_.size(), 1u);
  EXPECT_EQ(FileCount(), 0u);
  EXPECT_NE(page_.context.current_font, nullptr);
}

TEST_F(FontEmbeddingTest, EmptyFolder_RemembersTheFontOnly) {
  page_.context.job.font_directory = L"";
  page_.Play(REC_CREATEFONT, PayloadOf(FontNamed(L"Abc.TMP")));
  EXPECT_EQ(page_.context.seen_fonts.Count(), 1u);
  page_.context.job.font_directory = folder_text_.c_str();
  page_.Play(REC_CREATEFONT, PayloadOf(FontNamed(L"Abc.TMP")));
  EXPECT_TRUE(announced_.empty());
}

TEST_F(FontEmbeddingTest, FaceName_MustMarkATemporaryFontAndNameAFile) {
  const struct {
    const wchar_t* face;
    bool embedded;
  } cases[] = {
      {L"Arial", false},
      {L"Arial tmp", false},
      {L"", false},
      {L".tmp", true},
      {L"a.tmp", true},
      {L"A.Tmp", true},
      {L"font.tmp.regular", true},
      {L"\u0416.tmp", true},
      {L"console.tmp", true},
      {L"com.tmp", true},
      {L"com10.tmp", true},
      {L"3456789012345678901234567890.tmp", true},  // as long as a name can be, no terminator
      {L"a\\b.tmp", false},
      {L"..\\b.tmp", false},
      {L"a/b.tmp", false},
      {L"c:b.tmp", false},
      {L"b.tmp:stream", false},
      {L"a..tmp", false},
      {L"con.tmp", false},
      {L"Nul .tmp", false},
      {L"LPT1.tmp", false},
      {L"com\u00B2.tmp", false},
      {L"CONIN$.tmp", false},
      {L"a?.tmp", false},
      {L"a\n.tmp", false},
  };
  for (const auto& c : cases) {
    LOGFONTW font = {};
    std::wcsncpy(font.lfFaceName, c.face, LF_FACESIZE);
    announced_.clear();
    EXPECT_EQ(EmbedFont(page_.context, font), c.embedded) << std::filesystem::path(c.face);
    EXPECT_EQ(announced_.size(), size_t{c.embedded});
    for (const auto& path : announced_) {
      EXPECT_EQ(path, folder_ / c.face);
      std::filesystem::remove(path);
    }
  }
}

TEST_F(FontEmbeddingTest, FolderTooLongForAPath_EmbedsNothing) {
  const std::wstring endless = folder_text_ + L'\\' + std::wstring(400, L'x');
  page_.context.job.font_directory = endless.c_str();
  EXPECT_FALSE(EmbedFont(page_.context, FontNamed(L"Abc.TMP")));
  EXPECT_TRUE(announced_.empty());
}

TEST_F(FontEmbeddingTest, AnyStepThatFails_LeavesNoFileAndNoObject) {
  for (const char* step : {"", "GetDC", "CreateFontIndirectW", "size 0", "size GDI_ERROR",
                           "content", "CreateFileW", "WriteFile"}) {
    const SystemCalls calls(step);
    announced_.clear();
    const bool works = *step == '\0';
    EXPECT_EQ(EmbedFont(page_.context, FontNamed(L"Abc.TMP")), works) << step;
    EXPECT_EQ(announced_.size(), size_t{works}) << step;
    EXPECT_EQ(FileCount(), size_t{works}) << step;
    EXPECT_EQ(SystemCalls::Live(), 0) << step;
    for (const auto& path : announced_) std::filesystem::remove(path);
  }
}

}  // namespace
}  // namespace quillo::test
