#include "host/engine/print_device.h"

namespace quillo::host {

PrintDevice::PrintDevice(const DriverFunctions& driver, const PrinterPort& port,
                         const DEVMODEW* mode)
    : driver_(driver) {
  // The DDI has no const; drivers only read these.
  const auto text = [](const std::wstring& s) { return const_cast<LPWSTR>(s.c_str()); };
  HSURF patterns[HS_DDI_MAX] = {};
  SetLastError(ERROR_SUCCESS);
  engine_device_.dhpdev =
      driver.EnablePDEV(const_cast<DEVMODEW*>(mode), text(port.log_address), HS_DDI_MAX, patterns,
                        sizeof capabilities_, &capabilities_, sizeof info_, &info_,
                        engine_device_.Handle(), text(port.device_name), port.printer);
  if (engine_device_.dhpdev == nullptr) throw DriverFailure("DrvEnablePDEV", GetLastError());
  driver.CompletePDEV(engine_device_.dhpdev, engine_device_.Handle());
}

PrintDevice::~PrintDevice() {
  if (surface_ != nullptr) driver_.DisableSurface(Handle());
  driver_.DisablePDEV(Handle());
}

void PrintDevice::EnableSurface() {
  SetLastError(ERROR_SUCCESS);
  const HSURF handle = driver_.EnableSurface(Handle());
  if (handle == nullptr) throw DriverFailure("DrvEnableSurface", GetLastError());
  surface_ = FindSurface(handle);
  if (surface_ == nullptr || surface_->dhpdev != Handle()) {
    if (surface_ != nullptr) driver_.DisableSurface(Handle());
    surface_ = nullptr;
    throw DriverFailure("DrvEnableSurface: its surface belongs to no device;",
                        ERROR_INVALID_HANDLE);
  }
}

}  // namespace quillo::host
