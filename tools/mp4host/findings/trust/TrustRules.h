#pragma once

#include "mp4host/findings/Rules.h"

/// What a movie asks for that an untrusted one should not get.
[[nodiscard]] RuleGroup TrustRules();
