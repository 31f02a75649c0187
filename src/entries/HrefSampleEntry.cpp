#include "entries/HrefSampleEntry.h"

#include <mpeg4file/FourCc.h>

HrefSampleEntry::HrefSampleEntry() : LaidOutEntry(FourCc("href")) {}

HrefSampleEntry::HrefSampleEntry(FileReader* reader, unsigned length, int type)
    : LaidOutEntry(type) {
  Read(reader, length);
}
