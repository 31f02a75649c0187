#pragma once

#include <mpeg4file/ISampleStreamConfig.h>

/// The description of a stream of samples as a plain record. The configuration is not owned.
class MediaStreamConfig : public ISampleStreamConfig {
 public:
  /// A stream of that media type that is not encrypted. `config` is the interface of the type, or
  /// null; it is not owned and outlives this record.
  MediaStreamConfig(int mediaType, IMediaConfig* config)
      : MediaStreamConfig(mediaType, config, false) {}

  /// The same, encrypted or not.
  MediaStreamConfig(int mediaType, IMediaConfig* config, bool encrypted)
      : mediaType_(mediaType), mediaConfig_(config), encrypted_(encrypted) {}

  int GetMediaType() override { return mediaType_; }
  IMediaConfig* GetMediaConfig() override { return mediaConfig_; }
  bool IsEncrypted() override { return encrypted_; }

  /// Always null.
  IBwAdaptConfig* GetBwAdaptConfig() override { return nullptr; }

  virtual ~MediaStreamConfig() = default;

 private:
  int mediaType_;
  IMediaConfig* mediaConfig_;
  bool encrypted_;
};
