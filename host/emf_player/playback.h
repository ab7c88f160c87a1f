#pragma once

#include "base/ddi.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/emf_format/payload_reader.h"
#include "host/emf_format/record_types.h"
#include "host/emf_player/dc_state.h"
#include "host/emf_player/object_table.h"
#include "host/emf_player/player.h"
#include "host/engine/font_cache.h"
#include "host/engine/graphics.h"

namespace quillo::host::emf {

/// A path that records add to one after the other.
struct GrowingPath {
  Path path;
  bool figure_open = false;  // whether the last figure goes on at its end

  void CloseFigure() {
    if (figure_open) path.CloseFigure();
    figure_open = false;
  }
};

/// The DC that a metafile is played on: its state, its objects, its open path, and the canvas
/// behind it. The handlers of the records (player_*.cpp) work on it.
class Playback {
 public:
  Playback(MetafileReader& reader, const Transform& to_page, Graphics& canvas,
           const PlayOptions& options);

  PlayResult PlayAll();

  // -- State ----------------------------------------------------------------------------------
  DcState& state() { return state_; }
  ObjectTable& objects() { return objects_; }
  /// Puts a created object into the table; a place beyond the declared size is reported.
  void StoreObject(uint32_t index, Object object);
  FontCache& fonts() { return fonts_; }
  Graphics& canvas() { return canvas_; }
  const PlayOptions& options() const { return options_; }
  bool Save();
  /// `level` as RestoreDC takes it: negative counts from the last save, positive from the first.
  bool Restore(int32_t level);
  /// After a change to the world or page transform.
  void TransformChanged();
  /// `mode` as CombineRgn takes it.
  void CombineClip(const ClipShape& shape, int mode);
  /// After a change to the clip or meta region.
  void ClipChanged();

  // -- Transforms -----------------------------------------------------------------------------
  /// From logical units to page pixels.
  const Transform& ToPage() const { return to_page_; }
  /// From pixels of the reference device to page pixels.
  const Transform& DeviceToPage() const { return device_to_page_; }
  /// Pixels of the reference device across a length, for each pixel down the same length.
  double PixelShape() const;
  /// The pixel of the reference device that a logical point falls on.
  PointD DevicePixel(PointL point) const;

  // -- Drawing --------------------------------------------------------------------------------
  /// Everything of a DC that a drawing call takes along. Counts as one call's work.
  DrawState Drawing();
  /// Counts work that a record asks for, in points that the page gets to hold. False when the file
  /// has asked for more than any real one does: then no more records are drawn.
  bool Spend(double points);
  FillMode PolyFillMode() const;
  /// The colour itself: palette indexes looked up, the flag byte gone.
  COLORREF Resolve(COLORREF color) const;
  /// Whether there is a brush; `brush` gets it as the engine takes it.
  bool DescribeBrush(const BrushObject& object, BrushDescription& brush);
  /// Whether there is a pen that draws; `pen` gets it as the engine takes it.
  bool DescribePen(PenDescription& pen);

  /// What of a path's inside is near the page. Working it out counts as work; nothing, which is
  /// reported, where that would take too long.
  std::optional<Path> Inside(const Path& path);

  // With the DC's pen and brush, as far as they draw.
  void Stroke(const Path& outline);
  void Fill(const Path& outline);
  void StrokeAndFill(const Path& outline);
  /// From the current position.
  void StrokeLine(PointL end);
  /// The outline of a record: into the open path; without one stroked, a closed shape filled too.
  void DrawOutline(const Path& outline, bool closed_shape);

  // -- Path -----------------------------------------------------------------------------------
  bool InPath() const { return in_path_; }
  void BeginPath();
  void EndPath() { in_path_ = false; }
  void DropPath();
  /// The finished path, which is gone from the DC afterwards.
  Path TakePath();
  /// The path between begin and end, or the finished one.
  GrowingPath& path() { return path_; }
  /// What a record that goes on from the current position adds to: the path, or `alone`.
  GrowingPath& PathOr(GrowingPath& alone) { return in_path_ ? path_ : alone; }
  /// The path with a figure that goes on; where there is none, one begins at the current position.
  Path& Continue(GrowingPath& path) const;

  // -- Reports --------------------------------------------------------------------------------
  void Fault(std::string what) { reader_.Report(record_, std::move(what)); }
  /// A fault that costs the page nothing.
  void Remark(std::string what) { reader_.Remark(record_, std::move(what)); }
  void NotCarried() { ++result_.not_carried[RecordName(record_.type)]; }
  PlayResult& result() { return result_; }

 private:
  void Play();
  Shared<BitmapSource> InTextColors(const Shared<BitmapSource>& bitmap);

  MetafileReader& reader_;
  Graphics& canvas_;
  const PlayOptions options_;
  const Transform device_to_page_;
  Transform to_page_;
  DcState state_;
  std::vector<DcState> saved_;
  ClipShape drawable_;  // state_.clip and state_.meta together
  ObjectTable objects_;
  FontCache fonts_;
  double work_ = 0;  // points
  GrowingPath path_;
  bool in_path_ = false;
  Shared<BitmapSource> mono_original_;  // last used in text colours,
  Shared<BitmapSource> mono_colored_;   // and so coloured
  Record record_;                       // being played
  PlayResult result_;
};

/// Draws one record. Reads all of it first: when the reader is not ok() afterwards, nothing is
/// drawn and the record counts as damaged.
using Handler = void (*)(Playback& dc, PayloadReader& record);

/// Handler of each record type; null where there is none.
using HandlerTable = std::array<Handler, kRecordTypeEnd>;

// One for each file of handlers.
void AddStateHandlers(HandlerTable& table);
void AddObjectHandlers(HandlerTable& table);
void AddLineHandlers(HandlerTable& table);
void AddShapeHandlers(HandlerTable& table);
void AddPathHandlers(HandlerTable& table);
void AddClipHandlers(HandlerTable& table);
void AddRegionHandlers(HandlerTable& table);
void AddBlitHandlers(HandlerTable& table);
void AddDibHandlers(HandlerTable& table);
void AddGradientHandlers(HandlerTable& table);
void AddTextHandlers(HandlerTable& table);

}  // namespace quillo::host::emf
