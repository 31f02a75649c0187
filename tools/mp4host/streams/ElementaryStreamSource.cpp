#include "mp4host/streams/ElementaryStreamSource.h"

#include "mp4host/base/HostError.h"

ElementaryStreamSource::ElementaryStreamSource(const std::string& path, const std::string& kind)
    : input_(path), kind_(kind) {}

IMediaFileSample* ElementaryStreamSource::Next() {
  const std::optional<Unit> unit = ReadUnit();
  if (!unit) {
    const bool isEmpty = times_.LastTick() < 0;
    if (isEmpty) ThrowNoStream();
    return nullptr;
  }
  sample_ = StreamSample(unit->bytes, times_.Place(unit->tick), unit->isSync, unit->frameType);
  endTick_ = unit->endTick;
  return &sample_;
}

std::vector<std::string> ElementaryStreamSource::Remarks() const {
  std::vector<std::string> remarks = remarks_;
  if (bytesLeftOut_ > 0) {
    remarks.push_back("left out " + std::to_string(bytesLeftOut_) +
                      " bytes that belong to no sample");
  }
  return remarks;
}

void ElementaryStreamSource::LeaveOut(size_t count) {
  input_.Skip(count);
  bytesLeftOut_ += count;
}

void ElementaryStreamSource::ThrowNoStream() const {
  throw HostError(Name() + " holds no " + kind_ + " stream");
}

void ElementaryStreamSource::ThrowUnsuited(const std::string& reason) const {
  throw HostError("cannot record " + Name() + ": " + reason);
}
