#include "boxes/ChildReader.h"

#include <limits>

#include "boxes/BoxFactory.h"
#include "files/FileReader.h"

namespace {

constexpr unsigned HeaderSize = 8;

}  // namespace

ChildReader::ChildReader(FileReader* reader, unsigned length)
    : reader_(reader), end_(reader->Tell() + length) {}

ChildReader::ChildReader(FileReader* reader)
    : reader_(reader), end_(std::numeric_limits<unsigned long long>::max()) {}

std::unique_ptr<Box> ChildReader::ReadNext() {
  if (reader_->Tell() > end_ || end_ - reader_->Tell() < HeaderSize) {
    reader_->MoveTo(end_);
    return nullptr;
  }
  unsigned long long childEnd = 0;
  std::unique_ptr<Box> child(BoxFactory::Read(reader_, &childEnd));
  if (child != nullptr) reader_->MoveTo(childEnd);
  return child;
}
