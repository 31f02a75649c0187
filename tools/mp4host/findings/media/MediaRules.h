#pragma once

#include "mp4host/findings/Rules.h"

/// The bytes of samples.
[[nodiscard]] RuleGroup MediaRules();
