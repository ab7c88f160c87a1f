#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

namespace quillo::host {

/// The folder that the results of a job go to.
class ResultFolder {
 public:
  /// Makes the folder when it is missing, and removes the results of an earlier job: its job.json
  /// and the files that it names, in folders of further documents, too. Throws ResultFailure.
  explicit ResultFolder(const std::filesystem::path& path);

  const std::filesystem::path& Path() const { return path_; }
  /// "page-0001.emf": the name under which the client keeps a page.
  static std::string PageFile(int number, const char* extension);
  /// "document-0002": the folder in it of a program's further document, which counts from 2.
  static std::string DocumentFolder(int number);
  /// "<document>.pdf", as FileNameFor spells the document.
  static std::wstring PdfFile(const std::wstring& document);
  /// Throws ResultFailure.
  void WriteReport(const nlohmann::ordered_json& report) const;

 private:
  void RemoveEarlierResults() const;
  void RemoveFurtherDocuments() const;

  std::filesystem::path path_;
};

}  // namespace quillo::host
