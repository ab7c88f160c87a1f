#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <optional>
#include <span>

// What the recorder in a printing program and the print host say to each other, over a pipe that
// keeps messages apart: the program asks, the host answers each request with one answer. Both ends
// treat the other's bytes as hostile.
namespace quillo::app {

/// The environment variable with the name of the host's pipe.
inline constexpr wchar_t kPipeVariable[] = L"QUILLO_APP_PIPE";
/// The version of Wine that the recorder knows, as its functions report it.
inline constexpr char kWineVersion[] = "8.0";

enum class RequestKind : uint32_t {
  kCapabilities = 1,  // of a device with this mode; answered with Capabilities
  kEscape,            // `number` is the escape, `data` its input; answered with its output
  kStartDocument,     // `data` is the name, UTF-16; answered with the file that pages are left in
  kPage,              // lies in that file, and is its owner's again when this is answered
  kEndDocument,
  kAbortDocument,
  kOtherWine,  // `data` is the version of this Wine, on which nothing can be recorded
};

struct RequestHeader {
  RequestKind kind;
  uint32_t number;      // kEscape
  uint32_t room;        // kEscape: bytes of output that the program takes
  uint32_t mode_bytes;  // a DEVMODEW with its private part; 0: the printer's own
  uint32_t data_bytes;
};

/// A result of 0 or less is a refusal. kStartDocument: the job's number.
struct AnswerHeader {
  int32_t result;
  uint32_t data_bytes;
};

inline constexpr size_t kMaxModeBytes = 0x10000;
inline constexpr size_t kMaxDataBytes = 0x10000;
inline constexpr size_t kMaxRequestBytes = sizeof(RequestHeader) + kMaxModeBytes + kMaxDataBytes;
inline constexpr size_t kMaxAnswerBytes = sizeof(AnswerHeader) + kMaxDataBytes;

/// What GetDeviceCaps answers. Pixels, and whole millimetres.
struct Capabilities {
  int32_t width_millimetres, height_millimetres;  // printable
  int32_t width, height;                          // printable
  int32_t sheet_width, sheet_height;
  int32_t left, top;  // from the sheet's corner to the printable area's
  int32_t dpi_x, dpi_y;
  int32_t bits_per_pixel, planes, colours;
  int32_t aspect_x, aspect_y, aspect_xy;
  int32_t text_capabilities;
};

struct Request {
  RequestHeader header;
  std::span<const std::byte> mode;
  std::span<const std::byte> data;
};

struct Answer {
  int32_t result;
  std::span<const std::byte> data;
};

namespace detail {

template <typename Header>
std::optional<Header> TakeHeader(std::span<const std::byte> message) {
  Header header;
  if (message.size() < sizeof header) return std::nullopt;
  std::memcpy(&header, message.data(), sizeof header);
  return header;
}

/// Writes the header and the parts into `room`; nothing where they do not fit.
template <typename Header>
std::span<const std::byte> Put(std::span<std::byte> room, const Header& header,
                               std::initializer_list<std::span<const std::byte>> parts) {
  size_t size = 0;
  const auto append = [&](const void* bytes, size_t count) {
    if (count > room.size() - size) return false;
    if (count != 0) std::memcpy(room.data() + size, bytes, count);
    size += count;
    return true;
  };
  if (!append(&header, sizeof header)) return {};
  for (const auto part : parts) {
    if (!append(part.data(), part.size())) return {};
  }
  return room.first(size);
}

}  // namespace detail

/// The message as a request into its bytes. Nothing unless it is exactly as long as its parts,
/// which are within the limits, and of a known kind.
inline std::optional<Request> ParseRequest(std::span<const std::byte> message) {
  const auto header = detail::TakeHeader<RequestHeader>(message);
  if (!header || header->mode_bytes > kMaxModeBytes || header->data_bytes > kMaxDataBytes ||
      header->room > kMaxDataBytes ||
      message.size() != sizeof *header + header->mode_bytes + header->data_bytes ||
      header->kind < RequestKind::kCapabilities || header->kind > RequestKind::kOtherWine) {
    return std::nullopt;
  }
  const auto parts = message.subspan(sizeof *header);
  return Request{*header, parts.first(header->mode_bytes), parts.subspan(header->mode_bytes)};
}

/// Writes a request into `room` and fills in its sizes. Nothing where a part is too long.
inline std::span<const std::byte> PutRequest(std::span<std::byte> room, RequestHeader header,
                                             std::span<const std::byte> mode,
                                             std::span<const std::byte> data) {
  if (mode.size() > kMaxModeBytes || data.size() > kMaxDataBytes) return {};
  header.mode_bytes = static_cast<uint32_t>(mode.size());
  header.data_bytes = static_cast<uint32_t>(data.size());
  return detail::Put(room, header, {mode, data});
}

/// The message as an answer into its bytes. Nothing unless it is exactly as long as it declares.
inline std::optional<Answer> ParseAnswer(std::span<const std::byte> message) {
  const auto header = detail::TakeHeader<AnswerHeader>(message);
  if (!header || header->data_bytes > kMaxDataBytes ||
      message.size() != sizeof *header + header->data_bytes) {
    return std::nullopt;
  }
  return Answer{header->result, message.subspan(sizeof *header)};
}

/// Writes an answer into `room`. Nothing where the data is too long.
inline std::span<const std::byte> PutAnswer(std::span<std::byte> room, int32_t result,
                                            std::span<const std::byte> data) {
  if (data.size() > kMaxDataBytes) return {};
  return detail::Put(room, AnswerHeader{result, static_cast<uint32_t>(data.size())}, {data});
}

}  // namespace quillo::app
