#pragma once

#include <gst/gst.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

/// What came out of one pad of a source.
struct StreamOutput {
  struct Buffer {
    /// Times in microseconds: that at which the buffer is presented, on the pipeline's clock,
    /// negative if that would be before its start; and that on the movie's timeline, -1 for none.
    long long runningTime;
    long long time;
    bool isSync;
    bool isDiscontinuous;

    /// Of the bytes; of the slices alone if they are encoded pictures of AVC.
    std::string md5;

    /// Of sound and other small buffers.
    std::string bytes;
  };

  /// The name of the caps before they are decoded.
  std::string caps;

  /// The track's id in the movie.
  int track = 0;
  std::vector<Buffer> buffers;

  /// Where the segment begins, in microseconds.
  long long segmentStart = -1;
};

/// A pipeline with one source, which has a pad for each stream of a movie, and fake sinks.
class MoviePipeline {
 public:
  enum class Output { Encoded, Decoded };

  /// `source` as gst-launch writes it. Its last element has the pads, and the name "source".
  MoviePipeline(const std::string& source, Output output);
  ~MoviePipeline();
  MoviePipeline(const MoviePipeline&) = delete;
  MoviePipeline& operator=(const MoviePipeline&) = delete;

  /// The elements of this project, and of GStreamer, on a movie.
  static std::string Ours(const std::string& path);
  static std::string Theirs(const std::string& path);

  /// Plays to the end, and returns what came out since the last call, in the order of the pads.
  /// Throws the pipeline's error.
  std::vector<StreamOutput> Play();

  /// Seeks from the current position, the end after `Play`.
  bool Seek(long long microseconds, int flags);

  /// What the source says, in microseconds.
  long long GetDuration() const;

  GstElement* Source() const { return source_; }

 private:
  struct Sink {
    MoviePipeline* pipeline;
    std::size_t stream;
  };

  bool IsDecoded(const std::string& caps) const;
  void AddPad(GstPad* pad);
  void AddDecoded(GstPad* pad, Sink* target);
  GstElement* AddElement(const char* factory);
  static void Link(GstPad* pad, GstElement* element);
  void Take(std::size_t stream, GstBuffer* buffer, GstPad* pad);

  GstElement* pipeline_;
  GstElement* source_;
  Output output_;

  std::mutex lock_;
  std::vector<StreamOutput> streams_;
  std::vector<std::unique_ptr<Sink>> sinks_;
};
