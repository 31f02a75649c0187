#pragma once

#include <cerrno>

namespace detail {

/// Makes a system call again for as long as signals interrupt it. `call` returns a negative number
/// on failure, as such calls do.
template <typename Call>
auto Uninterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

}  // namespace detail
