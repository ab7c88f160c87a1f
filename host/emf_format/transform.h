#pragma once

#include <cmath>
#include <initializer_list>

#include "host/emf_format/geometry.h"

namespace quillo::host::emf {

/// An affine map of row vectors, in GDI's convention: x' = x·m11 + y·m21 + dx, y' = x·m12 + y·m22 +
/// dy.
struct Transform {
  double m11 = 1;
  double m12 = 0;
  double m21 = 0;
  double m22 = 1;
  double dx = 0;
  double dy = 0;

  bool operator==(const Transform&) const = default;

  PointD Apply(double x, double y) const {
    return {x * m11 + y * m21 + dx, x * m12 + y * m22 + dy};
  }
  /// Without the translation: for distances.
  PointD ApplyVector(double x, double y) const { return {x * m11 + y * m21, x * m12 + y * m22}; }

  /// This map first, then `next`.
  Transform Then(const Transform& next) const {
    return {m11 * next.m11 + m12 * next.m21,         m11 * next.m12 + m12 * next.m22,
            m21 * next.m11 + m22 * next.m21,         m21 * next.m12 + m22 * next.m22,
            dx * next.m11 + dy * next.m21 + next.dx, dx * next.m12 + dy * next.m22 + next.dy};
  }

  double Determinant() const { return m11 * m22 - m12 * m21; }
  /// The mean factor of lengths.
  double Scale() const { return std::sqrt(std::fabs(Determinant())); }
  bool KeepsAxes() const { return m12 == 0 && m21 == 0; }

  /// Whether the map is finite and has an inverse; GDI accepts no other.
  bool Usable() const {
    for (const double value : {m11, m12, m21, m22, dx, dy}) {
      if (!std::isfinite(value)) return false;
    }
    return Determinant() != 0;
  }
  /// The inverse of a usable map.
  Transform Inverse() const {
    const double d = Determinant();
    return {
        m22 / d, -m12 / d, -m21 / d, m11 / d, (m21 * dy - m22 * dx) / d, (m12 * dx - m11 * dy) / d};
  }
};

}  // namespace quillo::host::emf
