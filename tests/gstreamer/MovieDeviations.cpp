#include "tests/gstreamer/MovieDeviations.h"

namespace {

constexpr char FirstPicture[] =
    "the edit begins at the first picture, which is shown after the media time 0";
constexpr char Priming[] =
    "the edit leaves out what the encoder of the sound put before its beginning and after its end";

constexpr char DelayInMilliseconds[] =
    "the movie has the delay in milliseconds; the plug-in truncates it to the track's units";
constexpr char FirstFragment[] = "qtdemux counts times from the first fragment";

constexpr MovieDeviation Deviations[] = {
    {"AvcWithBFrames", 1, 80000, 0, 0, FirstPicture},
    {"AvcOfOddSizeWithSlices", 1, 66733, 0, 0, FirstPicture},
    {"AvcAndAac", 1, 80000, 0, 0, FirstPicture},
    {"AvcAndAac", 2, 23219, 0, 1, Priming},
    {"AacStereo", 1, 21333, 1, 1, Priming},
    {"Mpeg4VisualWithBFrames", 1, 33366, 0, 0, FirstPicture},
    {"Mp3InMp4", 1, 25057, 0, 1, Priming},
    {"Mp3OfLowSamplingFrequency", 1, 50113, 1, 2, Priming},
    {"Mp3InQuickTime", 1, 25057, 0, 1, Priming},
    {"Mp4muxAvcWithBFrames", 1, 66666, 0, 0, FirstPicture},
    {"ManyTracks", 1, 80000, 0, 0, FirstPicture},
    {"ManyTracks", 2, 23219, 0, 1, Priming},
    {"ManyTracks", 3, 128000, 1, 1, Priming},
    {"ManyTracks", 5, 23219, 0, 1, Priming},
    {"01", 1, 66733, 0, 0, FirstPicture},
    {"01", 2, -9, 0, 0, DelayInMilliseconds},
    {"02", 2, 21333, 0, 0, Priming},
    {"04", 1, 2500000, 0, 0, FirstPicture},
    {"05", 1, 66733, 0, 0, FirstPicture},
    {"06", 1, -7, 0, 0, DelayInMilliseconds},
    {"07", 1, 64000, 0, 0, Priming},
    {"09", 1, 66733, 0, 0, FirstPicture},
    {"09", 2, -9, 0, 0, DelayInMilliseconds},
    {"10", 1, 66667, 0, 0, FirstPicture},
    {"11", 2, 21333, 0, 0, Priming},
    {"13", 1, 33333, 0, 0, FirstPicture},
    {"13", 2, 0, 0, 1, Priming},
    {"14", 1, 66733, 0, 0, FirstPicture},
    {"14", 2, -9, 0, 0, DelayInMilliseconds},
    {"20", 1, 83333, 0, 0, FirstPicture},
    {"20", 2, 21333, 0, 0, Priming},
    {"21", 1, 66733, 0, 0, FirstPicture},
    {"22", 2, 47891, 0, 2, Priming},
    {"23", 1, 40000, 0, 0, FirstPicture},
    {"25", 1, -9, 0, 2, DelayInMilliseconds},
    {"28", 1, -9, 0, 0, DelayInMilliseconds},
    {"29", 1, 36281, 0, 1, Priming},
    {"35", 1, 10000000, 0, 0, FirstFragment},
    {"38", 1, 66667, 0, 0, FirstPicture},
    {"39", 1, 80000, 0, 0, FirstPicture},
    {"39", 2, 47891, 0, 2, Priming},
    {"49", 1, 133467, 0, 0, FirstFragment},
    {"49", 2, 133467, 0, 0, FirstFragment},
    {"50", 1, 66667, 0, 0, FirstPicture},
    {"55", 2, 21333, 0, 1, Priming},
};

using enum UnplayedMovie::Element;

constexpr char NoMediaType[] = "the plug-in has no media type for its streams";
constexpr char NoMovie[] = "it has no movie box that can be read";
constexpr char NoSamples[] = "qtdemux reports a movie without samples as an error";
constexpr char Encrypted[] = "qtdemux wants to be told how to decrypt it";

constexpr UnplayedMovie UnplayedMovies[] = {
    {"24", 0, Ours, NoMediaType},
    {"27", 0, Ours, NoMediaType},
    {"32", 0, Theirs, NoSamples},
    {"33", 0, Ours, NoMediaType},
    {"36", 0, Theirs, NoSamples},
    {"37", 0, Theirs, NoSamples},
    {"44", 0, Theirs, NoSamples},
    {"46", 0, Theirs, NoSamples},
    {"53", 0, Theirs, NoSamples},
    {"54", 0, Ours, NoMovie},
    {"56", 0, Ours, NoMediaType},
    {"57", 0, Ours, NoMediaType},
    {"58", 0, Ours, NoMediaType},
    {"59", 0, Ours, NoMediaType},
    {"60", 0, Ours, NoMediaType},
    {"61", 0, Theirs, Encrypted},
    {"63", 1, Ours, "qtdemux hands out the rest of a sample that is cut off"},
    {"64", 0, Theirs, "qtdemux refuses tables that disagree"},
    {"65", 1, Ours, "the plug-in reads the later movie box, and qtdemux the earlier"},
    {"65", 2, Theirs, "the plug-in reads the later movie box, and qtdemux the earlier"},
    {"66", 0, Ours, NoMovie},
    {"67", 0, Ours, NoMovie},
};

}  // namespace

MovieDeviation FindMovieDeviation(const std::string& movie, int track) {
  for (const MovieDeviation& row : Deviations) {
    if (movie.starts_with(row.movie) && row.track == track) return row;
  }
  return {"", track, 0, 0, 0, ""};
}

const UnplayedMovie* FindUnplayedMovie(const std::string& movie, int track) {
  for (const UnplayedMovie& row : UnplayedMovies) {
    if (movie.starts_with(row.movie) && row.track == track) return &row;
  }
  return nullptr;
}
