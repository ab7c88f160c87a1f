#include "host/printing/result_folder.h"

#include <fstream>
#include <gtest/gtest.h>

#include "host/base/failure.h"

namespace quillo::host {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

class ResultFolderOfAJob : public testing::Test {
 protected:
  ~ResultFolderOfAJob() override { fs::remove_all(base_); }

  void Touch(const fs::path& file) { std::ofstream(file) << "x"; }

  const fs::path base_ = fs::temp_directory_path() / L"quillo results";
};

TEST_F(ResultFolderOfAJob, EarlierResults_GoAndOtherFilesStay) {
  const fs::path folder = base_ / L"deep" / L"er";
  const ResultFolder first(folder);
  for (const char* name : {"page-0001.emf", "page-0001.png", "face.tmp", "notes.txt"}) {
    Touch(folder / name);
  }
  Touch(base_ / L"outside");
  first.WriteReport({{"pages",
                      {{{"file", "page-0001.emf"}, {"preview", "page-0001.png"}},
                       {{"file", nullptr}, {"preview", "..\\..\\outside"}},
                       7}},
                     {"fonts", {"face.tmp", 1}},
                     {"job_end_event", true}});
  const ResultFolder second(folder);
  for (const auto& left : fs::directory_iterator(folder)) {
    EXPECT_EQ(left.path().filename(), L"notes.txt");
  }
  EXPECT_TRUE(fs::exists(folder / L"notes.txt"));
  EXPECT_TRUE(fs::exists(base_ / L"outside"));
}

TEST_F(ResultFolderOfAJob, ForeignReports_AreLeftAlone) {
  fs::create_directories(base_);
  Touch(base_ / L"a");
  for (const char* text : {"", "[", "[1]", "{\"pages\":[{\"file\":\"a\"}]}", "{\"pages\":1}"}) {
    std::ofstream(base_ / L"job.json") << text;
    const ResultFolder folder(base_);
    EXPECT_TRUE(fs::exists(base_ / L"a")) << text;
    EXPECT_TRUE(fs::exists(base_ / L"job.json")) << text;
  }
}

}  // namespace
}  // namespace quillo::host
