#pragma once

// The one place that includes Windows' main header, with its definitions under control.
// (UNICODE, NOMINMAX and WIN32_LEAN_AND_MEAN come from the build.)
#include <windows.h>
