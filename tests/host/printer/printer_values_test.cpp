#include "host/printer/printer_values.h"

#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>
#include <thread>

#include "base/system_owners.h"
#include "host/base/text.h"
#include "host/printer/printer_setup.h"
#include "support/case_table.h"

namespace quillo::host {
namespace {

std::string Describe(const SheetChoice& sheet) {
  return std::to_string(sheet.paper) + " " + std::to_string(sheet.width) + "x" +
         std::to_string(sheet.height);
}

std::string Describe(const PrinterValue& value) {
  std::string text = ToUtf8(value.name) + " " + std::to_string(value.type);
  for (const std::byte byte : value.bytes) {
    char hex[4];
    std::snprintf(hex, sizeof hex, " %02x", std::to_integer<unsigned>(byte));
    text += hex;
  }
  return text;
}

TEST(CommandLineValues, Texts_GiveValueOrReason) {
  test::CheckCases("host/printer.txt", [](const std::vector<std::string>& fields) -> std::string {
    const std::string& text = fields[1];
    if (fields[0] == "paper") {
      const auto sheet = ParsePaper(text);
      return sheet ? Describe(*sheet) : "-";
    }
    if (fields[0] == "value") {
      const auto value = ParsePrinterValue(text);
      return value ? Describe(*value) : "-";
    }
    std::string why;
    const auto paper = ParseCustomPaper(text, why);
    return paper ? paper->name + " " + Describe(paper->sheet) : why.empty() ? "-" : "- " + why;
  });
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
