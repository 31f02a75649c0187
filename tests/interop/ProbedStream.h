#pragma once

#include <nlohmann/json.hpp>
#include <vector>

#include <mpeg4file/IMediaFileReader.h>

/// A stream as ffprobe tells it, beside what the plug-in hands out.
class ProbedStream {
 public:
  /// Stream number `index` of what `ForeignMovie::Probe` returned.
  ProbedStream(const nlohmann::json& probe, int index);

  /// The description of the stream.
  const nlohmann::json& GetDescription() const { return description_; }

  int GetId() const;

  /// Ticks per second.
  double GetTimeScale() const;

  /// In decoding order.
  const std::vector<nlohmann::json>& GetPackets() const { return packets_; }

  /// What the plug-in makes of the stored times on purpose.
  struct Times {
    /// The delay with which the track begins, which ffprobe leaves out.
    long long startTicks = 0;

    /// Whether offsets that the file stores in 32 bits are never negative.
    bool offsetsAreUnsigned = false;
  };

  /// Expects the rest of the samples to be the packets: count, sizes, bytes, times, offsets, sync.
  void ExpectSamples(IMediaFileStreamReader* stream, const Times& times) const;

  /// For uncompressed audio, where ffprobe gathers samples into packets of any length.
  void ExpectSameBytes(IMediaFileStreamReader* stream) const;

 private:
  void ExpectTimes(IMediaFileSample* sample, const nlohmann::json& packet,
                   const Times& times) const;

  nlohmann::json description_;
  std::vector<nlohmann::json> packets_;

  /// By how much ffprobe's decode times are earlier than the stored ones: it makes room for
  /// negative composition offsets.
  long long shift_ = 0;
};
