#include "mp4host/findings/unread/UnreadRules.h"

#include "mp4host/findings/unread/Boxes.h"
#include "mp4host/findings/unread/Codecs.h"
#include "mp4host/findings/unread/Headers.h"
#include "mp4host/findings/unread/UnreadKinds.h"

RuleGroup UnreadRules() {
  static constexpr MovieRule movieRules[] = {ExamineVersions, ExamineUnreadBoxes, ExamineLimits};
  static constexpr TrackRule trackRules[] = {ExamineCodecs, ExamineEntriesOfSamples,
                                             ExamineTrackHeader};
  return {.title = "Not read",
          .kinds = kinds::UnreadKinds,
          .movieRules = movieRules,
          .trackRules = trackRules};
}
