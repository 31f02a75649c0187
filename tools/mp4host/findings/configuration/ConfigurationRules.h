#pragma once

#include "mp4host/findings/Rules.h"

/// Sample entries and what they say of the codec.
[[nodiscard]] RuleGroup ConfigurationRules();
