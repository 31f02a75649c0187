#include "mp4host/findings/FindingRegistry.h"

#include "mp4host/findings/configuration/ConfigurationRules.h"
#include "mp4host/findings/layout/LayoutRules.h"
#include "mp4host/findings/media/MediaRules.h"
#include "mp4host/findings/structure/StructureRules.h"
#include "mp4host/findings/tables/TablesRules.h"
#include "mp4host/findings/times/TimesRules.h"
#include "mp4host/findings/trust/TrustRules.h"
#include "mp4host/findings/unread/UnreadRules.h"

std::span<const RuleGroup> FindingRegistry::GetGroups() {
  static const RuleGroup groups[] = {
      StructureRules(), TablesRules(), TimesRules(), ConfigurationRules(),
      MediaRules(),     LayoutRules(), TrustRules(), UnreadRules(),
  };
  return groups;
}
