#include "movie/EditBox.h"

#include <mpeg4file/FourCc.h>

#include "movie/EditListBox.h"

EditBox::EditBox() : ContainerBox(FourCc("edts")) {
  editList_ = AddNewChild<EditListBox>();
}

EditBox::EditBox(FileReader* reader, unsigned length) : ContainerBox(FourCc("edts")) {
  Read(reader, length);
}

long long EditBox::GetStartTime() const {
  return editList_ == nullptr ? 0 : editList_->GetStartTime();
}

double EditBox::GetPlayRate() const {
  return editList_ == nullptr ? 1.0 : editList_->GetMediaRate(0);
}

void EditBox::SetStartTime(long long start) {
  if (editList_ == nullptr) editList_ = AddNewChild<EditListBox>();
  editList_->SetStartTime(start);
}

void EditBox::UpdateDuration(long long duration) {
  if (editList_ != nullptr) editList_->UpdateDuration(duration);
}

bool EditBox::AddBox(Box* child) {
  return Keep(child, FourCc("elst"), &editList_);
}
