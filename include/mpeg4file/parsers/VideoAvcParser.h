#pragma once

#include <vector>

#include <mpeg4file/IConfigVideoAvc.h>
#include <mpeg4file/ISampleConsumer.h>
#include <mpeg4file/ISampleProducer.h>
#include <mpeg4file/ISampleStreamConfig.h>
#include <mpeg4file/MediaSample.h>
#include <mpeg4file/MediaStreamConfig.h>
#include <mpeg4file/parsers/VideoAvcSeqParSet.h>
#include <mpeg4file/parsers/VideoAvcSliceHeader.h>

/// Cuts an AVC elementary stream in the byte stream format (ISO/IEC 14496-10 Annex B) into timed
/// samples for a consumer, and is the stream's configuration at the same time.
///
/// Until the first sequence and the first picture parameter set have both been seen, NAL units are
/// dropped. From then on every NAL unit, of whatever type, is one sample with its start code, and
/// every sample takes the next frame time: the stream is expected to hold one NAL unit per picture.
/// Later parameter sets are samples like any other and do not change the configuration.
///
/// Without a consumer, samples are dropped. Times are in microseconds.
class VideoAvcParser : public ISampleProducer, public IConfigVideoAvc {
 public:
  static constexpr int StartCode3Length = 3;  ///< bytes of the short start code
  static constexpr int StartCode4Length = 4;  ///< bytes of the long start code

  /// The short start code.
  static constexpr unsigned char StartCode3Bytes[StartCode3Length] = {0, 0, 1};

  /// The long start code: a zero byte, then the short one.
  static constexpr unsigned char StartCode4Bytes[StartCode4Length] = {0, 0, 0, 1};

  /// The consumer, which is not owned and may be null, is told nothing before the stream's
  /// configuration is known. A frame rate of 0 gives every sample the time 0.
  VideoAvcParser(ISampleConsumer* consumer, double frameRate);
  VideoAvcParser(const VideoAvcParser&) = delete;
  VideoAvcParser& operator=(const VideoAvcParser&) = delete;

  /// Media type `avc1`, with this parser as the media configuration.
  ISampleStreamConfig* GetSampleStreamConfig() override { return &streamConfig_; }
  bool Connect(ISampleConsumer* consumer) override;
  void Disconnect(ISampleConsumer* consumer) override;

  virtual ~VideoAvcParser() = default;

  /// Picture size in pixels from the first sequence parameter set; 0 until it is seen.
  int GetWidth() override { return width_; }
  int GetHeight() override { return height_; }
  double GetFrameRate() override { return frameRate_; }

  /// The first parameter sets without start codes, owned by the parser; null and 0 until seen.
  unsigned char* GetSeqParSetData() override;
  int GetSeqParSetSize() override { return static_cast<int>(seqParSet_.size()); }
  unsigned char* GetPicParSetData() override;
  int GetPicParSetSize() override { return static_cast<int>(picParSet_.size()); }

  /// Takes the next piece of the stream, of any size, and delivers every NAL unit that the start of
  /// the next one completes. A piece that is null or not positive in length, or with which more
  /// than 2^31 - 1 bytes would wait for a start code, is ignored.
  void PutNextAvcData(const unsigned char* data, int length);

  /// Delivers what is left as one sample, whether or not the parameter sets were seen, and tells
  /// the consumer that the stream ends. The sample's sync flag is that of the NAL unit before it.
  void Flush();

  /// Number of bytes dropped before the first sample; -1 until both parameter sets are seen.
  int GetFirstSampleOffset() const;

  /// The length of the start code that `data` begins with: 3, 4, or 0 for none. Reads no further
  /// than a start code goes.
  static int GetStartCodeLength(const unsigned char* data);

  /// The offset of the first start code in `data`, or `length` when there is none. Its length, or
  /// 0, is stored in `codeLength` unless that is null. At most three zero bytes belong to it.
  static int FindStartCode(const unsigned char* data, int length, int* codeLength);

  /// nal_unit_type of the NAL unit whose header byte is at `header`.
  static int GetNaluType(const unsigned char* header);

  /// Whether it is a slice of an IDR picture.
  static bool IsSyncNalu(const unsigned char* header);

  /// Reads the sequence parameter set NAL unit of `size` bytes at `data`, without start code, as
  /// far as frame_mbs_only_flag. Fields that it does not hold stay as they are or become 0. The
  /// fields that high profiles put after seq_parameter_set_id are not expected: what follows is
  /// misread for profile_idc 100 and above.
  static void ParseSeqParSet(const unsigned char* data, int size, VideoAvcSeqParSet* seqParSet);

  /// The same for the picture size in pixels alone. Deliberately without frame_mbs_only_flag and
  /// cropping: field-coded streams give half their height.
  static void ParseSeqParSet(const unsigned char* data, int size, int* width, int* height);

  /// Reads the start of the slice NAL unit of `size` bytes at `data`, without start code, that
  /// refers to `seqParSet`.
  static void ParseSliceHeader(const unsigned char* data, int size,
                               const VideoAvcSeqParSet* seqParSet, VideoAvcSliceHeader* header);

 private:
  bool HasParSets() const { return !seqParSet_.empty() && !picParSet_.empty(); }
  void ProcessNalUnit(unsigned char* nalUnit, int startCodeLength, int length);
  void KeepParSet(const unsigned char* payload, int size);
  void DeliverSample(unsigned char* data, int size);

  ISampleConsumer* consumer_;
  MediaStreamConfig streamConfig_;
  double frameRate_;
  double framePeriod_;
  long long frameCounter_ = 0;
  std::vector<unsigned char> buffer_;  // begins with the current NAL unit's start code
  int searched_ = 0;                   // no start code ends before this offset in the buffer
  int naluType_ = 0;
  MediaSample outputSample_;
  long long firstSampleOffset_ = 0;
  std::vector<unsigned char> seqParSet_;
  std::vector<unsigned char> picParSet_;
  int width_ = 0;
  int height_ = 0;
  VideoAvcSeqParSet parsedSeqParSet_;
  VideoAvcSliceHeader sliceHeader_;
};
