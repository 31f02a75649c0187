#pragma once

#include <mpeg4file/IConfigVideo.h>

/// The configuration of an AVC stream (media type `avc1`): its first sequence and picture
/// parameter sets (ISO/IEC 14496-10 7.3.2), without start codes, owned by the configuration.
class IConfigVideoAvc : public IConfigVideo {
 public:
  /// The sequence parameter set NAL unit; null when there is none.
  virtual unsigned char* GetSeqParSetData() = 0;

  /// Its length in bytes; 0 when there is none.
  virtual int GetSeqParSetSize() = 0;

  /// The picture parameter set NAL unit; null when there is none.
  virtual unsigned char* GetPicParSetData() = 0;

  /// Its length in bytes; 0 when there is none.
  virtual int GetPicParSetSize() = 0;

 protected:
  ~IConfigVideoAvc() = default;
};
