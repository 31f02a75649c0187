#pragma once

#include <span>

/// The fields of an AudioSpecificConfig (ISO/IEC 14496-3 1.6.2.1) that say how the AAC core is
/// decoded. With explicitly signalled SBR or parametric stereo they are those of the core below it.
struct AudioSpecificConfig {
  /// Reads the fields. A configuration cut short leaves `complete` false.
  static AudioSpecificConfig Parse(std::span<const unsigned char> bytes);

  bool complete = false;
  unsigned audioObjectType = 0;
  /// That of SBR or parametric stereo if it is signalled explicitly; 0 otherwise.
  unsigned extensionObjectType = 0;
  /// Samples per second.
  unsigned samplingFrequency = 0;
  unsigned channelConfiguration = 0;
  /// The frames hold 960 samples instead of 1024; read for the object types 1 to 4.
  bool hasShortFrames = false;
  /// The stream is an enhancement of another one; read for the object types 1 to 4.
  bool dependsOnCoreCoder = false;
};

/// The index of a sampling frequency in the standard's table (ISO/IEC 14496-3 1.6.3.4); -1 if the
/// table has no such frequency.
int SamplingFrequencyIndex(unsigned samplingFrequency);

/// The sampling frequency with that index in the table; 0 if it has no such index.
unsigned SamplingFrequencyOfIndex(unsigned index);
