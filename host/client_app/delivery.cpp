#include "host/client_app/delivery.h"

#include "base/windows.h"

#include "host/base/failure.h"
#include "host/base/file_name.h"
#include "host/base/text.h"

namespace quillo::host {

namespace {

constexpr int kMaxNumber = 9999;

}  // namespace

std::filesystem::path Deliver(const std::filesystem::path& file,
                              const std::filesystem::path& folder, std::wstring_view document) {
  const std::wstring name = FileNameFor(document);
  for (int number = 1; number <= kMaxNumber; ++number) {
    const std::wstring numbered =
        number == 1 ? name : name + L" (" + std::to_wstring(number) + L")";
    auto target = folder / (numbered + file.extension().wstring());
    if (MoveFileExW(file.c_str(), target.c_str(), MOVEFILE_COPY_ALLOWED)) return target;
    const DWORD error = GetLastError();
    if (error != ERROR_ALREADY_EXISTS && error != ERROR_FILE_EXISTS) {
      throw ResultFailure("cannot write " + ToUtf8(target.wstring()), "MoveFileEx", error);
    }
  }
  throw ResultFailure("cannot write " + ToUtf8((folder / name).wstring()), "MoveFileEx",
                      ERROR_ALREADY_EXISTS);
}

}  // namespace quillo::host
