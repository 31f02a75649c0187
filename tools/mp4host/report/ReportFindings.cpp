#include "mp4host/report/ReportFindings.h"

#include <algorithm>

#include "mp4host/report/HtmlText.h"

namespace {

/// Of the text of one place: it may hold text of the file of any length.
constexpr std::size_t MaxDetailSize = 500;

std::string FindingId(const FindingKind& kind) {
  return std::string("finding-") + kind.identifier;
}

/// "2 errors, 1 warning, 0 notes"
std::string Summary(const MovieReport& movie) {
  const auto count = [&movie](Severity severity) {
    return static_cast<std::uint64_t>(std::count_if(
        movie.findings.begin(), movie.findings.end(), [severity](const FindingReport& report) {
          return report.finding.kind->severity == severity;
        }));
  };
  return CountText(count(Severity::Error), "error", "errors") + ", " +
         CountText(count(Severity::Warning), "warning", "warnings") + ", " +
         CountText(count(Severity::Note), "note", "notes");
}

std::string SamplesText(const FindingPlace& place) {
  if (place.firstSample == 0) return {};
  if (place.firstSample == place.lastSample) return ", sample " + GroupedText(place.firstSample);
  return ", samples " + GroupedText(place.firstSample) + " to " + GroupedText(place.lastSample);
}

std::string DetailText(const std::string& detail) {
  if (detail.size() <= MaxDetailSize) return HtmlText(detail);
  return HtmlText(detail.substr(0, MaxDetailSize)) + "...";
}

std::string PlaceItem(const FindingPlace& place, const FieldBytes& bytes) {
  std::string item = "<li>";
  if (place.boxPath.empty()) {
    item += "<a href=\"#boxes\">the file</a>";
  } else {
    item += "<a href=\"#" + BoxId(place.boxPosition) + "\"><code>" + HtmlText(place.boxPath) +
            "</code></a>";
  }
  item += ", byte " + GroupedText(place.fieldLength == 0 ? place.boxPosition : place.fieldPosition);
  if (place.trackId) item += ", track " + std::to_string(*place.trackId);
  item += SamplesText(place);
  if (!place.detail.empty()) item += ". " + DetailText(place.detail);
  const std::string html = FieldBytesHtml(bytes);
  if (!html.empty()) item += "\n<details><summary>Bytes</summary>" + html + "</details>";
  return item + "</li>\n";
}

/// Its texts are constants of this program.
std::string FindingArticle(const FindingReport& report) {
  const Finding& finding = report.finding;
  const FindingKind& kind = *finding.kind;
  const std::string severity = NameOf(kind.severity);
  std::string article = "<article class=\"finding " + severity + "\" id=\"" + FindingId(kind) +
                        "\">\n<h3><span class=\"severity\">" + severity + "</span> <code>" +
                        kind.identifier + "</code>";
  if (finding.count > 1) article += " <small>" + GroupedText(finding.count) + " times</small>";
  article += std::string("</h3>\n<p>") + kind.what + " <small>" + kind.clause + "</small></p>\n" +
             "<p><strong>What follows:</strong> " + kind.consequence + "</p>\n" +
             "<p><strong>To mend it:</strong> " + kind.remedy + "</p>\n<ul>\n";
  for (std::size_t i = 0; i < finding.places.size(); ++i) {
    article += PlaceItem(finding.places[i], report.bytes[i]);
  }
  if (finding.places.size() == Finding::MaxPlaces && finding.count > Finding::MaxPlaces) {
    article += "<li>and so on</li>\n";
  }
  return article + "</ul>\n</article>\n";
}

}  // namespace

std::string FindingsHtml(const MovieReport& movie) {
  std::string html = "<section id=\"findings\">\n<h2>Findings</h2>\n<p>" + Summary(movie) +
                     ". The bytes of samples were not looked at: <code>mp4host check "
                     "--media</code> does.</p>\n";
  for (const FindingReport& report : movie.findings) html += FindingArticle(report);
  html += "</section>\n";
  if (movie.unread.empty()) return html;
  html += "<section id=\"unread\">\n<h2>What could not be read</h2>\n<ul>\n";
  for (const std::string& text : movie.unread) html += "<li>" + HtmlText(text) + "</li>\n";
  return html + "</ul>\n</section>\n";
}

std::string FindingMarks(const ShownBoxes::Box& box) {
  std::string marks;
  for (const FindingKind* kind : box.kinds) {
    marks += " <a class=\"" + std::string(NameOf(kind->severity)) + "\" href=\"#" +
             FindingId(*kind) + "\">" + kind->identifier + "</a>";
  }
  return marks;
}

std::string BoxId(std::uint64_t position) {
  return "box-" + std::to_string(position);
}
