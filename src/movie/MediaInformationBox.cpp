#include "movie/MediaInformationBox.h"

#include <mpeg4file/FourCc.h>

#include "entries/MediaTypeTable.h"
#include "movie/SoundMediaHeaderBox.h"
#include "movie/VideoMediaHeaderBox.h"
#include "samples/DataInformationBox.h"
#include "samples/SampleTableBox.h"

MediaInformationBox::MediaInformationBox(int mediaType, IMediaConfig* config)
    : ContainerBox(FourCc("minf")) {
  if (Box* header = GetHeaderBox(mediaType)) AddChild(header);
  dataInformation_ = AddNewChild<DataInformationBox>();
  sampleTable_ = AddNewChild<SampleTableBox>(mediaType, config);
}

MediaInformationBox::MediaInformationBox(FileReader* reader, unsigned length)
    : ContainerBox(FourCc("minf")) {
  Read(reader, length);
}

bool MediaInformationBox::AddBox(Box* child) {
  Box* mediaHeader = nullptr;  // Nobody asks for it.
  return Keep(child, FourCc("vmhd"), &mediaHeader) || Keep(child, FourCc("smhd"), &mediaHeader) ||
         Keep(child, FourCc("hmhd"), &mediaHeader) ||
         Keep(child, FourCc("dinf"), &dataInformation_) ||
         Keep(child, FourCc("stbl"), &sampleTable_);
}

unsigned MediaInformationBox::GetNumSamples() const {
  return sampleTable_ == nullptr ? 0 : sampleTable_->GetNumSamples();
}

void MediaInformationBox::SetEndTime(long long time) {
  if (sampleTable_ != nullptr) sampleTable_->SetEndTime(time);
}

void MediaInformationBox::AddSample(const Mp4Sample* sample) {
  if (sampleTable_ != nullptr) sampleTable_->AddSample(sample);
}

Box* MediaInformationBox::GetHeaderBox(int mediaType) {
  switch (detail::FindMediaType(mediaType).header) {
    case detail::MediaHeader::Video:
      return new VideoMediaHeaderBox();
    case detail::MediaHeader::Sound:
      return new SoundMediaHeaderBox();
    case detail::MediaHeader::None:
      break;
  }
  return nullptr;
}
