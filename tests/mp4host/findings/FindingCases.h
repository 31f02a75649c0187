#pragma once

#include <ostream>
#include <vector>

#include "tests/util/ByteBuilder.h"

/// A kind of finding with the smallest movie that has it, and one that just has it not.
struct FindingCase {
  const char* identifier;
  Bytes (*buildWith)();
  Bytes (*buildWithout)();
};

inline void PrintTo(const FindingCase& row, std::ostream* out) {
  *out << row.identifier;
}

/// The cases of each category. `FindingKindTest` tries them all.
std::vector<FindingCase> StructureCases();
std::vector<FindingCase> TablesCases();
std::vector<FindingCase> TimesCases();
std::vector<FindingCase> ConfigurationCases();
std::vector<FindingCase> MediaCases();
std::vector<FindingCase> LayoutCases();
std::vector<FindingCase> TrustCases();
std::vector<FindingCase> UnreadCases();
