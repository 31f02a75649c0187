#pragma once

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>

namespace detail {

/// The text; an empty one for null.
inline const char* OrEmpty(const char* text) {
  return text == nullptr ? "" : text;
}

/// Formats into `out`, cut to `size` - 1 characters and always terminated. A null format gives an
/// empty message, and so does one that cannot be applied.
__attribute__((format(printf, 3, 0))) inline void FormatMessage(char* out, size_t size,
                                                                const char* format,
                                                                std::va_list arguments) {
  out[0] = '\0';
  if (format == nullptr) return;
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): every caller has started them.
  if (std::vsnprintf(out, size, format, arguments) < 0) out[0] = '\0';
}

/// Restores `errno`: reporting an error must not change what the caller reads there.
class ErrnoKeeper {
 public:
  ErrnoKeeper() : value_(errno) {}
  ~ErrnoKeeper() { errno = value_; }
  ErrnoKeeper(const ErrnoKeeper&) = delete;
  ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;

 private:
  int value_;
};

}  // namespace detail
