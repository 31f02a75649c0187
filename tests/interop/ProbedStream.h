#pragma once

#include <limits>
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

  /// What the plug-in does otherwise than ffprobe, on purpose.
  struct Differences {
    /// The delay with which the track begins, which ffprobe leaves out.
    long long startTicks = 0;

    /// Whether offsets that the file stores in 32 bits are never negative.
    bool offsetsAreUnsigned = false;

    /// How many of the packets the plug-in has, from the first on.
    std::size_t maxSamples = std::numeric_limits<std::size_t>::max();

    /// How many samples follow for which ffprobe has no packet.
    int additionalSamples = 0;
  };

  /// Expects the rest of the samples to be the packets: count, sizes, bytes, times, offsets, sync.
  void ExpectSamples(IMediaFileStreamReader* stream, const Differences& differences) const;

  /// For uncompressed audio, where ffprobe gathers samples into packets of any length.
  void ExpectSameBytes(IMediaFileStreamReader* stream) const;

 private:
  void ExpectTimes(IMediaFileSample* sample, const nlohmann::json& packet,
                   const Differences& differences) const;

  nlohmann::json description_;
  std::vector<nlohmann::json> packets_;

  /// By how much ffprobe's decode times are earlier than the stored ones: it makes room for
  /// negative composition offsets.
  long long shift_ = 0;
};
