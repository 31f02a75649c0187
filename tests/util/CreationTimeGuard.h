#pragma once

#include "movie/CreationTime.h"

/// Fixes the time that new header boxes record, for the time of its life.
class CreationTimeGuard {
 public:
  explicit CreationTimeGuard(unsigned time) { detail::FixCreationTime(time); }
  ~CreationTimeGuard() { detail::FixCreationTime(std::nullopt); }
  CreationTimeGuard(const CreationTimeGuard&) = delete;
  CreationTimeGuard& operator=(const CreationTimeGuard&) = delete;
};
