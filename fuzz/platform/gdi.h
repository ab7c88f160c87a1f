#pragma once

#include "base/windows.h"

/// Whether every object that was made is deleted.
bool NoObjectsLeft();
