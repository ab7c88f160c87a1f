#include "config/custom_papers.h"

#include <algorithm>
#include <cstdint>
#include <winspool.h>

#include "base/text.h"
#include "config/platform.h"
#include "config/printer_settings.h"

namespace quillo {

namespace {

constexpr wchar_t kCount[] = L"Custom Papers Count";
constexpr wchar_t kDimensions[] = L"CustomPaperDim";
constexpr wchar_t kName[] = L"CustomName";
constexpr wchar_t kNumber[] = L"PaperID";

constexpr DWORD kMostPapers = 4096;  // read of one store, whatever its count says

using SubkeyName = wchar_t[32];

/// The content of "CustomPaperDim".
struct Dimensions {
  int16_t kind;
  uint16_t length;
  uint16_t width;
};
static_assert(sizeof(Dimensions) == 6);

/// Reads a binary value of exactly the object's size.
template <typename T>
bool ReadObject(HKEY key, const wchar_t* name, T& object) {
  ValueBuffer value = BufferFor(object);
  return ReadRegistryValue(key, name, value) == SETTINGS_OK && value.type == REG_BINARY &&
         value.size == sizeof(object);
}

template <typename T>
bool WriteObject(HKEY key, const wchar_t* name, DWORD type, const T& object) {
  return WriteRegistryValue(key, name, type, std::as_bytes(std::span(&object, 1))) == SETTINGS_OK;
}

bool ReadName(HKEY key, CustomPaper& paper) {
  LONG bytes = sizeof(paper.name);
  if (RegQueryValueW(key, kName, paper.name, &bytes) != ERROR_SUCCESS) return false;
  paper.name[ARRAYSIZE(paper.name) - 1] = L'\0';
  return true;
}

bool ReadPaper(HKEY papers, DWORD index, CustomPaper& paper) {
  SubkeyName subkey;
  wsprintfW(subkey, L"Paper %d", index);
  const RegistryKey key = OpenKey(papers, subkey);
  Dimensions dimensions;
  if (!key || !ReadObject(key.Get(), kDimensions, dimensions) || !ReadName(key.Get(), paper) ||
      !ReadObject(key.Get(), kNumber, paper.number)) {
    return false;
  }
  paper.kind = dimensions.kind;
  paper.length = dimensions.length;
  paper.width = dimensions.width;
  return true;
}

/// The papers of one store in the order of their subkeys; those that cannot be read are left out.
CustomPapers ReadStore(const PrinterSettings& settings, SettingsStore store) {
  const FsRedirectionOff redirection_off;
  CustomPapers papers;
  const RegistryKey key = settings.OpenStoreKey(store);
  DWORD count = 0;
  ValueBuffer value = BufferFor(count);
  if (ReadRegistryValue(key.Get(), kCount, value) != SETTINGS_OK || value.type != REG_DWORD) {
    return papers;
  }
  // Downwards, each to the front: the list ends up in index order.
  for (DWORD index = std::min(count, kMostPapers); index-- > 0;) {
    CustomPapers paper(NewCustomPaper());
    if (!paper || !ReadPaper(key.Get(), index, *paper.Get())) continue;
    paper.Get()->next = papers.Detach();
    papers = std::move(paper);
  }
  return papers;
}

bool WritePaper(HKEY key, const CustomPaper& paper) {
  const Dimensions dimensions = {paper.kind, paper.length, paper.width};
  return WriteObject(key, kDimensions, REG_BINARY, dimensions) &&
         RegSetValueW(key, kName, REG_SZ, paper.name,
                      static_cast<DWORD>(lstrlenW(paper.name) * sizeof(wchar_t))) ==
             ERROR_SUCCESS &&
         WriteObject(key, kNumber, REG_BINARY, paper.number);
}

}  // namespace

CustomPaper* NewCustomPaper() {
  return static_cast<CustomPaper*>(GlobalBlock::Allocate(sizeof(CustomPaper)).Detach());
}

void FreeCustomPapers(CustomPaper* head) {
  while (head != nullptr) {
    const GlobalBlock paper(std::exchange(head, head->next));
  }
}

bool LoadCustomPapers(const wchar_t* printer, CustomPapers& papers) {
  papers.Reset();
  const PrinterSettings settings(printer, PRINTER_ALL_ACCESS);
  if (!settings.IsOpen()) return false;
  papers = ReadStore(settings, SettingsStore::kMachine);
  if (!IsAdministrator()) {
    CustomPapers users = ReadStore(settings, SettingsStore::kUser);
    papers.Reset(Join(papers.Detach(), users.Detach()));
  }
  FreeCustomPapers(TakeDuplicates(papers.Get()));
  return static_cast<bool>(papers);
}

SettingsResult SaveCustomPapers(const wchar_t* printer, const CustomPaper* head) {
  const PrinterSettings settings(printer, PRINTER_ALL_ACCESS);
  if (!settings.IsOpen()) return SETTINGS_NOT_OPEN;
  const FsRedirectionOff redirection_off;
  const RegistryKey key =
      settings.CreateStoreKey(IsAdministrator() ? SettingsStore::kMachine : SettingsStore::kUser);
  if (!key) return SETTINGS_KEY_FAILED;
  // Subkeys of an earlier, longer list stay; the count alone says what is read.
  DWORD count = 0;
  for (const CustomPaper* paper = head; paper != nullptr; paper = paper->next) {
    SubkeyName subkey;
    wsprintfW(subkey, L"Paper %ld", count);
    const RegistryKey paper_key = CreateKey(key.Get(), subkey);
    if (!paper_key) return SETTINGS_KEY_FAILED;
    if (paper->kind == kDeletedPaper) continue;
    if (!WritePaper(paper_key.Get(), *paper)) return SETTINGS_SET_FAILED;
    ++count;
  }
  return WriteObject(key.Get(), kCount, REG_DWORD, count) ? SETTINGS_OK : SETTINGS_SET_FAILED;
}

bool FindCustomPaper(const DEVMODEW& mode, CustomPaper& paper) {
  wchar_t printer[CCHDEVICENAME + 1];
  CopyPadded(printer, mode.dmDeviceName, ARRAYSIZE(printer));
  CustomPapers papers;
  LoadCustomPapers(printer, papers);
  const CustomPaper* found = FindPaper(papers.Get(), static_cast<uint16_t>(mode.dmPaperSize));
  if (found == nullptr) return false;
  paper = *found;
  paper.next = nullptr;
  return true;
}

}  // namespace quillo
