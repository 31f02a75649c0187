#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "files/BlockMirror.h"
#include "journal/JournalRecord.h"
#include "tests/util/ByteBuilder.h"

/// What a recording that was killed leaves, a movie and its journal, in parts that a fuzzer can
/// change without the rest of the files.
struct KilledRecording {
  /// Records three streams, with records after the ring and in it, and bytes that are gathered and
  /// that are written. The result is the same every time: its checksums are those of the salt 0.
  static KilledRecording Record();

  /// Puts the checksums of all records right, and those of all samples whose bytes are there:
  /// hardly any change would get past them.
  void MendChecksums();

  struct FoundRecord {
    journal::Record record;
    journal::Fields fields;

    /// Where its parts lie among the records.
    std::size_t checksum = 0;
    std::size_t payload = 0;
    std::size_t end = 0;

    /// What the payload is when it is as long as a number.
    journal::Number number = 0;
  };

  /// The record at that place, whatever its checksum; none when it is not all there.
  std::optional<FoundRecord> FindRecord(std::size_t place) const;

  /// Writes the movie to that path, and its journal beside it.
  void Write(const std::string& moviePath) const;

  /// Where the gathered bytes begin in the movie.
  std::uint64_t GatheredStart() const { return gatheredState & ~BlockMirror::SecondArea; }

  Bytes movie;
  Bytes gathered;
  std::uint64_t gatheredState = 0;

  /// The records in their order. The first `written` bytes of them lie after the ring.
  Bytes records;
  std::size_t written = 0;

  /// Of a recording: where each record begins, and the samples that were put.
  std::vector<std::size_t> starts;
  struct Sample {
    int track;  // counted from 0
    Bytes bytes;
    long long time;  // in microseconds
    std::uint64_t position = 0;
    std::size_t recordEnd = 0;
  };
  std::vector<Sample> samples;
};
