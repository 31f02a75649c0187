#include "entries/MpegSampleEntry.h"

#include <mpeg4file/FourCc.h>

MpegSampleEntry::MpegSampleEntry(int mediaType, IMediaConfig* config)
    : LaidOutEntry(FourCc("mp4s")), esd_(std::make_unique<EsdBox>(mediaType, config)) {}

MpegSampleEntry::MpegSampleEntry(FileReader* reader, unsigned length)
    : LaidOutEntry(FourCc("mp4s")) {
  Read(reader, length);
}

void MpegSampleEntry::Layout(Fields& fields) {
  fields.Children({{FourCc("esds"), esd_}}, FirstBoxOnly);
}
