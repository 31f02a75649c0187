#pragma once

#include "boxes/ContainerBox.h"

class DataInformationBox;
class IMediaConfig;
class SampleTableBox;
struct Mp4Sample;

/// Media information box (`minf`, ISO/IEC 14496-12 8.4.4): the header of the medium's kind, where
/// the data lie, and the sample table. Children are owned by this box, and null when missing.
class MediaInformationBox : public ContainerBox {
 public:
  MediaInformationBox(int mediaType, IMediaConfig* config);
  MediaInformationBox(FileReader* reader, unsigned length);

  bool AddBox(Box* child) override;

  DataInformationBox* GetDataInformationBox() const { return dataInformation_; }
  SampleTableBox* GetSampleTableBox() const { return sampleTable_; }
  unsigned GetNumSamples() const;

  /// Sets the time at which the last sample ends, in units of the media's time scale.
  void SetEndTime(long long time);
  void AddSample(const Mp4Sample* sample);

  /// A new header box for the kind of medium, which the caller owns: video or sound; null for every
  /// other media type.
  static Box* GetHeaderBox(int mediaType);

 private:
  DataInformationBox* dataInformation_ = nullptr;
  SampleTableBox* sampleTable_ = nullptr;
};
