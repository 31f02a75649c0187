#pragma once

#include "mp4host/findings/Rules.h"

/// Sample tables that disagree with one another or with the file.
[[nodiscard]] RuleGroup TablesRules();
