#include "host/emf_player/emf_player.h"

#include <cmath>
#include <string>
#include <utility>

#include "host/emf_format/payload_reader.h"
#include "host/emf_format/record_types.h"
#include "host/emf_player/record_handlers.h"

namespace quillo::host::emf {

EmfPlayer::EmfPlayer(MetafileReader& reader, const Transform& to_page, Canvas& canvas,
                     const PlayOptions& options)
    : reader_(reader),
      canvas_(canvas),
      options_(options),
      device_to_page_(to_page),
      to_page_(to_page),
      state_(PageTransform(reader.header().device, reader.header().millimetres)) {}

PlayResult EmfPlayer::Play() {
  if (const uint64_t lost = reader_.unrepeated_emf_plus()) result_.not_carried["EMF+"] = lost;
  while (const auto record = reader_.Next()) {
    record_ = *record;
    PlayRecord();
    if (budget_.Exhausted()) {
      Fault("the file takes too long to draw; the rest is skipped");
      break;
    }
  }
  canvas_.Finish();
  return std::move(result_);
}

void EmfPlayer::PlayRecord() {
  if (!IsRecordType(record_.type)) {
    Fault("unknown type, skipped");
    return;
  }
  const Handler handler = RecordHandlers()[record_.type];
  if (handler == nullptr) {
    NotCarried();
    return;
  }
  PayloadReader payload(record_.bytes);
  handler(*this, payload);
  if (!payload.ok()) {
    Fault("declares more data than its " + std::to_string(record_.bytes.size()) + " bytes hold");
  }
}

void EmfPlayer::NotCarried() { ++result_.not_carried[RecordName(record_.type)]; }

bool EmfPlayer::Restore(int32_t level) {
  if (!saved_.Restore(level, state_)) return false;
  TransformChanged();
  ClipChanged();
  return true;
}

void EmfPlayer::TransformChanged() {
  to_page_ = state_.world.Then(state_.page.ToDevice()).Then(device_to_page_);
}

PointD EmfPlayer::DevicePixel(PointL point) const {
  const PointD at = state_.world.Then(state_.page.ToDevice()).Apply(point.x, point.y);
  return {std::floor(at.x + 0.5), std::floor(at.y + 0.5)};
}

void EmfPlayer::CombineClip(const ClipShape& shape, int mode) {
  state_.clip = state_.clip.Combined(shape, mode);
  constexpr double kPointsPerRectangle = sizeof(RECT) / kBytesPerPoint;
  Spend(static_cast<double>(state_.clip.RectangleCount()) * kPointsPerRectangle);
  ClipChanged();
}

void EmfPlayer::ClipChanged() { drawable_ = state_.meta.Combined(state_.clip, RGN_AND); }

void EmfPlayer::StoreObject(uint32_t index, Object object) {
  const uint32_t declared = reader_.header().handle_count;
  if (index >= declared) {
    Remark("object " + std::to_string(index) + " is beyond the " + std::to_string(declared) +
           " handles that the header declares");
  }
  objects_.Set(index, std::move(object));
}

double EmfPlayer::PixelAspect() const {
  const MetafileHeader& header = reader_.header();
  return (static_cast<double>(header.device.x) / header.millimetres.x) /
         (static_cast<double>(header.device.y) / header.millimetres.y);
}

}  // namespace quillo::host::emf
