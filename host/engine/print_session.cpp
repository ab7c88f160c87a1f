#include "host/engine/print_session.h"

#include <utility>

namespace quillo::host {
namespace {

std::vector<std::byte> CopyOf(const DEVMODEW& mode) {
  const auto* first = reinterpret_cast<const std::byte*>(&mode);
  return {first, first + mode.dmSize + mode.dmDriverExtra};
}

}  // namespace

PrintSession::PrintSession(const DriverFunctions& driver, PrinterPort port,
                           const DEVMODEW& first_mode)
    : driver_(driver),
      port_(std::move(port)),
      mode_(CopyOf(first_mode)),
      device_(std::make_unique<PrintDevice>(driver, port_, &first_mode)) {
  device_->EnableSurface();
}

PrintSession::~PrintSession() {
  page_.reset();
  if (document_open_ && device_->Surface() != nullptr) {
    driver_.EndDoc(device_->Surface(), ED_ABORTDOC);
  }
}

void PrintSession::StartDocument(const std::wstring& name, DWORD job_id) {
  SetLastError(ERROR_SUCCESS);
  if (!driver_.StartDoc(device_->Surface(), const_cast<LPWSTR>(name.c_str()), job_id)) {
    throw DriverFailure("DrvStartDoc", GetLastError());
  }
  document_open_ = true;
}

Graphics& PrintSession::StartPage(const DEVMODEW& mode) {
  if (CopyOf(mode) != mode_) Reset(mode);
  SetLastError(ERROR_SUCCESS);
  if (!driver_.StartPage(device_->Surface())) throw DriverFailure("DrvStartPage", GetLastError());
  page_ = std::make_unique<Graphics>(driver_, device_->Info(), *device_->Surface());
  return *page_;
}

void PrintSession::SendPage() {
  page_.reset();
  SetLastError(ERROR_SUCCESS);
  if (!driver_.SendPage(device_->Surface())) throw DriverFailure("DrvSendPage", GetLastError());
}

void PrintSession::EndDocument() {
  document_open_ = false;
  SetLastError(ERROR_SUCCESS);
  if (!driver_.EndDoc(device_->Surface(), 0)) throw DriverFailure("DrvEndDoc", GetLastError());
}

void PrintSession::Reset(const DEVMODEW& mode) {
  auto next = std::make_unique<PrintDevice>(driver_, port_, &mode);
  SetLastError(ERROR_SUCCESS);
  if (driver_.ResetPDEV == nullptr || !driver_.ResetPDEV(device_->Handle(), next->Handle())) {
    throw DriverFailure("DrvResetPDEV", GetLastError());
  }
  // Before the old surface goes: without one, nobody could end the document.
  next->EnableSurface();
  device_ = std::move(next);  // destroys the old device and its surface
  mode_ = CopyOf(mode);
  SetLastError(ERROR_SUCCESS);
  if (document_open_ && !driver_.StartDoc(device_->Surface(), nullptr, 0)) {
    throw DriverFailure("DrvStartDoc", GetLastError());
  }
}

}  // namespace quillo::host
