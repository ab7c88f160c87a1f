#include "host/app/app_program.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "host/app/app_document.h"
#include "host/base/failure.h"
#include "host/base/text.h"
#include "host/printer/printer_setup.h"

namespace quillo::host {

namespace {

constexpr DWORD kStep = 50;               // milliseconds between looks at the program
constexpr DWORD kDialogStep = 250;        // and at its dialogs
constexpr ULONGLONG kPressAgain = 1000;   // a dialog that has taken an OK may need it again
constexpr DWORD kUnseenSilence = 60'000;  // of a program whose dialogs nobody can see
constexpr DWORD kGrace = 5000;            // for another document
constexpr DWORD kFirstException = 0xC0000000;

/// Whether Wine has somewhere to show windows, and may.
bool HasDisplay() {
  wchar_t driver[16] = {};
  DWORD size = sizeof driver;
  RegGetValueW(HKEY_CURRENT_USER, L"Software\\Wine\\Drivers", L"Graphics", RRF_RT_REG_SZ, nullptr,
               driver, &size);
  constexpr DWORD kEmpty = 1;  // its terminator
  return GetEnvironmentVariableW(L"DISPLAY", nullptr, 0) > kEmpty &&
         std::wstring_view(driver) != L"null";
}

DWORD SilenceOf(const AppOptions& options) {
  if (options.timeout) return static_cast<DWORD>(*options.timeout) * 1000;
  return HasDisplay() ? 0 : kUnseenSilence;
}

std::filesystem::path TemporaryFile() {
  wchar_t folder[MAX_PATH + 1];
  wchar_t file[MAX_PATH];
  if (GetTempPathW(MAX_PATH + 1, folder) == 0 || GetTempFileNameW(folder, L"qlo", 0, file) == 0) {
    throw SystemFailure("cannot make a file for pages", "GetTempFileName");
  }
  return file;
}

std::wstring TextOf(std::span<const std::byte> data) {
  std::wstring text(data.size() / sizeof(wchar_t), L'\0');
  std::memcpy(text.data(), data.data(), text.size() * sizeof(wchar_t));
  return text;
}

}  // namespace

AppProgram::AppProgram(const AppOptions& options, int dpi, const DriverModule& driver)
    : options_(options),
      name_(ToUtf8(options.program)),
      sheet_{options.sheet, dpi},
      driver_(driver),
      seen_(HasDisplay()),
      silence_(SilenceOf(options)),
      page_file_(TemporaryFile()),
      pipe_([this](DWORD process) {
        if (!process_.Contains(process)) return false;
        client_.Reset(OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, process));
        return true;
      }),
      process_(options.program, options.arguments, app::kPipeVariable, pipe_.Name()) {
  std::wstring name = kPrinterName;
  OpenPrinterW(name.data(), printer_.Receive(), nullptr);
}

AppProgram::~AppProgram() {
  process_.End();
  std::error_code ignored;
  std::filesystem::remove(page_file_, ignored);
}

std::optional<AppProgram::Document> AppProgram::NextDocument() {
  if (given_up_) return std::nullopt;
  const ULONGLONG deadline = Deadline(has_printed_ ? std::min(kGrace, silence_) : silence_);
  for (;;) {
    switch (Next(deadline)) {
      case Outcome::kEnded:
        return std::nullopt;
      case Outcome::kSilent:
        if (has_printed_) return std::nullopt;
        throw UnreadableInput("printed nothing within " + std::to_string(silence_ / 1000) + " s" +
                              HiddenDialog());
      case Outcome::kRefused:
        throw UnreadableInput("sent what its recorder does not send");
      case Outcome::kGone:
        break;
      case Outcome::kRequest:
        const app::Request& request = pipe_.Last();
        if (request.header.kind != app::RequestKind::kStartDocument) {
          AnswerQuestion(request, nullptr);
          break;
        }
        const auto mode = ReadAppMode(request.mode, sheet_);
        if (!mode) {
          pipe_.Answer(0);
          break;
        }
        has_printed_ = true;
        return Document{TextOf(request.data), std::make_unique<AppDocument>(*this, *mode)};
    }
  }
}

AppProgram::Outcome AppProgram::Next(ULONGLONG deadline) {
  for (;;) {
    const bool running = process_.IsRunning();  // what it sent before it ended is still read
    switch (pipe_.Wait(kStep)) {
      case AppPipe::Event::kRequest:
        return Outcome::kRequest;
      case AppPipe::Event::kGone:
        return Outcome::kGone;
      case AppPipe::Event::kRefused:
        return Outcome::kRefused;
      case AppPipe::Event::kNothing:
        break;
    }
    if (!running) return Outcome::kEnded;
    const ULONGLONG now = GetTickCount64();
    if (deadline != 0 && now > deadline) return Outcome::kSilent;
    if (options_.confirm && now - watched_ > kDialogStep) {
      watched_ = now;
      ConfirmDialogs();
    }
  }
}

void AppProgram::AnswerQuestion(const app::Request& request, SURFOBJ* surface) {
  switch (request.header.kind) {
    case app::RequestKind::kCapabilities: {
      const auto device = MakeDevice(request);
      if (device == nullptr) return pipe_.Answer(0);
      const app::Capabilities capabilities = CapabilitiesOf(device->Capabilities());
      return pipe_.Answer(1, std::as_bytes(std::span(&capabilities, 1)));
    }
    case app::RequestKind::kEscape:
      return AnswerEscape(request, surface);
    case app::RequestKind::kOtherWine: {
      const std::string version(reinterpret_cast<const char*>(request.data.data()),
                                request.data.size());
      pipe_.Answer(0);
      throw DriverFailure("recording programs, which needs Wine " + std::string(app::kWineVersion) +
                              " and not " + version + ",",
                          ERROR_NOT_SUPPORTED);
    }
    default:  // of a document, outside of any
      return pipe_.Answer(0);
  }
}

void AppProgram::AnswerEscape(const app::Request& request, SURFOBJ* surface) {
  const auto escape = driver_.Functions().Escape;
  std::unique_ptr<PrintDevice> device;
  if (surface == nullptr) {
    device = MakeDevice(request);
    if (device != nullptr) surface = device->Surface();
  }
  if (surface == nullptr || escape == nullptr) return pipe_.Answer(0);
  // The driver believes the sizes of neither buffer.
  std::vector<std::byte> input(request.data.begin(), request.data.end());
  std::vector<std::byte> output(app::kMaxDataBytes);
  input.resize(std::max<size_t>(input.size(), 64));
  const ULONG result = escape(surface, request.header.number, request.header.data_bytes,
                              request.data.empty() ? nullptr : input.data(), request.header.room,
                              request.header.room == 0 ? nullptr : output.data());
  output.resize(request.header.room);
  pipe_.Answer(static_cast<int32_t>(result), output);
}

std::unique_ptr<PrintDevice> AppProgram::MakeDevice(const app::Request& request) const {
  const auto mode = ReadAppMode(request.mode, sheet_);
  if (!mode) return nullptr;
  try {
    auto device = std::make_unique<PrintDevice>(
        driver_.Functions(), PrinterPort{printer_.Get(), kPrinterName, L"FILE:"}, &mode->mode.pub);
    device->EnableSurface();
    return device;
  } catch (const DriverFailure&) {
    return nullptr;
  }
}

void AppProgram::ConfirmDialogs() {
  const ULONGLONG now = GetTickCount64();
  for (const HWND dialog : process_.Dialogs()) {
    const auto pressed = pressed_.find(dialog);
    if (pressed != pressed_.end() && now - pressed->second < kPressAgain) continue;
    if (Confirm(dialog)) pressed_[dialog] = now;
  }
}

std::string AppProgram::HiddenDialog() const {
  if (seen_) return "";
  const std::vector<HWND> dialogs = process_.Dialogs();
  if (dialogs.empty()) return "";
  return "; it shows the dialog \"" + ToUtf8(TitleOf(dialogs.front())) + "\", which nobody sees" +
         (options_.confirm ? " and which has no OK" : " (--app-confirm presses its OK)");
}

std::string AppProgram::HowItWent() const {
  DWORD code = 0;
  WaitForSingleObject(client_.Get(), kGrace);
  GetExitCodeProcess(client_.Get(), &code);
  return code >= kFirstException ? "crashed" : "ended";
}

ULONGLONG AppProgram::Deadline(DWORD milliseconds) const {
  return silence_ == 0 ? 0 : GetTickCount64() + milliseconds;
}

}  // namespace quillo::host
