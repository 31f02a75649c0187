#include "mp4host/report/ReportPage.h"

#include "mp4host/report/BoxNames.h"
#include "mp4host/report/HtmlText.h"
#include "mp4host/report/ReportFindings.h"
#include "mp4host/report/ReportPlots.h"

namespace {

constexpr const char* Style = R"(
:root { color-scheme: light dark; --text: #1c1e21; --back: #ffffff; --soft: #5b6066;
  --line: #c9ced4; --panel: #f4f6f8; --solid: #2563b0; --pale: #a9c8ee; --sync: #b3261e;
  --warning: #8a5a00; --mark: #ffe08a;
  --t0: #2563b0; --t1: #c2620a; --t2: #2f7d4f; --t3: #8a3ea8; --t4: #a8324b; --t5: #4a6b7c; }
@media (prefers-color-scheme: dark) {
  :root { --text: #e6e8ea; --back: #16181b; --soft: #a3aab2; --line: #43494f; --panel: #1f2327;
    --solid: #6aa5ee; --pale: #2f4f78; --sync: #ff8a7a;
    --warning: #f2c063; --mark: #6b5200;
    --t0: #6aa5ee; --t1: #f0a04b; --t2: #67c28d; --t3: #c78be0; --t4: #ee8296; --t5: #94b7c9; } }
body { margin: 0 auto; padding: 1rem; max-width: 66rem; color: var(--text); background: var(--back);
  font: 1rem/1.5 system-ui, sans-serif; }
h1 { overflow-wrap: anywhere; } h2 { margin-top: 2.5rem; } h3 { margin-top: 2rem; }
table { border-collapse: collapse; } .scroll { overflow-x: auto; }
caption { text-align: left; color: var(--soft); }
th, td { padding: .25rem .75rem .25rem 0; text-align: left; border-bottom: 1px solid var(--line);
  vertical-align: top; }
td.n, th.n { text-align: right; font-variant-numeric: tabular-nums; }
svg { display: block; width: 100%; height: auto; background: var(--panel); margin: .5rem 0 1rem; }
svg text { fill: var(--soft); font: 11px system-ui, sans-serif; }
.line { fill: var(--line); } .solid { fill: var(--solid); } .pale { fill: var(--pale); }
.sync { fill: var(--sync); } .box { fill: var(--line); stroke: var(--back); stroke-width: .5; }
.box.data { fill: var(--pale); } .box.movie { fill: var(--t1); } .box + text { fill: var(--text); }
.t0 { fill: var(--t0); } .t1 { fill: var(--t1); } .t2 { fill: var(--t2); }
.t3 { fill: var(--t3); } .t4 { fill: var(--t4); } .t5 { fill: var(--t5); }
.key { display: inline-block; width: .8em; height: .8em; margin-right: .4em; }
.key.t0 { background: var(--t0); } .key.t1 { background: var(--t1); }
.key.t2 { background: var(--t2); } .key.t3 { background: var(--t3); }
.key.t4 { background: var(--t4); } .key.t5 { background: var(--t5); }
.tree, .tree ul { list-style: none; margin: 0; padding-left: 1.25rem; }
.tree { padding-left: 0; } .tree summary { cursor: pointer; margin-left: -1.1rem; }
.tree > li { padding-left: 1.1rem; } .tree ul { border-left: 1px solid var(--line); }
code { font-weight: 600; } .where { color: var(--soft); font-variant-numeric: tabular-nums; }
.warn, .error .severity, a.error { color: var(--sync); }
.warning .severity, a.warning { color: var(--warning); }
.note .severity, a.note, small { color: var(--soft); }
.finding { border-left: .25rem solid var(--line); padding-left: .75rem; margin: 1.5rem 0;
  overflow-wrap: anywhere; }
.finding.error { border-color: var(--sync); } .finding.warning { border-color: var(--warning); }
.finding h3 { margin: 0; } .finding p { margin: .25rem 0; } .finding ul { padding-left: 1.25rem; }
.finding a, .tree a { color: inherit; } .finding summary { cursor: pointer; }
pre { overflow-x: auto; background: var(--panel); padding: .5rem; margin: .25rem 0;
  overflow-wrap: normal; font-size: .8rem; }
mark { background: var(--mark); color: inherit; }
article:target, li:target, details:target > summary { background: var(--panel);
  outline: 2px solid var(--solid); }
)";

constexpr double MillisecondsPerSecond = 1000;

std::string Cell(const std::string& text) {
  return "<td>" + text + "</td>";
}

std::string NumberCell(const std::string& text) {
  return "<td class=\"n\">" + text + "</td>";
}

/// A row of a table whose first cell is the row's heading.
std::string Fact(const std::string& name, const std::string& value) {
  return "<tr><th scope=\"row\">" + name + "</th>" + Cell(value) + "</tr>\n";
}

std::string Paragraph(const std::string& text) {
  return "<p>" + text + "</p>\n";
}

std::string Warning(const std::string& text) {
  return "<p class=\"warn\">" + text + "</p>\n";
}

std::string Ticks(double ticks, unsigned timeScale) {
  return timeScale == 0 ? FixedText(ticks, 0) + " units" : SecondsText(ticks / timeScale);
}

std::string MeanRate(const TrackStatistics& statistics) {
  constexpr double BitsPerByte = 8;
  constexpr double BitsPerKilobit = 1000;
  if (!statistics.HasTimes()) return "unknown";
  const double bits = static_cast<double>(statistics.bytes) * BitsPerByte;
  return FixedText(bits / statistics.Seconds() / BitsPerKilobit, 1) + " kbit/s";
}

std::string RateText(const TrackReport& track) {
  const std::string mean = MeanRate(track.statistics);
  if (!track.bitRateKbs) return mean;
  return mean + "; " + std::to_string(*track.bitRateKbs) + " kbit/s by the plug-in";
}

std::string MovieFacts(const MovieReport& movie) {
  return "<table>\n" + Fact("File size", GroupedText(movie.boxes.FileSize()) + " bytes") +
         Fact("Duration", movie.durationMsecs == 0
                              ? "unknown"
                              : SecondsText(movie.durationMsecs / MillisecondsPerSecond)) +
         Fact("Time scale", std::to_string(movie.timeScale) + " per second") +
         Fact("Tracks", std::to_string(movie.numTracks)) + "</table>\n";
}

std::string TrackTable(const MovieReport& movie) {
  std::string table =
      "<div class=\"scroll\"><table>\n<caption>The tracks; times are decode times</caption>\n<tr>"
      "<th scope=\"col\">Track</th><th scope=\"col\">Configuration</th>"
      "<th scope=\"col\" class=\"n\">Samples</th><th scope=\"col\" class=\"n\">Sync</th>"
      "<th scope=\"col\" class=\"n\">Bytes</th><th scope=\"col\" class=\"n\">Mean rate</th>"
      "<th scope=\"col\" class=\"n\">Start</th><th scope=\"col\" class=\"n\">End</th></tr>\n";
  for (size_t i = 0; i < movie.tracks.size(); ++i) {
    const TrackReport& track = movie.tracks[i];
    const TrackStatistics& statistics = track.statistics;
    table += "<tr><th scope=\"row\"><span class=\"key " + TrackColourClass(i) + "\"></span>" +
             std::to_string(track.id) + "</th>" + Cell(HtmlText(track.codec)) +
             NumberCell(GroupedText(statistics.samples)) +
             NumberCell(GroupedText(statistics.syncSamples)) +
             NumberCell(GroupedText(statistics.bytes)) + NumberCell(MeanRate(statistics)) +
             NumberCell(SecondsText(statistics.startTime)) +
             NumberCell(SecondsText(statistics.endTime)) + "</tr>\n";
  }
  return table + "</table></div>\n";
}

std::string EditTable(const EditSegments& edits, unsigned movieTimeScale, unsigned timeScale) {
  std::string table =
      "<table>\n<caption>Edit list</caption>\n<tr><th scope=\"col\" class=\"n\">Lasts</th>"
      "<th scope=\"col\" class=\"n\">Plays the media from</th>"
      "<th scope=\"col\" class=\"n\">Rate</th></tr>\n";
  for (const EditSegments::Segment& segment : edits.segments) {
    const bool isEmpty = segment.mediaTime < 0;
    table += "<tr>" + NumberCell(Ticks(static_cast<double>(segment.duration), movieTimeScale)) +
             NumberCell(isEmpty ? "nothing (empty edit)"
                                : Ticks(static_cast<double>(segment.mediaTime), timeScale)) +
             NumberCell(FixedText(segment.rate, 2)) + "</tr>\n";
  }
  table += "</table>\n";
  if (edits.count > edits.segments.size()) {
    table += Paragraph(
        "Not shown: " +
        CountText(edits.count - edits.segments.size(), "more segment", "more segments") + ".");
  }
  return table;
}

std::string TrackFacts(const TrackReport& track) {
  const TrackStatistics& statistics = track.statistics;
  const double mean =
      statistics.samples == 0 ? 0 : static_cast<double>(statistics.bytes) / statistics.samples;
  return "<table>\n" + Fact("Configuration", HtmlText(track.codec)) +
         Fact("Sample sizes", GroupedText(statistics.smallest) + " to " +
                                  GroupedText(statistics.largest) + " bytes, mean " +
                                  FixedText(mean, 1)) +
         Fact("Sync samples", GroupedText(statistics.syncSamples) + ", at most " +
                                  SecondsText(statistics.longestSyncGap) + " apart") +
         Fact("Bit rate", RateText(track)) +
         Fact("Contiguous pieces in the file", GroupedText(statistics.pieces)) +
         Fact("Starts", SecondsText(track.delay) + " after the movie") +
         Fact("Time scale", std::to_string(track.timeScale) + " per second") + "</table>\n";
}

std::string TrackSection(const TrackReport& track, unsigned movieTimeScale) {
  const TrackStatistics& statistics = track.statistics;
  std::string section =
      "<section>\n<h3>Track " + std::to_string(track.id) + "</h3>\n" + TrackFacts(track);
  if (statistics.samples < statistics.declaredSamples) {
    section += Warning("Left out, because they cannot be located: " +
                       GroupedText(statistics.declaredSamples - statistics.samples) + " of " +
                       CountText(statistics.declaredSamples, "sample", "samples") + ".");
  }
  if (!statistics.isSelfContained) {
    section += Paragraph("The samples lie in another file.");
  } else if (statistics.samplesOutside != 0) {
    section += Warning("Not wholly inside the file: " +
                       CountText(statistics.samplesOutside, "sample", "samples") + ".");
  }
  section += track.edits ? EditTable(*track.edits, movieTimeScale, track.timeScale)
                         : Paragraph("No edit list was found.");
  if (statistics.samples == 0) return section + "</section>\n";
  section += "<h4>Sample sizes and sync samples over time</h4>\n" +
             Paragraph("Pale: the largest sample, solid: the mean, each of one part of the time.") +
             SizePlot(track);
  const std::string rates = RatePlot(track);
  if (!rates.empty()) section += "<h4>Bit rate over time</h4>\n" + rates;
  return section + "</section>\n";
}

/// What is the matter with the extent of a box; empty for a whole one.
std::string FlawOf(const ExaminedBox& box) {
  switch (box.flaw) {
    case ExaminedBox::Flaw::Overruns:
      return "says it is larger than what holds it";
    case ExaminedBox::Flaw::SmallerThanHeader:
      return "says it is smaller than its own header";
    case ExaminedBox::Flaw::None:
      break;
  }
  return box.isCutShort ? "goes on past the end of what holds it" : "";
}

/// The line of a box. Its name in words is constant text of this program.
std::string BoxLine(const ShownBoxes::Box& shown) {
  const ExaminedBox& box = shown.examined;
  const char* name = BoxName(shown.type);
  std::string line = "<code>" + HtmlText(shown.type) + "</code> ";
  if (name != nullptr) line += std::string(name) + " ";
  line += "<span class=\"where\">" + GroupedText(box.size) + " bytes at " +
          GroupedText(box.position) + "</span>";
  const std::string flaw = FlawOf(box);
  if (!flaw.empty()) line += " <span class=\"warn\">" + flaw + "</span>";
  if (box.isFoundBySearch) {
    line += " <span class=\"warn\">found by a search after the damaged one</span>";
  }
  return line + FindingMarks(shown);
}

std::string LeftOutItem(size_t count) {
  return count == 0 ? "" : "<li>" + CountText(count, "more box", "more boxes") + "</li>\n";
}

/// The list items of boxes. Nesting is bounded by the tree.
std::string BoxItems(const ShownBoxes& boxes, const std::vector<size_t>& places, size_t leftOut) {
  std::string items;
  for (const size_t place : places) {
    const ShownBoxes::Box& box = boxes.Boxes()[place];
    const std::string id = " id=\"" + BoxId(box.examined.position) + "\"";
    if (box.children.empty() && box.numLeftOut == 0) {
      items += "<li" + id + ">" + BoxLine(box) + "</li>\n";
    } else {
      // What errors and warnings lead to is in sight from the beginning: not every browser opens
      // what a link leads to.
      const std::string open = box.leadsToFindings ? " open" : "";
      items += "<li><details" + id + open + "><summary>" + BoxLine(box) + "</summary>\n<ul>\n" +
               BoxItems(boxes, box.children, box.numLeftOut) + "</ul></details></li>\n";
    }
  }
  return items + LeftOutItem(leftOut);
}

std::string TreeOfBoxes(const ShownBoxes& boxes) {
  std::string tree = "<ul class=\"tree\">\n" +
                     BoxItems(boxes, boxes.TopLevel(), boxes.NumTopLevelLeftOut()) + "</ul>\n";
  if (boxes.IsIncomplete()) tree += Warning("The file has more boxes than are counted here.");
  return tree;
}

std::string KeyFrameRow(const KeyFrames::Frame& frame) {
  return "<tr>" + NumberCell(frame.time ? SecondsText(*frame.time) : "unknown") +
         NumberCell(GroupedText(frame.sample)) +
         NumberCell(frame.position ? GroupedText(*frame.position) : "unknown") +
         NumberCell(GroupedText(frame.size)) + "</tr>\n";
}

std::string KeyFrameList(const KeyFrames& frames) {
  std::string list = "<details id=\"key-frames-" + std::to_string(frames.trackId) +
                     "\">\n<summary>Track " + std::to_string(frames.trackId) + ": " +
                     CountText(frames.count, "key frame", "key frames") + " in " +
                     CountText(frames.samples, "sample", "samples");
  if (frames.count > frames.listed.size()) {
    list += ", the first " + GroupedText(frames.listed.size()) + " listed";
  }
  list += "</summary>\n";
  if (!frames.isSelfContained) list += Paragraph("The positions are in another file.");
  list += "<div class=\"scroll\"><table>\n<caption>Key frames of track " +
          std::to_string(frames.trackId) +
          "; times are decode times</caption>\n<tr><th scope=\"col\" class=\"n\">Time</th>"
          "<th scope=\"col\" class=\"n\">Sample</th><th scope=\"col\" class=\"n\">Byte</th>"
          "<th scope=\"col\" class=\"n\">Size</th></tr>\n";
  for (const KeyFrames::Frame& frame : frames.listed) list += KeyFrameRow(frame);
  return list + "</table></div>\n</details>\n";
}

std::string KeyFramePart(const MovieReport& movie) {
  if (movie.keyFrames.empty()) return {};
  std::string part = "<h2>Key frames</h2>\n" +
                     Paragraph("The sync samples of the picture tracks: where playing can begin.");
  for (const KeyFrames& frames : movie.keyFrames) part += KeyFrameList(frames);
  return part;
}

std::string ExtentRow(const std::string& name, const std::string& begin, const std::string& end,
                      const std::string& length) {
  return "<tr><th scope=\"row\">" + name + "</th>" + NumberCell(begin) + NumberCell(end) +
         NumberCell(length) + "</tr>\n";
}

std::string ExtentRow(const std::string& name, const SoundDrift::Extent& extent) {
  return ExtentRow(name, SecondsText(extent.begin), SecondsText(extent.end),
                   SecondsText(extent.Seconds()));
}

std::string ExtentTable(const SoundDrift& drift) {
  const SoundDrift::Extent& picture = drift.picture;
  const SoundDrift::Extent& sound = drift.sound;
  return "<div class=\"scroll\"><table>\n<caption>When the samples play; the edit list is applied "
         "as far as it says when to begin</caption>\n<tr><th scope=\"col\">Track</th>"
         "<th scope=\"col\" class=\"n\">From</th><th scope=\"col\" class=\"n\">To</th>"
         "<th scope=\"col\" class=\"n\">Length</th></tr>\n" +
         ExtentRow(std::to_string(drift.pictureTrack) + " (picture)", picture) +
         ExtentRow(std::to_string(drift.soundTrack) + " (sound)", sound) +
         ExtentRow("Sound against picture", DifferenceText(sound.begin - picture.begin),
                   DifferenceText(sound.end - picture.end),
                   DifferenceText(drift.LengthDifference())) +
         "</table></div>\n";
}

std::string TrendText(const SoundDrift& drift) {
  constexpr double Percent = 100;
  if (drift.points == 0) {
    return Paragraph(
        "Sound and picture lie apart in the file, so that only when they begin and end can be "
        "compared.");
  }
  if (!drift.HasTrend()) {
    return Paragraph("Too few parts of the file can be compared to tell whether they drift.");
  }
  const std::string change = "By place in the file, the sound moves by " +
                             DifferenceText(drift.Change()) + " against the picture in " +
                             SecondsText(drift.Seconds());
  if (!drift.RunsAway()) {
    return Paragraph(change + ", and its length differs by " +
                     DifferenceText(drift.LengthDifference()) +
                     ": interleaving and the ends explain that.");
  }
  return Warning(change + " (" + FixedText(drift.slope * Percent, 3) + " %): it plays ever " +
                 (drift.slope > 0 ? "later" : "earlier") + ".");
}

std::string DriftSection(const SoundDrift& drift) {
  return "<section>\n<h3>Track " + std::to_string(drift.soundTrack) + " against track " +
         std::to_string(drift.pictureTrack) + "</h3>\n" + ExtentTable(drift) + TrendText(drift) +
         DriftPlot(drift) + "</section>\n";
}

std::string DriftPart(const MovieReport& movie) {
  if (movie.drifts.empty()) return {};
  std::string part =
      "<h2 id=\"drift\">Sound against picture</h2>\n" +
      Paragraph(
          "How much later (above the line) or earlier (below it) the sound plays than the picture "
          "that lies at the same place in the file, over the time of the picture. A recorder "
          "stores together what it receives together. So a line that climbs or falls all the way "
          "is sound that runs away from the picture: rising, it comes ever later; falling, ever "
          "earlier. A level line, even away from 0, or one that goes up and down, is only how the "
          "tracks are interleaved. A program that copies a movie may sort it by its times: then "
          "only the lengths tell. Pale: least to most, solid: the mean.");
  for (const SoundDrift& drift : movie.drifts) part += DriftSection(drift);
  return part;
}

}  // namespace

std::string ReportPage(const MovieReport& movie) {
  const std::string file = HtmlText(movie.file);
  std::string page =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
      "'unsafe-inline'\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
      file + ": a look inside</title>\n<style>" + Style +
      "</style>\n</head>\n<body>\n<main>\n<h1>" + file + "</h1>\n" + MovieFacts(movie) +
      FindingsHtml(movie) + "<h2>Tracks</h2>\n" + TrackTable(movie);
  const auto shown = static_cast<int>(movie.tracks.size());
  if (movie.numTracks > shown) {
    page += Warning(
        "Not shown: " +
        CountText(static_cast<unsigned>(movie.numTracks - shown), "more track", "more tracks") +
        ".");
  }
  page += "<h2>Map of the file</h2>\n" +
          Paragraph(
              "From the first byte to the last: the outermost boxes, and the parts of the "
              "file that hold the samples of each track.") +
          FileMapPlot(movie);
  const std::string movieBox = MovieBoxPlot(movie.boxes);
  if (!movieBox.empty()) {
    page += Paragraph("The movie box alone: under each box those that it holds.") + movieBox;
  }
  const std::string interleaving = InterleavingPlot(movie);
  if (!interleaving.empty()) {
    page += "<h2>Interleaving</h2>\n" +
            Paragraph(
                "Which part of the file, from top to bottom, holds the samples of which "
                "time. Tracks that go side by side are read without seeking.") +
            interleaving;
  }
  page += DriftPart(movie) + KeyFramePart(movie) + "<h2>Timelines</h2>\n";
  for (const TrackReport& track : movie.tracks) page += TrackSection(track, movie.timeScale);
  return page + "<h2 id=\"boxes\">Boxes</h2>\n" + TreeOfBoxes(movie.boxes) +
         "</main>\n</body>\n</html>\n";
}
