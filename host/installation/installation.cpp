#include "host/installation/installation.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <utility>

#include "host/base/failure.h"

namespace quillo::host {

namespace {

namespace fs = std::filesystem;

constexpr wchar_t kDriverFile[] = L"QXDRV06X.dll";
constexpr wchar_t kInterfaceFile[] = L"QXUI06X.dll";
constexpr wchar_t kResourceFile[] = L"QXRES06X.dll";
constexpr wchar_t kClientFile[] = L"quillo-client.exe";
constexpr const wchar_t* kProductFiles[] = {kDriverFile, kInterfaceFile, kResourceFile,
                                            kClientFile};
constexpr wchar_t kPackageFile[] = L"quillo.inf";
constexpr wchar_t kOld[] = L".old";  // of a file that is being replaced

/// By PartKind; a part's note is the word, a blank and its name.
constexpr const wchar_t* kWords[] = {L"file", L"package", L"driver", L"interface",
                                     L"port", L"printer", L"default"};

std::optional<Part> ParseNote(const std::wstring& note) {
  for (size_t kind = 0; kind < std::size(kWords); ++kind) {
    const std::wstring start = std::wstring(kWords[kind]) + L" ";
    // Names only: a note never leads out of the driver folder.
    if (note.starts_with(start) && note.find_first_of(L"\\/", start.size()) == std::wstring::npos) {
      return Part{static_cast<PartKind>(kind), note.substr(start.size())};
    }
  }
  return std::nullopt;
}

DriverFiles DriverOf(const InstallationPlan& plan) {
  return {kDriverName, kDriverFile, kInterfaceFile,
          plan.data_file.first.empty() ? kResourceFile : plan.data_file.first};
}

fs::path OldOf(const fs::path& file) { return fs::path(file) += kOld; }

std::vector<std::wstring> FilesOf(const InstallationPlan& plan) {
  std::vector<std::wstring> files(std::begin(kProductFiles), std::end(kProductFiles));
  if (!plan.with_client) std::erase(files, kClientFile);
  return files;
}

std::vector<Part> PartsOf(const InstallationPlan& plan) {
  std::vector<Part> parts;
  if (plan.as_package) {
    parts.push_back({PartKind::kPackage, kPackageFile});
  } else {
    for (const std::wstring& file : FilesOf(plan)) parts.push_back({PartKind::kFile, file});
    if (!plan.data_file.first.empty()) parts.push_back({PartKind::kFile, plan.data_file.first});
  }
  parts.push_back({PartKind::kDriver, kDriverName});
  if (plan.with_client) parts.push_back({PartKind::kInterface, kClientFile});
  parts.push_back({PartKind::kPort, kNullPort});
  parts.push_back({PartKind::kPrinter, plan.printer});
  if (plan.make_default) parts.push_back({PartKind::kDefault, plan.printer});
  return parts;
}

void TakeAway(PrintSystem& system, const Part& part, const std::wstring& remark) {
  const fs::path file = system.DriverFolder() / part.name;
  switch (part.kind) {
    case PartKind::kFile:
      system.RemoveFile(OldOf(file));
      system.RemoveFile(file);
      break;
    case PartKind::kPackage:
      if (!remark.empty()) system.RemovePackage(remark);
      break;
    case PartKind::kInterface:
      system.UnregisterInterface(file);
      break;
    case PartKind::kDriver:
      system.RemoveDriver(part.name);
      break;
    case PartKind::kPort:
      system.RemovePort(part.name);
      break;
    case PartKind::kPrinter:
      system.RemovePrinter(part.name);
      break;
    case PartKind::kDefault:
      // Only if the user has not chosen another since.
      if (!remark.empty() && system.DefaultPrinter() == part.name && system.HasPrinter(remark)) {
        system.MakeDefault(remark);
      }
      break;
  }
}

}  // namespace

std::vector<std::wstring> MissingFiles(const InstallationPlan& plan) {
  std::vector<std::wstring> files = FilesOf(plan);
  if (plan.as_package) files.emplace_back(kPackageFile);
  std::erase_if(files, [&](const std::wstring& file) { return fs::exists(plan.source / file); });
  return files;
}

std::wstring DescribePart(const Part& part) {
  return kWords[static_cast<size_t>(part.kind)] + (L" " + part.name);
}

Installation::Installation(PrintSystem& system, InstallationPlan plan)
    : system_(system),
      plan_(std::move(plan)),
      folder_(system.DriverFolder()),
      parts_(PartsOf(plan_)) {}

bool Installation::HasCurrentFiles() const {
  return std::ranges::all_of(kProductFiles, [this](const wchar_t* file) {
    return PrintSystem::HasSameContent(plan_.source / file, folder_ / file);
  });
}

bool Installation::IsThere(const Part& part) {
  switch (part.kind) {
    case PartKind::kFile:
      return part.name == plan_.data_file.first
                 ? PrintSystem::HasContent(folder_ / part.name, plan_.data_file.second)
                 : PrintSystem::HasSameContent(plan_.source / part.name, folder_ / part.name);
    case PartKind::kPackage:
      return system_.Notes().contains(DescribePart(part)) && HasCurrentFiles();
    case PartKind::kInterface:
      return system_.HasInterface(folder_ / part.name);
    case PartKind::kDriver:
      return system_.HasDriver(DriverOf(plan_)) && (!plan_.as_package || HasCurrentFiles());
    case PartKind::kPort:
      return system_.HasPort(part.name);
    case PartKind::kPrinter:
      return system_.HasPrinter(part.name);
    case PartKind::kDefault:
      return system_.DefaultPrinter() == part.name;
  }
  return false;
}

void Installation::Make(const Part& part) {
  const fs::path file = folder_ / part.name;
  switch (part.kind) {
    case PartKind::kFile:
      if (fs::exists(file)) system_.Rename(file, OldOf(file));
      if (part.name == plan_.data_file.first) {
        system_.PutText(file, plan_.data_file.second);
      } else {
        system_.PutFile(plan_.source / part.name, file);
      }
      break;
    case PartKind::kPackage:
      system_.WriteNote(DescribePart(part), system_.UploadPackage(plan_.source / part.name));
      break;
    case PartKind::kInterface:
      system_.RegisterInterface(file);
      break;
    case PartKind::kDriver:
      if (plan_.as_package) {
        system_.InstallDriver(system_.Notes()[DescribePart({PartKind::kPackage, kPackageFile})],
                              part.name);
      } else {
        system_.AddDriver(DriverOf(plan_));
      }
      break;
    case PartKind::kPort:
      system_.MakePort(part.name);
      break;
    case PartKind::kPrinter:
      system_.MakePrinter(part.name, kDriverName, kNullPort);
      break;
    case PartKind::kDefault:
      system_.MakeDefault(part.name);
      break;
  }
}

bool Installation::Replaces(const Part& part) {
  if (part.kind == PartKind::kFile) return fs::exists(folder_ / part.name);
  return part.kind == PartKind::kDriver && system_.HasDriver(part.name);
}

void Installation::Undo(const MadePart& made, const std::wstring& remark) {
  const fs::path file = folder_ / made.part.name;
  if (!made.replaces) {
    TakeAway(system_, made.part, remark);
  } else if (made.part.kind == PartKind::kFile && fs::exists(OldOf(file))) {
    system_.RemoveFile(file);
    system_.Rename(OldOf(file), file);
  }
}

void Installation::Install() {
  const auto earlier = system_.Notes();
  std::vector<MadePart> made;
  try {
    for (const Part& part : parts_) {
      if (IsThere(part)) continue;
      made.push_back({part, Replaces(part)});
      const std::wstring note = DescribePart(part);
      if (!earlier.contains(note)) {
        system_.WriteNote(note, part.kind == PartKind::kDefault ? system_.DefaultPrinter() : L"");
      }
      Make(part);
    }
  } catch (const std::exception&) {
    for (auto undone = made.crbegin(); undone != made.crend(); ++undone) {
      try {
        const std::wstring note = DescribePart(undone->part);
        Undo(*undone, system_.Notes()[note]);
        if (!earlier.contains(note)) system_.DeleteNote(note);
      } catch (const std::exception&) {  // stays noted: Remove tries again
      }
    }
    throw;
  }
  for (const MadePart& part : made) {
    try {
      if (part.replaces) system_.RemoveFile(OldOf(folder_ / part.part.name));
    } catch (const SystemFailure&) {  // Remove takes it away, too
    }
  }
}

std::vector<std::pair<Part, bool>> Installation::Status() {
  std::vector<std::pair<Part, bool>> status;
  for (const Part& part : parts_) status.emplace_back(part, IsThere(part));
  return status;
}

std::vector<Part> NotedParts(PrintSystem& system) {
  std::vector<Part> parts;
  for (const auto& [note, remark] : system.Notes()) {
    if (const auto part = ParseNote(note)) parts.push_back(*part);
  }
  std::ranges::stable_sort(parts, std::ranges::greater(), &Part::kind);
  return parts;
}

std::vector<Part> RemoveInstallation(PrintSystem& system) {
  const auto notes = system.Notes();
  std::vector<Part> removed;
  std::exception_ptr first_failure;
  for (const Part& part : NotedParts(system)) {
    const std::wstring note = DescribePart(part);
    try {
      TakeAway(system, part, notes.at(note));
      system.DeleteNote(note);
      removed.push_back(part);
    } catch (const SystemFailure&) {
      if (!first_failure) first_failure = std::current_exception();
    }
  }
  if (first_failure) std::rethrow_exception(first_failure);
  return removed;
}

}  // namespace quillo::host
