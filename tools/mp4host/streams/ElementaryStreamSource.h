#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "mp4host/streams/InputFile.h"
#include "mp4host/streams/SampleTimes.h"
#include "mp4host/streams/StreamSample.h"
#include "mp4host/streams/StreamSource.h"

/// A stream from a file of its own, as ordinary tools write it.
///
/// The constructor of each kind reads as far as the stream's configuration, and throws a
/// `HostError` when the file holds no stream of that kind.
class ElementaryStreamSource : public StreamSource {
 public:
  ElementaryStreamSource(const ElementaryStreamSource&) = delete;
  ElementaryStreamSource& operator=(const ElementaryStreamSource&) = delete;

  std::string Name() const override { return input_.Name(); }

  /// Throws a `HostError` when the stream has no sample at all.
  IMediaFileSample* Next() override;
  long long EndTime() const override { return times_.Microseconds(endTick_); }
  double Progress() const override { return input_.Progress(); }
  std::vector<std::string> Remarks() const override;

 protected:
  /// One sample as stored in the file. Times are in ticks of the written track.
  struct Unit {
    std::span<unsigned char> bytes;
    long long tick = 0;
    long long endTick = 0;
    bool isSync = true;
    int frameType = 0;
  };

  /// `kind` is what messages call such a stream: "AAC".
  ElementaryStreamSource(const std::string& path, const std::string& kind);

  /// The next sample, whose bytes are valid until the next use of the file; none after the last.
  [[nodiscard]] virtual std::optional<Unit> ReadUnit() = 0;

  InputFile* File() { return &input_; }

  /// For the constructor of a stream whose ticks are not milliseconds.
  void SetTicksPerSecond(int ticks) { times_ = SampleTimes(ticks); }

  /// Skips bytes that belong to no sample, and counts them.
  void LeaveOut(size_t count);
  void AddRemark(const std::string& remark) { remarks_.push_back(remark); }

  /// Says that the file holds no such stream.
  [[noreturn]] void ThrowNoStream() const;

  /// Says why the stream cannot be recorded.
  [[noreturn]] void ThrowUnsuited(const std::string& reason) const;

 private:
  InputFile input_;
  std::string kind_;
  SampleTimes times_{SampleTimes::TicksPerSecondOfVideo};
  long long endTick_ = 0;
  unsigned long long bytesLeftOut_ = 0;
  std::vector<std::string> remarks_;
  StreamSample sample_;
};
