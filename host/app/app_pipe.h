#pragma once

#include "base/windows.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "base/system_owners.h"
#include "host/app_protocol/app_protocol.h"

namespace quillo::host {

/// The host's end of the pipe of a printing program: one client at a time, a request and an answer
/// in turn. No other machine can reach it; its name cannot be guessed, and nobody else has made it.
class AppPipe {
 public:
  enum class Event {
    kNothing,  // within the time
    kRequest,  // in Last(); to be answered
    kGone,     // the client has gone; the next may come
    kRefused,  // not a message of the protocol; its sender was sent away
  };

  /// `admits`: whether a process may be the client; asked with its id. Throws SystemFailure.
  explicit AppPipe(std::function<bool(DWORD)> admits);
  ~AppPipe();
  AppPipe(const AppPipe&) = delete;
  AppPipe& operator=(const AppPipe&) = delete;

  [[nodiscard]] const std::wstring& Name() const { return name_; }
  Event Wait(DWORD milliseconds);
  /// The request of the last Wait; its bytes last until the next.
  [[nodiscard]] const app::Request& Last() const { return request_; }
  /// Answers it. A client that does not take the answer has gone, which the next Wait finds.
  void Answer(int32_t result, std::span<const std::byte> data = {});

 private:
  enum class State { kIdle, kConnecting, kConnected, kReading };

  OVERLAPPED* Pending();
  static bool Begin(BOOL done);
  void Connect();
  void Admit();
  Event Received(DWORD size);
  Event Lost(DWORD error);
  void SendAway();

  const std::function<bool(DWORD)> admits_;
  std::wstring name_;
  KernelHandle pipe_;
  KernelHandle done_;  // event: what was begun is done
  OVERLAPPED pending_{};
  State state_ = State::kIdle;
  std::vector<std::byte> message_;
  std::vector<std::byte> answer_;
  app::Request request_{};
};

}  // namespace quillo::host
