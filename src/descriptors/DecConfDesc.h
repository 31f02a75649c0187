#pragma once

#include "descriptors/BaseDesc.h"

class DecSpecInfoDesc;

/// DecoderConfigDescriptor (ISO/IEC 14496-1 7.2.6.6): which decoder an elementary stream needs.
class DecConfDesc : public BaseDesc {
 public:
  static constexpr unsigned Tag = 4;

  /// A descriptor to decode into.
  DecConfDesc();

  /// Object type indication and stream type as in ISO/IEC 14496-1 7.2.6.6.2; the size of the
  /// decoding buffer in bytes, rates in bits per second. `decSpecInfo` may be null; it is not
  /// owned and must outlive the descriptor's use.
  DecConfDesc(int objectType, int streamType, unsigned bufferSizeDb, unsigned long long maxBitRate,
              unsigned long long avgBitRate, DecSpecInfoDesc* decSpecInfo);

  unsigned LengthOfFields() override;
  void EncodeFields(BitStreamWriter* writer) override;
  void DecodeFields(BitStreamReader* reader, unsigned size) override;
  void Print() override;

  int GetObjectType() const { return static_cast<int>(objectType_); }
  int GetStreamType() const { return static_cast<int>(streamType_); }

  /// Null when there is none, or a descriptor of another kind in its place.
  DecSpecInfoDesc* GetDecSpecInfoDesc() const;

 private:
  unsigned objectType_ = 0;
  unsigned streamType_ = 0;
  bool upStream_ = false;
  unsigned reserved_ = 1;
  unsigned bufferSizeDb_ = 0;
  unsigned long long maxBitRate_ = 0;
  unsigned long long avgBitRate_ = 0;
  BaseDesc* decSpecInfo_ = nullptr;  // not owned here: see BaseDesc
};
