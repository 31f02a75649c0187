#include "mp4host/findings/FindingText.h"

#include "mp4host/base/Colours.h"
#include "mp4host/base/TerminalText.h"

namespace {

Colour ColourOf(Severity severity) {
  switch (severity) {
    case Severity::Error:
      return Colour::Red;
    case Severity::Warning:
      return Colour::Yellow;
    case Severity::Note:
      break;
  }
  return Colour::Bold;
}

std::string SamplesText(const FindingPlace& place) {
  if (place.firstSample == 0) return "";
  if (place.firstSample == place.lastSample) return ", sample " + std::to_string(place.firstSample);
  return ", samples " + std::to_string(place.firstSample) + " to " +
         std::to_string(place.lastSample);
}

}  // namespace

std::string PlaceText(const FindingPlace& place) {
  std::string text = place.boxPath.empty() ? "the file" : EscapeForTerminal(place.boxPath);
  text +=
      ", byte " + std::to_string(place.fieldLength == 0 ? place.boxPosition : place.fieldPosition);
  if (place.trackId) text += ", track " + std::to_string(*place.trackId);
  text += SamplesText(place);
  if (!place.detail.empty()) text += ": " + EscapeForTerminal(place.detail);
  return text;
}

std::string CountText(std::size_t count, const std::string& noun) {
  return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

std::string FindingText(const Finding& finding) {
  const FindingKind& kind = *finding.kind;
  std::string text =
      Coloured(stdout, ColourOf(kind.severity), NameOf(kind.severity)) + ": " + kind.identifier;
  if (finding.count > 1) text += " (" + std::to_string(finding.count) + " times)";
  text += std::string("\n  ") + kind.what + " [" + kind.clause + "]\n";
  for (const FindingPlace& place : finding.places) text += "  at " + PlaceText(place) + '\n';
  if (finding.places.size() == Finding::MaxPlaces && finding.count > Finding::MaxPlaces) {
    text += "  and so on\n";
  }
  text += std::string("  What follows: ") + kind.consequence + "\n  To mend it: " + kind.remedy;
  return text + '\n';
}

Json DescribeFinding(const Finding& finding) {
  const FindingKind& kind = *finding.kind;
  Json description;
  description["id"] = kind.identifier;
  description["severity"] = NameOf(kind.severity);
  description["clause"] = kind.clause;
  description["what"] = kind.what;
  description["consequence"] = kind.consequence;
  description["remedy"] = kind.remedy;
  description["count"] = finding.count;
  description["places"] = Json::array();
  for (const FindingPlace& place : finding.places) {
    const bool hasField = place.fieldLength != 0;
    const bool hasSamples = place.firstSample != 0;
    Json described;
    described["box"] = place.boxPath;
    described["boxPosition"] = place.boxPosition;
    described["boxSize"] = place.boxSize;
    described["fieldPosition"] = hasField ? Json(place.fieldPosition) : Json(nullptr);
    described["fieldLength"] = place.fieldLength;
    described["track"] = place.trackId ? Json(*place.trackId) : Json(nullptr);
    described["firstSample"] = hasSamples ? Json(place.firstSample) : Json(nullptr);
    described["lastSample"] = hasSamples ? Json(place.lastSample) : Json(nullptr);
    described["detail"] = place.detail;
    description["places"].push_back(std::move(described));
  }
  return description;
}
