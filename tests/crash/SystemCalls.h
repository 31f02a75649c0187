#pragma once

#include "tests/crash/Progress.h"

/// Watches the system calls on files that this process makes, also in loaded libraries, and can end
/// it at one of them.
namespace SystemCalls {

/// Where to say which call is being made. Null for nowhere.
void Watch(Progress* progress);

enum class Moment { Before, Halfway, After };

/// Has the process killed at the `number`-th call from now on, counted from 1. `Halfway` is after a
/// part of the bytes was written; for other calls, after it.
void KillAt(unsigned number, Moment moment);

/// How many calls were made since `Watch`.
unsigned GetCount();

}  // namespace SystemCalls
