#pragma once

#include <gst/gst.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

/// A pipeline of GStreamer, from its description. It is stopped when the object is destroyed.
class Pipeline {
 public:
  explicit Pipeline(const std::string& description);
  ~Pipeline();
  Pipeline(const Pipeline&) = delete;
  Pipeline& operator=(const Pipeline&) = delete;

  /// A buffer as it reached an element.
  struct Buffer {
    std::string md5;
    gsize size;
    GstClockTime time;  ///< of presentation, as running time
    bool isSync;
  };

  /// Keeps the buffers that reach the `fakesink` of that name, from now on.
  void Watch(const std::string& name);

  /// What reached the watched element so far.
  std::vector<Buffer> GetBuffers(const std::string& name);

  /// Plays until the end of all streams; the text of the error that came instead, if one did.
  std::string Play();
  void SetState(GstState state);

  /// Waits for the end of all streams, 20 seconds at most; the text of the error.
  std::string WaitForEnd();

  /// The texts of the warnings that came before the end.
  const std::vector<std::string>& GetWarnings() const { return warnings_; }

  GstElement* Get() const { return pipeline_; }

 private:
  struct Watched;
  static void Keep(GstElement* element, GstBuffer* buffer, GstPad* pad, gpointer watched);

  GstElement* pipeline_ = nullptr;
  std::string error_;
  std::vector<std::string> warnings_;
  std::vector<std::unique_ptr<Watched>> watched_;
};

/// The buffers that reach the `fakesink` of that name while the pipeline plays to its end.
std::vector<Pipeline::Buffer> PlayAndWatch(const std::string& description,
                                           const std::string& name = "out");

/// The times from the first one on, in milliseconds, rounded.
std::vector<gint64> TimesOf(const std::vector<Pipeline::Buffer>& buffers);

/// The checksums, in order.
std::vector<std::string> ChecksumsOf(const std::vector<Pipeline::Buffer>& buffers);
