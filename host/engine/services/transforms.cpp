#include "host/engine/services/transforms.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace quillo::host {
namespace {

struct Matrix {
  double m11, m12, m21, m22, dx, dy;
};

/// False when the matrix has no inverse.
bool Invert(Matrix& m) {
  const double determinant = m.m11 * m.m22 - m.m12 * m.m21;
  if (determinant == 0 || !std::isfinite(determinant)) return false;
  m = {m.m22 / determinant,
       -m.m12 / determinant,
       -m.m21 / determinant,
       m.m11 / determinant,
       (m.m21 * m.dy - m.m22 * m.dx) / determinant,
       (m.m12 * m.dx - m.m11 * m.dy) / determinant};
  return true;
}

/// To the nearest integer, halves upwards; false when it does not fit.
bool Round(double value, LONG& result) {
  const double rounded = std::floor(value + 0.5);
  if (!(rounded >= INT32_MIN && rounded <= INT32_MAX)) return false;
  result = static_cast<LONG>(rounded);
  return true;
}

}  // namespace

XformObject::XformObject(const XFORM& matrix)
    : XFORMOBJ{}, matrix_{matrix.eM11, matrix.eM12, matrix.eM21,
                          matrix.eM22, matrix.eDx,  matrix.eDy} {}

ULONG XformObject::Complexity() const {
  if (matrix_.eM12 != 0 || matrix_.eM21 != 0) return GX_GENERAL;
  if (matrix_.eM11 != 1 || matrix_.eM22 != 1) return GX_SCALE;
  return matrix_.eDx != 0 || matrix_.eDy != 0 ? GX_OFFSET : GX_IDENTITY;
}

}  // namespace quillo::host

using namespace quillo::host;

extern "C" ULONG APIENTRY XFORMOBJ_iGetXform(XFORMOBJ* pxo, XFORML* pxform) {
  if (pxo == nullptr) return DDI_ERROR;
  const XformObject& xform = *static_cast<XformObject*>(pxo);
  if (pxform != nullptr) *pxform = xform.Matrix();
  return xform.Complexity();
}

extern "C" WINBOOL APIENTRY XFORMOBJ_bApplyXform(XFORMOBJ* pxo, ULONG iMode, ULONG cPoints,
                                                 PVOID pvIn, PVOID pvOut) {
  if (pxo == nullptr || pvIn == nullptr || pvOut == nullptr || iMode > XF_INV_FXTOL) return FALSE;
  const XFORML& from = static_cast<XformObject*>(pxo)->Matrix();
  Matrix m{from.eM11, from.eM12, from.eM21, from.eM22, from.eDx, from.eDy};
  if ((iMode == XF_INV_LTOL || iMode == XF_INV_FXTOL) && !Invert(m)) return FALSE;

  // POINTL and POINTFIX are the same two LONGs; fixed point counts sixteenths.
  const double in_scale = iMode == XF_INV_FXTOL ? 1.0 / 16 : 1;
  const double out_scale = iMode == XF_LTOFX ? 16 : 1;
  for (ULONG i = 0; i < cPoints; ++i) {
    POINTL point;
    std::memcpy(&point, static_cast<POINTL*>(pvIn) + i, sizeof point);
    const double x = point.x * in_scale, y = point.y * in_scale;
    POINTL mapped;
    if (!Round((x * m.m11 + y * m.m21 + m.dx) * out_scale, mapped.x) ||
        !Round((x * m.m12 + y * m.m22 + m.dy) * out_scale, mapped.y)) {
      return FALSE;
    }
    std::memcpy(static_cast<POINTL*>(pvOut) + i, &mapped, sizeof mapped);
  }
  return TRUE;
}
