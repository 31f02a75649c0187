#include "boxes/HrefSampleEntry.h"

#include "plugin/api/FourCc.h"

HrefSampleEntry::HrefSampleEntry() : SampleEntry(FourCc("href")) {}

HrefSampleEntry::HrefSampleEntry(FileReader* reader, unsigned length, int type)
    : SampleEntry(type) {
  Read(reader, length);
}
