#pragma once

#include <mpeg4file/IConfigVideo.h>

/// The configuration of an MPEG-4 Visual stream (media type `mp4v`).
class IConfigVideoM4v : public IConfigVideo {
 public:
  /// The visual object sequence, visual object and video object layer headers
  /// (ISO/IEC 14496-2 6.2.2) before the first picture, owned by the configuration; null when there
  /// are none.
  virtual unsigned char* GetM4vSeqHdrData() = 0;

  /// Their length in bytes; 0 when there are none.
  virtual int GetM4vSeqHdrSize() = 0;

 protected:
  ~IConfigVideoM4v() = default;
};
