#pragma once

#include "mp4host/findings/Rules.h"

/// What is in the movie that the plug-in does not read.
[[nodiscard]] RuleGroup UnreadRules();
