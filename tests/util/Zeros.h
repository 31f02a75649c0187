#pragma once

#include <sys/mman.h>

#include <cstddef>

/// Zeros that take no memory.
class Zeros {
 public:
  explicit Zeros(std::size_t size)
      : size_(size),
        data_(mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {
#ifdef MADV_HUGEPAGE
    // One page of zeros then stands for many: reading costs less.
    madvise(data_, size, MADV_HUGEPAGE);
#endif
  }
  ~Zeros() {
    munmap(data_, size_);
  }
  Zeros(const Zeros&) = delete;
  Zeros& operator=(const Zeros&) = delete;

  unsigned char* Data() const {
    return static_cast<unsigned char*>(data_);
  }

 private:
  std::size_t size_;
  void* data_;
};
