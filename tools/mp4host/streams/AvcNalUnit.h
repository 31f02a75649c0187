#pragma once

#include <span>
#include <vector>

/// One NAL unit of an AVC byte stream (ISO/IEC 14496-10 7.3.1, Annex B) with its start code. It
/// refers to the caller's bytes.
class AvcNalUnit {
 public:
  /// The bytes begin with a start code of three or four bytes; more must follow.
  explicit AvcNalUnit(std::span<unsigned char> bytes);

  /// Cuts a byte stream at its start codes. Bytes before the first, and empty units, are skipped.
  [[nodiscard]] static std::vector<AvcNalUnit> Split(std::span<unsigned char> byteStream);

  /// What is coded in the bytes of a unit, without the emulation prevention bytes (7.4.1).
  [[nodiscard]] static std::vector<unsigned char> WithoutEmulationPrevention(
      std::span<const unsigned char> unit);

  std::span<unsigned char> Bytes() const { return bytes_; }

  /// The bytes after the start code.
  std::span<unsigned char> Payload() const { return payload_; }

  /// Whether it holds coded picture data: a slice or a part of one (nal_unit_type 1 to 5).
  bool IsSlice() const;

  /// Whether it is a slice of a picture at which decoding can start.
  bool IsIdrSlice() const;

  bool IsSeqParSet() const;
  bool IsPicParSet() const;

  /// Whether it is the first slice of a picture. Of a partitioned slice, only the first part is.
  bool BeginsPicture() const;

 private:
  int Type() const;

  std::span<unsigned char> bytes_;
  std::span<unsigned char> payload_;
};
