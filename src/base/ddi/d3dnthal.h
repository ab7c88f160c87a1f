#pragma once

// Included by winddi.h; a printer driver needs nothing of it.
