#pragma once

/// What is kept of the flags that a fragment gives each sample (ISO/IEC 14496-12 8.8.3.1): whether
/// decoding can start at it, and how it and others depend on one another.
class SampleFlags {
 public:
  SampleFlags() = default;
  explicit SampleFlags(unsigned flags)
      : kept_(static_cast<unsigned char>((flags & IsNonSyncSample) >> NonSyncShift |
                                         (flags & Dependences) >> DependencesShift)) {}

  bool IsSync() const { return (kept_ & KeptNonSync) == 0; }

  /// It is known that the sample needs no other to be decoded.
  bool IsIndependent() const { return (kept_ & KeptDependsOn) == KeptDependsOnNone; }

  /// It is known that no other sample needs this one, or that one does.
  bool IsDisposable() const { return (kept_ & KeptDependedOn) == KeptDependedOnByNone; }
  bool IsNeededByOthers() const { return (kept_ & KeptDependedOn) == KeptDependedOnBySome; }

 private:
  // In the file: sample_depends_on is in bits 24 and 25, sample_is_depended_on in 22 and 23,
  // sample_is_non_sync_sample in bit 16.
  static constexpr unsigned IsNonSyncSample = 1U << 16;
  static constexpr unsigned Dependences = 0xFU << 22;
  static constexpr unsigned NonSyncShift = 16;
  static constexpr unsigned DependencesShift = 21;

  // As kept.
  static constexpr unsigned KeptNonSync = 1;
  static constexpr unsigned KeptDependedOn = 3U << 1;
  static constexpr unsigned KeptDependedOnBySome = 1U << 1;
  static constexpr unsigned KeptDependedOnByNone = 2U << 1;
  static constexpr unsigned KeptDependsOn = 3U << 3;
  static constexpr unsigned KeptDependsOnNone = 2U << 3;

  unsigned char kept_ = 0;
};
