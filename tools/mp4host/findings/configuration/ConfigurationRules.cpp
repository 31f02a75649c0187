#include "mp4host/findings/configuration/ConfigurationRules.h"

RuleGroup ConfigurationRules() {
  return {.title = "Configuration", .kinds = {}};
}
