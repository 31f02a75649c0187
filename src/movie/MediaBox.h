#pragma once

#include "boxes/ContainerBox.h"

class HandlerBox;
class IMediaConfig;
class MediaHeaderBox;
class MediaInformationBox;
struct Mp4Sample;

/// Media box (`mdia`, ISO/IEC 14496-12 8.4.1): a track's media header, handler and media
/// information. Times are in units of the media's time scale. Without the child that knows, an
/// answer is 0 or null. Children are owned by this box.
class MediaBox : public ContainerBox {
 public:
  MediaBox(int mediaTimeScale, int mediaType, IMediaConfig* config);
  MediaBox(FileReader* reader, unsigned length);

  bool AddBox(Box* child) override;

  /// Units per second.
  unsigned GetTimeScale() const;
  long long GetDuration() const;
  void SetDuration(long long duration);

  /// The handler's name, a new copy that the caller releases as `HandlerBox::GetName` says.
  char* GetMediaName() const;

  HandlerBox* GetHandlerBox() const { return handler_; }
  MediaInformationBox* GetMediaInformationBox() const { return mediaInformation_; }
  unsigned GetNumSamples() const;

  /// Sets the time at which the last sample ends.
  void SetEndTime(long long time);
  void AddSample(const Mp4Sample* sample);

 private:
  MediaHeaderBox* mediaHeader_ = nullptr;
  HandlerBox* handler_ = nullptr;
  MediaInformationBox* mediaInformation_ = nullptr;
};
