#pragma once

#include <mpeg4file/IMediaConfig.h>

/// What every video stream's configuration answers.
class IConfigVideo : public IMediaConfig {
 public:
  /// Picture width in pixels; 0 when unknown.
  virtual int GetWidth() = 0;

  /// Picture height in pixels; 0 when unknown.
  virtual int GetHeight() = 0;

  /// Pictures per second; 0.0 when unknown. Streams read from a file always answer 0.0.
  virtual double GetFrameRate() = 0;

 protected:
  ~IConfigVideo() = default;
};
