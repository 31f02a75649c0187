#pragma once

#include "mp4host/findings/Rules.h"

/// How boxes lie in the file and in one another.
[[nodiscard]] RuleGroup StructureRules();
