#include "host/emf_player/path_work.h"

#include <cmath>
#include <utility>

namespace quillo::host::emf {

namespace {

double RowsBetween(POINTFIX a, POINTFIX b) { return std::fabs(double{1} * b.y - a.y) / 16; }

}  // namespace

double Crossings(const Path& path) {
  double rows = 0;
  for (const Figure& figure : path.Figures()) {
    for (size_t i = 1; i < figure.points.size(); ++i) {
      rows += RowsBetween(figure.points[i - 1], figure.points[i]);
    }
  }
  return rows;
}

std::vector<Path> SplitLine(Path path, double max) {
  std::vector<Path> parts(1);
  if (Crossings(path) <= max) {
    parts[0] = std::move(path);
    return parts;
  }
  double rows = 0;
  const auto go_on = [&](POINTFIX from, POINTFIX to) {
    if (rows > max) {
      parts.emplace_back();
      parts.back().MoveTo(from);
      rows = 0;
    }
    rows += RowsBetween(from, to);
  };
  for (const Figure& figure : path.Figures()) {
    const POINTFIX* point = figure.points.data();
    const POINTFIX start = *point;
    const size_t parts_before = parts.size();
    parts.back().MoveTo(start);
    for (const Figure::Verb verb : figure.verbs) {
      const bool curve = verb == Figure::Verb::kBezier;
      go_on(point[0], point[curve ? 3 : 1]);
      if (curve) {
        parts.back().BezierTo(point[1], point[2], point[3]);
        point += 3;
      } else {
        parts.back().LineTo(*++point);
      }
    }
    if (!figure.closed) continue;
    if (parts.size() == parts_before) {
      parts.back().CloseFigure();
    } else {
      parts.back().LineTo(start);
    }
  }
  return parts;
}

}  // namespace quillo::host::emf
