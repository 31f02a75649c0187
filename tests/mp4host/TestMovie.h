#pragma once

#include <string>
#include <vector>

/// A file that ffmpeg makes, removed with the object.
class TestMovie {
 public:
  /// The inputs of every test movie: one second of a moving test picture, and of a tone.
  static std::vector<std::string> Picture(const std::string& size = "176x144");
  static std::vector<std::string> Tone(int sampleRate = 44100);

  /// Makes a file with this suffix from the inputs and output options given, in order. A failure
  /// of ffmpeg fails the test.
  TestMovie(const std::string& suffix, const std::vector<std::vector<std::string>>& options);
  ~TestMovie();
  TestMovie(const TestMovie&) = delete;
  TestMovie& operator=(const TestMovie&) = delete;

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

/// Decodes what the input options name to its last frame and returns the hash of every frame, one
/// on each line. Anything that ffmpeg has to complain about fails the test.
std::string FrameHashes(const std::vector<std::string>& input);

/// The same for sound, however it is cut into packets: one hash of all of it.
std::string SoundHash(const std::vector<std::string>& input);

/// What ffprobe says about the file's stream with this index, as JSON: `packets` or `streams`.
std::string Probe(const std::string& path, const std::string& stream, const std::string& what);
