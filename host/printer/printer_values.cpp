#include "host/printer/printer_values.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <stdexcept>

#include "base/system_owners.h"
#include "config/papers/custom_papers.h"
#include "config/platform/message_box.h"
#include "host/base/failure.h"
#include "host/base/named_mutex.h"
#include "host/base/text.h"
#include "resources/string_ids.h"

namespace quillo::host {

namespace {

std::vector<std::byte> BytesOf(const void* data, size_t size) {
  const auto* first = static_cast<const std::byte*>(data);
  return {first, first + size};
}

/// All of `text` as a number; nothing when it is not one or is too large.
template <typename Number>
std::optional<Number> ParseNumber(std::string_view text, int base) {
  Number number{};
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

std::optional<uint32_t> ParseDword(std::string_view text) {
  const bool hexadecimal = text.starts_with("0x");
  return ParseNumber<uint32_t>(text.substr(hexadecimal ? 2 : 0), hexadecimal ? 16 : 10);
}

/// Pairs of hexadecimal digits; blanks and commas are ignored.
std::optional<std::vector<std::byte>> ParseHex(std::string_view text) {
  std::string digits(text);
  std::erase_if(digits, [](char c) { return c == ' ' || c == ','; });
  if (digits.size() % 2 != 0) return std::nullopt;
  std::vector<std::byte> bytes;
  for (size_t i = 0; i < digits.size(); i += 2) {
    const auto byte = ParseNumber<uint8_t>(std::string_view(digits).substr(i, 2), 16);
    if (!byte) return std::nullopt;
    bytes.push_back(static_cast<std::byte>(*byte));
  }
  return bytes;
}

/// The driver's own text for a paper that cannot be added.
std::string NoFurtherPaper() {
  const Library resources(LoadLibraryExW(L"QXRES06X.dll", nullptr, LOAD_LIBRARY_AS_DATAFILE));
  return ToUtf8(ResourceString(resources.Get(), IDS_NO_MORE_CUSTOM_PAPERS));
}

constexpr std::string_view kDword = "dword:";
constexpr std::string_view kHex = "hex:";

}  // namespace

std::optional<PrinterValue> ParsePrinterValue(std::string_view text) {
  const size_t equals = text.find('=');
  if (equals == 0 || equals == std::string_view::npos) return std::nullopt;
  PrinterValue value;
  value.name = ToWide(text.substr(0, equals));
  const std::string_view given = text.substr(equals + 1);
  if (given.starts_with(kDword)) {
    const auto number = ParseDword(given.substr(kDword.size()));
    if (!number) return std::nullopt;
    value.type = REG_DWORD;
    value.bytes = BytesOf(&*number, sizeof *number);
  } else if (given.starts_with(kHex)) {
    const auto bytes = ParseHex(given.substr(kHex.size()));
    if (!bytes) return std::nullopt;
    value.type = REG_BINARY;
    value.bytes = *bytes;
  } else {
    const std::wstring wide = ToWide(given);
    value.bytes = BytesOf(wide.c_str(), (wide.size() + 1) * sizeof(wchar_t));
  }
  return value;
}

void StorePrinterValue(const std::wstring& printer, const PrinterValue& value) {
  const std::string what = "cannot store the printer's value \"" + ToUtf8(value.name) + "\"";
  PRINTER_DEFAULTSW access{nullptr, nullptr, PRINTER_ACCESS_ADMINISTER};
  std::wstring name = printer;
  PrinterHandle handle;
  if (!OpenPrinterW(name.data(), handle.Receive(), &access))
    throw SystemFailure(what, "OpenPrinter");
  PrinterValue copy = value;
  const DWORD error = SetPrinterDataW(handle.Get(), copy.name.data(), copy.type,
                                      reinterpret_cast<BYTE*>(copy.bytes.data()),
                                      static_cast<DWORD>(copy.bytes.size()));
  if (error != ERROR_SUCCESS) throw SystemFailure(what, "SetPrinterData", error);
}

std::optional<NamedSheet> ParseCustomPaper(std::string_view text, std::string& why) {
  // The name may hold commas: the other two are the last.
  const size_t size_comma = text.rfind(',');
  if (size_comma == std::string_view::npos || size_comma == 0) return std::nullopt;
  const size_t number_comma = text.rfind(',', size_comma - 1);
  if (number_comma == std::string_view::npos || number_comma == 0) return std::nullopt;
  const auto number =
      ParseNumber<int>(text.substr(number_comma + 1, size_comma - number_comma - 1), 10);
  if (!number || *number < kFirstCustomPaper || *number > kLastCustomPaper) {
    why = "the number must lie between " + std::to_string(kFirstCustomPaper) + " and " +
          std::to_string(kLastCustomPaper);
    return std::nullopt;
  }
  const auto size = ParsePaper(text.substr(size_comma + 1));
  if (!size || size->paper != DMPAPER_USER) {
    why = "the size must be two sides of 1 to 3276 millimetres, such as 100x150.5";
    return std::nullopt;
  }
  NamedSheet paper{std::string(text.substr(0, number_comma)), *size};
  paper.sheet.paper = static_cast<int16_t>(*number);
  constexpr size_t kMaxCharacters = std::size(CustomPaper{}.name) - 1;
  if (ToWide(paper.name).size() > kMaxCharacters) {
    why = "the name must have at most " + std::to_string(kMaxCharacters) + " characters";
    return std::nullopt;
  }
  return paper;
}

void StoreCustomPaper(const std::wstring& printer, const NamedSheet& paper) {
  const std::string what = "cannot store the custom paper \"" + paper.name + "\"";
  CustomPaper added{};
  lstrcpynW(added.name, ToWide(paper.name).c_str(), std::size(added.name));
  added.number = static_cast<uint16_t>(paper.sheet.paper);
  added.width = static_cast<uint16_t>(paper.sheet.width);
  added.length = static_cast<uint16_t>(paper.sheet.height);
  // Another process could take the same place at the same time.
  const NamedMutex only_one(L"Local\\QuilloPrintCustomPapers");
  switch (AddCustomPaper(printer.c_str(), added)) {
    case SETTINGS_OK:
      return;
    case SETTINGS_BAD_ARGUMENT:
    case SETTINGS_WRITE_FAILED:
      throw std::runtime_error(what + ": " + NoFurtherPaper());
    default:
      throw SystemFailure(what, "writing the registry", ERROR_CANTWRITE);
  }
}

std::vector<NamedSheet> StoredCustomPapers(const std::wstring& printer) {
  CustomPapers stored;
  LoadCustomPapers(printer.c_str(), stored);
  std::vector<NamedSheet> papers;
  for (const CustomPaper* paper = stored.Get(); paper != nullptr; paper = paper->next) {
    if (!CanBePrintedOn(*paper)) continue;
    const auto tenths = [paper](uint16_t side) {
      return ConvertLength({side, 1}, SizeClassOf(*paper),
                           static_cast<uint32_t>(PaperUnit::kTenthsOfMillimetre), 0);
    };
    papers.push_back({ToUtf8(paper->name),
                      {.paper = static_cast<int16_t>(paper->number),
                       .width = tenths(paper->width),
                       .height = tenths(paper->length)}});
  }
  return papers;
}

}  // namespace quillo::host
