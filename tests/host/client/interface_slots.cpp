// The client's interfaces as the IDL compiler declares them for C: their tables are structs there.
// Clients in the field are built on these slots.
#define CINTERFACE
#include "base/windows.h"

#include <cstddef>

#include "interface/quillo.h"

namespace {

#define CLIENT_SLOT(method) (offsetof(IQuilloClientVtbl, method) / sizeof(void*))
#define PAGE_SLOT(method) (offsetof(IQuilloPageVtbl, method) / sizeof(void*))

static_assert(CLIENT_SLOT(Reserved7) == 7 && CLIENT_SLOT(NotifyFontsFile) == 8 &&
              CLIENT_SLOT(NotifyJobStart) == 9 && CLIENT_SLOT(NotifyDocumentEnd) == 10 &&
              CLIENT_SLOT(NotifyPageStart) == 11 && CLIENT_SLOT(NotifyPage) == 12 &&
              CLIENT_SLOT(NotifyJobEnd) == 13 && CLIENT_SLOT(NotifyEmbeddedFont) == 14 &&
              CLIENT_SLOT(NotifyError) == 15 && CLIENT_SLOT(GetPageObject) == 16 &&
              sizeof(IQuilloClientVtbl) == 17 * sizeof(void*));
static_assert(PAGE_SLOT(SetFile) == 7 && PAGE_SLOT(SetWidth) == 10 && PAGE_SLOT(SetHeight) == 12 &&
              PAGE_SLOT(SetMode) == 13 && PAGE_SLOT(SetResolutionX) == 15 &&
              PAGE_SLOT(SetResolutionY) == 17 && sizeof(IQuilloPageVtbl) == 18 * sizeof(void*));

}  // namespace
