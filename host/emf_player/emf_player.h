#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "host/emf_format/reader.h"
#include "host/emf_format/transform.h"
#include "host/emf_player/dc_path.h"
#include "host/emf_player/dc_state.h"
#include "host/emf_player/object_table.h"
#include "host/emf_player/work_budget.h"
#include "host/engine/canvas.h"
#include "host/engine/font_cache.h"
#include "host/engine/font_use.h"

namespace quillo::host::emf {

struct PlayOptions {
  GlyphOrder glyph_order = GlyphOrder::kAsSubstitute;
};

struct PlayResult {
  /// Records that could not be carried to the page, by name.
  std::map<std::string, uint64_t> not_carried;
  /// By the face name that the metafile asks for.
  std::map<std::wstring, FontUse> fonts;
};

/// Draws a metafile on a page. This is the DC that it is played on (state, objects, open path); the
/// handlers of the records (record_handlers.h, *_records.cpp) work on it and draw on its canvas.
class EmfPlayer {
 public:
  /// `reader` and `canvas` must outlive the player. `to_page`: from pixels of the reference device
  /// to pixels of the canvas (see page_mapping.h).
  EmfPlayer(MetafileReader& reader, const Transform& to_page, Canvas& canvas,
            const PlayOptions& options = {});

  /// Draws all records that the reader still has. Skips a damaged record and draws the rest; the
  /// faults are in the reader afterwards. To be called once. Needs COM on this thread (bitmaps
  /// coded as JPEG or PNG).
  PlayResult Play();

  // -- State ----------------------------------------------------------------------------------
  DcState& state() { return state_; }
  ObjectTable& objects() { return objects_; }
  /// Puts a created object into the table; reports an index beyond the declared size.
  void StoreObject(uint32_t index, Object object);
  /// The object of type T with this index. Null when there is none, which is reported; `kind` is
  /// the type's name.
  template <typename T>
  Shared<T> FindObject(uint32_t index, const char* kind) {
    const Object object = objects_.Get(index);
    if (const auto* found = std::get_if<Shared<T>>(&object)) return *found;
    Fault("object " + std::to_string(index) + " is not a " + kind);
    return nullptr;
  }
  FontCache& fonts() { return fonts_; }
  const PlayOptions& options() const { return options_; }
  /// False when too many states are saved already.
  bool Save() { return saved_.Save(state_); }
  /// `level` as for RestoreDC. False when there is no such state.
  bool Restore(int32_t level);
  /// To be called after a change to the world or page transform.
  void TransformChanged();
  /// `mode` as for CombineRgn.
  void CombineClip(const ClipShape& shape, int mode);
  /// To be called after a change to the clip or meta region.
  void ClipChanged();
  /// The path between BeginPath and EndPath, or the finished one.
  DcPath& path() { return path_; }

  // -- Transforms -----------------------------------------------------------------------------
  /// From logical units to page pixels.
  const Transform& ToPage() const { return to_page_; }
  /// From pixels of the reference device to page pixels.
  const Transform& DeviceToPage() const { return device_to_page_; }
  /// How many pixels of the reference device span a length horizontally, for each that spans it
  /// vertically.
  double PixelAspect() const;
  /// The pixel of the reference device at a logical point.
  PointD DevicePixel(PointL point) const;

  // -- Drawing --------------------------------------------------------------------------------
  /// Where everything is drawn. Each drawing call takes Drawing().
  Canvas& canvas() { return canvas_; }
  /// The clip, brush origin and mixing of the DC for one drawing call; counts as its work.
  DrawState Drawing();
  /// Counts work that a record asks for (see WorkBudget). False when the budget is exhausted: no
  /// more records are drawn then.
  bool Spend(double points) { return budget_.Spend(points); }
  FillMode PolyFillMode() const;
  /// The colour without its flag byte; palette indexes are looked up.
  COLORREF Resolve(COLORREF colour) const;
  /// Fills in `brush`; false for a null brush.
  bool DescribeBrush(const BrushObject& object, BrushDescription& brush);
  /// Fills in `pen` from the DC's pen; false for a null pen.
  bool DescribePen(PenDescription& pen);

  /// The part of a path's inside that is near the page. Computing it counts as work. Nothing where
  /// that would take too long, which is reported.
  std::optional<Path> Inside(const Path& path);

  // With the DC's pen and brush, unless they are null ones.
  void Stroke(const Path& outline);
  void Fill(const Path& outline);
  void StrokeAndFill(const Path& outline);
  /// From the current position.
  void StrokeLine(PointL end);
  /// The outline of a record: added to the open path; without one stroked, and filled if closed.
  void DrawOutline(const Path& outline, bool closed_shape);
  /// The path of `growing` with its figure open; a new figure begins at the current position.
  Path& Continue(GrowingPath& growing) const;

  // -- Reports --------------------------------------------------------------------------------
  /// Reports that the record, or part of it, is damaged and not drawn.
  void Fault(std::string what) { reader_.Report(record_, std::move(what)); }
  /// Reports a fault that does not change the page.
  void Remark(std::string what) { reader_.Remark(record_, std::move(what)); }
  /// Counts the record among those that could not be carried to the page.
  void NotCarried();
  /// How the font of this face name is used; to be added to.
  FontUse& UseOf(const std::wstring& face) { return result_.fonts[face]; }

 private:
  void PlayRecord();
  Shared<BitmapSource> InTextColours(const Shared<BitmapSource>& bitmap);

  MetafileReader& reader_;
  Canvas& canvas_;
  const PlayOptions options_;
  const Transform device_to_page_;
  Transform to_page_;
  DcState state_;
  SavedStates saved_;
  ClipShape drawable_;  // intersection of state_.clip and state_.meta
  ObjectTable objects_;
  FontCache fonts_;
  WorkBudget budget_;
  DcPath path_;
  Shared<BitmapSource> mono_original_;  // the bitmap last used in text colours,
  Shared<BitmapSource> mono_coloured_;  // and its coloured copy
  Record record_;                       // being played
  PlayResult result_;
};

}  // namespace quillo::host::emf
