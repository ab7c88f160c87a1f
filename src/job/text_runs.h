#pragma once

#include "base/windows.h"

#include <cstdint>
#include <oaidl.h>

#include "playback/heap_list.h"

namespace quillo {

/// Hands the glyph counts of the page's text runs to the page object's property "TextRuns", as a
/// one-dimensional array of VT_I4. Does nothing when the object lacks the property; when it
/// refuses the array, a message box shows why.
void HandOverTextRuns(IDispatch& page, const HeapList<uint32_t>& run_list);

}  // namespace quillo
