#include "config/settings/printer_options.h"

#include <algorithm>
#include <cstring>

namespace quillo {

namespace {

constexpr wchar_t kOptions[] = L"Options";
constexpr wchar_t kAboutString[] = L"AboutString";
constexpr wchar_t kAboutIcon[] = L"AboutIcon";
constexpr wchar_t kSaveFormatsCount[] = L"SaveFormatsCount";
constexpr wchar_t kSaveFormats[] = L"SaveFormats";

uint32_t LoadNumber(HANDLE printer, const wchar_t* name) {
  uint32_t number = 0;
  ValueBuffer value = BufferFor(number);
  return ReadPrinterData(printer, name, value) == SETTINGS_OK ? number : 0;
}

SettingsResult StoreNumber(const PrinterSettings& settings, const wchar_t* name, uint32_t number) {
  return settings.Write(name, REG_DWORD, std::as_bytes(std::span(&number, 1)),
                        SettingsPlace::kRegistry);
}

/// Compatibility: 8-bit text with its terminator, under a type for wide strings. Kept for the
/// client application, which reads it that way.
SettingsResult StoreNarrowText(const PrinterSettings& settings, const wchar_t* name,
                               const GlobalBlock& text) {
  if (!text) return SETTINGS_OK;
  const auto* bytes = static_cast<const char*>(text.Get());
  return settings.Write(name, REG_SZ, std::as_bytes(std::span(bytes, std::strlen(bytes) + 1)),
                        SettingsPlace::kRegistry);
}

SettingsResult FirstFailure(std::initializer_list<SettingsResult> results) {
  const auto* failure =
      std::ranges::find_if(results, [](SettingsResult result) { return result != SETTINGS_OK; });
  return failure != results.end() ? *failure : SETTINGS_OK;
}

}  // namespace

SettingsResult LoadOptions(const PrinterSettings& settings, PrinterOptions* options) {
  if (!settings.IsOpen()) return SETTINGS_NOT_OPEN;
  if (options == nullptr) return SETTINGS_BAD_ARGUMENT;
  const HANDLE printer = settings.Printer();
  SettingsResult result = SETTINGS_OK;
  const auto load = [&](const wchar_t* name) {
    PrinterDataBlock loaded = LoadPrinterData(printer, name);
    if (loaded.result == SETTINGS_NO_MEMORY) result = SETTINGS_NO_MEMORY;
    return loaded;
  };

  *options = PrinterOptions();
  options->options = LoadNumber(printer, kOptions);
  options->about_string = load(kAboutString).block;
  options->about_icon = load(kAboutIcon).block;
  const uint32_t count = LoadNumber(printer, kSaveFormatsCount);
  if (count == 0) return result;
  PrinterDataBlock formats = load(kSaveFormats);
  options->save_formats_count =
      std::min(count, static_cast<uint32_t>(formats.size / sizeof(SaveFormat)));
  if (options->save_formats_count != 0) options->save_formats = std::move(formats.block);
  return result;
}

SettingsResult StoreOptions(const PrinterSettings& settings, const PrinterOptions& options) {
  const SettingsResult texts =
      FirstFailure({StoreNumber(settings, kOptions, options.options),
                    StoreNarrowText(settings, kAboutString, options.about_string),
                    StoreNarrowText(settings, kAboutIcon, options.about_icon)});
  if (!options.save_formats) return texts;
  const auto* formats = static_cast<const SaveFormat*>(options.save_formats.Get());
  return FirstFailure({texts, StoreNumber(settings, kSaveFormatsCount, options.save_formats_count),
                       settings.Write(kSaveFormats, REG_BINARY,
                                      std::as_bytes(std::span(formats, options.save_formats_count)),
                                      SettingsPlace::kRegistry)});
}

}  // namespace quillo
