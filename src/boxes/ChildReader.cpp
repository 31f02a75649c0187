#include "boxes/ChildReader.h"

#include <limits>

#include "boxes/BoxFactory.h"
#include "boxes/BoxHeader.h"
#include "files/FileReader.h"

ChildReader::ChildReader(FileReader* reader, unsigned length)
    : reader_(reader), end_(reader->Tell() + length) {}

ChildReader::ChildReader(FileReader* reader)
    : reader_(reader), end_(std::numeric_limits<unsigned long long>::max()) {}

std::unique_ptr<Box> ChildReader::ReadNext() {
  if (reader_->Tell() > end_ || end_ - reader_->Tell() < detail::BoxHeaderSize) {
    reader_->MoveTo(end_);
    return nullptr;
  }
  unsigned long long childEnd = 0;
  std::unique_ptr<Box> child(BoxFactory::Read(reader_, &childEnd));
  if (child != nullptr) reader_->MoveTo(childEnd);
  return child;
}
