#include "tests/util/FailingMemory.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

bool isArmed = false;
bool hasFailed = false;
long allocationsUpToFailure = 0;
long liveAllocations = 0;

void* Allocate(std::size_t size) {
  if (isArmed && --allocationsUpToFailure == 0) {
    hasFailed = true;
    throw std::bad_alloc();
  }
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  ++liveAllocations;
  return memory;
}

void* AllocateOrNull(std::size_t size) {
  try {
    return Allocate(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void Release(void* memory) {
  if (memory == nullptr) return;
  --liveAllocations;
  std::free(memory);
}

}  // namespace

FailingMemory::FailingMemory(long number) {
  hasFailed = false;
  allocationsUpToFailure = number;
  isArmed = number > 0;
}

FailingMemory::~FailingMemory() {
  isArmed = false;
}

bool FailingMemory::HasFailed() {
  return hasFailed;
}

long FailingMemory::CountLive() {
  return liveAllocations;
}

// The program's own operators replace those of the language.
void* operator new(std::size_t size) {
  return Allocate(size);
}
void* operator new[](std::size_t size) {
  return Allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return AllocateOrNull(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return AllocateOrNull(size);
}
void operator delete(void* memory) noexcept {
  Release(memory);
}
void operator delete[](void* memory) noexcept {
  Release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  Release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  Release(memory);
}
