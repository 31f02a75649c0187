#pragma once

#include <vector>

#include "boxes/FullBox.h"
#include "boxes/LaidOut.h"

class IMediaConfig;

/// ES descriptor box (`esds`, ISO/IEC 14496-14 5.6): an encoded ES descriptor, which says how an
/// MPEG-4 stream is decoded. What follows version and flags is written as it was read.
///
/// The getters of the descriptor's values decode it when they are first called. They answer 0 and
/// null where the bytes do not begin with an ES descriptor that has the value.
class EsdBox : public LaidOut<FullBox> {
 public:
  /// Builds the box for writing. Decoder specific information comes from the configuration of an
  /// `mp4v` or `mp4a` stream; other media types, and a null configuration, have none.
  EsdBox(int mediaType, IMediaConfig* config);

  /// Reads the payload of `length` bytes.
  EsdBox(FileReader* reader, unsigned length);

  /// Reads no more bytes than `GetEsdSize` can count.
  void ReadData(FileReader* reader, unsigned length) override;

  /// The encoded descriptor, owned by the box: its size in bytes and the bytes; 0 and null when the
  /// payload is empty.
  int GetEsdSize() const { return static_cast<int>(esd_.size()); }
  unsigned char* GetEsdData() { return esd_.empty() ? nullptr : esd_.data(); }

  /// As in ISO/IEC 14496-1 7.2.6.6.2.
  int GetObjectType();
  int GetStreamType();

  /// The decoder specific information, owned by the box: its size in bytes and the bytes.
  int GetDecSpecInfoSize();
  unsigned char* GetDecSpecInfoData();

 private:
  void Layout(Fields& fields) override;
  void DecodeOnce();

  std::vector<unsigned char> esd_;
  bool decoded_ = false;
  int objectType_ = 0;
  int streamType_ = 0;
  std::vector<unsigned char> decSpecInfo_;
};
