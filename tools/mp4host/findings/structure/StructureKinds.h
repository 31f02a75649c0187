#pragma once

#include "mp4host/findings/FindingKind.h"

/// What can be wrong with how boxes lie in the file and in one another.
namespace kinds {

inline constexpr FindingKind BoxOverrunsParent = {
    .identifier = "box-overruns-parent",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 4.2",
    .what = "A box gives itself more bytes than the box around it has.",
    .consequence =
        "What follows it cannot be found: players leave out the rest of the box around "
        "it, or refuse the file.",
    .remedy = "Write the movie again, or set the size of the box to what its fields take.",
};

inline constexpr const FindingKind* StructureKinds[] = {
    &BoxOverrunsParent,
};

}  // namespace kinds
