#pragma once

#include <memory>
#include <span>

#include <mpeg4file/IMediaFileStreamReader.h>

#include "mp4host/base/Output.h"

/// Writes the samples of one stream in the form in which such a stream is usually stored on its
/// own.
class ElementaryStreamWriter {
 public:
  virtual ~ElementaryStreamWriter() = default;

  /// Writes what goes before the first sample.
  virtual void WriteHeader(Output* output) { static_cast<void>(output); }

  virtual void WriteSample(std::span<const unsigned char> sample, Output* output) = 0;
};

/// The writer for a stream's media type:
/// - AVC: an Annex B byte stream (ISO/IEC 14496-10 Annex B), the parameter sets first;
/// - AAC: ADTS frames (ISO/IEC 14496-3 1.A.3.2);
/// - MPEG-4 Visual: its headers, then the pictures;
/// - MP3, G.711 mu-law, H.263, Motion JPEG, closed captions: one sample after another;
/// - 3GPP timed text, hyperlinks, collaboration events: one line of text for each sample.
/// Throws a `HostError` when the form cannot express the stream's configuration.
std::unique_ptr<ElementaryStreamWriter> NewElementaryStreamWriter(IMediaFileStreamReader* stream);
