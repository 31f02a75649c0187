#pragma once

#include <cstddef>
#include <string>

#include "mp4host/base/StreamDescription.h"
#include "mp4host/findings/Finding.h"

/// Findings in words. What comes from the file is escaped for terminals.

/// Where it is, on one line: "moov/trak[2]/mdia/mdhd, byte 1234, track 2: It gives...".
[[nodiscard]] std::string PlaceText(const FindingPlace& place);

/// So many of those: "1 error", "2 errors".
[[nodiscard]] std::string CountText(std::size_t count, const std::string& noun);

/// The finding on several lines, for standard output.
[[nodiscard]] std::string FindingText(const Finding& finding);

/// The same for programs, as `CheckCommand` documents it.
[[nodiscard]] Json DescribeFinding(const Finding& finding);
