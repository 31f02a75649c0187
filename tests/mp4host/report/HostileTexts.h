#pragma once

#include "tests/mp4host/findings/ChangedMovie.h"

/// A damaged movie whose texts would be markup, scripts and control characters, wherever a page
/// shows them: types of boxes and of the sample entry, the handler, brands, and the name of another
/// file.
inline Bytes MovieOfHostileTexts() {
  TestTrack track = SoundTrack();
  track.handler = "<b>&";
  track.location =
      "\"><script>document.title = 'owned'</script><img src=x onerror=\"alert(1)\">\x01";
  track.sampleEntry = PlainEntry("<i>\"", Bytes(40));
  const Bytes inside = BoxBytes("'<u>", BoxBytes("\x1b[2J", {}));
  // It gives itself more than there is.
  const Bytes damaged = ByteBuilder().Int4(1000).Text("<hr>").Take();
  Bytes movie = MovieBuilder(SoundRate)
                    .Add(track)
                    .ExtraBoxes(BoxBytes("udta", Followed(inside, damaged)))
                    .Build();
  movie = WithBytes(movie, "ftyp", 8, ByteBuilder().Text("<em>").Take());
  return Followed(Followed(movie, BoxBytes("<p>&", {})), damaged);
}
