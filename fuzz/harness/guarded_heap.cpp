#include "fuzz/harness/guarded_heap.h"

#include "base/windows.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <unordered_map>

#include "fuzz/harness/interposer.h"

namespace quillo::harness {
namespace {

constexpr size_t kPage = 4096;
constexpr size_t kAlignment = 16;  // of blocks of a heap
constexpr unsigned char kFill = 0xA5;

struct Block {
  HANDLE heap;
  size_t size;
  char* pages;
};
std::unordered_map<void*, Block> blocks;

size_t Aligned(size_t size) { return (size + kAlignment - 1) / kAlignment * kAlignment; }

void Release(std::unordered_map<void*, Block>::iterator at) {
  const auto* bytes = static_cast<const unsigned char*>(at->first);
  const size_t size = at->second.size;
  // Written beyond its end: ends as a write to the guard page does.
  if (!std::all_of(bytes + size, bytes + Aligned(size), [](auto b) { return b == kFill; })) {
    RaiseException(EXCEPTION_ARRAY_BOUNDS_EXCEEDED, 0, 0, nullptr);
  }
  VirtualFree(at->second.pages, 0, MEM_RELEASE);
  blocks.erase(at);
}

void* WINAPI GuardedAlloc(HANDLE heap, DWORD flags, SIZE_T size) {
  const size_t pages = (Aligned(size) + kPage - 1) / kPage * kPage;
  auto* first = static_cast<char*>(
      VirtualAlloc(nullptr, pages + kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
  if (first == nullptr) return nullptr;
  DWORD before = 0;
  VirtualProtect(first + pages, kPage, PAGE_NOACCESS, &before);
  char* block = first + pages - Aligned(size);
  std::memset(block + size, kFill, Aligned(size) - size);
  if ((flags & HEAP_ZERO_MEMORY) == 0) std::memset(block, kFill, std::min(size, kPage));
  blocks[block] = {heap, size, first};
  return block;
}

BOOL WINAPI GuardedFree(HANDLE heap, DWORD, void* block) {
  if (block == nullptr) return TRUE;
  const auto at = blocks.find(block);
  if (at == blocks.end() || at->second.heap != heap) {
    RaiseException(STATUS_HEAP_CORRUPTION, 0, 0, nullptr);
    return FALSE;
  }
  Release(at);
  return TRUE;
}

void* WINAPI GuardedReAlloc(HANDLE heap, DWORD flags, void* block, SIZE_T size) {
  void* grown = GuardedAlloc(heap, flags, size);
  if (grown == nullptr) return nullptr;
  std::memcpy(grown, block, std::min(size, blocks.at(block).size));
  GuardedFree(heap, 0, block);
  return grown;
}

BOOL WINAPI GuardedDestroy(HANDLE heap) {
  for (auto at = blocks.begin(); at != blocks.end();) {
    const auto block = at++;
    if (block->second.heap == heap) Release(block);
  }
  return HeapDestroy(heap);
}

}  // namespace

void GuardHeap() {
  interposer.Replace("HeapAlloc", &GuardedAlloc);
  interposer.Replace("HeapReAlloc", &GuardedReAlloc);
  interposer.Replace("HeapFree", &GuardedFree);
  interposer.Replace("HeapDestroy", &GuardedDestroy);
}

void* AllocateGuarded(size_t size) { return GuardedAlloc(nullptr, 0, size); }
void FreeGuarded(void* block) { GuardedFree(nullptr, 0, block); }

size_t GuardedBlocks() { return blocks.size(); }

}  // namespace quillo::harness
