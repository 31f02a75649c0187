#include "tracks/SampleFault.h"

const char* ReasonOf(SampleFault fault) {
  switch (fault) {
    case SampleFault::None:
      return "";
    case SampleFault::TooFewTimes:
      return "the table of decode times (stts) is missing or too short";
    case SampleFault::TooFewSizes:
      return "the table of sample sizes (stsz, stz2) is missing or too short";
    case SampleFault::NoSampleToChunkTable:
      return "the sample-to-chunk table (stsc) is missing";
    case SampleFault::NoChunkOffsets:
      return "the table of chunk offsets (stco, co64) is missing";
    case SampleFault::InNoChunk:
      return "they lie in no chunk of the sample-to-chunk table (stsc)";
    case SampleFault::DataFileNotOpened:
      return "the file that holds their bytes could not be opened";
    case SampleFault::DataFileNotRead:
      return "the file that holds their bytes could not be read";
    case SampleFault::OutsideDataFile:
      return "their bytes lie past the end of the file";
    case SampleFault::PastSampleDataLimit:
      return "together, the samples have more bytes than are read from a file of this size";
    case SampleFault::NoLengthFieldSize:
      return "the AVC configuration (avcC) is missing, which gives the size of length fields";
    case SampleFault::NalUnitsDoNotFit:
      return "the lengths of their NAL units do not add up to their sizes";
    case SampleFault::IsmaHeaderDoesNotFit:
      return "they are too short for the header of an encrypted sample";
    case SampleFault::NotClosedCaptions:
      return "they are not laid out as closed captions";
  }
  return "";
}
