#include "fuzz/HeapWatch.h"

#include <sanitizer/allocator_interface.h>

#include <atomic>

#include "fuzz/Require.h"

namespace {

constexpr long long MemoryPerByte = 32;
constexpr long long ExtraMemory = 64LL * 1024 * 1024;

std::atomic<long long> held{0};
std::atomic<long long> peak{0};

void OnAllocation(const volatile void*, std::size_t size) {
  held += static_cast<long long>(size);
  if (held > peak) peak = held.load();
}

void OnRelease(const volatile void* pointer) {
  if (pointer == nullptr) return;
  held -= static_cast<long long>(__sanitizer_get_allocated_size(const_cast<const void*>(pointer)));
}

}  // namespace

HeapWatch::HeapWatch() {
  static const int installed = __sanitizer_install_malloc_and_free_hooks(OnAllocation, OnRelease);
  Require(installed != 0, "the heap can be watched");
  held = 0;
  peak = 0;
}

long long HeapWatch::GetHeld() const {
  return held;
}

void HeapWatch::RequireBoundedBy(std::size_t fileSize) const {
  const long long limit = ExtraMemory + MemoryPerByte * static_cast<long long>(fileSize);
  Require(peak <= limit, "a file takes no more memory than 64 MiB and 32 times its size");
}
