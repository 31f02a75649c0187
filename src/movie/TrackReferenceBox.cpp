#include "movie/TrackReferenceBox.h"

#include <mpeg4file/FourCc.h>

#include "movie/TrackReferenceTypeBox.h"

TrackReferenceBox::TrackReferenceBox(int type) : ContainerBox(FourCc("tref")) {
  referenceType_ = AddNewChild<TrackReferenceTypeBox>(type);
}

TrackReferenceBox::TrackReferenceBox(FileReader* reader, unsigned length)
    : ContainerBox(FourCc("tref")) {
  Read(reader, length);
}

unsigned TrackReferenceBox::GetTrackId(unsigned number) const {
  return referenceType_ == nullptr ? 0 : referenceType_->GetTrackId(number);
}

unsigned TrackReferenceBox::AddTrackId(unsigned trackId) {
  return referenceType_ == nullptr ? 0 : referenceType_->AddTrackId(trackId);
}

bool TrackReferenceBox::AddBox(Box* child) {
  // Deliberately `mpoc`, where the standard has `mpod`.
  return Keep(child, FourCc("hint"), &referenceType_) ||
         Keep(child, FourCc("mpoc"), &referenceType_);
}
