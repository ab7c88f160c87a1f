#include "host/engine/services/guard.h"

namespace quillo::host {
namespace {

const char* failing_service = nullptr;

}  // namespace

void FailNextCall(const char* service) { failing_service = service; }

bool TakeFailure(std::string_view service) {
  if (failing_service == nullptr || service != failing_service) return false;
  failing_service = nullptr;
  return true;
}

}  // namespace quillo::host
