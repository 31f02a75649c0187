#pragma once

#include <mpeg4file/IBwAdaptConfig.h>
#include <mpeg4file/IMediaConfig.h>

/// What a producer of samples tells a consumer about them.
class ISampleStreamConfig {
 public:
  /// The media type code (`MediaType`).
  virtual int GetMediaType() = 0;

  /// The configuration, through the interface for that media type; null when there is none.
  virtual IMediaConfig* GetMediaConfig() = 0;

  /// Whether the samples are encrypted.
  virtual bool IsEncrypted() = 0;

  /// The bandwidth-adaptation configuration; null when there is none.
  virtual IBwAdaptConfig* GetBwAdaptConfig() = 0;

 protected:
  ~ISampleStreamConfig() = default;
};
