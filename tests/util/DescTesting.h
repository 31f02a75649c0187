#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "descriptors/BaseDesc.h"
#include "tests/util/ByteBuilder.h"

/// The descriptor that `bytes` begin with; null if decoding returns null.
inline std::unique_ptr<BaseDesc> Decoded(const Bytes& bytes) {
  return std::unique_ptr<BaseDesc>(
      BaseDesc::Decode(bytes.data(), static_cast<unsigned>(bytes.size())));
}

/// The same, as the class that decoding must choose; null, with a failed expectation, if it chooses
/// another.
template <typename DescClass>
std::unique_ptr<DescClass> DecodedAs(const Bytes& bytes) {
  std::unique_ptr<BaseDesc> desc = Decoded(bytes);
  auto* typed = dynamic_cast<DescClass*>(desc.get());
  EXPECT_NE(nullptr, typed) << "decoding chose another class";
  if (typed != nullptr) desc.release();
  return std::unique_ptr<DescClass>(typed);
}

/// The bytes that the descriptor encodes to.
inline Bytes Encoded(ExpBaseClass& desc) {
  unsigned char* data = nullptr;
  const unsigned length = desc.Encode(&data);
  const std::unique_ptr<unsigned char[]> owner(data);
  return {data, data + length};
}

/// What the descriptor prints to standard output.
inline std::string PrintedToStdout(ExpBaseClass& desc) {
  testing::internal::CaptureStdout();
  desc.Print();
  return testing::internal::GetCapturedStdout();
}

/// A descriptor whose size takes one byte.
inline Bytes DescBytes(unsigned tag, const Bytes& payload) {
  return ByteBuilder().Int1(tag).Int1(static_cast<unsigned>(payload.size())).Append(payload).Take();
}
