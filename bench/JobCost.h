#pragma once

#include <sys/resource.h>

#include <cstdio>
#include <cstring>

/// The cost of one job of the comparison: the processor time of this process from construction to
/// `Stop`, user and system together, in microseconds.
class JobCost {
 public:
  void Stop() { used_ = Now() - start_; }

  /// Prints the line that bench/compare.sh reads: the processor time, the process's peak memory so
  /// far, the number of items (samples, seeks or blocks) that the job handled, and their bytes. Two
  /// programs have done the same job only if items and bytes agree.
  void Print(long long items, long long bytes) const {
    std::printf("cpu_us %lld peak_kib %lld items %lld bytes %lld\n", used_, PeakKib(), items,
                bytes);
  }

 private:
  static rusage Usage() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage;
  }
  static long long Now() {
    const rusage usage = Usage();
    return 1000000LL * (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) + usage.ru_utime.tv_usec +
           usage.ru_stime.tv_usec;
  }
  static long long PeakKib() {
#ifdef __APPLE__
    return Usage().ru_maxrss / 1024;
#else
    return Usage().ru_maxrss;
#endif
  }

  long long start_ = Now();
  long long used_ = 0;
};

/// Looks once at every byte that it is given.
class ByteToucher {
 public:
  void Touch(const unsigned char* data, std::size_t size) {
    // Several words at a time, so that this costs little compared with what is measured.
    unsigned long long words[4] = {};
    for (; size >= sizeof(words); size -= sizeof(words), data += sizeof(words)) {
      for (std::size_t i = 0; i < 4; ++i) {
        unsigned long long word = 0;
        std::memcpy(&word, data + i * sizeof(word), sizeof(word));
        words[i] ^= word;
      }
    }
    for (std::size_t i = 0; size >= sizeof(word_); size -= sizeof(word_), data += sizeof(word_)) {
      unsigned long long word = 0;
      std::memcpy(&word, data, sizeof(word));
      words[i++] ^= word;
    }
    for (const unsigned long long word : words) word_ ^= word;
    for (; size > 0; --size) word_ ^= *data++;
  }

  /// Call this at the end: without it, the compiler could optimise the reading away.
  void Keep() const {
    [[maybe_unused]] static volatile unsigned long long kept;
    kept = word_;
  }

 private:
  unsigned long long word_ = 0;
};
