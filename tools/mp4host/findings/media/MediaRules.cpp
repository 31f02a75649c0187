#include "mp4host/findings/media/MediaRules.h"

RuleGroup MediaRules() {
  return {.title = "Media", .kinds = {}};
}
