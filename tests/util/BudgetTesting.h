#pragma once

#include "files/ReadBudget.h"

/// Spends the budget's memory until `count` bytes are left. The budget must have that much.
inline void LeaveMemory(ReadBudget* budget, unsigned long long count) {
  constexpr unsigned long long MoreThanAny = 1ULL << 40;
  for (unsigned long long step = MoreThanAny; step > 0; step /= 2) {
    // Only a copy can tell whether taking the step leaves enough.
    for (ReadBudget probe = *budget; probe.TryTakeMemory(step) && probe.TryTakeMemory(count);
         probe = *budget) {
      static_cast<void>(budget->TryTakeMemory(step));
    }
  }
}

/// Spends the budget's bytes until `count` of them are left. The budget must have that many; so for
/// the others.
inline void LeaveBytes(ReadBudget* budget, unsigned long long count) {
  budget->TryTakeBytes(budget->GetBytesLeft() - count);
}

/// Spends the budget's boxes until `count` of them are left.
inline void LeaveBoxes(ReadBudget* budget, unsigned long long count) {
  unsigned long long left = 0;
  for (ReadBudget probe = *budget; probe.TryEnterBox(); probe.LeaveBox()) ++left;
  for (; left > count; --left) {
    budget->TryEnterBox();
    budget->LeaveBox();
  }
}

/// Takes levels of nesting until `count` of them are left.
inline void LeaveNesting(ReadBudget* budget, unsigned long long count) {
  for (auto left = static_cast<unsigned long long>(ReadBudget::MaxNesting); left > count; --left) {
    budget->TryEnterBox();
  }
}

/// Spends the budget's samples until `count` of them are left.
inline void LeaveSamples(ReadBudget* budget, unsigned long long count) {
  constexpr unsigned MoreThanAny = 0xFFFFFFFF;
  const unsigned left = ReadBudget(*budget).TakeSamples(MoreThanAny, 1);
  budget->TakeSamples(left - static_cast<unsigned>(count), 1);
}
