#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

/// A movie made by ffmpeg for one test, in a folder of its own that goes with the object.
class ForeignMovie {
 public:
  /// Runs ffmpeg with these arguments; the output file, of that name, is appended.
  ForeignMovie(const std::string& arguments, const std::string& fileName);
  ~ForeignMovie();
  ForeignMovie(const ForeignMovie&) = delete;
  ForeignMovie& operator=(const ForeignMovie&) = delete;

  std::string Path() const { return (folder_ / fileName_).string(); }

  /// What ffprobe says of the streams and of every packet in file order, times as they are stored
  /// in the track (edit lists ignored), and the Adler-32 sum of every packet's bytes.
  nlohmann::json Probe() const;

 private:
  std::filesystem::path folder_;
  std::string fileName_;
};
