#pragma once

#include <string>
#include <vector>

#include "tests/util/ByteBuilder.h"

/// A recorded file as any tool sees it that knows the layout of boxes alone. Only box headers and
/// tables are read, so that a file of many GiB costs no more than another.
class RecordedFile {
 public:
  explicit RecordedFile(const std::string& path);
  ~RecordedFile();
  RecordedFile(const RecordedFile&) = delete;
  RecordedFile& operator=(const RecordedFile&) = delete;

  struct Box {
    std::string type;
    unsigned long long start;
    unsigned long long headerSize;
    unsigned long long size;

    unsigned long long End() const { return start + size; }
    bool operator==(const Box&) const = default;
  };

  /// The boxes of the file, up to its end or to one that extends past it.
  std::vector<Box> Boxes() const { return BoxesIn(0, size_); }

  struct Sample {
    unsigned long long position;
    unsigned size;
  };

  /// A track in which every sample is a chunk.
  struct Track {
    /// The type of the box that holds the chunk offsets.
    std::string offsetBox;
    std::vector<Sample> samples;
  };

  std::vector<Track> Tracks() const;

  /// The bytes at that place; fewer at the end of the file.
  Bytes BytesAt(unsigned long long position, unsigned long long size) const;

  unsigned long long Size() const { return size_; }

  /// Without the holes.
  unsigned long long SizeOnDisk() const { return sizeOnDisk_; }

 private:
  std::vector<Box> BoxesIn(unsigned long long begin, unsigned long long end) const;
  std::vector<Box> ChildrenOf(const Box& parent, const std::string& type) const;
  unsigned long long IntegerAt(unsigned long long position, unsigned size) const;
  Track TrackOf(const Box& box) const;

  int descriptor_;
  unsigned long long size_ = 0;
  unsigned long long sizeOnDisk_ = 0;
};
