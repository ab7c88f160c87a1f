// The client's interfaces as the IDL compiler declares them for C: their tables are structs there.
#define CINTERFACE
#include "base/windows.h"

#include <cstddef>

#include "interface/quillo.h"

namespace {

constexpr size_t kSlot = sizeof(void*);

#define EXPECT_SLOT(interface, method, slot) \
  static_assert(offsetof(interface##Vtbl, method) == (slot)*kSlot)

EXPECT_SLOT(IQuilloClient, Reserved7, 7);
EXPECT_SLOT(IQuilloClient, NotifyFontsFile, 8);
EXPECT_SLOT(IQuilloClient, NotifyJobStart, 9);
EXPECT_SLOT(IQuilloClient, NotifyDocumentEnd, 10);
EXPECT_SLOT(IQuilloClient, NotifyPageStart, 11);
EXPECT_SLOT(IQuilloClient, NotifyPage, 12);
EXPECT_SLOT(IQuilloClient, NotifyJobEnd, 13);
EXPECT_SLOT(IQuilloClient, NotifyEmbeddedFont, 14);
EXPECT_SLOT(IQuilloClient, NotifyError, 15);
EXPECT_SLOT(IQuilloClient, GetPageObject, 16);
static_assert(sizeof(IQuilloClientVtbl) == 17 * kSlot);

EXPECT_SLOT(IQuilloPage, SetFile, 7);
EXPECT_SLOT(IQuilloPage, SetWidth, 10);
EXPECT_SLOT(IQuilloPage, SetHeight, 12);
EXPECT_SLOT(IQuilloPage, SetMode, 13);
EXPECT_SLOT(IQuilloPage, SetResolutionX, 15);
EXPECT_SLOT(IQuilloPage, SetResolutionY, 17);
static_assert(sizeof(IQuilloPageVtbl) == 18 * kSlot);

}  // namespace
