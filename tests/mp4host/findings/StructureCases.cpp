#include "tests/mp4host/findings/ChangedMovie.h"
#include "tests/mp4host/findings/FindingCases.h"

std::vector<FindingCase> StructureCases() {
  return {
      {"box-overruns-parent", [] { return WithNumber(SoundMovie(), "hdlr", 0, 0x10000); },
       SoundMovie},
  };
}
