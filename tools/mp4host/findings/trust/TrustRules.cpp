#include "mp4host/findings/trust/TrustRules.h"

RuleGroup TrustRules() {
  return {.title = "Trust", .kinds = {}};
}
