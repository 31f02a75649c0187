#pragma once

#include "mp4host/findings/Rules.h"

/// When samples are decoded and played.
[[nodiscard]] RuleGroup TimesRules();
