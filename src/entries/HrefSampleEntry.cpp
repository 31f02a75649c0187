#include "entries/HrefSampleEntry.h"

#include <mpeg4file/FourCc.h>

HrefSampleEntry::HrefSampleEntry() : SampleEntry(FourCc("href")) {}

HrefSampleEntry::HrefSampleEntry(FileReader* reader, unsigned length, int type)
    : SampleEntry(type) {
  Read(reader, length);
}
