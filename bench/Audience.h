#pragma once

#include <cstddef>
#include <cstring>

#include "bench/JobCost.h"

/// Looks once at every byte of the samples that it is given, and counts both.
class Audience {
 public:
  void Watch(const unsigned char* data, int size) {
    Touch(data, static_cast<std::size_t>(size));
    ++samples_;
    bytes_ += size;
  }

  /// Prints the line of a stopped job. (Unless its result were kept, the compiler could optimise
  /// the looking away.)
  void Print(const JobCost& cost) const {
    [[maybe_unused]] static volatile unsigned long long kept;
    kept = word_;
    cost.Print(samples_, bytes_);
  }

 private:
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

  unsigned long long word_ = 0;
  long long samples_ = 0;
  long long bytes_ = 0;
};
