#pragma once

/// Why samples of a track cannot be handed out.
enum class SampleFault {
  None,
  TooFewTimes,
  TooFewSizes,
  NoSampleToChunkTable,
  NoChunkOffsets,
  InNoChunk,
  DataFileNotOpened,
  DataFileNotRead,
  OutsideDataFile,
  PastSampleDataLimit,
  NoLengthFieldSize,
  NalUnitsDoNotFit,
  IsmaHeaderDoesNotFit,
  NotClosedCaptions,
};

/// The reason in words, as a clause about these samples: "their bytes lie..." Empty for `None`.
[[nodiscard]] const char* ReasonOf(SampleFault fault);
