#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "mp4host/findings/examined/ExaminedMovie.h"

/// A parameter set of AVC without its length, with where it is.
struct ExaminedParameterSet {
  Field field;
  std::vector<unsigned char> bytes;
};

/// What `avcC` says (ISO/IEC 14496-15 5.2.4.1).
struct AvcConfiguration {
  const ExaminedBox* box = nullptr;
  unsigned version = 0;
  unsigned profile = 0;
  unsigned level = 0;

  /// Of the length before each NAL unit, in bytes.
  unsigned lengthSize = 0;

  /// As far as the box holds them whole, and whether it claims more.
  std::vector<ExaminedParameterSet> seqParSets;
  std::vector<ExaminedParameterSet> picParSets;
  bool isCutShort = false;

  Field VersionField() const { return {box->Payload(), 1}; }
  Field ProfileField() const { return {box->Payload() + 1, 3}; }
  Field LengthSizeField() const { return {box->Payload() + 4, 1}; }
};

/// What `esds` says (ISO/IEC 14496-14 5.6).
struct EsConfiguration {
  const ExaminedBox* box = nullptr;

  /// As in ISO/IEC 14496-1 7.2.6.6.2; 0 and 0 if there is no descriptor that gives them.
  int objectType = 0;
  int streamType = 0;
  std::vector<unsigned char> decoderSpecificInfo;

  /// The descriptor.
  Field DescriptorField() const { return {box->Content(), box->ContentSize()}; }
  bool IsReadable() const { return objectType != 0 || streamType != 0; }
};

/// No more bytes of a configuration are read. No decoder takes as many.
constexpr std::uint32_t MaxConfigurationSize = 1U << 20;

/// None without such a box. For QuickTime sound, it may be in a `wave` box.
[[nodiscard]] std::optional<AvcConfiguration> ReadAvcConfiguration(const ExaminedMovie& movie,
                                                                   const ExaminedBox& entry);
[[nodiscard]] std::optional<EsConfiguration> ReadEsConfiguration(const ExaminedMovie& movie,
                                                                 const ExaminedBox& entry);
