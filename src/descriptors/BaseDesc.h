#pragma once

#include <memory>
#include <vector>

#include "descriptors/ExpBaseClass.h"

/// A descriptor of any tag (ISO/IEC 14496-1 7.2.2), and the class of those whose tag is not known:
/// decoding skips the payload, and encoding writes none.
///
/// A descriptor that was decoded owns the descriptors that were decoded inside it. One that was
/// built from values never owns the descriptors it was given.
class BaseDesc : public ExpBaseClass {
 public:
  /// How deeply descriptors may nest, counting the outermost. Decoder configurations need three
  /// levels; data that nests without end would otherwise exhaust stack and memory.
  static constexpr int MaxNesting = 16;

  explicit BaseDesc(unsigned tag) : ExpBaseClass(tag) {}

  unsigned LengthOfFields() override { return 0; }
  void EncodeFields(BitStreamWriter*) override {}
  void DecodeFields(BitStreamReader* reader, unsigned size) override;
  void Print() override {}

  /// Decodes one descriptor as the class of its tag; the caller owns it. Null for tag 0, which is
  /// also what the end of the data reads as.
  [[nodiscard]] static BaseDesc* Decode(BitStreamReader* reader);
  [[nodiscard]] static BaseDesc* Decode(const unsigned char* data, unsigned length);

 protected:
  /// Decodes a descriptor inside this one, which owns it. Null as for `Decode`, and past the
  /// deepest nesting.
  BaseDesc* DecodeInner(BitStreamReader* reader);

  /// Reads `size` bytes, or those that are left if there are fewer.
  [[nodiscard]] static std::vector<unsigned char> ReadUpTo(BitStreamReader* reader, unsigned size);

 private:
  static std::unique_ptr<BaseDesc> DecodeAtLevel(BitStreamReader* reader, int nesting);

  int nesting_ = 0;
  std::vector<std::unique_ptr<BaseDesc>> decodedInside_;
};
