// What the user may have left where the job looks: references to other objects, links, files of
// somebody else.

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

#include "capture/records/types.h"
#include "job/compound_file.h"
#include "job/record_sink.h"
#include "job/spooled_job.h"
#include "support/late_functions.h"
#include "support/line.h"
#include "support/object_reference.h"
#include "support/watch.h"

namespace quillo {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

class UsersFiles : public testing::Test, protected test::SpooledJob {
 protected:
  void Connect() {
    SpooledJob::Connect();
    client_.calls.clear();
  }
  std::string Call(const char* method, const std::string& rest = {}) const {
    return test::Line(method, " VORNIX Quillo 6 ", Id(), rest);
  }
};

TEST_F(UsersFiles, ReferenceToAnythingButTheClientsInterface_NeverReachesTheSystem) {
  const Bytes id = std::as_bytes(std::span(&__uuidof(IQuilloClient), 1));
  const Bytes base = std::as_bytes(std::span(&__uuidof(IUnknown), 1));
  const std::vector<uint16_t> here = {7, 'h', 0, 0}, elsewhere = {7, 'x', 0, 0};
  const std::vector<std::byte> own = test::MakeReference(1, base, here);
  std::vector<std::byte> longest = test::MakeReference(1, id, {}), too_long = longest;
  longest.resize(16384);
  too_long.resize(16385);
  const struct {
    std::vector<std::byte> reference;
    int unmarshalled;
  } cases[] = {{test::MakeReference(1, id, {}), 1},
               {test::MakeReference(1, id, here), 1},
               {test::MakeReference(1, id, elsewhere), 0},
               {test::MakeReference(4, id, {}), 0},
               {test::MakeReference(1, base, {}), 0},
               {longest, 1},
               {too_long, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    // Wine's references have no addresses.
    const WATCH(CoMarshalInterface) marshals([&](IStream* stream, auto...) {
      return stream->Write(own.data(), static_cast<ULONG>(own.size()), nullptr);
    });
    const WATCH(CoUnmarshalInterface) unmarshals(E_FAIL);
    ComPtr<IStorage> storage;
    ASSERT_EQ(WriteCompoundFile(Connection().c_str(), L"IQuilloConnectionPiont", c.reference.data(),
                                static_cast<ULONG>(c.reference.size()), storage),
              S_OK);
    storage.Reset();
    Close(Open());
    EXPECT_EQ(static_cast<int>(unmarshals.calls.size()), c.unmarshalled);
    EXPECT_FALSE(fs::exists(Connection()));
  }
}

int as_user = 0;  // levels of working as the user

// Only the calls are seen here: Wine has no second user.
TEST_F(UsersFiles, UsersFiles_TouchedAsTheUserAndNothingElseIs) {
  test::LateFunctions functions;
  functions.Replace(
      "ImpersonateLoggedOnUser", +[](HANDLE) WINAPI -> BOOL { return ++as_user; });
  functions.Replace(
      "RevertToSelf", +[]() WINAPI -> BOOL { return as_user-- == 1; });
#define EXPECT_DURING(function, level)             \
  WATCH(function)                                  \
  function##_([&](auto... arguments) {             \
    EXPECT_EQ(as_user, level) << #function;        \
    return function##_.CallOriginal(arguments...); \
  })
  Connect();
  {
    EXPECT_DURING(CreateDirectoryW, 1);
    EXPECT_DURING(StgOpenStorage, StgOpenStorage_.calls.size() == 1);  // then the client's own
    EXPECT_DURING(GetTempFileNameW, 1);
    EXPECT_DURING(CreateFileW, 1);
    EXPECT_DURING(CreateEnhMetaFileW, 1);
    EXPECT_DURING(CloseEnhMetaFile, 1);
    EXPECT_DURING(StgCreateDocfile, 1);
    EXPECT_DURING(DeleteFileW, 1);
    EXPECT_DURING(GetDriveTypeW, 1);
    EXPECT_DURING(LoadLibraryExW, 0);
    EXPECT_DURING(CreateDCW, 0);
    EXPECT_DURING(CoUnmarshalInterface, 0);
#undef EXPECT_DURING
    client_.on_call = [](const Json& call) { EXPECT_EQ(as_user, 0) << call; };
    CQloPrinter* job = Open();
    EXPECT_TRUE(StartPage(job));
    LOGFONTW font = {};
    lstrcpyW(font.lfFaceName, L"Abc.tmp");
    Send(job, records::REC_CREATEFONT, &font, sizeof font);
    EXPECT_TRUE(SendPage(job));
    Close(job);
    EXPECT_EQ(as_user, 0);
    EXPECT_FALSE(StgCreateDocfile_.calls.empty());
    EXPECT_GE(CreateFileW_.calls.size(), 4u);  // the font's file among them
  }
  fs::remove(test::TempFolder() + L"\\QLOFNT500\\Abc.tmp");
}

TEST_F(UsersFiles, LinkInTheWay_LeadsNowhere) {
  const fs::path other = test::TempFolder() + L"\\somebody else's";
  const fs::path fonts = FontsFile();
  std::ofstream(other).flush();
  CreateHardLinkW(fonts.c_str(), other.c_str(), nullptr);
  Connect();
  {
    // The client hears the path before the metafile is made.
    WATCH(CreateDCW)
    link([&](auto...) -> HDC {
      for (const auto& entry : fs::directory_iterator(test::TempFolder())) {
        if (!entry.path().filename().wstring().starts_with(L"VXP")) continue;
        fs::remove(entry.path());
        CreateHardLinkW(entry.path().c_str(), other.c_str(), nullptr);
      }
      return nullptr;
    });
    CQloPrinter* job = Open();
    EXPECT_FALSE(StartPage(job));
    EXPECT_EQ(client_.calls.back(), Call("NotifyError", " -295"));
    client_.calls.clear();
    Close(job);
  }
  EXPECT_EQ(client_.calls.front(), Call("NotifyDocumentEnd"));
  EXPECT_TRUE(fs::exists(fonts));
  EXPECT_EQ(fs::file_size(other), 0u);
  {
    const WATCH(GetFileAttributesW)
        link(DWORD{FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT});
    CQloPrinter* job = Open();
    EXPECT_STREQ(job->font_folder, L"");
    Close(job);
  }
  fs::remove(fonts);
  fs::remove(other);
}

}  // namespace
}  // namespace quillo
