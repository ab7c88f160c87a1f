#include "host/app/app_pipe.h"

#include <array>
#include <ntsecapi.h>
#include <utility>

#include "host/base/failure.h"

namespace quillo::host {

namespace {

constexpr char kCannotListen[] = "cannot make the pipe of the program";
constexpr DWORD kAnswerLimit = 10'000;  // milliseconds

/// 128 random bits in hexadecimal digits.
std::wstring RandomName() {
  std::array<BYTE, 16> random;
  if (!RtlGenRandom(random.data(), random.size())) {
    throw SystemFailure(kCannotListen, "RtlGenRandom");
  }
  std::wstring name = L"\\\\.\\pipe\\quillo-";
  for (const BYTE byte : random) {
    name += L"0123456789abcdef"[byte >> 4];
    name += L"0123456789abcdef"[byte & 15];
  }
  return name;
}

}  // namespace

AppPipe::AppPipe(std::function<bool(DWORD)> admits)
    : admits_(std::move(admits)),
      name_(RandomName()),
      pipe_(CreateNamedPipeW(
          name_.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
          PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE | PIPE_REJECT_REMOTE_CLIENTS, 1,
          app::kMaxAnswerBytes, app::kMaxRequestBytes, 0, nullptr)),
      done_(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      message_(app::kMaxRequestBytes),
      answer_(app::kMaxAnswerBytes) {
  if (!pipe_ || !done_) throw SystemFailure(kCannotListen, "CreateNamedPipe");
}

AppPipe::~AppPipe() {
  CancelIo(pipe_.Get());
  DWORD ignored = 0;
  if (state_ == State::kConnecting || state_ == State::kReading) {
    GetOverlappedResult(pipe_.Get(), &pending_, &ignored, TRUE);
  }
}

AppPipe::Event AppPipe::Wait(DWORD milliseconds) {
  if (state_ == State::kIdle) Connect();
  if (state_ == State::kConnected) {
    state_ = State::kReading;
    if (!Begin(ReadFile(pipe_.Get(), message_.data(), static_cast<DWORD>(message_.size()), nullptr,
                        Pending()))) {
      return Lost(GetLastError());
    }
  }
  if (WaitForSingleObject(done_.Get(), milliseconds) != WAIT_OBJECT_0) return Event::kNothing;
  DWORD size = 0;
  const bool done = GetOverlappedResult(pipe_.Get(), &pending_, &size, FALSE) != FALSE;
  const bool was_reading = state_ == State::kReading;
  state_ = State::kConnected;
  if (!was_reading) {
    Admit();
    return Event::kNothing;
  }
  return done ? Received(size) : Lost(GetLastError());
}

void AppPipe::Answer(int32_t result, std::span<const std::byte> data) {
  const auto answer = app::PutAnswer(answer_, result, data);
  if (!Begin(WriteFile(pipe_.Get(), answer.data(), static_cast<DWORD>(answer.size()), nullptr,
                       Pending()))) {
    return;
  }
  // A client that does not read would keep the host.
  if (WaitForSingleObject(done_.Get(), kAnswerLimit) != WAIT_OBJECT_0) CancelIo(pipe_.Get());
  DWORD size = 0;
  GetOverlappedResult(pipe_.Get(), &pending_, &size, TRUE);
}

/// For a call that begins something.
OVERLAPPED* AppPipe::Pending() {
  pending_ = {};
  pending_.hEvent = done_.Get();
  return &pending_;
}

/// Whether a call with Pending() has begun.
bool AppPipe::Begin(BOOL done) { return done || GetLastError() == ERROR_IO_PENDING; }

void AppPipe::Connect() {
  state_ = State::kConnecting;
  if (Begin(ConnectNamedPipe(pipe_.Get(), Pending()))) return;
  if (GetLastError() != ERROR_PIPE_CONNECTED) {
    state_ = State::kIdle;
    throw SystemFailure(kCannotListen, "ConnectNamedPipe");
  }
  state_ = State::kConnected;
  Admit();
}

void AppPipe::Admit() {
  ULONG process = 0;
  if (!GetNamedPipeClientProcessId(pipe_.Get(), &process) || !admits_(process)) SendAway();
}

AppPipe::Event AppPipe::Received(DWORD size) {
  const auto request = app::ParseRequest(std::span(message_).first(size));
  if (!request) {
    SendAway();
    return Event::kRefused;
  }
  request_ = *request;
  return Event::kRequest;
}

AppPipe::Event AppPipe::Lost(DWORD error) {
  SendAway();
  return error == ERROR_MORE_DATA ? Event::kRefused : Event::kGone;
}

void AppPipe::SendAway() {
  DisconnectNamedPipe(pipe_.Get());
  state_ = State::kIdle;
}

}  // namespace quillo::host
