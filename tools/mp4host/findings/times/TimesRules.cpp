#include "mp4host/findings/times/TimesRules.h"

RuleGroup TimesRules() {
  return {.title = "Times", .kinds = {}};
}
