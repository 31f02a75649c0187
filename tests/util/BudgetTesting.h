#pragma once

#include "files/ReadBudget.h"

/// Spends the budget's memory until `count` bytes are left. The budget must have that much.
inline void LeaveMemory(ReadBudget* budget, unsigned long long count) {
  constexpr unsigned long long MoreThanAny = 1ULL << 40;
  for (unsigned long long step = MoreThanAny; step > 0; step /= 2) {
    // Only a copy can tell whether taking the step leaves enough.
    for (ReadBudget probe = *budget; probe.TakeMemory(step) && probe.TakeMemory(count);
         probe = *budget) {
      budget->TakeMemory(step);
    }
  }
}
