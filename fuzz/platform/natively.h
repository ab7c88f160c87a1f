#pragma once

// Included first in everything that the fuzz targets compile for Windows' interface: what Wine's
// headers lack of the platform's compiler.
#include <stddef.h>

extern "C" {
int _wcsicmp(const wchar_t* a, const wchar_t* b);
int _wcsnicmp(const wchar_t* a, const wchar_t* b, size_t size);
}
