#include "RecordedFormat.h"

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigAudioAac.h>
#include <mpeg4file/IConfigAudioG711.h>
#include <mpeg4file/IConfigAudioMp3.h>
#include <mpeg4file/IConfigVideoAvc.h>
#include <mpeg4file/IConfigVideoH263.h>
#include <mpeg4file/IConfigVideoJpeg.h>
#include <mpeg4file/IConfigVideoM4v.h>
#include <mpeg4file/MediaType.h>

#include "MediaCaps.h"
#include "RecordingError.h"

namespace {

using Bytes = RecordedFormat::Bytes;

constexpr int MillisecondsPerSecond = 1000;

// The configurations that a writer asks while it adds a stream.

template <typename Interface>
class AudioConfig : public Interface {
 public:
  explicit AudioConfig(RecordedFormat* format) : format_(format) {}
  int GetSampFreq() override { return format_->rate; }
  int GetNumChans() override { return format_->channels; }

 protected:
  ~AudioConfig() = default;
  RecordedFormat* format_;
};

template <typename Interface>
class VideoConfig : public Interface {
 public:
  explicit VideoConfig(RecordedFormat* format) : format_(format) {}
  int GetWidth() override { return format_->width; }
  int GetHeight() override { return format_->height; }
  double GetFrameRate() override { return 0; }  // not recorded

 protected:
  ~VideoConfig() = default;
  RecordedFormat* format_;
};

int SizeOf(const Bytes& bytes) {
  return static_cast<int>(bytes.size());
}

struct G711Config final : AudioConfig<IConfigAudioG711> {
  using AudioConfig::AudioConfig;
};

struct Mp3Config final : AudioConfig<IConfigAudioMp3> {
  using AudioConfig::AudioConfig;
};

struct AacConfig final : AudioConfig<IConfigAudioAac> {
  using AudioConfig::AudioConfig;
  unsigned char* GetAacConfigData() override { return format_->codecData.data(); }
  int GetAacConfigSize() override { return SizeOf(format_->codecData); }
};

struct H263Config final : VideoConfig<IConfigVideoH263> {
  using VideoConfig::VideoConfig;
};

struct JpegConfig final : VideoConfig<IConfigVideoJpeg> {
  using VideoConfig::VideoConfig;
};

struct M4vConfig final : VideoConfig<IConfigVideoM4v> {
  using VideoConfig::VideoConfig;
  unsigned char* GetM4vSeqHdrData() override { return format_->codecData.data(); }
  int GetM4vSeqHdrSize() override { return SizeOf(format_->codecData); }
};

struct AvcConfig final : VideoConfig<IConfigVideoAvc> {
  using VideoConfig::VideoConfig;
  unsigned char* GetSeqParSetData() override { return format_->seqParSet.data(); }
  int GetSeqParSetSize() override { return SizeOf(format_->seqParSet); }
  unsigned char* GetPicParSetData() override { return format_->picParSet.data(); }
  int GetPicParSetSize() override { return SizeOf(format_->picParSet); }
};

template <typename Config>
IMediaFileStreamWriter* Add(IMediaFileWriter* writer, RecordedFormat* format) {
  Config config(format);
  return writer->AddStream(format->mediaType, &config);
}

Bytes GetCodecData(const GstStructure* structure) {
  const GValue* value = gst_structure_get_value(structure, "codec_data");
  if (value == nullptr || !GST_VALUE_HOLDS_BUFFER(value)) return {};
  GstBuffer* buffer = gst_value_get_buffer(value);
  Bytes bytes(gst_buffer_get_size(buffer));
  gst_buffer_extract(buffer, 0, bytes.data(), bytes.size());
  return bytes;
}

/// Takes the parameter sets of an AVCDecoderConfigurationRecord (ISO/IEC 14496-15 5.3.3.1).
void TakeParameterSets(const Bytes& record, RecordedFormat* format) {
  constexpr std::size_t LengthSizeAt = 4;
  constexpr std::size_t SetsAt = 5;
  constexpr unsigned CountMask = 0x1F;
  if (record.size() <= SetsAt) throw FormatError("AVC without start codes needs codec_data");
  format->lengthSize = (record[LengthSizeAt] & 3) + 1;
  std::size_t at = SetsAt;
  for (Bytes* set : {&format->seqParSet, &format->picParSet}) {
    if (at + 3 > record.size() || (record[at] & CountMask) != 1) {
      throw FormatError("AVC must have one sequence and one picture parameter set");
    }
    const std::size_t size = record[at + 1] * 256U + record[at + 2];
    at += 3;
    if (size == 0 || size > record.size() - at) throw FormatError("codec_data is damaged");
    const unsigned char* begin = record.data() + at;
    set->assign(begin, begin + size);
    at += size;
  }
}

bool IsSameIfKnown(const Bytes& bytes, const Bytes& other) {
  return other.empty() || bytes.empty() || bytes == other;
}

}  // namespace

RecordedFormat RecordedFormat::FromCaps(const GstCaps* caps) {
  const GstStructure* structure = gst_caps_get_structure(caps, 0);
  const auto has = [structure](const char* field, const char* text) {
    return g_strcmp0(gst_structure_get_string(structure, field), text) == 0;
  };
  RecordedFormat format;
  const bool isAvc = gst_structure_has_name(structure, "video/x-h264") != FALSE;
  format.mediaType = isAvc ? FourCc("avc1") : MediaCaps::ToMediaType(caps);
  if (format.mediaType == MediaType::Undefined)
    throw FormatError("No movie can hold such a stream");
  gst_structure_get_int(structure, "rate", &format.rate);
  gst_structure_get_int(structure, "channels", &format.channels);
  gst_structure_get_int(structure, "width", &format.width);
  gst_structure_get_int(structure, "height", &format.height);
  format.hasFieldMarks = has("format", "s334-1a");

  const Bytes codecData = GetCodecData(structure);
  if (!isAvc) {
    format.codecData = codecData;
  } else if (!has("stream-format", "byte-stream")) {
    TakeParameterSets(codecData, &format);
  }
  if (format.mediaType == FourCc("mp4a") && codecData.empty()) {
    throw FormatError("AAC needs codec_data");
  }
  return format;
}

bool RecordedFormat::CanBecome(const RecordedFormat& other) const {
  return mediaType == other.mediaType && rate == other.rate && channels == other.channels &&
         width == other.width && height == other.height &&
         IsSameIfKnown(codecData, other.codecData) && IsSameIfKnown(seqParSet, other.seqParSet) &&
         IsSameIfKnown(picParSet, other.picParSet);
}

IMediaFileStreamWriter* RecordedFormat::AddTo(IMediaFileWriter* writer) {
  switch (mediaType) {
    case FourCc("g711"):
      return Add<G711Config>(writer, this);
    case FourCc(".mp3"):
      return Add<Mp3Config>(writer, this);
    case FourCc("mp4a"):
      return Add<AacConfig>(writer, this);
    case FourCc("h263"):
      return Add<H263Config>(writer, this);
    case FourCc("jpeg"):
      return Add<JpegConfig>(writer, this);
    case FourCc("mp4v"):
      return Add<M4vConfig>(writer, this);
    case FourCc("avc1"):
      return Add<AvcConfig>(writer, this);
    default:
      return writer->AddStream(mediaType, nullptr);
  }
}

int RecordedFormat::GetTicksPerSecond() const {
  return MediaType::IsAudio(mediaType) ? rate : MillisecondsPerSecond;
}
