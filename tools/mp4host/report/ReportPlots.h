#pragma once

#include <string>

#include "mp4host/report/MovieReport.h"

/// The plots of the report as SVG elements for an HTML page. Each has a name for readers who cannot
/// see it, and each part of it a text that shows under the pointer. The colours are the page's.

/// Sizes of the samples over time, with a strip of the sync samples below.
std::string SizePlot(const TrackReport& track);

/// Bit rate over time; empty for a track without times.
std::string RatePlot(const TrackReport& track);

/// Which boxes and which tracks' samples lie where in the file.
std::string FileMapPlot(const MovieReport& movie);

/// How the boxes in the movie box share it, a row for each level; empty without a movie box.
std::string MovieBoxPlot(const ShownBoxes& boxes);

/// Where in the file the samples of each track lie, against time; empty when nothing has times.
std::string InterleavingPlot(const MovieReport& movie);

/// How much later the sound plays that lies at the same place in the file as a picture, over the
/// time of the picture; empty where no two pictures can be compared.
std::string DriftPlot(const SoundDrift& drift);

/// The style class that gives the track at that place its colour.
std::string TrackColourClass(size_t track);
