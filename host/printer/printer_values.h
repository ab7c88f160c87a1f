#pragma once

#include "base/windows.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/printer/sheet.h"

namespace quillo::host {

/// A value of the printer's data.
struct PrinterValue {
  std::wstring name;
  DWORD type = REG_SZ;           // REG_SZ, REG_DWORD or REG_BINARY
  std::vector<std::byte> bytes;  // a text with its terminator
};

/// Reads "NAME=TEXT", "NAME=dword:N" (decimal, or hexadecimal after 0x) or "NAME=hex:0a 1b,2c".
/// Nothing for anything else.
std::optional<PrinterValue> ParsePrinterValue(std::string_view text);

/// Stores a value in the printer's data, where it stays. Throws SystemFailure.
void StorePrinterValue(const std::wstring& printer, const PrinterValue& value);

/// Reads "NAME,NUMBER,WxH": a custom paper, its size in millimetres. Nothing for anything else;
/// `why` is then the reason, a phrase, or empty where the form itself is wrong.
std::optional<NamedSheet> ParseCustomPaper(std::string_view text, std::string& why);

/// Stores a custom paper of the printer, where it stays; replaces the one of the same number.
/// Throws SystemFailure, or another std::runtime_error when no further paper can be added.
void StoreCustomPaper(const std::wstring& printer, const NamedSheet& paper);

/// The printer's custom papers that can be printed on; none when there is no such printer.
std::vector<NamedSheet> StoredCustomPapers(const std::wstring& printer);

}  // namespace quillo::host
