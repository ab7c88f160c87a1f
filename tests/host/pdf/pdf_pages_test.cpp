#include "base/windows.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "host/client/pdf_maker.h"
#include "host/emf/metafile_script.h"
#include "host/preview/preview.h"
#include "support/corpus.h"
#include "support/renamed_font.h"

namespace quillo::host {
namespace {

namespace fs = std::filesystem;

/// A font whose licence forbids it to be embedded (OS/2, "fsType").
std::vector<std::byte> LockedFont() {
  auto font = test::RenamedFont(u"Quillo Locked.tmp");
  for (size_t record = 12; record < 12 + 16 * test::BigEndian(font, 4, 2); record += 16) {
    if (test::BigEndian(font, record, 4) != 0x4F532F32) continue;  // "OS/2"
    Store(font, test::BigEndian(font, record + 8, 4) + 8, SwapBytes(uint16_t{2}));
  }
  return font;
}

// Leaves pages.pdf, previews, and what is expected of the pages to the test pdf_pages.
TEST(PdfPages, AreMadeOfMetafiles) {
  const fs::path folder = QUILLO_PDF_PAGES;
  fs::remove_all(folder);
  fs::create_directories(folder);
  test::WriteWhole(folder / L"locked.tmp", LockedFont());
  test::WriteWhole(folder / L"upright.tmp", test::RenamedFont(u"Quillo Upright.tmp"));
  int done = 0, page = 0;
  PdfMaker pdf(folder / L"pages.pdf", [&done](int) { ++done; });
  pdf.SetTitle("Title \xCE\xA9");
  pdf.AddFont(folder / L"locked.tmp");
  pdf.AddFont(folder / L"upright.tmp");
  std::ofstream expected(folder / L"expected", std::ios::binary);
  for (const auto& c : emf::ReadScript("pdf/pages.txt")) {
    char name[32];
    std::snprintf(name, sizeof name, "page-%04d", ++page);
    const fs::path emf = folder / (std::string(name) + ".emf");
    test::WriteWhole(emf, c.metafile);
    pdf.AddPage(emf, 200, 100);
    std::istringstream lines(c.expected);
    std::string kind, value;
    while (lines >> kind >> kind && std::getline(lines >> std::ws, value)) {
      expected << page << '|' << c.place << '|' << kind << '|' << value << '\n';
      if (kind != "pixels") continue;
      const std::string dpi = value.substr(0, value.find(' '));
      WritePreview(emf, folder / (std::string(name) + "-" + dpi + ".png"), std::stoi(dpi));
    }
  }
  const nlohmann::ordered_json made = pdf.Finish();
  EXPECT_EQ(made["pages"], page);
  EXPECT_EQ(made["approximated"].dump(), R"({"R2_XORPEN":1})");
  EXPECT_EQ(made["faults"].dump(), R"(["page 19: record 2 (EMR_CLOSEFIGURE): no path is open"])");
  EXPECT_EQ(done, page);

  PdfMaker lost(folder / L"missing" / L"a.pdf", [](int) {});
  EXPECT_TRUE(lost.Finish().contains("error"));
  fs::create_directories(folder / L"taken.pdf");  // no file can replace a folder
  PdfMaker taken(folder / L"taken.pdf", [](int) {});
  taken.AddPage(folder / L"page-0001.emf", 200, 100);
  EXPECT_TRUE(taken.Finish().contains("error"));
  EXPECT_FALSE(fs::exists(folder / L"taken.pdf.part"));
}

}  // namespace
}  // namespace quillo::host
