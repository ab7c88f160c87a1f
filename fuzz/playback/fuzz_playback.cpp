// Records of any payload, played as a page is.
#include "base/windows.h"

#include <cstdlib>
#include <vector>

#include "capture/records/framing.h"
#include "capture/records/types.h"
#include "config/settings/printer_dc.h"
#include "platform/gdi.h"
#include "platform/memory.h"
#include "playback/dispatcher.h"
#include "playback/font_embedding.h"

namespace quillo {

// Of no payload.
bool EmbedFont(const PlaybackContext&, const LOGFONTW&) { return false; }
CreatedDc CreatePrinterDc(HANDLE, const DEVMODEW*) {
  return CreatedDc(CreateCompatibleDC(nullptr));
}

namespace {

struct NoEvents final : PlaybackEvents {
  void JobFailed() override {}
  HRESULT FontEmbedded(const wchar_t*) override { return S_OK; }
};

/// Each payload ends where a block ends.
void Play(Bytes stream) {
  NoEvents events;
  DeviceMode settings;
  BuildDefaultDeviceMode(settings, nullptr);
  const CreatedDc page(CreateCompatibleDC(nullptr));
  const HANDLE heap = HeapCreate(0, 0, 0);
  PlaybackContext context({.printer = nullptr,
                           .heap = heap,
                           .device_settings = &settings,
                           .bitmap_limits = kDefaultBitmapLimits,
                           .font_directory = L"",
                           .events = &events});
  context.page_dc = page.Get();
  for (int records = 0; records < 64; ++records) {
    const auto frame = records::NextFrame(stream);
    if (!frame) break;
    const std::vector<std::byte> payload(frame->payload.begin(), frame->payload.end());
    // The types are few among all numbers.
    DispatchRecord(context, records::kFirstPlayedType + frame->type % 128, payload);
    stream = stream.subspan(frame->size);
  }
  EndPagePlayback(context);
  context.seen_fonts.Clear();
  context.run_list.Clear();
  HeapDestroy(heap);
}

}  // namespace
}  // namespace quillo

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  quillo::Play(std::as_bytes(std::span(data, size)));
  if (!NoObjectsLeft() || !NoSectionsLeft()) std::abort();
  return 0;
}
