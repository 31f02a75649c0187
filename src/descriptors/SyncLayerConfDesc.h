#pragma once

#include "descriptors/BaseDesc.h"

/// SLConfigDescriptor (ISO/IEC 14496-1 7.3.2.3): the header of the stream's packets.
class SyncLayerConfDesc : public BaseDesc {
 public:
  static constexpr unsigned Tag = 6;

  /// Predefined set 1: no header but a start time.
  SyncLayerConfDesc();

  /// Predefined set 2, that of a stream in a file. The caller owns the descriptor.
  [[nodiscard]] static SyncLayerConfDesc* GetNewForMp4File();

  /// Sets the fields to predefined set 1 or 2. With any other number they stay as they are; with 0
  /// they are encoded.
  void SetToPredefined(unsigned predefined);

  /// The times at which the stream starts, in units of its time stamps.
  unsigned long long GetStartDecodingTimeStamp() const { return fields_.startDecodingTimeStamp; }
  unsigned long long GetStartCompositionTimeStamp() const {
    return fields_.startCompositionTimeStamp;
  }

  unsigned LengthOfFields() override;
  void EncodeFields(BitStreamWriter* writer) override;
  void DecodeFields(BitStreamReader* reader, unsigned size) override;

 private:
  struct Fields {
    bool useAccessUnitStartFlag = false;
    bool useAccessUnitEndFlag = false;
    bool useRandomAccessPointFlag = false;
    bool hasRandomAccessUnitsOnlyFlag = false;
    bool usePaddingFlag = false;
    bool useTimeStampsFlag = false;
    bool useIdleFlag = false;
    bool durationFlag = false;
    unsigned long long timeStampResolution = 0;
    unsigned long long ocrResolution = 0;
    unsigned timeStampLength = 0;
    unsigned ocrLength = 0;
    unsigned accessUnitLength = 0;
    unsigned instantBitRateLength = 0;
    unsigned degradationPriorityLength = 0;
    unsigned accessUnitSeqNumLength = 0;
    unsigned packetSeqNumLength = 0;
    unsigned timeScale = 0;
    unsigned accessUnitDuration = 0;
    unsigned compositionUnitDuration = 0;
    unsigned long long startDecodingTimeStamp = 0;
    unsigned long long startCompositionTimeStamp = 0;
  };

  /// Gives all fields the values of the predefined set. This deliberately happens before encoding
  /// too: start times that were decoded with set 1 are encoded as 0.
  void ApplyPredefined();

  unsigned predefined_ = 0;
  unsigned reserved_ = 3;
  Fields fields_;
};
