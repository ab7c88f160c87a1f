#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace quillo::host {

/// Objects of one kind by opaque handles. No handle is ever reused. For any thread; an object
/// belongs to whoever has its handle.
template <typename Handle, typename Object>
class HandleTable {
 public:
  Handle Add(std::unique_ptr<Object> object) {
    const std::lock_guard lock(mutex_);
    const uintptr_t key = next_;
    objects_.emplace(key, std::move(object));
    next_ += 4;  // like Windows' handles, whose low bits are free
    return reinterpret_cast<Handle>(key);
  }
  /// Null for a handle that is not in the table.
  Object* Find(Handle handle) const {
    const std::lock_guard lock(mutex_);
    const auto found = objects_.find(reinterpret_cast<uintptr_t>(handle));
    return found == objects_.end() ? nullptr : found->second.get();
  }
  /// Destroys the object; false for a handle that is not in the table.
  bool Remove(Handle handle) {
    const std::lock_guard lock(mutex_);
    return objects_.erase(reinterpret_cast<uintptr_t>(handle)) != 0;
  }
  size_t Size() const {
    const std::lock_guard lock(mutex_);
    return objects_.size();
  }

 private:
  mutable std::mutex mutex_;
  std::map<uintptr_t, std::unique_ptr<Object>> objects_;
  uintptr_t next_ = 0x1000;
};

}  // namespace quillo::host
