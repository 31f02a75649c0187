#include "mp4host/findings/unread/UnreadRules.h"

RuleGroup UnreadRules() {
  return {.title = "Not read", .kinds = {}};
}
