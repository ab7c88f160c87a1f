#include "imaging/storage/storage.h"

#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "imaging/lifecycle/create.h"
#include "imaging/lifecycle/dib_section.h"
#include "imaging/settings_scope.h"
#include "imaging/storage/rows.h"
#include "imaging/storage/section.h"
#include "support/case_table.h"
#include "support/holdings.h"
#include "support/line.h"
#include "support/watch.h"

namespace quillo::imaging {
namespace {

constexpr uint32_t kWidth = 100;
constexpr uint32_t kHeight = 50;

constexpr uint32_t kInMemory = kAllocated | kMemory;

std::vector<std::byte> RowOf(const BitmapHandle& record, uint32_t y) {
  std::mt19937 random(y);
  std::vector<std::byte> row(record.bytes_per_line);
  for (size_t i = 0; i < row.size(); ++i) {
    row[i] = i > 0 && random() % 2 != 0 ? row[i - 1] : static_cast<std::byte>(random());
  }
  return row;
}

void FillRows(const BitmapHandle& record) {
  for (uint32_t y = 0; y < record.height; ++y) {
    ASSERT_EQ(StoreRow(record, y, RowOf(record, y)), kSuccess);
  }
}

void ExpectRows(const BitmapHandle& record, const char* name) {
  std::vector<std::byte> row(record.bytes_per_line);
  for (uint32_t y = 0; y < record.height; ++y) {
    ASSERT_EQ(FetchRow(record, y, row), kSuccess) << name;
    ASSERT_EQ(row, RowOf(record, y)) << name << " row " << y;
    const std::byte* borrowed = BorrowRow(record, y, row);
    ASSERT_TRUE(std::equal(row.begin(), row.end(), borrowed)) << name;
  }
}

/// But for those of the section that is kept.
uintptr_t HandlesInUse() {
  DropSpareSection();
  return test::LiveKernelHandles();
}

TEST(Storage, EveryKind_KeepsRowsAndLeavesNothing) {
  int blocks = 0;  // of global memory
  const WATCH(GlobalAlloc) allocations([&](auto flags, auto size) {
    ++blocks;
    return allocations.CallOriginal(flags, size);
  });
  const WATCH(GlobalFree) releases([&](auto block) {
    --blocks;
    return releases.CallOriginal(block);
  });
  test::CheckCases("imaging/storage_kinds.txt", [&](const auto& fields) {
    const char* name = fields[0].c_str();
    SettingsScope settings;
    const TemporaryDirectory directory;
    uint32_t type = 0, bits = 0;
    test::Scan(fields[1], type, bits, settings->memory_threshold, settings->maximum_memory);
    settings->tile_size = 1300;  // four rows of 24 bits
    DropSpareSection();
    const auto before = test::Holdings::Now();
    BitmapHandle record{};
    EXPECT_EQ(Create(&record, Sized(kWidth, kHeight, bits, type)), kSuccess) << name;
    std::string outcome = test::Line(std::hex, record.flags, ' ', directory.Files());
    if ((record.flags & (kTiled | kCompressed)) == 0) {
      EXPECT_EQ(reinterpret_cast<uintptr_t>(record.data_address) % 32, 0u) << name;
    }
    EXPECT_EQ(record.lookup8[200], 200u);
    EXPECT_EQ(record.lookup16[60000], 60000u);
    EXPECT_TRUE(IsValid(record)) << name;
    {
      const LockScope lock(record);
      EXPECT_EQ(record.lock->RecursionCount, 1);
    }
    EXPECT_EQ(record.lock->RecursionCount, 0);
    std::vector<std::byte> row(record.bytes_per_line, std::byte{1});
    EXPECT_EQ(FetchRow(record, kHeight - 1, row), kSuccess);
    EXPECT_EQ(row, std::vector<std::byte>(row.size())) << name << " starts with zeros";
    FillRows(record);
    FillRows(record);
    ExpectRows(record, name);
    Free(&record);
    EXPECT_FALSE(IsValid(record)) << name;
    EXPECT_EQ(directory.Files(), 0) << name;
    DropSpareSection();
    const auto after = test::Holdings::Now();
    EXPECT_EQ(after.kernel_handles, before.kernel_handles) << name;
    EXPECT_LT(after.heap_bytes, before.heap_bytes + 4096) << name;
    EXPECT_EQ(blocks, 0) << name;
    EXPECT_EQ(record.lookup8, nullptr);
    EXPECT_EQ(record.lock, nullptr);
    return outcome;
  });
}

TEST(Storage, CompressedRowsThatGrow_AreKept) {
  const size_t before = test::Holdings::Now().heap_bytes;
  {
    BitmapScope record;
    ASSERT_EQ(Create(record.Get(), Sized(4000, 40000, 1, kMemoryChunks)), kSuccess);
    std::vector<std::byte> fetched(record->bytes_per_line);
    // From rows that pack to almost nothing to rows that do not pack, over two chunks.
    for (const bool even : {true, false, true}) {
      for (const bool store : {true, false}) {
        for (uint32_t y = 32700; y < 32900; ++y) {
          std::vector<std::byte> row = RowOf(*record.Get(), y);
          if (even) std::ranges::fill(row, static_cast<std::byte>(y));
          ASSERT_EQ(store ? StoreRow(*record.Get(), y, row) : FetchRow(*record.Get(), y, fetched),
                    kSuccess);
          ASSERT_TRUE(store || fetched == row) << y;
        }
      }
    }
  }
  EXPECT_LT(test::Holdings::Now().heap_bytes, before + 512);
}

TEST(Storage, CompressedRowsWithoutMemory_LeaveNothing) {
  for (size_t given = 0; given < 8; ++given) {
    const size_t before = test::Holdings::Now().heap_bytes;
    {
      WATCH(GlobalAlloc)
      scarce([&](UINT flags, SIZE_T size) {
        return scarce.calls.size() > given ? nullptr : scarce.CallOriginal(flags, size);
      });
      BitmapScope record;
      EXPECT_EQ(Create(record.Get(), Sized(4000, 40000, 1, kMemoryChunks)), kOutOfMemory) << given;
    }
    EXPECT_LT(test::Holdings::Now().heap_bytes, before + 64) << given;
  }
  BitmapScope record;
  ASSERT_EQ(Create(record.Get(), Sized(4000, 8, 1, kMemoryChunks)), kSuccess);
  const WATCH(GlobalAlloc) none(HGLOBAL{nullptr});
  EXPECT_EQ(StoreRow(*record.Get(), 0, RowOf(*record.Get(), 0)), kOutOfMemory);
}

TEST(Section, TheLastOne_IsUsedAgainForTheSameSize) {
  DropSpareSection();
  const uintptr_t handles = test::LiveKernelHandles();
  const auto take = [](uint64_t size) {
    const Section section = TakeSection(size);
    const bool zero = std::all_of(section.view, section.view + size,
                                  [](std::byte value) { return value == std::byte{0}; });
    std::fill_n(section.view, section.size, std::byte{1});
    GiveBackSection(section);
    return test::Line(section.size, zero ? "" : " not zero");
  };
  EXPECT_EQ(take(10000), "10000");
  EXPECT_EQ(take(5000), "10000");
  EXPECT_EQ(take(10001), "10001");
  EXPECT_EQ(take(4999), "4999");
  EXPECT_EQ(test::LiveKernelHandles(), handles + 4);  // of a kept one
  EXPECT_EQ(take(uint64_t{40} << 20), test::Line(40 << 20));
  EXPECT_EQ(test::LiveKernelHandles(), handles);
}

TEST(Storage, SectionsAndFilesThatFail_GiveWay) {
  DropSpareSection();
  SettingsScope settings;
  const TemporaryDirectory directory;
  const auto create = [](uint32_t type, BitmapHandle* record) {
    return Create(record, Sized(kWidth, kHeight, 24, type));
  };
  BitmapScope file, none;
  const WATCH(CreateFileMappingW) no_section(nullptr);
  EXPECT_EQ(create(kMemoryNoFile, none.Get()), kOutOfMemory);
  ASSERT_EQ(create(kMemorySection, file.Get()), kSuccess);
  EXPECT_EQ(file->flags, kAllocated | kDisk);
  for (const BOOL written : {FALSE, TRUE}) {  // nothing, or not all
    const WATCH(WriteFile) full_disk(written);
    EXPECT_EQ(create(kMemorySection, none.Get()), kFileError);
    EXPECT_EQ(StoreRow(*file.Get(), 0, RowOf(*file.Get(), 0)), kFileError);
    const WATCH(ReadFile) unreadable(written);
    std::vector<std::byte> row(file->bytes_per_line);
    EXPECT_EQ(FetchRow(*file.Get(), 0, row), kFileError);
  }
  EXPECT_EQ(directory.Files(), 1);
  settings->temporary_directory[0] = L'\0';  // the user's
  const WATCH(GetTempPathW) no_folder(DWORD{0});
  const WATCH(CreateFileW) opened(INVALID_HANDLE_VALUE);
  EXPECT_EQ(create(kMemorySection, none.Get()), kOutOfMemory);
  EXPECT_TRUE(opened.calls.empty());
}

/// A record over a GlobalAlloc block, as a caller may hand one over.
void MakeGlobal(BitmapHandle& record, uint32_t bits, uint32_t offset) {
  Init(&record, kCurrentForm, kWidth, kHeight, bits);
  record.storage_handle = GlobalAlloc(GHND, record.data_size + offset);
  record.view_offset = offset;
  record.flags = kInMemory | kGlobalMemory;
}

TEST(Lock, GlobalMemory_HasAnAddressWhileLocked) {
  EXPECT_EQ(Lock(nullptr), kInvalidArgument);
  for (const bool presented : {false, true}) {
    const uintptr_t handles = HandlesInUse();
    BitmapHandle record{};
    MakeGlobal(record, 24, 16);
    EXPECT_TRUE(IsValid(record));
    const HGLOBAL memory = record.storage_handle;
    ASSERT_EQ(Lock(&record), kSuccess);
    EXPECT_EQ(record.flags & kLocked, kLocked);
    auto* const block = static_cast<std::byte*>(GlobalLock(memory));
    GlobalUnlock(memory);
    EXPECT_EQ(record.data_address, block + 16);
    EXPECT_EQ(Lock(&record), kSuccess);
    EXPECT_EQ(GlobalFlags(memory) & GMEM_LOCKCOUNT, 1u);
    FillRows(record);
    ExpectRows(record, "global memory");
    if (presented) {
      Unlock(&record);
      EXPECT_EQ(GlobalFlags(memory) & GMEM_LOCKCOUNT, 0u);
      EXPECT_EQ(record.flags & kLocked, 0u);
      const DibSectionDc dc = PresentAsDibSection(&record);
      ASSERT_TRUE(dc);
      EXPECT_EQ(record.flags, kInMemory);
      ExpectRows(record, "in a section");
    }
    Free(&record);
    EXPECT_EQ(GlobalFlags(memory), static_cast<UINT>(GMEM_INVALID_HANDLE));
    EXPECT_EQ(HandlesInUse(), handles);
  }
}

/// What is seen of a bitmap whose pixel in column 3 of row 0 is white.
TEST(PresentAsDibSection, EveryBitmap_IsTurnedOrRefused) {
  SettingsScope settings;
  const TemporaryDirectory directory;
  settings->memory_threshold = 1;
  test::CheckCases("imaging/dib_sections.txt", [](const auto& fields) {
    const uintptr_t handles = HandlesInUse();
    std::string seen = "none";
    {
      BitmapDescription d = {.width = 5, .height = 3};
      test::Scan(fields[0], d.memory_type, d.bits_per_pixel, d.colour_order, d.view_perspective);
      std::byte data[5 * 3 * 4];
      d.caller_data = d.memory_type == kMemoryCaller ? data : nullptr;
      d.caller_data_size = sizeof data;
      BitmapScope bitmap;
      EXPECT_EQ(Create(bitmap.Get(), d), kSuccess);
      std::vector<std::byte> row(bitmap->bytes_per_line);
      for (uint32_t bit = 3 * d.bits_per_pixel; bit < 4 * d.bits_per_pixel; ++bit) {
        row[bit / 8] |= static_cast<std::byte>(0x80 >> bit % 8);
      }
      StoreRow(*bitmap.Get(), 0, row);
      const DibSectionDc dc = PresentAsDibSection(bitmap.Get());
      const int width = static_cast<int>(bitmap->width);
      if (dc)
        seen = test::Line(std::hex, bitmap->flags, ' ', width, " view ", bitmap->view_perspective);
      for (int i = 0; dc && i < 15; ++i) {
        if (GetPixel(dc.Get().dc, i % width, i / width) == 0) continue;
        seen += test::Line(' ', i % width, ',', i / width);
      }
    }
    EXPECT_EQ(HandlesInUse(), handles);
    return seen;
  });
  EXPECT_FALSE(PresentAsDibSection(nullptr));
  BitmapHandle empty{};
  Init(&empty, kCurrentForm, 4, 4, 24);
  EXPECT_FALSE(PresentAsDibSection(&empty));
}

TEST(DibSectionDc, NoStandIn_LeavesNothing) {
  BitmapScope bitmap;
  ASSERT_EQ(Create(bitmap.Get(), Sized(4, 4, 24)), kSuccess);
  const uintptr_t handles = HandlesInUse();
  DibSectionDc dc = PresentAsDibSection(bitmap.Get());
  const HGDIOBJ shown = dc.Get().bitmap;
  EXPECT_EQ(GetObjectType(shown), static_cast<DWORD>(OBJ_BITMAP));
  const WATCH(CreateBitmap) no_stand_in(nullptr);
  dc.Reset();
  EXPECT_EQ(GetObjectType(shown), 0u);
  EXPECT_EQ(HandlesInUse(), handles);
}

TEST(ThreadSettings, OtherThread_HasItsOwn) {
  SettingsScope settings;
  settings->memory_threshold = 4711;
  int64_t seen = 0;
  std::thread([&] { seen = ThreadSettings().memory_threshold; }).join();
  EXPECT_EQ(seen, 0);
  EXPECT_EQ(ThreadSettings().memory_threshold, 4711);
}

}  // namespace
}  // namespace quillo::imaging
