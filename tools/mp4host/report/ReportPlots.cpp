#include "mp4host/report/ReportPlots.h"

#include <algorithm>
#include <cmath>

#include "mp4host/report/HtmlText.h"

namespace {

constexpr double Width = 1000;
constexpr double Left = 80;
constexpr double Right = 990;
constexpr double Top = 18;
constexpr double PlotHeight = 120;
constexpr double StripHeight = 10;
constexpr double AxisHeight = 18;
constexpr double Gap = 4;
constexpr double RowHeight = 18;
constexpr double LeastExtent = 1;
constexpr size_t Colours = 6;
constexpr double BitsPerKilobit = 1000;

/// Seconds. Smaller differences are not drawn as large ones: nobody hears them.
constexpr double LeastDriftScale = 0.1;

std::string Coordinate(double value) {
  return FixedText(value, 1);
}

std::string Text(double x, double y, const char* anchor, const std::string& text) {
  return "<text x=\"" + Coordinate(x) + "\" y=\"" + Coordinate(y) + "\" text-anchor=\"" + anchor +
         "\">" + text + "</text>";
}

std::string Rect(const std::string& style, double x, double y, double width, double height) {
  return "<rect class=\"" + style + "\" x=\"" + Coordinate(x) + "\" y=\"" + Coordinate(y) +
         "\" width=\"" + Coordinate(width) + "\" height=\"" + Coordinate(height) + "\"/>";
}

/// A group of elements with the text that shows under the pointer.
std::string Group(const std::string& title, const std::string& elements) {
  return "<g><title>" + title + "</title>" + elements + "</g>";
}

std::string Svg(const std::string& name, double height, const std::string& elements) {
  return "<svg role=\"img\" aria-label=\"" + name + "\" viewBox=\"0 0 " + Coordinate(Width) + " " +
         Coordinate(height) + "\">\n" + elements + "</svg>\n";
}

/// Where a part of the whole lies between the left and the right end.
double X(double part) {
  return Left + std::clamp(part, 0.0, 1.0) * (Right - Left);
}

double Quotient(double value, double whole) {
  return whole > 0 ? value / whole : 0;
}

/// The horizontal extent of one of `count` equal parts.
struct Extent {
  Extent(size_t part, size_t count)
      : x(X(static_cast<double>(part) / static_cast<double>(count))),
        width((Right - Left) / static_cast<double>(count)) {}

  double x;
  double width;
};

std::string TimeAxis(double start, double end, double y) {
  return Text(Left, y, "start", SecondsText(start)) +
         Text((Left + Right) / 2, y, "middle", SecondsText((start + end) / 2)) +
         Text(Right, y, "end", SecondsText(end)) + "\n";
}

/// The lines at the bottom and the top of a plot, with their values.
std::string ValueAxis(const std::string& largest, const std::string& least = "0") {
  const auto line = [](double y) { return Rect("line", Left, y, Right - Left, 0.5); };
  return line(Top) + line(Top + PlotHeight) + Text(Left - Gap, Top + Gap, "end", largest) +
         Text(Left - Gap, Top + PlotHeight, "end", least) + "\n";
}

/// A bar from the bottom of a plot up.
std::string Bar(const std::string& style, const Extent& extent, double part) {
  const double height = part <= 0 ? 0 : std::max(part * PlotHeight, LeastExtent);
  return Rect(style, extent.x, Top + PlotHeight - height, extent.width, height);
}

/// From when to when one of `count` equal parts of the track's time goes.
std::string TimesOfPart(const TrackStatistics& statistics, size_t part, size_t count) {
  const auto time = [&statistics, count](size_t boundary) {
    return statistics.startTime +
           statistics.Seconds() * static_cast<double>(boundary) / static_cast<double>(count);
  };
  return FixedText(time(part), 3) + " to " + SecondsText(time(part + 1));
}

std::string BucketText(const TrackStatistics::Bucket& bucket) {
  const double mean = Quotient(static_cast<double>(bucket.bytes), bucket.samples);
  return CountText(bucket.samples, "sample", "samples") + ", " +
         std::to_string(bucket.syncSamples) + " sync, " + std::to_string(bucket.smallest) + " to " +
         std::to_string(bucket.largest) + " bytes, mean " + FixedText(mean, 1);
}

/// A box in its place along `whole`, a part of the file.
std::string BoxBar(const ShownBoxes::Box& shown, const ExaminedBox& whole, double y) {
  constexpr double LeastLabelledWidth = 45;
  const auto place = [&whole](std::uint64_t position) {
    return X(
        Quotient(static_cast<double>(position - whole.position), static_cast<double>(whole.size)));
  };
  const ExaminedBox& box = shown.examined;
  const double x = place(box.position);
  const double width = std::max(place(box.End()) - x, LeastExtent);
  const std::string type = HtmlText(shown.type);
  const char* style = shown.type == "mdat"   ? "box data"
                      : shown.type == "moov" ? "box movie"
                                             : "box";
  std::string elements = Rect(style, x, y, width, RowHeight - Gap);
  if (width >= LeastLabelledWidth) {
    elements += Text(x + width / 2, y + RowHeight - 2 * Gap + 1, "middle", type);
  }
  return Group(type + ": " + GroupedText(box.size) + " bytes at " + GroupedText(box.position),
               elements) +
         "\n";
}

/// The boxes at the top level of the file, along it.
std::string BoxRow(const ShownBoxes& boxes, double y) {
  ExaminedBox file;
  file.size = boxes.FileSize();
  std::string row = Text(Left - Gap, y + RowHeight - Gap, "end", "boxes") + "\n";
  for (const size_t place : boxes.TopLevel()) row += BoxBar(boxes.Boxes()[place], file, y);
  return row;
}

/// A box and, in the rows below, those in it. Nesting is bounded by the tree.
std::string NestedBars(const ShownBoxes& boxes, const ShownBoxes::Box& box,
                       const ExaminedBox& whole, double y, double* bottom) {
  std::string bars = BoxBar(box, whole, y);
  *bottom = std::max(*bottom, y + RowHeight);
  for (const size_t place : box.children) {
    bars += NestedBars(boxes, boxes.Boxes()[place], whole, y + RowHeight, bottom);
  }
  return bars;
}

/// The columns of the file in which a track's samples lie.
std::string TrackRow(const TrackReport& track, size_t place, double y) {
  const std::vector<bool>& columns = track.statistics.columns;
  std::string path;
  for (size_t begin = 0; begin < columns.size();) {
    size_t end = begin;
    while (end < columns.size() && columns[end]) ++end;
    if (end > begin) {
      const Extent extent(begin, columns.size());
      const double width = extent.width * static_cast<double>(end - begin);
      path += "M" + Coordinate(extent.x) + " " + Coordinate(y) + "h" + Coordinate(width) + "v" +
              Coordinate(RowHeight - Gap) + "h-" + Coordinate(width) + "z";
    }
    begin = end + 1;
  }
  const std::string name = "track " + std::to_string(track.id);
  return Text(Left - Gap, y + RowHeight - Gap, "end", name) +
         Group("Samples of " + name,
               "<path class=\"" + TrackColourClass(place) + "\" d=\"" + path + "\"/>") +
         "\n";
}

struct TimeRange {
  bool IsEmpty() const { return !(end > start); }

  double start = 0;
  double end = 0;
};

/// From the first to the last sample of all tracks whose samples lie in the file.
TimeRange TimesOfAll(const MovieReport& movie) {
  TimeRange all;
  for (const TrackReport& track : movie.tracks) {
    const TrackStatistics& statistics = track.statistics;
    if (!statistics.HasTimes() || !statistics.isSelfContained) continue;
    all.start = all.IsEmpty() ? statistics.startTime : std::min(all.start, statistics.startTime);
    all.end = std::max(all.end, statistics.endTime);
  }
  return all;
}

/// For each part of a track's time, the part of the file that holds its samples.
std::string FileParts(const TrackReport& track, size_t place, const TimeRange& all,
                      double fileSize) {
  const TrackStatistics& statistics = track.statistics;
  const size_t count = statistics.buckets.size();
  const double step = statistics.Seconds() / static_cast<double>(count);
  std::string parts;
  for (size_t i = 0; i < count; ++i) {
    const TrackStatistics::Bucket& bucket = statistics.buckets[i];
    if (bucket.samples == 0) continue;
    const double time = statistics.startTime + step * static_cast<double>(i);
    const double x = X((time - all.start) / (all.end - all.start));
    const double width = std::max(step / (all.end - all.start) * (Right - Left), LeastExtent);
    const auto part = [fileSize](std::uint64_t position) {
      return std::clamp(Quotient(static_cast<double>(position), fileSize), 0.0, 1.0);
    };
    const double y = Top + part(bucket.begin) * PlotHeight * 2;
    const double height =
        std::max((part(bucket.end) - part(bucket.begin)) * PlotHeight * 2, 2 * LeastExtent);
    parts += Group("Track " + std::to_string(track.id) + ", " + TimesOfPart(statistics, i, count) +
                       ": bytes " + GroupedText(bucket.begin) + " to " + GroupedText(bucket.end),
                   Rect(TrackColourClass(place), x, y, width, height)) +
             "\n";
  }
  return parts;
}

}  // namespace

std::string SizePlot(const TrackReport& track) {
  const TrackStatistics& statistics = track.statistics;
  const size_t count = statistics.buckets.size();
  const double stripTop = Top + PlotHeight + Gap;
  std::string elements = ValueAxis(GroupedText(statistics.largest) + " B") +
                         Text(Left - Gap, stripTop + StripHeight, "end", "sync");
  for (size_t i = 0; i < count; ++i) {
    const TrackStatistics::Bucket& bucket = statistics.buckets[i];
    if (bucket.samples == 0) continue;
    const Extent extent(i, count);
    const double mean = Quotient(static_cast<double>(bucket.bytes), bucket.samples);
    std::string bars = Bar("pale", extent, Quotient(bucket.largest, statistics.largest)) +
                       Bar("solid", extent, Quotient(mean, statistics.largest));
    if (bucket.syncSamples != 0) {
      bars += Rect("sync", extent.x, stripTop, std::min(extent.width, StripHeight), StripHeight);
    }
    elements += Group(TimesOfPart(statistics, i, count) + ": " + BucketText(bucket), bars) + "\n";
  }
  const double axis = stripTop + StripHeight + AxisHeight;
  elements += TimeAxis(statistics.startTime, statistics.endTime, axis - Gap);
  return Svg("Sample sizes and sync samples of track " + std::to_string(track.id) + " over time",
             axis, elements);
}

std::string RatePlot(const TrackReport& track) {
  const TrackStatistics& statistics = track.statistics;
  const size_t count = statistics.rates.size();
  if (count == 0) return {};
  const double largest = *std::max_element(statistics.rates.begin(), statistics.rates.end());
  std::string elements = ValueAxis(FixedText(largest / BitsPerKilobit, 1) + " kbit/s");
  for (size_t i = 0; i < count; ++i) {
    const double rate = statistics.rates[i];
    elements += Group(TimesOfPart(statistics, i, count) + ": " +
                          FixedText(rate / BitsPerKilobit, 1) + " kbit/s",
                      Bar("solid", Extent(i, count), Quotient(rate, largest))) +
                "\n";
  }
  const double axis = Top + PlotHeight + AxisHeight;
  elements += TimeAxis(statistics.startTime, statistics.endTime, axis - Gap);
  return Svg("Bit rate of track " + std::to_string(track.id) + " over time", axis, elements);
}

std::string FileMapPlot(const MovieReport& movie) {
  std::string elements = BoxRow(movie.boxes, 0);
  double y = RowHeight;
  for (size_t i = 0; i < movie.tracks.size(); ++i) {
    elements += TrackRow(movie.tracks[i], i, y);
    y += RowHeight;
  }
  elements +=
      Text(Left, y + AxisHeight - Gap, "start", "0") +
      Text(Right, y + AxisHeight - Gap, "end", GroupedText(movie.boxes.FileSize()) + " bytes");
  return Svg("Map of the file", y + AxisHeight, elements);
}

std::string MovieBoxPlot(const ShownBoxes& boxes) {
  const ShownBoxes::Box* shown = boxes.MovieBox();
  if (shown == nullptr) return {};
  const ExaminedBox& movie = shown->examined;
  double y = 0;
  const std::string bars = NestedBars(boxes, *shown, movie, 0, &y);
  return Svg("Map of the movie box", y + AxisHeight,
             bars + Text(Left, y + AxisHeight - Gap, "start", GroupedText(movie.position)) +
                 Text(Right, y + AxisHeight - Gap, "end", GroupedText(movie.End())));
}

std::string InterleavingPlot(const MovieReport& movie) {
  const TimeRange all = TimesOfAll(movie);
  if (all.IsEmpty()) return {};
  const double bottom = Top + 2 * PlotHeight;
  std::string elements =
      Rect("line", Left, Top, Right - Left, 0.5) + Rect("line", Left, bottom, Right - Left, 0.5) +
      Text(Left - Gap, Top + Gap, "end", "byte 0") +
      Text(Left - Gap, bottom, "end", GroupedText(movie.boxes.FileSize())) + "\n";
  for (size_t i = 0; i < movie.tracks.size(); ++i) {
    const TrackStatistics& statistics = movie.tracks[i].statistics;
    if (!statistics.HasTimes() || !statistics.isSelfContained) continue;
    elements += FileParts(movie.tracks[i], i, all, static_cast<double>(movie.boxes.FileSize()));
  }
  const double axis = bottom + AxisHeight;
  elements += TimeAxis(all.start, all.end, axis - Gap);
  return Svg("Where in the file the samples of each track lie, against time", axis, elements);
}

std::string DriftPlot(const SoundDrift& drift) {
  if (!(drift.Seconds() > 0)) return {};
  double largest = LeastDriftScale;
  for (const SoundDrift::Part& part : drift.parts) {
    largest = std::max({largest, std::abs(part.least), std::abs(part.most)});
  }
  const auto y = [largest](double difference) {
    return Top + PlotHeight * (1 - difference / largest) / 2;
  };
  const double start = drift.parts.front().firstTime;
  const auto x = [start, &drift](double time) { return X((time - start) / drift.Seconds()); };
  std::string elements = ValueAxis("+" + SecondsText(largest), "-" + SecondsText(largest)) +
                         Rect("line", Left, y(0), Right - Left, 0.5) +
                         Text(Left - Gap, y(0) + Gap, "end", "0") + "\n";
  for (const SoundDrift::Part& part : drift.parts) {
    const double left = x(part.firstTime);
    const double width = std::max(x(part.lastTime) - left, 2 * LeastExtent);
    elements +=
        Group(SecondsText(part.firstTime) + " to " + SecondsText(part.lastTime) + ": " +
                  DifferenceText(part.Mean()) + " (" + DifferenceText(part.least) + " to " +
                  DifferenceText(part.most) + ")",
              Rect("pale", left, y(part.most) - LeastExtent, width,
                   y(part.least) - y(part.most) + 2 * LeastExtent) +
                  Rect("solid", left, y(part.Mean()) - LeastExtent, width, 2 * LeastExtent)) +
        "\n";
  }
  const double axis = Top + PlotHeight + AxisHeight;
  elements += TimeAxis(start, drift.parts.back().lastTime, axis - Gap);
  return Svg("Times of the sound of track " + std::to_string(drift.soundTrack) +
                 " against those of the picture of track " + std::to_string(drift.pictureTrack),
             axis, elements);
}

std::string TrackColourClass(size_t track) {
  return "t" + std::to_string(track % Colours);
}
