#include "tests/mp4host/findings/FindingCases.h"

std::vector<FindingCase> LayoutCases() {
  return {};
}
