// Records of the path bracket: begin, end, and what is made of a finished path.

#include "host/emf_player/playback.h"
#include "host/emf_player/widen.h"

namespace quillo::host::emf {

namespace {

void BeginPath(Playback& dc, PayloadReader&) { dc.BeginPath(); }
void EndPath(Playback& dc, PayloadReader&) { dc.EndPath(); }
void AbortPath(Playback& dc, PayloadReader&) { dc.DropPath(); }

void CloseFigure(Playback& dc, PayloadReader&) {
  if (!dc.InPath()) {
    dc.Fault("there is no open path");
    return;
  }
  dc.path().CloseFigure();
}

// An open path is ended by the drawing: files exist whose writers forgot to do it.

void FillPath(Playback& dc, PayloadReader&) { dc.Fill(dc.TakePath()); }
void StrokePath(Playback& dc, PayloadReader&) { dc.Stroke(dc.TakePath()); }
void StrokeAndFillPath(Playback& dc, PayloadReader&) { dc.StrokeAndFill(dc.TakePath()); }

void FlattenPath(Playback& dc, PayloadReader&) { dc.path().path = dc.path().path.Flattened(); }

void WidenPath(Playback& dc, PayloadReader&) {
  PenDescription pen;
  Path& path = dc.path().path;
  if (dc.DescribePen(pen)) path = Widened(path, pen);
}

void SelectClipPath(Playback& dc, PayloadReader& record) {
  const auto mode = record.Read<uint32_t>();
  const std::optional<Path> inside = dc.Inside(dc.TakePath());
  if (mode < RGN_AND || mode > RGN_COPY) {
    dc.Fault("there is no way " + std::to_string(mode) + " to combine regions");
    return;
  }
  if (!inside) return;
  dc.CombineClip(ClipShape::OfPath(*inside, dc.PolyFillMode()), static_cast<int>(mode));
}

}  // namespace

void AddPathHandlers(HandlerTable& table) {
  table[kEmrBEGINPATH] = BeginPath;
  table[kEmrENDPATH] = EndPath;
  table[kEmrABORTPATH] = AbortPath;
  table[kEmrCLOSEFIGURE] = CloseFigure;
  table[kEmrFILLPATH] = FillPath;
  table[kEmrSTROKEPATH] = StrokePath;
  table[kEmrSTROKEANDFILLPATH] = StrokeAndFillPath;
  table[kEmrFLATTENPATH] = FlattenPath;
  table[kEmrWIDENPATH] = WidenPath;
  table[kEmrSELECTCLIPPATH] = SelectClipPath;
}

}  // namespace quillo::host::emf
