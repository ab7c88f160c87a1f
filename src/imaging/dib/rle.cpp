#include "imaging/dib/rle.h"

#include <algorithm>
#include <cstring>

#include "imaging/pixels/result.h"

namespace quillo::imaging {
namespace {

constexpr uint8_t SwapNibbles(uint8_t pair) { return static_cast<uint8_t>(pair << 4 | pair >> 4); }

/// The row under construction, and its number.
class Canvas {
 public:
  Canvas(uint32_t bits, uint32_t width, MutableBytes row, RowStore store)
      : bits_(bits), width_(width), row_(row), store_(store) {}

  [[nodiscard]] uint32_t Row() const { return row_number_; }

  /// `value` is one pixel of 8 bits, or two of 4 bits that alternate.
  void Run(uint32_t count, uint8_t value) {
    const uint32_t length = Clip(count);
    if (bits_ == 8) {
      std::memset(row_.data() + x_, value, length);
    } else {
      RunOfNibbles(length, value);
    }
    x_ += length;
  }

  /// `pixels` has room for `count` pixels, most significant first.
  void Literal(uint32_t count, const std::byte* pixels) {
    const uint32_t length = Clip(count);
    if (bits_ == 8) {
      std::memcpy(row_.data() + x_, pixels, length);
    } else {
      for (uint32_t i = 0; i < length; ++i) {
        const auto pair = static_cast<uint8_t>(pixels[i / 2]);
        SetNibble(x_ + i, i % 2 == 0 ? pair >> 4 : pair & 0xF);
      }
    }
    x_ += length;
  }

  void Skip(uint32_t columns) { x_ += std::min(columns, width_ - x_); }

  /// Stores the row when it has pixels, and goes `rows` down in the same column.
  int Down(uint32_t rows) {
    int result = kSuccess;
    if (touched_) {
      result = store_(row_number_, row_);
      std::memset(row_.data(), 0, row_.size());
      touched_ = false;
    }
    row_number_ += rows;
    return result;
  }

  void ToLineStart() { x_ = 0; }

 private:
  uint32_t Clip(uint32_t count) {
    const uint32_t length = std::min(count, width_ - x_);
    touched_ |= length != 0;
    return length;
  }

  void SetNibble(uint32_t x, int value) {
    std::byte& pair = row_[x / 2];
    const auto low = static_cast<std::byte>(value);
    pair = x % 2 == 0 ? (pair & std::byte{0x0F}) | low << 4 : (pair & std::byte{0xF0}) | low;
  }

  void RunOfNibbles(uint32_t length, uint8_t pair) {
    uint32_t x = x_;
    const uint32_t end = x_ + length;
    if (x % 2 != 0 && x < end) {
      SetNibble(x++, pair >> 4);
      pair = SwapNibbles(pair);
    }
    std::memset(row_.data() + x / 2, pair, (end - x) / 2);
    if ((end - x) % 2 != 0) SetNibble(end - 1, pair >> 4);
  }

  uint32_t bits_;
  uint32_t width_;
  MutableBytes row_;
  RowStore store_;
  uint32_t x_ = 0;
  uint32_t row_number_ = 0;
  bool touched_ = false;
};

enum Escape : uint8_t { kEndOfLine = 0, kEndOfBitmap = 1, kDelta = 2 };

}  // namespace

int ExpandRle(Bytes stream, uint32_t bits, uint32_t width, uint32_t height, MutableBytes scratch,
              RowStore store) {
  if (width == 0) return kSuccess;
  Canvas canvas(bits, width, scratch, store);
  const auto byte = [&stream](size_t at) { return static_cast<uint8_t>(stream[at]); };
  size_t at = 0;
  while (canvas.Row() < height && stream.size() - at >= 2) {
    const uint8_t count = byte(at);
    const uint8_t value = byte(at + 1);
    at += 2;
    if (count != 0) {
      canvas.Run(count, value);
      continue;
    }
    uint32_t rows = 0;
    if (value == kEndOfBitmap) break;
    if (value == kEndOfLine) {
      canvas.ToLineStart();
      rows = 1;
    } else if (value == kDelta) {
      if (stream.size() - at < 2) break;
      canvas.Skip(byte(at));
      rows = byte(at + 1);
      at += 2;
    } else {
      const size_t needed = bits == 8 ? value : (value + 1u) / 2;
      const size_t present = std::min(needed, stream.size() - at);
      const size_t whole = bits == 8 ? present : std::min<size_t>(present * 2, value);
      canvas.Literal(static_cast<uint32_t>(whole), stream.data() + at);
      at += std::min(needed + needed % 2, stream.size() - at);
    }
    if (rows != 0) {
      const int result = canvas.Down(rows);
      if (result != kSuccess) return result;
    }
  }
  return canvas.Row() < height ? canvas.Down(1) : kSuccess;
}

}  // namespace quillo::imaging
