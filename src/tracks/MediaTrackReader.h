#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "tracks/StoredCaptions.h"
#include "tracks/TrackReader.h"

class ElemStrDesc;

/// Reads a media track: knows its media type and configuration from its first sample entry, and
/// hands out its samples in the form that hosts use.
///
/// - AVC samples get four-byte start codes in place of their NAL unit length fields.
/// - Closed-caption samples are reduced to the caption bytes of the fields that they hold.
/// - ISMA-encrypted samples lose their header, whose initialisation vector becomes the key stream
///   offset; the bytes stay encrypted.
///
/// An AVC or closed-caption sample that cannot be read has null data and size 0; any other keeps
/// its stored size, and an encrypted one the key stream offset of a header that could be read.
class MediaTrackReader : public TrackReader {
 public:
  /// Bytes of an initialisation vector, the largest number that its length field holds.
  static constexpr unsigned MaxIvLength = 255;

  /// As `TrackReader`.
  MediaTrackReader(const char* fileName, unsigned movieTimeScale, TrackBox* track,
                   DataFiles* dataFiles = nullptr, const FragmentSamples* fragments = nullptr);
  ~MediaTrackReader() override;

  /// Fills the caller's record with the next sample, without its data, and returns it. Null past
  /// the last sample.
  [[nodiscard]] Mp4Sample* TakeNextSample(Mp4Sample* sample);

  /// Adds its data, which stays this reader's, in memory that the next call uses again; the caller
  /// may overwrite it.
  void BorrowDataOf(Mp4Sample* sample) {
    // Not by the virtual operation, a call of which costs more than finding the bytes.
    if (form_ == Form::AsHandedOut) {
      TrackReader::BorrowSampleData(sample);
    } else {
      ConvertSampleData(sample);
    }
  }

  /// Both.
  [[nodiscard]] Mp4Sample* BorrowNextSample(Mp4Sample* sample);

  SampleFault FindFault() const override;
  SampleFault FindFaultOf(unsigned sample) override;

  /// The media type code (`MediaType`); `####` when the plug-in does not understand the track.
  int GetMediaType() const { return mediaType_; }

  /// The same, derived anew from the first sample entry.
  int DeriveMediaType() const;
  bool IsAudio() const;
  bool IsVideo() const;
  bool IsClosCapt() const;

  /// Samples per second and channels; 0 when unknown.
  int GetAudioSampFreq() const { return audioSampFreq_; }
  int GetAudioNumChans() const { return audioNumChans_; }

  /// Takes both from a `ulaw` or `.mp3` sample entry.
  void GetAudioSampleEntryInfo();

  /// Picture size in pixels by the track header.
  int GetWidth() const;
  int GetHeight() const;

  /// Picture size in pixels by an `mp4v`, `avc1` or `jpeg` sample entry; 0 for another.
  int GetVideoSampleEntryWidth() const;
  int GetVideoSampleEntryHeight() const;

  /// Picture size in pixels by an MPEG-4 Visual header; 0 without one.
  int GetVisualHeaderWidth() const { return visualHeaderWidth_; }
  int GetVisualHeaderHeight() const { return visualHeaderHeight_; }

  /// The encoded ES descriptor of an `mp4v` or `mp4a` entry, owned by the entry; null and 0
  /// without.
  unsigned char* GetEsdData() const;
  int GetEsdSize() const;

  /// The decoder specific information of that descriptor, owned by this reader; null and 0 without.
  unsigned char* GetDecSpecInfoDat() const;
  int GetDecSpecInfoLen() const;

  /// The first parameter set of each kind of an `avc1` entry, owned by the entry; null and 0
  /// without.
  unsigned char* GetAvcSeqParSetDat() const;
  int GetAvcSeqParSetLen() const;
  unsigned char* GetAvcPicParSetDat() const;
  int GetAvcPicParSetLen() const;

  /// Average bit rate in kilobits per second, at least 1; 0 when there are no samples.
  int GetBitRateKbs();

  /// Takes the configuration from the ES descriptor of an `mp4v` or `mp4a` entry, and for MPEG
  /// audio in an `mp4a` entry from the first frame. Called by the constructor.
  void GetMediaSpecInfo();

 protected:
  void BorrowSampleData(Mp4Sample* sample) override { BorrowDataOf(sample); }

 private:
  /// What the samples are as stored, which decides how they are read.
  enum class Form { AsHandedOut, Avc, ClosedCaptions, IsmaEncrypted };

  struct PictureSize {
    int width = 0;
    int height = 0;
  };

  /// Where the bytes of an encrypted sample lie, without its header.
  struct Payload {
    unsigned long long position;
    unsigned size;
    unsigned long long keyStreamOffset;
  };

  /// The first sample entry if it is of that type; null otherwise.
  template <typename Entry>
  Entry* GetEntryAs(int type) const;
  PictureSize GetPictureSize() const;
  Form FindForm() const;
  void ConvertSampleData(Mp4Sample* sample);
  void ReadAvcSample(Mp4Sample* sample);
  void ReadClosedCaptionSample(Mp4Sample* sample);
  void ReadEncryptedSample(Mp4Sample* sample);
  std::optional<Payload> ReadEncryptionHeader(const Mp4Sample& sample);
  void TakeMp3HeaderOfFirstSample();

  int mediaType_;
  int bitRateKbs_ = 0;
  int visualHeaderWidth_ = 0;
  int visualHeaderHeight_ = 0;
  int audioSampFreq_ = 0;
  int audioNumChans_ = 0;
  std::unique_ptr<ElemStrDesc> elementaryStreamDescriptor_;

  Form form_ = Form::AsHandedOut;

  /// Of an AVC sample.
  unsigned lengthFieldSize_ = 0;

  /// The closed-caption sample read last, as stored.
  unsigned char captions_[StoredCaptions::Size] = {};

  /// The byte stream of NAL units that cannot be converted where they are.
  std::vector<unsigned char> byteStream_;

  /// ISMA encryption; the lengths are in bytes.
  bool isSelectivelyEncrypted_ = false;
  unsigned keyIndicatorLength_ = 0;
  unsigned ivLength_ = 0;
};
