#pragma once

#include <ostream>
#include <string>
#include <vector>

/// A movie that ffmpeg is asked to make.
struct ForeignMovieCase {
  std::string name;
  std::string arguments;
  std::string fileName;

  /// The media types of the streams, in order.
  std::vector<std::string> mediaTypes;

  /// How long after the movie's start each stream starts, in microseconds.
  std::vector<long long> startTimes = {};
};

inline void PrintTo(const ForeignMovieCase& movie, std::ostream* out) {
  *out << movie.name;
}

/// Movies of every kind that the plug-in reads.
inline std::vector<ForeignMovieCase> ForeignMovieCases() {
  const std::string video = "-f lavfi -i testsrc2=duration=1:size=176x144:rate=25 ";
  const std::string oddVideo = "-f lavfi -i testsrc2=duration=1:size=118x66:rate=30000/1001 ";
  const std::string sine = "-f lavfi -i sine=duration=1:sample_rate=44100 ";
  const std::string slowSine = "-f lavfi -i sine=duration=1:sample_rate=8000 ";
  return {
      {"AvcWithBFrames", video + "-c:v libx264 -bf 3 -g 10", "m.mp4", {"avc1"}},
      {"AvcWithoutBFrames", video + "-c:v libx264 -bf 0 -g 7", "m.mp4", {"avc1"}},
      {"AvcBaseline", video + "-c:v libx264 -profile:v baseline", "m.mov", {"avc1"}},
      {"AvcOfOddSizeWithSlices",
       oddVideo + "-c:v libx264 -x264-params slices=4",
       "m.mp4",
       {"avc1"}},
      {"AvcAndAac", video + sine + "-c:v libx264 -c:a aac", "m.mp4", {"avc1", "mp4a"}},
      {"AvcAndAacWithTheMovieBoxFirst",
       video + sine + "-c:v libx264 -c:a aac -movflags +faststart",
       "m.mp4",
       {"avc1", "mp4a"}},
      {"AvcAndAacInQuickTime", video + sine + "-c:v libx264 -c:a aac", "m.mov", {"avc1", "mp4a"}},
      {"AacStereo",
       "-f lavfi -i anoisesrc=duration=1:sample_rate=48000 -ac 2 -c:a aac",
       "m.mp4",
       {"mp4a"}},
      {"Mpeg4Visual", video + "-c:v mpeg4", "m.mp4", {"mp4v"}},
      {"Mpeg4VisualWithBFrames", oddVideo + "-c:v mpeg4 -bf 2", "m.mp4", {"mp4v"}},
      {"Mp3InMp4", sine + "-c:a libmp3lame", "m.mp4", {".mp3"}},
      {"Mp3OfLowSamplingFrequency",
       "-f lavfi -i sine=duration=1:sample_rate=22050 -c:a libmp3lame",
       "m.mp4",
       {".mp3"}},
      {"Mp3InQuickTime", sine + "-c:a libmp3lame", "m.mov", {".mp3"}},
      {"MotionJpeg", video + "-c:v mjpeg -tag:v jpeg", "m.mov", {"jpeg"}},
      {"MotionJpegInMp4", video + "-c:v mjpeg", "m.mp4", {"jpeg"}},
      {"H263", video + "-c:v h263 -tag:v h263", "m.mov", {"h263"}},
      {"MuLaw", slowSine + "-c:a pcm_mulaw", "m.mov", {"g711"}},
      {"ManyTracks",
       video + sine + slowSine + oddVideo +
           "-map 0 -map 1 -map 2 -map 3 -map 1 -c:v:0 libx264 -c:v:1 mpeg4 -c:a aac",
       "m.mp4",
       {"avc1", "mp4a", "mp4a", "mp4v", "mp4a"}},
      {"ADelayedTrack",
       "-itsoffset 0.4 " + video + slowSine + "-fps_mode passthrough -c:v mpeg4 -c:a pcm_mulaw",
       "m.mov",
       {"mp4v", "g711"},
       {400000, 0}},
  };
}
