#pragma once

#include "base/windows.h"

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "base/com_owners.h"
#include "host/client/client_fault.h"
#include "interface/quillo.h"

namespace quillo::test {

/// The print host's client inside the test's own process, where it copies nothing.
class RecordingClient {
 public:
  /// Leaves the connection file of a job in the user's TEMP folder, for a new client object.
  /// `in_session_folder`: in the folder of the user's session.
  void LeaveConnection(DWORD job_id, bool in_session_folder = false,
                       host::ClientFault fault = host::ClientFault::kNone);

  /// The calls one a line: the method and its arguments but for paths. A page's description follows
  /// its NotifyPage: kind, width, height, mode, dpi across and down, text runs.
  std::vector<std::string> calls;
  std::function<void(const nlohmann::ordered_json& call)> on_call;  // during the call

  /// The interfaces (IQuilloPage, IDispatch, or a dual one of scrrun.dll) as which the client and
  /// its pages describe themselves; null: they do not.
  const IID* client_table = nullptr;
  const IID* page_table = nullptr;

  /// Releases its objects; the number of those that somebody else still holds. (LeaveConnection
  /// does so for the connection before.)
  int CountLeaks();

 private:
  class Client;

  void Note(const nlohmann::ordered_json& call);

  ComPtr<IQuilloClient> client_;  // of the last connection
  ComPtr<IQuilloPage> page_;      // that it handed out last
  int leaks_ = 0;
};

/// Where a job's connection file lies.
std::wstring ConnectionPath(DWORD job_id, bool in_session_folder = false);

/// The user's TEMP folder, without a backslash at its end.
std::wstring TempFolder();

}  // namespace quillo::test
