#pragma once

// String numbers of QXRES06X.dll. The resource compiler reads this file too.
#define IDS_ERROR 1
#define IDS_NO_MORE_CUSTOM_PAPERS 2
