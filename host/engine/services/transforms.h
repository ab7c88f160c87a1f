#pragma once

#include "base/ddi.h"

namespace quillo::host {

/// A transform with the public XFORMOBJ in front.
class XformObject : public XFORMOBJ {
 public:
  explicit XformObject(const XFORML& matrix) : XFORMOBJ{}, matrix_(matrix) {}
  explicit XformObject(const XFORM& matrix);

  const XFORML& Matrix() const { return matrix_; }
  /// GX_IDENTITY, GX_OFFSET, GX_SCALE (with or without an offset) or GX_GENERAL.
  ULONG Complexity() const;

 private:
  XFORML matrix_;
};

}  // namespace quillo::host
