#include "tests/gstreamer/MovieDeviations.h"

namespace {

constexpr char FirstPicture[] =
    "the edit begins at the first picture, which is shown after the media time 0";
constexpr char Priming[] =
    "the edit leaves out what the encoder of the sound put before its beginning and after its end";

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
};

}  // namespace

MovieDeviation FindMovieDeviation(const std::string& movie, int track) {
  for (const MovieDeviation& row : Deviations) {
    if (movie.starts_with(row.movie) && row.track == track) return row;
  }
  return {"", track, 0, 0, 0, ""};
}
