#include "host/client/fonts_file.h"

#include <objbase.h>

#include "base/com_owners.h"

namespace quillo::host {

HRESULT ReadFontsFile(const wchar_t* path, const std::function<void(const LOGFONTW&)>& font) {
  static_assert(sizeof(LOGFONTW) == 92);
  ComPtr<IStorage> storage;
  HRESULT result = StgOpenStorage(path, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, nullptr, 0,
                                  storage.Receive());
  if (FAILED(result)) return result;
  ComPtr<IStream> stream;
  result = storage->OpenStream(L"FONTS OPTIONS", nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0,
                               stream.Receive());
  if (FAILED(result)) return result;
  for (;;) {
    LOGFONTW entry;
    ULONG read = 0;
    result = stream->Read(&entry, sizeof entry, &read);
    if (FAILED(result)) return result;
    if (read != sizeof entry) return S_OK;
    entry.lfFaceName[LF_FACESIZE - 1] = L'\0';
    font(entry);
  }
}

}  // namespace quillo::host
