#include "config/message_box.h"

namespace quillo {

int ShowMessageBox(const wchar_t* text, const wchar_t* caption, UINT style) {
  return MessageBoxW(nullptr, text, caption, style);
}

}  // namespace quillo
