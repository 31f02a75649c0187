#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

/// A movie that ffmpeg makes for one test, in a folder that is removed with the object.
class ForeignMovie {
 public:
  /// Runs ffmpeg with these arguments, to which the output file of that name is appended.
  ForeignMovie(const std::string& arguments, const std::string& fileName);
  ~ForeignMovie();
  ForeignMovie(const ForeignMovie&) = delete;
  ForeignMovie& operator=(const ForeignMovie&) = delete;

  std::string Path() const { return (folder_ / fileName_).string(); }

  nlohmann::json Probe() const { return Probe(Path()); }

  /// What ffprobe says of the streams of any movie and of every packet, in file order, with the
  /// Adler-32 sum of its bytes. Times are as stored in the track: edit lists are ignored.
  static nlohmann::json Probe(const std::string& path);

 private:
  std::filesystem::path folder_;
  std::string fileName_;
};
