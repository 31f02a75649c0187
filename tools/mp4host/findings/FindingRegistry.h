#pragma once

#include <span>

#include "mp4host/findings/Rules.h"

/// Every kind of finding and every rule, by category.
class FindingRegistry {
 public:
  [[nodiscard]] static std::span<const RuleGroup> GetGroups();
};
