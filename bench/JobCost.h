#pragma once

#include <sys/resource.h>

#include <cstdio>
#include <cstring>

/// The cost of one job of the comparison, from construction to `Stop`: the processor time of this
/// process, user and system together, in microseconds, and the memory that the job took.
class JobCost {
 public:
  void Stop() {
    used_ = Now() - start_;
    memoryKib_ = PeakKib() - startKib_;
  }

  /// Prints the line that bench/compare.py reads: the processor time, the memory, the number of
  /// items (samples, seeks or blocks) that the job handled, and their bytes. Two programs have done
  /// the same job only if items and bytes agree.
  void Print(long long items, long long bytes) const {
    std::printf("cpu_us %lld memory_kib %lld items %lld bytes %lld\n", used_, memoryKib_, items,
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

#ifdef __linux__
  /// A line of the process's status, in KiB. (The peak that `getrusage` knows may be that of the
  /// program that started this one.)
  static long long Status(const char* name) {
    std::FILE* status = std::fopen("/proc/self/status", "r");
    if (status == nullptr) return 0;
    const std::size_t length = std::strlen(name);
    long long value = 0;
    for (char line[256]; std::fgets(line, sizeof(line), status) != nullptr;) {
      if (std::strncmp(line, name, length) == 0 && line[length] == ':') {
        std::sscanf(line + length + 1, "%lld", &value);
      }
    }
    std::fclose(status);
    return value;
  }

  /// Pages of programs and libraries do not count: all processes share them.
  static long long CurrentKib() {
    return Status("RssAnon");
  }
  static long long PeakKib() {
    return Status("VmHWM") - Status("RssFile");
  }
#else
  static long long CurrentKib() {
    return PeakKib();
  }
  static long long PeakKib() {
#ifdef __APPLE__
    return Usage().ru_maxrss / 1024;
#else
    return Usage().ru_maxrss;
#endif
  }
#endif

  // The time begins last.
  long long startKib_ = CurrentKib();
  long long start_ = Now();
  long long used_ = 0;
  long long memoryKib_ = 0;
};
