#include "host/printer/printer_values.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <thread>

#include "base/system_owners.h"
#include "host/printer/printer_setup.h"

namespace quillo::host {
namespace {

TEST(ParsePrinterValue, Texts_GiveValueOrNothing) {
  const struct {
    const char* text;
    bool understood;
    DWORD type;
    std::vector<int> bytes;
  } cases[] = {
      {"a=bc", true, REG_SZ, {'b', 0, 'c', 0, 0, 0}},
      {"a=", true, REG_SZ, {0, 0}},
      {"a=b=c", true, REG_SZ, {'b', 0, '=', 0, 'c', 0, 0, 0}},
      {"a=dword:258", true, REG_DWORD, {2, 1, 0, 0}},
      {"a=dword:0xFF000000", true, REG_DWORD, {0, 0, 0, 255}},
      {"a=hex:0a,1B 2c3d", true, REG_BINARY, {0x0A, 0x1B, 0x2C, 0x3D}},
      {"a=hex:", true, REG_BINARY, {}},
      {"=b", false, 0, {}},
      {"a", false, 0, {}},
      {"a=dword:", false, 0, {}},
      {"a=dword:4294967296", false, 0, {}},
      {"a=dword:-1", false, 0, {}},
      {"a=dword:1x", false, 0, {}},
      {"a=hex:0", false, 0, {}},
      {"a=hex:0g", false, 0, {}},
  };
  for (const auto& test : cases) {
    const auto value = ParsePrinterValue(test.text);
    ASSERT_EQ(value.has_value(), test.understood) << test.text;
    if (!value) continue;
    EXPECT_EQ(value->name, L"a") << test.text;
    EXPECT_EQ(value->type, test.type) << test.text;
    std::vector<int> bytes;
    for (const std::byte byte : value->bytes) bytes.push_back(std::to_integer<int>(byte));
    EXPECT_EQ(bytes, test.bytes) << test.text;
  }
}

TEST(ParseCustomPaper, Texts_GivePaperOrReason) {
  const struct {
    const char* text;
    std::optional<NamedSheet> paper;
    const char* why;
  } cases[] = {
      {"Badge,300,86x54", NamedSheet{"Badge", {.paper = 300, .width = 860, .height = 540}}, ""},
      {"a, b,257,1x2.5", NamedSheet{"a, b", {.paper = 257, .width = 10, .height = 25}}, ""},
      {"a,256,1x2", {}, "the number must lie between 257 and 32767"},  // DMPAPER_USER
      {"a,32768,1x2", {}, "the number must lie between 257 and 32767"},
      {"a,300,A4", {}, "the size must be two sides of 1 to 3276 millimetres, such as 100x150.5"},
      {"a,300", {}, ""},
      {",300,1x2", {}, ""},
      {",1x2", {}, ""},
      {"", {}, ""},
      {"0123456789012345678901234567890123456789012345678901234567890123,300,1x2",
       {},
       "the name must have at most 63 characters"},
  };
  for (const auto& test : cases) {
    std::string why;
    EXPECT_EQ(ParseCustomPaper(test.text, why), test.paper) << test.text;
    EXPECT_EQ(why, test.why) << test.text;
  }
}

TEST(StoreCustomPaper, SeveralAtOnce_AreAllKept) {
  const std::wstring printer = L"Quillo test papers";
  EnsurePrinter(printer, 600, {});
  constexpr int16_t kThreads = 4, kEach = 20;
  const auto paper = [](int number, int width) {
    return NamedSheet{"Später",
                      {.paper = static_cast<int16_t>(number), .width = width, .height = 9}};
  };
  std::vector<std::thread> threads;
  for (int first = 300; first < 300 + kThreads * kEach; first += kEach) {
    threads.emplace_back([=] {
      for (int i = 0; i < kEach; ++i) StoreCustomPaper(printer, paper(first + i, first));
    });
  }
  for (std::thread& thread : threads) thread.join();
  StoreCustomPaper(printer, paper(310, 7));  // in the place of another
  const auto stored = StoredCustomPapers(printer);
  EXPECT_EQ(stored.size(), static_cast<size_t>(kThreads * kEach));
  EXPECT_EQ(std::ranges::count(stored, paper(310, 7)), 1);
}

TEST(StorePrinterValue, Value_IsInThePrintersData) {
  EnsurePrinter(kPrinterName, 600, {});
  StorePrinterValue(kPrinterName, *ParsePrinterValue("Quillo test=dword:7"));
  std::wstring name = kPrinterName;
  PrinterHandle printer;
  ASSERT_TRUE(OpenPrinterW(name.data(), printer.Receive(), nullptr));
  std::wstring value = L"Quillo test";
  DWORD type = 0, number = 0, size = 0;
  EXPECT_EQ(GetPrinterDataW(printer.Get(), value.data(), &type, reinterpret_cast<BYTE*>(&number),
                            sizeof number, &size),
            static_cast<DWORD>(ERROR_SUCCESS));
  EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
  EXPECT_EQ(number, 7u);
}

}  // namespace
}  // namespace quillo::host
