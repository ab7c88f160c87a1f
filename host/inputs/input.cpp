#include "host/inputs/input.h"

#include "base/windows.h"

#include <cstdio>

#include "base/bytes.h"
#include "base/system_owners.h"
#include "host/base/failure.h"
#include "host/inputs/metafile_input.h"
#include "host/inputs/picture_input.h"
#include "host/inputs/text_input.h"
#include "host/plain_text/decode.h"

namespace quillo::host {

namespace {

/// A kind of file: how its content is recognised, and what opens it. `head` is the file's
/// beginning, kHeadBytes at most.
struct InputKind {
  bool (*recognises)(Bytes head);
  std::unique_ptr<PrintInput> (*open)(std::vector<std::byte> content);
};
constexpr size_t kHeadBytes = 256;

constexpr InputKind kKinds[] = {
    {LooksLikeMetafile, OpenMetafile},
    {LooksLikePicture, OpenPicture},
    {LooksLikeText, OpenText},  // last: text may begin with anything
};

[[noreturn]] void RefuseUnreadable(DWORD error) {
  throw UnreadableInput("cannot be read: " + DescribeError(error));
}

/// Refuses a file of which not even text is recognised.
[[noreturn]] void RefuseUnknown(Bytes head) {
  const size_t place = FindNoText(head).value_or(0);
  char byte[100];
  std::snprintf(byte, sizeof byte, "; byte %zu is 0x%02X, which text does not contain", place + 1,
                std::to_integer<unsigned>(head[place]));
  throw UnreadableInput(
      std::string("is not in a supported format: metafile (EMF), picture (PNG, JPEG, BMP, TIFF, "
                  "GIF) or plain text") +
      byte);
}

KernelHandle OpenFile(const std::filesystem::path& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    const DWORD error = GetLastError();
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) {
      throw UnreadableInput("does not exist");
    }
    RefuseUnreadable(error);
  }
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    throw UnreadableInput("is a folder; name the files to print");
  }
  KernelHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
  if (!file) RefuseUnreadable(GetLastError());
  return file;
}

/// Appends the file's next bytes to `content`, up to a size of `size`.
void Read(HANDLE file, std::vector<std::byte>& content, size_t size) {
  constexpr size_t kMaxBytesAtOnce = 64 << 20;
  while (content.size() < size) {
    const size_t begin = content.size();
    const size_t wanted = std::min(size - begin, kMaxBytesAtOnce);
    content.resize(begin + wanted);
    DWORD read = 0;
    if (!ReadFile(file, content.data() + begin, static_cast<DWORD>(wanted), &read, nullptr)) {
      RefuseUnreadable(GetLastError());
    }
    content.resize(begin + read);
    if (read == 0) return;
  }
}

}  // namespace

std::unique_ptr<PrintInput> OpenInput(const std::filesystem::path& path) {
  const KernelHandle file = OpenFile(path);
  LARGE_INTEGER size{};
  if (!GetFileSizeEx(file.Get(), &size)) RefuseUnreadable(GetLastError());
  std::vector<std::byte> content;
  Read(file.Get(), content, kHeadBytes);
  if (content.empty()) throw UnreadableInput("is empty");
  for (const InputKind& kind : kKinds) {
    if (!kind.recognises(content)) continue;
    content.reserve(static_cast<size_t>(size.QuadPart));
    Read(file.Get(), content, static_cast<size_t>(size.QuadPart));
    return kind.open(std::move(content));
  }
  RefuseUnknown(content);
}

}  // namespace quillo::host
