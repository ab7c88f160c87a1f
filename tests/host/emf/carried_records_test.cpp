#include "host/emf_format/carried_records.h"

#include <gtest/gtest.h>

#include "host/emf/metafile_script.h"
#include "host/emf_format/record_types.h"

namespace quillo::host::emf {
namespace {

/// Pairs of a metafile with carried records, and what becomes of it.
std::vector<ScriptCase> Cases() { return ReadScript("carried.txt"); }

TEST(CarriedRecords, ReplaceTheirComments) {
  const std::vector<ScriptCase> cases = Cases();
  ASSERT_GE(cases.size(), 2u);
  for (size_t i = 0; i + 1 < cases.size(); i += 2) {
    auto bytes = cases[i].metafile;
    const auto size = UnpackCarriedRecords(bytes);
    ASSERT_TRUE(size) << cases[i].place;
    bytes.resize(*size);
    EXPECT_EQ(bytes, cases[i + 1].metafile) << cases[i].place;
  }
}

TEST(CarriedRecords, BrokenMetafiles_AreRefused) {
  const auto whole = Cases()[0].metafile;
  for (size_t size = 0; size < whole.size(); ++size) {
    std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
    EXPECT_FALSE(UnpackCarriedRecords(cut)) << size;
  }
  const size_t last = whole.size() - 20;  // the end record
  for (const auto& [offset, value] : {std::pair<size_t, uint32_t>{0, kEmrSAVEDC},
                                      {4, 84},
                                      {last + 4, 0},
                                      {last + 4, 10},
                                      {last + 4, UINT32_MAX}}) {
    auto bad = whole;
    Store(MutableBytes(bad), offset, value);
    EXPECT_FALSE(UnpackCarriedRecords(bad)) << offset << " " << value;
  }
}

}  // namespace
}  // namespace quillo::host::emf
