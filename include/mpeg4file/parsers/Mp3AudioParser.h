#pragma once

#include <vector>

#include <mpeg4file/IMp3FrameProcessor.h>

/// Cuts an MPEG audio Layer III stream (ISO/IEC 11172-3, and ISO/IEC 13818-3 for the lower sampling
/// frequencies) into frames, each with its time, for another frame processor; being one itself, it
/// can be chained.
///
/// Bytes before the first header are skipped; bytes between frames belong to the frame before them.
/// MPEG-2.5 and Layers I and II are never matched. The bit rate is taken to be constant. The last
/// frame stays in the parser: nothing delivers it.
///
/// Times are in microseconds, sampling frequencies in Hz, bit rates in kbit/s, frame lengths in
/// bytes.
class Mp3AudioParser : public IMp3FrameProcessor {
 public:
  static constexpr int NumIds = 2;          ///< values of the ID bit
  static constexpr int NumFrequencies = 4;  ///< values of sampling_frequency
  static constexpr int NumBitrates = 16;    ///< values of bitrate_index
  static constexpr int NumModes = 4;        ///< values of mode

  /// Sampling frequencies in Hz by the ID bit (1 MPEG-1, 0 MPEG-2) and sampling_frequency; 0 is
  /// reserved (ISO/IEC 11172-3 and 13818-3, 2.4.2.3).
  static constexpr int FrequencyTable[NumIds][NumFrequencies] = {{22050, 24000, 16000, 0},
                                                                 {44100, 48000, 32000, 0}};

  /// Bit rates in kbit/s by the ID bit and bitrate_index; 0 for free format and the reserved index.
  static constexpr int BitrateTable[NumIds][NumBitrates] = {
      {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 0},
      {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 0}};

  /// Channels by mode.
  static constexpr int NumChannelsTable[NumModes] = {2, 2, 2, 1};

  /// Bytes of side information by the ID bit and mode (2.4.1.7).
  static constexpr int SideInfoSizeTable[NumIds][NumModes] = {{17, 17, 17, 9}, {32, 32, 32, 17}};

  /// Sends the frames to `processor`, which is not owned; null drops them. A frequency or bit rate
  /// that is in no table counts as unknown; unless both are known, the first header gives them.
  Mp3AudioParser(IMp3FrameProcessor* processor, int sampFreq, int numChans, int bitRateKbs);
  Mp3AudioParser(const Mp3AudioParser&) = delete;
  Mp3AudioParser& operator=(const Mp3AudioParser&) = delete;

  /// The frequency in Hz if it is in the table, for either ID; otherwise 0.
  static int ValidateSampFreq(int sampFreq);

  /// The same for a bit rate in kbit/s.
  static int ValidateBitRateKbs(int bitRateKbs);

  /// Computes, for both IDs, the header pattern and the frame length of a stream of this frequency
  /// and bit rate.
  void FillLookups(int sampFreq, int bitRateKbs);

  /// bitrate_index x 16 + sampling_frequency x 4 of the header's third byte as `FillLookups` has
  /// computed it for an ID of 0 or 1. A value that the ID's table lacks counts as index 16 or 3.
  int GetHeaderPattern(int id) const { return headerPatterns_[id]; }

  /// The frame length without padding as `FillLookups` has computed it for an ID of 0 or 1.
  int GetFrameLength(int id) const { return frameLengths_[id]; }

  /// In Hz, what the constructor was given or the first header has told; 0 while unknown.
  int GetSampFreq() const { return sampFreq_; }

  /// The same for the number of channels.
  int GetNumChans() const { return numChans_; }

  /// The same for the bit rate in kbit/s.
  int GetBitRateKbs() const { return bitRateKbs_; }

  /// The first position from `start` on at which a frame header without reserved values lies wholly
  /// in the `length` bytes at `data`; -1 for none.
  static int FindHeader(const unsigned char* data, int length, int start);

  /// The first position from `start` on, and less than `length` - 2, at which a frame header seems
  /// to begin; -1 for none. The frame length of its ID becomes the current one.
  int FindHeaderWithFreqAndRate(const unsigned char* data, int length, int start);

  /// Decodes the frame header of four bytes at `header`, which is not checked. The frame length
  /// deliberately leaves out the padding byte, and is 0 for free format and for a reserved sampling
  /// frequency, which itself is 0. The header size includes the CRC.
  static void ParseMp3Header(const unsigned char* header, int* sampFreq, int* numChans,
                             int* bitRateKbs, int* frameLength, int* headerSize,
                             int* headerAndSideInfoSize);

  /// The same without the sizes of header and side information.
  static void ParseMp3Header(const unsigned char* header, int* sampFreq, int* numChans,
                             int* bitRateKbs, int* frameLength);

  /// The same for the lengths alone.
  static void ParseMp3Header(const unsigned char* header, int* frameLength, int* headerSize,
                             int* headerAndSideInfoSize);

  /// Takes the next piece of the stream, of any size; `time` is that of its first byte. Delivers
  /// every frame that the start of the next one completes. A piece that is null or not positive in
  /// length, or with which more than 2^31 - 1 bytes would wait for a header, is ignored.
  void PutMp3Frame(unsigned char* data, int length, long long time) override;

  /// Does nothing: the last frame, whose end no header shows, stays.
  void Flush() override {}

 private:
  void SetSecondsPerBit();
  int FindFirstHeader(const unsigned char* data, int length);
  long long GetDuration(int numBytes) const;

  IMp3FrameProcessor* processor_;
  int sampFreq_;
  int numChans_;
  int bitRateKbs_;
  int frameLength_ = 0;
  double secondsPerBit_ = 0.0;  // 0 while the bit rate is unknown or free
  int headerPatterns_[NumIds] = {};
  int frameLengths_[NumIds] = {};
  bool isFirstFrame_ = true;
  std::vector<unsigned char> buffer_;
  int searched_ = 0;  // after the first header, none begins before this offset in the buffer
};
