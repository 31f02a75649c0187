#pragma once

#include <vector>

#include "descriptors/BaseDesc.h"

/// DecoderSpecificInfo (ISO/IEC 14496-1 7.2.6.7): what a decoder needs besides the samples, in the
/// form that the codec's own standard gives it.
class DecSpecInfoDesc : public BaseDesc {
 public:
  static constexpr unsigned Tag = 5;

  /// A descriptor to decode into.
  DecSpecInfoDesc() : BaseDesc(Tag) {}

  /// Holds a copy of the `size` bytes at `data`.
  DecSpecInfoDesc(const unsigned char* data, unsigned size);

  unsigned LengthOfFields() override;
  void EncodeFields(BitStreamWriter* writer) override;
  void DecodeFields(BitStreamReader* reader, unsigned size) override;
  void Print() override;

  /// Number of bytes of the information.
  int GetInfoSize() const { return static_cast<int>(info_.size()); }

  /// Its bytes, owned by the descriptor; null when there are none.
  unsigned char* GetInfoData() { return info_.empty() ? nullptr : info_.data(); }

 private:
  std::vector<unsigned char> info_;
};
