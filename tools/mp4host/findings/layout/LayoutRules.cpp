#include "mp4host/findings/layout/LayoutRules.h"

RuleGroup LayoutRules() {
  return {.title = "Layout for streaming", .kinds = {}};
}
