#include "job/buffer.h"

#include <algorithm>

#include "base/arithmetic.h"
#include "base/system_owners.h"

namespace quillo {

CBuffer::~CBuffer() {
  if (base_ != nullptr) HeapFree(heap_, 0, base_);
}

int32_t CBuffer::Reserve(uint32_t size) {
  if (base_ == nullptr) {
    const uint32_t capacity = std::max(size, growth_step_);
    base_ = static_cast<std::byte*>(HeapAlloc(heap_, 0, capacity));
    if (base_ == nullptr) return 0;
    capacity_ = capacity;
    write_ = base_;
    used_ = total_written_ = read_position_ = 0;
    return 1;
  }
  if (size <= capacity_ - used_) return 1;

  // The doubled step is kept even when the growth fails.
  growth_step_ = std::max(growth_step_, growth_step_ * 2);
  const auto grown = CheckedAdd(capacity_, size);
  if (!grown) return 0;
  const uint32_t capacity = std::max(*grown, growth_step_);
  void* storage = HeapReAlloc(heap_, 0, base_, capacity);
  if (storage == nullptr) return 0;
  base_ = static_cast<std::byte*>(storage);
  write_ = base_ + used_;
  capacity_ = capacity;
  return 1;
}

uint32_t CBuffer::Append(const void* bytes, uint32_t size) {
  if (Reserve(size) == 0) return 0;
  if (size > 0) std::memcpy(write_, bytes, size);
  used_ += size;
  write_ += size;
  total_written_ += size;
  return size;
}

void CBuffer::Reset() {
  write_ = base_;
  used_ = total_written_ = read_position_ = 0;
}

uint32_t CBuffer::WriteToFile(const wchar_t* path) const {
  const KernelHandle file(
      CreateFileW(path, GENERIC_ALL, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return 0;
  DWORD written = 0;
  WriteFile(file.Get(), base_, total_written_, &written, nullptr);
  FlushFileBuffers(file.Get());
  return written;
}

}  // namespace quillo
