// Records of the path bracket: begin, end, and what uses a finished path.

#include "host/emf_player/emf_player.h"
#include "host/emf_player/record_handlers.h"
#include "host/emf_player/widen.h"

namespace quillo::host::emf {

namespace {

void BeginPath(EmfPlayer& player, PayloadReader&) { player.path().Begin(); }
void EndPath(EmfPlayer& player, PayloadReader&) { player.path().End(); }
void AbortPath(EmfPlayer& player, PayloadReader&) { player.path().Abort(); }

void CloseFigure(EmfPlayer& player, PayloadReader&) {
  if (!player.path().IsOpen()) {
    player.Fault("no path is open");
    return;
  }
  player.path().Contents().CloseFigure();
}

// Drawing ends an open path: some writers forget to.

void FillPath(EmfPlayer& player, PayloadReader&) { player.Fill(player.path().Take()); }
void StrokePath(EmfPlayer& player, PayloadReader&) { player.Stroke(player.path().Take()); }
void StrokeAndFillPath(EmfPlayer& player, PayloadReader&) {
  player.StrokeAndFill(player.path().Take());
}

void FlattenPath(EmfPlayer& player, PayloadReader&) {
  Path& path = player.path().Contents().path;
  path = path.Flattened();
}

void WidenPath(EmfPlayer& player, PayloadReader&) {
  PenDescription pen;
  Path& path = player.path().Contents().path;
  if (player.DescribePen(pen)) path = Widened(path, pen);
}

void SelectClipPath(EmfPlayer& player, PayloadReader& record) {
  const auto mode = record.Read<uint32_t>();
  const std::optional<Path> inside = player.Inside(player.path().Take());
  if (mode < RGN_AND || mode > RGN_COPY) {
    player.Fault("unknown region mode " + std::to_string(mode));
    return;
  }
  if (!inside) return;
  player.CombineClip(ClipShape::OfPath(*inside, player.PolyFillMode()), static_cast<int>(mode));
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
