#include "config/papers/custom_papers.h"

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <optional>
#include <span>
#include <winspool.h>

#include "base/text.h"
#include "config/platform/platform.h"
#include "config/settings/printer_settings.h"

namespace quillo {

namespace {

constexpr wchar_t kCount[] = L"Custom Papers Count";
constexpr wchar_t kDimensions[] = L"CustomPaperDim";
constexpr wchar_t kName[] = L"CustomName";
constexpr wchar_t kNumber[] = L"PaperID";

constexpr DWORD kMaxStored = 4096;  // papers that one store takes
constexpr DWORD kMaxRead = 32768;   // more than there are paper numbers

using SubkeyName = wchar_t[32];

void NameSubkey(DWORD index, SubkeyName& name) { wsprintfW(name, L"Paper %d", index); }

/// The N of "Paper N"; nothing for a name of another form.
std::optional<DWORD> IndexOf(const wchar_t* subkey) {
  const wchar_t* number = std::wcschr(subkey, L' ');
  if (number == nullptr) return std::nullopt;
  const DWORD index = std::wcstoul(number, nullptr, 10);
  SubkeyName name;
  NameSubkey(index, name);
  if (_wcsicmp(name, subkey) != 0) return std::nullopt;
  return index;
}

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

RegistryKey OpenPaper(HKEY papers, DWORD index) {
  SubkeyName subkey;
  NameSubkey(index, subkey);
  return OpenKey(papers, subkey);
}

RegistryKey CreatePaper(HKEY papers, DWORD index) {
  SubkeyName subkey;
  wsprintfW(subkey, L"Paper %ld", index);
  return CreateKey(papers, subkey);
}

bool ReadPaper(HKEY key, CustomPaper& paper) {
  Dimensions dimensions;
  if (!ReadObject(key, kDimensions, dimensions) || !ReadName(key, paper) ||
      !ReadObject(key, kNumber, paper.number)) {
    return false;
  }
  paper.kind = dimensions.kind;
  paper.length = dimensions.length;
  paper.width = dimensions.width;
  return true;
}

bool HasNumber(HKEY key, uint16_t number) {
  uint16_t stored = 0;
  return ReadObject(key, kNumber, stored) && stored == number;
}

bool WriteCount(HKEY key, DWORD count) { return WriteObject(key, kCount, REG_DWORD, count); }

bool WritePaper(HKEY key, const CustomPaper& paper) {
  const Dimensions dimensions = {paper.kind, paper.length, paper.width};
  return WriteObject(key, kDimensions, REG_BINARY, dimensions) &&
         RegSetValueW(key, kName, REG_SZ, paper.name,
                      static_cast<DWORD>(lstrlenW(paper.name) * sizeof(wchar_t))) ==
             ERROR_SUCCESS &&
         WriteObject(key, kNumber, REG_BINARY, paper.number);
}

/// The papers of one store of the registry. Goes by the existing keys: a user can write any count,
/// and trying every number below it could take hours.
class StoredPapers {
 public:
  explicit StoredPapers(RegistryKey key) : key_(std::move(key)) {
    ValueBuffer value = BufferFor(count_);
    if (ReadRegistryValue(key_.Get(), kCount, value) != SETTINGS_OK || value.type != REG_DWORD) {
      count_ = 0;
    }
    is_listed_ = count_ == 0 || ListIndexes();
  }

  /// False when memory was short or the registry failed, so that the indexes are incomplete.
  bool IsListed() const { return is_listed_; }
  HKEY Key() const { return key_.Get(); }
  DWORD Count() const { return count_; }

  /// The numbers of the keys "Paper N" below the count, ascending.
  std::span<const DWORD> Indexes() const {
    return {static_cast<const DWORD*>(indexes_.Get()), found_};
  }

  /// The first key that holds a paper number.
  std::optional<DWORD> IndexOfNumber(uint16_t number) const {
    for (const DWORD index : Indexes()) {
      if (HasNumber(OpenPaper(Key(), index).Get(), number)) return index;
    }
    return std::nullopt;
  }

  /// The lowest index without a key below the count, or the count.
  DWORD FreeIndex() const {
    DWORD free = 0;
    for (const DWORD index : Indexes()) {
      if (index != free) break;
      ++free;
    }
    return free;
  }

 private:
  bool ListIndexes() {
    DWORD subkeys = 0;
    if (RegQueryInfoKeyW(key_.Get(), nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, nullptr,
                         nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
      return false;
    }
    if (subkeys == 0) return true;
    indexes_ = GlobalBlock::Allocate(std::min(subkeys, kMaxRead) * sizeof(DWORD));
    if (!indexes_) return false;
    auto* indexes = static_cast<DWORD*>(indexes_.Get());
    for (DWORD i = 0; i < subkeys && found_ < kMaxRead; ++i) {
      SubkeyName name;
      DWORD length = ARRAYSIZE(name);
      // A key with a longer name holds no paper.
      if (RegEnumKeyExW(Key(), i, name, &length, nullptr, nullptr, nullptr, nullptr) !=
          ERROR_SUCCESS) {
        continue;
      }
      const auto index = IndexOf(name);
      if (index && *index < count_) indexes[found_++] = *index;
    }
    std::sort(indexes, indexes + found_);
    return true;
  }

  RegistryKey key_;
  DWORD count_ = 0;
  bool is_listed_ = false;
  GlobalBlock indexes_;
  size_t found_ = 0;
};

StoredPapers OpenStore(const PrinterSettings& settings, SettingsStore store) {
  return StoredPapers(settings.OpenStoreKey(store));
}

/// The papers of one store in the order of their subkeys, without those that cannot be read.
CustomPapers ReadStore(const PrinterSettings& settings, SettingsStore store) {
  const FsRedirectionOff redirection_off;
  const StoredPapers stored = OpenStore(settings, store);
  CustomPapers papers;
  // Downwards, each to the front, so that the list ends up in index order.
  const auto indexes = stored.Indexes();
  for (auto index = indexes.rbegin(); index != indexes.rend(); ++index) {
    CustomPapers paper(NewCustomPaper());
    if (!paper || !ReadPaper(OpenPaper(stored.Key(), *index).Get(), *paper.Get())) continue;
    paper.Get()->next = papers.Detach();
    papers = std::move(paper);
  }
  return papers;
}

/// The first paper of a number in one store; false when there is none that can be read.
bool FindInStore(const PrinterSettings& settings, SettingsStore store, uint16_t number,
                 CustomPaper& paper) {
  const FsRedirectionOff redirection_off;
  const StoredPapers stored = OpenStore(settings, store);
  return std::ranges::any_of(stored.Indexes(), [&](DWORD index) {
    const RegistryKey key = OpenPaper(stored.Key(), index);
    return HasNumber(key.Get(), number) && ReadPaper(key.Get(), paper);
  });
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
  // Compatibility: subkeys of an earlier, longer list stay; the count alone bounds what is read.
  // Kept for stored settings that other modules of the product read by index.
  DWORD count = 0;
  for (const CustomPaper* paper = head; paper != nullptr; paper = paper->next) {
    const RegistryKey paper_key = CreatePaper(key.Get(), count);
    if (!paper_key) return SETTINGS_KEY_FAILED;
    if (paper->kind == kDeletedPaper) continue;
    if (!WritePaper(paper_key.Get(), *paper)) return SETTINGS_SET_FAILED;
    ++count;
  }
  return WriteCount(key.Get(), count) ? SETTINGS_OK : SETTINGS_SET_FAILED;
}

SettingsResult AddCustomPaper(const wchar_t* printer, const CustomPaper& paper) {
  if (!CanBePrintedOn(paper)) return SETTINGS_BAD_ARGUMENT;
  const PrinterSettings settings(printer, PRINTER_ALL_ACCESS);
  if (!settings.IsOpen()) return SETTINGS_NOT_OPEN;
  const FsRedirectionOff redirection_off;
  const bool machine = IsAdministrator();
  CustomPaper other;
  // The machine's paper takes precedence over the user's.
  if (!machine && FindInStore(settings, SettingsStore::kMachine, paper.number, other)) {
    return SETTINGS_WRITE_FAILED;
  }
  const StoredPapers stored(
      settings.CreateStoreKey(machine ? SettingsStore::kMachine : SettingsStore::kUser));
  if (!stored.IsListed()) return SETTINGS_READ_FAILED;
  auto index = stored.IndexOfNumber(paper.number);
  if (!index) {
    if (stored.Indexes().size() >= kMaxStored) return SETTINGS_WRITE_FAILED;
    index = stored.FreeIndex();
  }
  const RegistryKey key = CreatePaper(stored.Key(), *index);
  if (!key) return SETTINGS_KEY_FAILED;
  const bool written = WritePaper(key.Get(), paper) &&
                       (*index < stored.Count() || WriteCount(stored.Key(), *index + 1));
  return written ? SETTINGS_OK : SETTINGS_SET_FAILED;
}

bool FindCustomPaper(const DEVMODEW& mode, CustomPaper& paper) {
  wchar_t printer[CCHDEVICENAME + 1];
  CopyPadded(printer, mode.dmDeviceName, ARRAYSIZE(printer));
  const PrinterSettings settings(printer, PRINTER_ALL_ACCESS);
  if (!settings.IsOpen()) return false;
  const auto number = static_cast<uint16_t>(mode.dmPaperSize);
  paper = {};
  return FindInStore(settings, SettingsStore::kMachine, number, paper) ||
         (!IsAdministrator() && FindInStore(settings, SettingsStore::kUser, number, paper));
}

}  // namespace quillo
