#include "host/pdf/opening_view.h"

#include <gtest/gtest.h>

namespace quillo::host::pdf {
namespace {

std::string Update(const std::string& file) {
  const auto read = [&file](size_t offset, size_t length) {
    return offset < file.size() ? file.substr(offset, length) : std::string();
  };
  return OpenAtPageWidth(read, file.size(), 841.89);
}

TEST(OpeningView, Update_AddsTheWidthToTheCatalog) {
  const std::string file =
      "%PDF-1.5\n"
      "1 0 obj\n<< /Type /Pages\n   /Kids [ 3 0 R ]\n>>\nendobj\n"
      "2 0 obj\n<< /Type /Catalog\n   /Pages 1 0 R\n>>\nendobj\n"
      "xref\n0 3\n0000000000 65535 f \n0000000009 00000 n \n0000000062 00000 n \n"
      "trailer\n<< /Size 3\n   /Root 2 0 R\n   /Info 4 0 R\n>>\nstartxref\n114\n%%EOF\n";
  const std::string update = Update(file);
  EXPECT_TRUE(
      update.starts_with("2 0 obj\n<< /Type /Catalog\n"
                         "   /OpenAction [ 3 0 R /FitH 841.89 ]\n"))
      << update;
  const std::string whole = file + update;
  EXPECT_EQ(whole.substr(std::stoul(whole.substr(whole.rfind("startxref\n") + 10)), 9),
            "xref\n2 1\n");
  EXPECT_NE(update.find("\n0000000" + std::to_string(file.size()) + " 00000 n \n"),
            std::string::npos);
  EXPECT_NE(update.find("/Prev 114\n"), std::string::npos);

  // Up to the first page's number in a file cut at its end, every part is needed.
  for (size_t size = 0; size + 7 < file.size(); ++size) {
    EXPECT_EQ(Update(file.substr(0, size)), "") << size;
  }
}

}  // namespace
}  // namespace quillo::host::pdf
