#include "host/preview/preview.h"

#include <gtest/gtest.h>

#include "base/gdi_owners.h"
#include "host/base/failure.h"

namespace quillo::host {
namespace {

// What previews show, runs of the print command hold.
TEST(Preview, Failures_NameTheFileAndLeaveNone) {
  namespace fs = std::filesystem;
  const fs::path page = fs::temp_directory_path() / L"quillo preview.emf";
  const fs::path png = fs::temp_directory_path() / L"quillo preview.png";
  const RECT inch{0, 0, 2540, 2540};
  MetafileDc dc(CreateEnhMetaFileW(nullptr, page.c_str(), &inch, nullptr));
  { const EnhMetafile closed = dc.Close(); }
  EXPECT_THROW(WritePreview(L"no such page.emf", png, 50), ResultFailure);
  EXPECT_THROW(WritePreview(page, L"no such folder\\a.png", 50), ResultFailure);
  // 200,000 by 200,000 pixels: more memory than there is.
  EXPECT_THROW(WritePreview(page, png, 200'000), ResultFailure);
  EXPECT_FALSE(fs::exists(png));
  fs::remove(page);
}

}  // namespace
}  // namespace quillo::host
