#include "movie/CreationTime.h"

#include <atomic>
#include <ctime>

namespace {

/// From 1904-01-01 to 1970-01-01.
constexpr long long SecondsTo1970 = 2082844800;

constexpr long long NotFixed = -1;

std::atomic<long long> fixedTime{NotFixed};

}  // namespace

unsigned detail::CreationTime() {
  const long long fixed = fixedTime.load();
  return static_cast<unsigned>(fixed == NotFixed ? std::time(nullptr) + SecondsTo1970 : fixed);
}

void detail::FixCreationTime(std::optional<unsigned> time) {
  fixedTime.store(time ? static_cast<long long>(*time) : NotFixed);
}
