#pragma once

#include "host/emf_format/geometry.h"
#include "host/emf_format/payload_reader.h"
#include "host/emf_format/transform.h"

// Fields that several record types share.
namespace quillo::host::emf {

/// Most drawing records begin with the drawing's bounds, which nothing here needs.
inline void SkipBounds(PayloadReader& record) { record.Skip(sizeof(RectL)); }

/// An XFORM: six floats.
inline Transform ReadTransform(PayloadReader& record) {
  Transform map;
  for (double* value : {&map.m11, &map.m12, &map.m21, &map.m22, &map.dx, &map.dy}) {
    *value = record.Read<float>();
  }
  return map;
}

}  // namespace quillo::host::emf
