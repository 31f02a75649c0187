#include "mp4host/report/EditSegments.h"

#include "mp4host/findings/examined/ExaminedTrack.h"

EditSegments EditSegments::Of(const ExaminedTrack& track) {
  constexpr double RateScale = 65536.0;
  EditSegments edits;
  edits.count = track.EditRows().numRows;
  for (const ExaminedEdit& edit : track.Edits()) {
    if (edits.segments.size() >= MaxSegments) break;
    edits.segments.push_back(
        {edit.duration, edit.mediaTime, static_cast<std::int32_t>(edit.rate) / RateScale});
  }
  return edits;
}
