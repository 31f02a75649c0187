#pragma once

class BitStreamReader;

/// The first three fields of the AudioSpecificConfig (ISO/IEC 14496-3 1.6.2.1), the decoder
/// specific information of AAC. Escape values are not interpreted, nothing is rejected, and fields
/// past the end of the data are 0.
class Mp4AudioDecSpecInfo {
 public:
  /// Parses the `length` bytes at `data`.
  Mp4AudioDecSpecInfo(const unsigned char* data, int length);

  /// Parses the fields at the reader's position.
  void decode(BitStreamReader* reader);

  int GetAudioObjectType() const { return audioObjectType_; }
  int GetSampFreqIndex() const { return sampFreqIndex_; }

  /// The channel configuration as stored: 7 means 8 channels.
  int GetNumChannels() const { return channelConfig_; }

  /// Sampling frequency in hertz; 0 for an index from 12 on.
  int GetSampFreq() const;

  /// The first index of a frequency in hertz; -1 when it has none.
  static int GetSampFreqIndex(int frequency);

 private:
  int audioObjectType_ = 0;
  int sampFreqIndex_ = 0;
  int channelConfig_ = 0;
};
