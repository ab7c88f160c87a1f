#include "job/compound_file.h"

namespace quillo {

HRESULT WriteCompoundFile(const wchar_t* path, const wchar_t* stream_name, const void* data,
                          ULONG size, ComPtr<IStorage>& storage) {
  HRESULT result = StgCreateDocfile(path, STGM_CREATE | STGM_SHARE_EXCLUSIVE | STGM_READWRITE, 0,
                                    storage.Receive());
  if (FAILED(result)) return result;
  ComPtr<IStream> stream;
  result = storage->CreateStream(stream_name, STGM_CREATE | STGM_SHARE_EXCLUSIVE | STGM_WRITE, 0, 0,
                                 stream.Receive());
  ULONG written = 0;
  if (SUCCEEDED(result)) result = stream->Write(data, size, &written);
  if (SUCCEEDED(result) && written != size) result = STG_E_MEDIUMFULL;
  stream.Reset();
  if (SUCCEEDED(result)) return result;
  storage.Reset();
  DeleteFileW(path);
  return result;
}

}  // namespace quillo
