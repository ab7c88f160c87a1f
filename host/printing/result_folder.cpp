#include "host/printing/result_folder.h"

#include <cstdio>
#include <fstream>

#include "host/base/failure.h"
#include "host/base/file_name.h"
#include "host/base/text.h"

namespace quillo::host {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr wchar_t kReportName[] = L"job.json";

/// Removes a file that an earlier report names; names that lead out of the folder are ignored.
void RemoveNamed(const fs::path& folder, const Json& name) {
  if (!name.is_string()) return;
  const fs::path file = ToWide(name.get<std::string>());
  std::error_code ignored;
  if (file == file.filename()) fs::remove(folder / file, ignored);
}

const Json& Member(const Json& object, const char* key) {
  static const Json kNothing;
  const auto member = object.find(key);
  return member == object.end() ? kNothing : *member;
}

}  // namespace

ResultFolder::ResultFolder(const fs::path& path) : path_(path) {
  std::error_code error;
  fs::create_directories(path_, error);
  if (!fs::is_directory(path_)) {
    throw ResultFailure("cannot make the folder " + ToUtf8(path.wstring()), "CreateDirectory",
                        static_cast<DWORD>(error ? error.value() : ERROR_DIRECTORY));
  }
  RemoveEarlierResults();
  RemoveFurtherDocuments();
}

std::string ResultFolder::PageFile(int number, const char* extension) {
  char name[32];
  std::snprintf(name, sizeof name, "page-%04d.%s", number, extension);
  return name;
}

std::string ResultFolder::DocumentFolder(int number) {
  char name[32];
  std::snprintf(name, sizeof name, "document-%04d", number);
  return name;
}

std::wstring ResultFolder::PdfFile(const std::wstring& document) {
  return FileNameFor(document) + L".pdf";
}

void ResultFolder::WriteReport(const Json& report) const {
  std::ofstream file(path_ / kReportName, std::ios::binary);
  file << report.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
  file.close();
  if (!file) {
    throw ResultFailure("cannot write " + ToUtf8((path_ / kReportName).wstring()), "WriteFile");
  }
}

void ResultFolder::RemoveFurtherDocuments() const {
  for (int number = 2;; ++number) {
    const fs::path folder = path_ / DocumentFolder(number);
    if (!fs::exists(folder / kReportName)) return;
    const ResultFolder emptied(folder);
    std::error_code in_use;  // by files of others
    fs::remove(folder, in_use);
  }
}

void ResultFolder::RemoveEarlierResults() const {
  std::ifstream file(path_ / kReportName, std::ios::binary);
  if (!file) return;
  const Json earlier = Json::parse(file, nullptr, false);
  file.close();
  if (!earlier.is_object() || !earlier.contains("job_end_event")) return;
  for (const Json& page : Member(earlier, "pages")) {
    RemoveNamed(path_, Member(page, "file"));
    RemoveNamed(path_, Member(page, "preview"));
  }
  for (const Json& font : Member(earlier, "fonts")) RemoveNamed(path_, font);
  RemoveNamed(path_, Member(earlier, "pdf"));
  std::error_code ignored;
  fs::remove(path_ / kReportName, ignored);
}

}  // namespace quillo::host
