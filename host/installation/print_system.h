#pragma once

#include "base/windows.h"

#include <filesystem>
#include <map>
#include <string>

namespace quillo::host {

/// The printer driver as the spooler registers it. File names without folders: the files lie in the
/// driver folder.
struct DriverFiles {
  std::wstring name;
  std::wstring driver;
  std::wstring config;
  std::wstring data;
};

/// What an installation does to this machine: files, spooler, registry. Every call throws
/// SystemFailure; taking away what is not there is no failure.
class PrintSystem {
 public:
  virtual ~PrintSystem() = default;

  /// Where the spooler looks for the files of version 3 drivers.
  std::filesystem::path DriverFolder();

  static bool HasContent(const std::filesystem::path& file, const std::string& content);
  static bool HasSameContent(const std::filesystem::path& a, const std::filesystem::path& b);
  void PutFile(const std::filesystem::path& from, const std::filesystem::path& to);
  void PutText(const std::filesystem::path& to, const std::string& content);
  void Rename(const std::filesystem::path& from, const std::filesystem::path& to);
  /// A file in use goes at the next start of Windows.
  void RemoveFile(const std::filesystem::path& file);

  /// Hands the driver package to the system. Returns the path of its INF in the driver store.
  std::wstring UploadPackage(const std::filesystem::path& inf);
  void RemovePackage(const std::wstring& stored_inf);
  /// Installs a driver from an uploaded package.
  void InstallDriver(const std::wstring& stored_inf, const std::wstring& name);

  /// Whether there is a driver of the name; with files, whether it consists of these.
  bool HasDriver(const std::wstring& name);
  bool HasDriver(const DriverFiles& driver);
  void AddDriver(DriverFiles driver);
  void RemoveDriver(std::wstring name);

  bool HasPort(const std::wstring& name);
  void MakePort(const std::wstring& name);
  void RemovePort(const std::wstring& name);

  bool HasPrinter(const std::wstring& name);
  void MakePrinter(std::wstring name, std::wstring driver, std::wstring port);
  /// With its jobs, and with the settings of the machine and of this user.
  void RemovePrinter(const std::wstring& name);

  /// Empty without one.
  std::wstring DefaultPrinter();
  void MakeDefault(const std::wstring& name);

  /// Registers the interface of the client in `program` for all users of the machine.
  void RegisterInterface(const std::filesystem::path& program);
  bool HasInterface(const std::filesystem::path& program);
  void UnregisterInterface(const std::filesystem::path& program);

  /// Notes of what an installation has made: names and remarks. Only administrators write them.
  std::map<std::wstring, std::wstring> Notes();
  void WriteNote(const std::wstring& name, const std::wstring& remark);
  void DeleteNote(const std::wstring& name);

 protected:
  /// Called before each change to the machine; tests throw here.
  virtual void Begin(const char* /*change*/) {}
};

}  // namespace quillo::host
