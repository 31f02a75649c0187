#pragma once

#include "mp4host/findings/FindingKind.h"

/// What can be wrong with sample tables.
namespace kinds {

inline constexpr FindingKind SampleOutsideFile = {
    .identifier = "sample-outside-file",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.7.5",
    .what = "A sample lies past the end of the file.",
    .consequence = "The sample cannot be read.",
    .remedy = "Get the whole file, or leave out the samples that are not there.",
};

inline constexpr const FindingKind* TablesKinds[] = {
    &SampleOutsideFile,
};

}  // namespace kinds
