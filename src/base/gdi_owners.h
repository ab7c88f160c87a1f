#pragma once

#include "base/windows.h"

#include "base/owner.h"

namespace quillo {

template <typename Handle>
struct GdiObjectTraits {
  using Type = Handle;
  static constexpr Type kNull = nullptr;
  static void Release(Type object) { DeleteObject(object); }
};

using Pen = Owner<GdiObjectTraits<HPEN>>;
using Brush = Owner<GdiObjectTraits<HBRUSH>>;
using Font = Owner<GdiObjectTraits<HFONT>>;
using Bitmap = Owner<GdiObjectTraits<HBITMAP>>;
using Palette = Owner<GdiObjectTraits<HPALETTE>>;
using Region = Owner<GdiObjectTraits<HRGN>>;

/// A DC from CreateDC or CreateCompatibleDC.
struct CreatedDcTraits {
  using Type = HDC;
  static constexpr Type kNull = nullptr;
  static void Release(Type dc) { DeleteDC(dc); }
};
using CreatedDc = Owner<CreatedDcTraits>;

/// The screen's DC from GetDC(NULL).
struct ScreenDcTraits {
  using Type = HDC;
  static constexpr Type kNull = nullptr;
  static void Release(Type dc) { ReleaseDC(nullptr, dc); }
};
using ScreenDc = Owner<ScreenDcTraits>;

/// A metafile handle; deleting it leaves the file on disk.
struct EnhMetafileTraits {
  using Type = HENHMETAFILE;
  static constexpr Type kNull = nullptr;
  static void Release(Type metafile) { DeleteEnhMetaFile(metafile); }
};
using EnhMetafile = Owner<EnhMetafileTraits>;

/// A metafile DC. Destroying it discards the metafile; Close() returns it.
struct MetafileDcTraits {
  using Type = HDC;
  static constexpr Type kNull = nullptr;
  static void Release(Type dc) { DeleteEnhMetaFile(CloseEnhMetaFile(dc)); }
};
class MetafileDc : public Owner<MetafileDcTraits> {
 public:
  using Owner::Owner;
  /// Ends the recording. Empty when GDI could not finish the metafile.
  [[nodiscard]] EnhMetafile Close() { return EnhMetafile(CloseEnhMetaFile(Detach())); }
};

/// Selects an object into a DC and restores the previous one at the end of the scope.
class SelectScope {
 public:
  SelectScope(HDC dc, HGDIOBJ object) : dc_(dc), previous_(SelectObject(dc, object)) {}
  ~SelectScope() {
    if (previous_ != nullptr) SelectObject(dc_, previous_);
  }
  SelectScope(const SelectScope&) = delete;
  SelectScope& operator=(const SelectScope&) = delete;
  explicit operator bool() const { return previous_ != nullptr; }

 private:
  HDC dc_;
  HGDIOBJ previous_;
};

}  // namespace quillo
