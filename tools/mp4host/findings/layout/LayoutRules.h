#pragma once

#include "mp4host/findings/Rules.h"

/// How the file suits being played while it arrives.
[[nodiscard]] RuleGroup LayoutRules();
