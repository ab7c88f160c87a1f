#include "host/emf_player/playback.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/emf_player/far_path.h"
#include "host/emf_player/path_work.h"
#include "host/emf_player/rounding.h"

namespace quillo::host::emf {

namespace {

// A file of nothing but EMR_SAVEDC must not fill the memory with states.
constexpr size_t kMostSaves = 10000;

// Every call takes the outline of its clip and the pixels of its pattern along to the page, so that
// a small file can ask for a page of gigabytes. This much makes a quarter of one.
constexpr double kMostPoints = 30e6;
constexpr double kBytesPerPoint = 8;

// Rows of pixels that the edges of one filled path cross: enough for a hatching of the whole sheet.
constexpr double kMostCrossings = 3e6;
// The platform works out the inside of stroked paths too, at a cost that grows faster than they do.
constexpr double kMostStrokedCrossings = 1e5;
constexpr double kPointsPerCrossing = 0.15;

size_t PointCount(const Path& path) {
  size_t count = 0;
  for (const Figure& figure : path.Figures()) count += figure.points.size();
  return count;
}

// Records that leave no trace on a page: what they say of colour management, fonts' identity or the
// spooler's ways has no place in the driver's pages.
constexpr uint32_t kWithoutTrace[] = {kEmrHEADER,
                                      kEmrEOF,
                                      kEmrSETMAPPERFLAGS,
                                      kEmrREALIZEPALETTE,
                                      kEmrSETICMMODE,
                                      kEmrSETCOLORSPACE,
                                      kEmrPIXELFORMAT,
                                      kEmrSTARTDOC,
                                      kEmrFORCEUFIMAPPING,
                                      kEmrSETLINKEDUFIS,
                                      kEmrCOLORCORRECTPALETTE,
                                      kEmrSETICMPROFILEA,
                                      kEmrSETICMPROFILEW,
                                      kEmrCOLORMATCHTOTARGETW};

HandlerTable MakeHandlers() {
  HandlerTable table{};
  for (const uint32_t type : kWithoutTrace) table[type] = [](Playback&, PayloadReader&) {};
  AddStateHandlers(table);
  AddObjectHandlers(table);
  AddLineHandlers(table);
  AddShapeHandlers(table);
  AddPathHandlers(table);
  AddClipHandlers(table);
  AddRegionHandlers(table);
  AddBlitHandlers(table);
  AddDibHandlers(table);
  AddGradientHandlers(table);
  AddTextHandlers(table);
  return table;
}

}  // namespace

PlayResult PlayMetafile(MetafileReader& reader, const Transform& to_page, Graphics& canvas,
                        const PlayOptions& options) {
  return Playback(reader, to_page, canvas, options).PlayAll();
}

Playback::Playback(MetafileReader& reader, const Transform& to_page, Graphics& canvas,
                   const PlayOptions& options)
    : reader_(reader),
      canvas_(canvas),
      options_(options),
      device_to_page_(to_page),
      to_page_(to_page),
      state_(PageTransform(reader.header().device, reader.header().millimeters)) {}

PlayResult Playback::PlayAll() {
  if (const uint64_t lost = reader_.unrepeated_emf_plus()) result_.not_carried["EMF+"] = lost;
  while (const auto record = reader_.Next()) {
    record_ = *record;
    Play();
    if (work_ > kMostPoints) {
      Fault("the file asks for too much work; the rest of it is not drawn");
      break;
    }
  }
  canvas_.Finish();
  return std::move(result_);
}

void Playback::Play() {
  static const HandlerTable kHandlers = MakeHandlers();
  if (record_.type >= kRecordTypeEnd || RecordName(record_.type).starts_with("record")) {
    Fault("no record has this type; it is passed over");
    return;
  }
  const Handler handler = kHandlers[record_.type];
  if (handler == nullptr) {
    NotCarried();
    return;
  }
  PayloadReader payload(record_.bytes);
  handler(*this, payload);
  if (!payload.ok()) {
    Fault("is too short for what it announces (" + std::to_string(record_.bytes.size()) +
          " bytes)");
  }
}

bool Playback::Save() {
  if (saved_.size() >= kMostSaves) return false;
  saved_.push_back(state_);
  return true;
}

bool Playback::Restore(int32_t level) {
  const auto depth = static_cast<int64_t>(saved_.size());
  const int64_t index = level < 0 ? depth + level : int64_t{level} - 1;
  if (index < 0 || index >= depth) return false;
  state_ = std::move(saved_[static_cast<size_t>(index)]);
  saved_.erase(saved_.begin() + static_cast<ptrdiff_t>(index), saved_.end());
  TransformChanged();
  ClipChanged();
  return true;
}

void Playback::TransformChanged() {
  to_page_ = state_.world.Then(state_.page.ToDevice()).Then(device_to_page_);
}

PointD Playback::DevicePixel(PointL point) const {
  const PointD at = state_.world.Then(state_.page.ToDevice()).Apply(point.x, point.y);
  return {std::floor(at.x + 0.5), std::floor(at.y + 0.5)};
}

void Playback::CombineClip(const ClipShape& shape, int mode) {
  state_.clip = state_.clip.Combined(shape, mode);
  constexpr double kPointsPerRectangle = sizeof(RECT) / kBytesPerPoint;
  Spend(static_cast<double>(state_.clip.RectangleCount()) * kPointsPerRectangle);
  ClipChanged();
}

void Playback::ClipChanged() { drawable_ = state_.meta.Combined(state_.clip, RGN_AND); }

void Playback::StoreObject(uint32_t index, Object object) {
  const uint32_t declared = reader_.header().handle_count;
  if (index >= declared) {
    Remark("object " + std::to_string(index) + " is beyond the " + std::to_string(declared) +
           " handles that the header declares");
  }
  objects_.Set(index, std::move(object));
}

bool Playback::Spend(double points) {
  work_ += points;
  return work_ <= kMostPoints;
}

DrawState Playback::Drawing() {
  if (!drawable_.IsRectangle()) Spend(static_cast<double>(PointCount(drawable_.Outline())));
  DrawState drawing;
  drawing.clip = drawable_;
  const PointD origin = device_to_page_.Apply(state_.brush_origin.x, state_.brush_origin.y);
  drawing.brush_origin = {ToPixel(origin.x), ToPixel(origin.y)};
  drawing.rop2 = static_cast<uint8_t>(state_.rop2);
  drawing.opaque_background = state_.background_mode == OPAQUE;
  return drawing;
}

double Playback::PixelShape() const {
  const MetafileHeader& header = reader_.header();
  return (static_cast<double>(header.device.x) / header.millimeters.x) /
         (static_cast<double>(header.device.y) / header.millimeters.y);
}

FillMode Playback::PolyFillMode() const {
  return state_.poly_fill_mode == WINDING ? FillMode::kWinding : FillMode::kAlternate;
}

COLORREF Playback::Resolve(COLORREF color) const {
  constexpr COLORREF kPaletteIndex = 0x01000000;
  if ((color & 0xFF000000) == kPaletteIndex) {
    const std::vector<uint32_t>& colors = state_.palette->colors;
    const size_t index = color & 0xFFFF;
    if (index < colors.size()) {
      const uint32_t entry = colors[index];
      return RGB(entry >> 16 & 0xFF, entry >> 8 & 0xFF, entry & 0xFF);
    }
    return RGB(0, 0, 0);
  }
  return color & 0x00FFFFFF;
}

bool Playback::DescribeBrush(const BrushObject& object, BrushDescription& brush) {
  brush = BrushDescription::Solid(Resolve(object.color));
  brush.background = Resolve(state_.background_color);
  switch (object.kind) {
    case BrushObject::Kind::kNull:
      return false;
    case BrushObject::Kind::kSolid:
      return true;
    case BrushObject::Kind::kHatched:
      brush.kind = BrushDescription::Kind::kHatched;
      brush.hatch = object.hatch;
      return true;
    case BrushObject::Kind::kPattern:
      brush.kind = BrushDescription::Kind::kPattern;
      brush.pattern = object.pattern;
      Spend(static_cast<double>(object.pattern->bits.size()) / kBytesPerPoint);
      return true;
    case BrushObject::Kind::kMonoPattern:
      brush.kind = BrushDescription::Kind::kPattern;
      brush.pattern = InTextColors(object.pattern);
      return true;
  }
  return false;
}

/// `bitmap`, of one bit a pixel, in the colours that the DC has now.
Shared<BitmapSource> Playback::InTextColors(const Shared<BitmapSource>& bitmap) {
  const std::vector<uint32_t> colors = {ToRgb(Resolve(state_.text_color)),
                                        ToRgb(Resolve(state_.background_color))};
  if (mono_original_ != bitmap || mono_colored_->palette != colors) {
    auto colored = std::make_shared<BitmapSource>(*bitmap);
    colored->palette = colors;
    mono_original_ = bitmap;
    mono_colored_ = std::move(colored);
  }
  return mono_colored_;
}

void Playback::Stroke(const Path& outline) {
  PenDescription pen;
  if (!DescribePen(pen)) return;
  for (const Path& part :
       SplitLine(LeadsFar(outline) ? NearLine(outline) : outline, kMostStrokedCrossings)) {
    if (!Spend(Crossings(part) * kPointsPerCrossing)) return;
    canvas_.Stroke(part, pen, Drawing());
  }
}

std::optional<Path> Playback::Inside(const Path& path) {
  Path shape = LeadsFar(path) ? NearInside(path) : path;
  const double crossings = Crossings(shape);
  if (crossings > kMostCrossings) {
    Fault("the inside of its path is too intricate to be drawn");
    return std::nullopt;
  }
  if (!Spend(crossings * kPointsPerCrossing)) return std::nullopt;
  return shape;
}

void Playback::Fill(const Path& outline) {
  BrushDescription brush;
  if (!DescribeBrush(*state_.brush, brush)) return;
  if (const auto shape = Inside(outline)) canvas_.Fill(*shape, brush, PolyFillMode(), Drawing());
}

void Playback::StrokeAndFill(const Path& outline) {
  PenDescription pen;
  BrushDescription brush;
  if (LeadsFar(outline) || Crossings(outline) > kMostStrokedCrossings || !DescribePen(pen) ||
      !DescribeBrush(*state_.brush, brush)) {
    Fill(outline);
    Stroke(outline);
    return;
  }
  if (!Inside(outline)) return;
  canvas_.StrokeAndFill(outline, pen, brush, PolyFillMode(), Drawing());
}

void Playback::StrokeLine(PointL end) {
  const PointD from = to_page_.Apply(state_.position.x, state_.position.y);
  const PointD to = to_page_.Apply(end.x, end.y);
  Path line;
  line.MoveTo(from.x, from.y);
  line.LineTo(to.x, to.y);
  if (LeadsFar(line)) {
    Stroke(line);
    return;
  }
  PenDescription pen;
  if (!DescribePen(pen)) return;
  canvas_.Line(ToPointFix(from.x, from.y), ToPointFix(to.x, to.y), pen, Drawing());
}

void Playback::DrawOutline(const Path& outline, bool closed_shape) {
  if (in_path_) {
    path_.path.Append(outline);
    path_.figure_open = false;
  } else if (closed_shape) {
    StrokeAndFill(outline);
  } else {
    Stroke(outline);
  }
}

void Playback::BeginPath() {
  path_ = GrowingPath();
  in_path_ = true;
}

void Playback::DropPath() {
  path_ = GrowingPath();
  in_path_ = false;
}

Path Playback::TakePath() {
  in_path_ = false;
  return std::exchange(path_, GrowingPath()).path;
}

Path& Playback::Continue(GrowingPath& path) const {
  if (!path.figure_open) {
    const PointD start = to_page_.Apply(state_.position.x, state_.position.y);
    path.path.MoveTo(start.x, start.y);
    path.figure_open = true;
  }
  return path.path;
}

}  // namespace quillo::host::emf
