#include "config/settings/product_strings.h"

namespace quillo {

namespace {

// By ProductStrings::Slot, in the order of reading.
constexpr const wchar_t* kNames[] = {L"ProductName", L"RegistryKey", L"RootDir", L"HelpFile",
                                     L"url"};

}  // namespace

const wchar_t* ProductStrings::Text(Slot slot) const {
  const auto* text = static_cast<const wchar_t*>(slots[slot].Get());
  return text != nullptr && text[0] != L'\0' ? text : nullptr;
}

DWORD ReadDriverFlags(HANDLE printer) {
  DWORD flags = 0;
  ValueBuffer value = BufferFor(flags);
  return ReadPrinterData(printer, L"DriverFlags", value) == SETTINGS_OK ? flags : 0;
}

int32_t ReadProductStrings(HANDLE printer, ProductStrings* strings) {
  if (printer == nullptr || strings == nullptr) return SETTINGS_BAD_ARGUMENT;
  *strings = ProductStrings();
  if (ReadDriverFlags(printer) == 0) return 0;
  for (size_t i = 0; i < ARRAYSIZE(kNames); ++i) {
    strings->slots[i] = LoadPrinterString(printer, kNames[i]);
  }
  return 1;
}

int32_t ReadInfoKey(HANDLE printer, GlobalBlock* data, DWORD* size) {
  if (printer == nullptr || data == nullptr || size == nullptr) return SETTINGS_BAD_ARGUMENT;
  PrinterDataBlock loaded = LoadPrinterData(printer, L"InfoKey");
  *data = std::move(loaded.block);
  *size = loaded.size;
  return loaded.result == SETTINGS_NO_MEMORY ? SETTINGS_NO_MEMORY : SETTINGS_OK;
}

}  // namespace quillo
