#pragma once

#include "base/windows.h"

#include <functional>
#include <string>
#include <vector>

#include "support/line.h"

namespace quillo::test {

/// A client application inside the test's own process: notes every call that a job makes as one
/// line, and answers as it is told.
class RecordingClient {
 public:
  RecordingClient();
  ~RecordingClient();
  RecordingClient(const RecordingClient&) = delete;
  RecordingClient& operator=(const RecordingClient&) = delete;

  /// Leaves the connection file of a job in the user's TEMP folder. `in_session_folder`: in the
  /// folder of the user's session.
  void LeaveConnection(DWORD job_id, bool in_session_folder = false);

  std::vector<std::string> calls;
  HRESULT answer = S_OK;            // of every call
  bool has_text_runs = false;       // whether pages know the property
  HRESULT text_runs_answer = S_OK;  // of putting it
  std::vector<std::vector<int>> text_runs;
  std::function<void(const wchar_t* path)> on_fonts_file;
  std::function<void(const wchar_t* path)> on_page_file;  // during NotifyPage
  std::function<void()> on_job_end;
  std::function<HRESULT(const wchar_t* path)> on_embedded_font;

  /// COM objects of this client that are still referenced, the client's own aside.
  [[nodiscard]] int LivingPages() const { return living_pages_; }

 private:
  class Client;
  class Page;

  Client* client_;
  int living_pages_ = 0;
};

/// Where a job's connection file lies.
std::wstring ConnectionPath(DWORD job_id, bool in_session_folder = false);

/// The user's TEMP folder, without a backslash at its end.
std::wstring TempFolder();

}  // namespace quillo::test
