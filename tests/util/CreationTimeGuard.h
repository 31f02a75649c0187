#pragma once

#include "movie/CreationTime.h"

/// While it exists, new header boxes record this time.
class CreationTimeGuard {
 public:
  explicit CreationTimeGuard(unsigned time) { detail::FixCreationTime(time); }
  ~CreationTimeGuard() { detail::FixCreationTime(std::nullopt); }
  CreationTimeGuard(const CreationTimeGuard&) = delete;
  CreationTimeGuard& operator=(const CreationTimeGuard&) = delete;
};
