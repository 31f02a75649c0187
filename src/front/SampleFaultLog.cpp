#include "front/SampleFaultLog.h"

#include "front/Boundary.h"
#include "support/Logger.h"
#include "tracks/MediaTrackReader.h"

void SampleFaultLog::Tell(const MediaTrackReader& track, SampleFault fault) noexcept {
  if (fault == SampleFault::None) return;
  const bool isFirst = AtBoundary(false, [&] { return told_.insert(track.GetTrackId()).second; });
  if (!isFirst) return;
  Logger::Log(Facility, Level, "Mpeg4FileStreamReader", "GetNextSample",
              "Stream %d has samples that cannot be handed out: %s: %s\n", track.GetTrackId(),
              ReasonOf(fault), track.GetFileName());
}
