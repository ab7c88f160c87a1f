#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "host/installation/print_system.h"

namespace quillo::host {

inline constexpr wchar_t kDriverName[] = L"VORNIX Quillo 6";
inline constexpr wchar_t kNullPort[] = L"NUL:";

/// What is to be installed.
struct InstallationPlan {
  std::filesystem::path source;  // folder of the files
  std::wstring printer;
  bool make_default = false;
  bool with_client = true;
  /// A driver package is uploaded, else files are copied and registered one by one.
  bool as_package = false;
  /// The driver's data file where it is not one of the product: name and content.
  std::pair<std::wstring, std::string> data_file;
};

/// The plan's files that its source folder lacks.
std::vector<std::wstring> MissingFiles(const InstallationPlan& plan);

/// What an installation consists of, in the order in which it is made. (The interface goes before
/// the driver, which takes the client's file with it.)
enum class PartKind { kFile, kPackage, kDriver, kInterface, kPort, kPrinter, kDefault };

struct Part {
  PartKind kind;
  std::wstring name;

  friend bool operator==(const Part&, const Part&) = default;
};

/// A part as users read it: "printer VORNIX Quillo 6".
std::wstring DescribePart(const Part& part);

/// Installs, removes and examines, part by part. Each part is noted before it is made, so that a
/// later Remove finds also what a crash left. Calls throw SystemFailure.
class Installation {
 public:
  Installation(PrintSystem& system, InstallationPlan plan);

  /// Makes what is missing or outdated. When a step fails, everything that this call has made is
  /// taken away again and replaced files are back.
  void Install();

  /// The parts of the plan, and whether each is there and up to date.
  std::vector<std::pair<Part, bool>> Status();

 private:
  struct MadePart {
    Part part;
    bool replaces;
  };

  /// Whether the driver folder has the source's files.
  [[nodiscard]] bool HasCurrentFiles() const;
  bool IsThere(const Part& part);
  /// Whether something is there that making the part replaces.
  bool Replaces(const Part& part);
  void Make(const Part& part);
  void Undo(const MadePart& made, const std::wstring& remark);

  PrintSystem& system_;
  const InstallationPlan plan_;
  const std::filesystem::path folder_;  // the driver folder
  std::vector<Part> parts_;
};

/// Takes away everything that installations have noted, the last first. Goes on where a part cannot
/// be taken away, and throws the first failure at the end; what is still there stays noted. Returns
/// what was taken away.
std::vector<Part> RemoveInstallation(PrintSystem& system);

/// What installations have noted, the last made first.
std::vector<Part> NotedParts(PrintSystem& system);

}  // namespace quillo::host
