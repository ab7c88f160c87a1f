#include "host/app_protocol/app_protocol.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace quillo::app {
namespace {

std::span<const std::byte> BytesOf(std::string_view text) {
  return std::as_bytes(std::span(text.data(), text.size()));
}

std::string TextOf(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

TEST(AppProtocol, Messages_ComeAsTheyWereSentAndAtNoOtherLength) {
  std::vector<std::byte> room(kMaxRequestBytes);
  const auto sent =
      PutRequest(room, {RequestKind::kEscape, 7, 9, 0, 0}, BytesOf("mode"), BytesOf("input"));
  const auto request = ParseRequest(sent);
  ASSERT_TRUE(request);
  EXPECT_EQ(request->header.number, 7u);
  EXPECT_EQ(request->header.room, 9u);
  EXPECT_EQ(TextOf(request->mode) + "," + TextOf(request->data), "mode,input");

  std::vector<std::byte> answer_room(kMaxAnswerBytes);
  const auto answered = PutAnswer(answer_room, -3, BytesOf("output"));
  const auto answer = ParseAnswer(answered);
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->result, -3);
  EXPECT_EQ(TextOf(answer->data), "output");

  // Each in a block of its own size, so that a read beyond it is seen.
  for (const auto& [message, is_request] : {std::pair(sent, true), std::pair(answered, false)}) {
    for (size_t size = 0; size <= message.size() + 1; ++size) {
      std::vector<std::byte> cut(message.begin(), message.begin() + std::min(size, message.size()));
      cut.resize(size);
      const bool read = is_request ? ParseRequest(cut).has_value() : ParseAnswer(cut).has_value();
      EXPECT_EQ(read, size == message.size()) << size;
    }
  }
}

TEST(AppProtocol, Headers_AreHeldToTheirLimits) {
  constexpr uint32_t kMode = kMaxModeBytes, kData = kMaxDataBytes, kHuge = 0xFFFFFFFF;
  const auto header = [](uint32_t kind, uint32_t room, uint32_t mode, uint32_t data) {
    return RequestHeader{static_cast<RequestKind>(kind), 0, room, mode, data};
  };
  const struct {
    RequestHeader header;
    size_t parts;
    bool good;
  } kCases[] = {
      {header(1, kData, kMode, kData), kMode + kData, true},
      {header(1, kData + 1, 0, 0), 0, false},
      {header(1, 0, kMode + 1, 0), kMode + 1, false},
      {header(1, 0, 0, kData + 1), kData + 1, false},
      {header(1, 0, kHuge, 1), 0, false},  // the sum of the sizes wraps
      {header(0, 0, 0, 0), 0, false},
      {header(7, 0, 0, 0), 0, true},
      {header(8, 0, 0, 0), 0, false},
  };
  for (const auto& c : kCases) {
    std::vector<std::byte> message(sizeof c.header + c.parts);
    std::memcpy(message.data(), &c.header, sizeof c.header);
    EXPECT_EQ(ParseRequest(message).has_value(), c.good) << &c - kCases;
  }
  std::vector<std::byte> room(sizeof(RequestHeader) + 3);
  const std::vector<std::byte> part(kMaxDataBytes + 1);
  EXPECT_TRUE(PutRequest(room, header(1, 0, 0, 0), {}, BytesOf("four")).empty());
  room.resize(2 * kMaxRequestBytes);
  EXPECT_TRUE(PutRequest(room, header(1, 0, 0, 0), part, {}).empty());
  EXPECT_TRUE(PutRequest(room, header(1, 0, 0, 0), {}, part).empty());
  EXPECT_TRUE(PutAnswer(room, 1, part).empty());
}

}  // namespace
}  // namespace quillo::app
