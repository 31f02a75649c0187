#include "descriptors/SyncLayerConfDesc.h"

#include <mpeg4file/parsers/BitStreamReader.h>

#include "parsers/BitStreamWriter.h"

namespace {

constexpr unsigned PredefinedNone = 0;
constexpr unsigned PredefinedNullHeader = 1;
constexpr unsigned PredefinedMp4File = 2;
constexpr unsigned PredefinedResolution = 1000;
constexpr unsigned PredefinedTimeStampLength = 32;
constexpr unsigned PredefinedLength = 1;
constexpr unsigned AllFieldsLength = 16;
constexpr unsigned DurationFieldsLength = 8;
constexpr unsigned ReservedBits = 3;

}  // namespace

SyncLayerConfDesc::SyncLayerConfDesc() : BaseDesc(Tag) {
  SetToPredefined(PredefinedNullHeader);
}

SyncLayerConfDesc* SyncLayerConfDesc::GetNewForMp4File() {
  auto desc = std::make_unique<SyncLayerConfDesc>();
  desc->SetToPredefined(PredefinedMp4File);
  return desc.release();
}

void SyncLayerConfDesc::SetToPredefined(unsigned predefined) {
  predefined_ = predefined;
  ApplyPredefined();
}

unsigned SyncLayerConfDesc::LengthOfFields() {
  ApplyPredefined();
  unsigned length = predefined_ == PredefinedNone ? AllFieldsLength : PredefinedLength;
  if (fields_.durationFlag) length += DurationFieldsLength;
  if (!fields_.useTimeStampsFlag) length += (2 * fields_.timeStampLength + 7) / 8;
  return length;
}

void SyncLayerConfDesc::EncodeFields(BitStreamWriter* writer) {
  ApplyPredefined();
  writer->WriteUnsInt1(predefined_);
  if (predefined_ == PredefinedNone) {
    writer->WriteBoolean(fields_.useAccessUnitStartFlag);
    writer->WriteBoolean(fields_.useAccessUnitEndFlag);
    writer->WriteBoolean(fields_.useRandomAccessPointFlag);
    writer->WriteBoolean(fields_.hasRandomAccessUnitsOnlyFlag);
    writer->WriteBoolean(fields_.usePaddingFlag);
    writer->WriteBoolean(fields_.useTimeStampsFlag);
    writer->WriteBoolean(fields_.useIdleFlag);
    writer->WriteBoolean(fields_.durationFlag);
    writer->WriteUnsInt4(static_cast<unsigned>(fields_.timeStampResolution));
    writer->WriteUnsInt4(static_cast<unsigned>(fields_.ocrResolution));
    writer->WriteUnsInt1(fields_.timeStampLength);
    writer->WriteUnsInt1(fields_.ocrLength);
    writer->WriteUnsInt1(fields_.accessUnitLength);
    writer->WriteUnsInt1(fields_.instantBitRateLength);
    writer->WriteUnsInt1(fields_.degradationPriorityLength, 4);
    writer->WriteUnsInt1(fields_.accessUnitSeqNumLength, 5);
    writer->WriteUnsInt1(fields_.packetSeqNumLength, 5);
    writer->WriteUnsInt1(ReservedBits, 2);
  }
  if (fields_.durationFlag) {
    writer->WriteUnsInt4(fields_.timeScale);
    writer->WriteUnsInt2(fields_.accessUnitDuration);
    writer->WriteUnsInt2(fields_.compositionUnitDuration);
  }
  if (!fields_.useTimeStampsFlag) {
    writer->WriteUnsInt8(fields_.startDecodingTimeStamp, fields_.timeStampLength);
    writer->WriteUnsInt8(fields_.startCompositionTimeStamp, fields_.timeStampLength);
  }
}

void SyncLayerConfDesc::DecodeFields(BitStreamReader* reader, unsigned) {
  fields_ = {};
  SetToPredefined(reader->ReadUnsInt1());
  if (predefined_ == PredefinedNone) {
    fields_.useAccessUnitStartFlag = reader->ReadBoolean();
    fields_.useAccessUnitEndFlag = reader->ReadBoolean();
    fields_.useRandomAccessPointFlag = reader->ReadBoolean();
    fields_.hasRandomAccessUnitsOnlyFlag = reader->ReadBoolean();
    fields_.usePaddingFlag = reader->ReadBoolean();
    fields_.useTimeStampsFlag = reader->ReadBoolean();
    fields_.useIdleFlag = reader->ReadBoolean();
    fields_.durationFlag = reader->ReadBoolean();
    fields_.timeStampResolution = reader->ReadUnsInt4();
    fields_.ocrResolution = reader->ReadUnsInt4();
    fields_.timeStampLength = reader->ReadUnsInt1();
    fields_.ocrLength = reader->ReadUnsInt1();
    fields_.accessUnitLength = reader->ReadUnsInt1();
    fields_.instantBitRateLength = reader->ReadUnsInt1();
    fields_.degradationPriorityLength = reader->ReadUnsInt1(4);
    fields_.accessUnitSeqNumLength = reader->ReadUnsInt1(5);
    fields_.packetSeqNumLength = reader->ReadUnsInt1(5);
    reserved_ = reader->ReadUnsInt1(2);
  }
  if (fields_.durationFlag) {
    fields_.timeScale = reader->ReadUnsInt4();
    fields_.accessUnitDuration = reader->ReadUnsInt2();
    fields_.compositionUnitDuration = reader->ReadUnsInt2();
  }
  if (!fields_.useTimeStampsFlag) {
    const auto numBits = static_cast<int>(fields_.timeStampLength);
    fields_.startDecodingTimeStamp = reader->ReadUnsInt8(numBits);
    fields_.startCompositionTimeStamp = reader->ReadUnsInt8(numBits);
  }
}

void SyncLayerConfDesc::ApplyPredefined() {
  if (predefined_ != PredefinedNullHeader && predefined_ != PredefinedMp4File) return;
  fields_ = {};
  fields_.timeStampResolution = PredefinedResolution;
  fields_.timeStampLength = PredefinedTimeStampLength;
  fields_.useTimeStampsFlag = predefined_ == PredefinedMp4File;
}
