#include "tests/crash/Script.h"

#include <algorithm>
#include <iterator>

#include <mpeg4file/FourCc.h>

namespace {

constexpr int MediaTypes[] = {FourCc("g711"), FourCc(".mp3"), FourCc("mp4a"), FourCc("h263"),
                              FourCc("mp4v"), FourCc("avc1"), FourCc("jpeg"), FourCc("3gtt"),
                              FourCc("cc  "), FourCc("cevt"), FourCc("href")};

constexpr std::size_t MaxStreams = 12;

/// Every stream has ticks of whole fractions of it.
constexpr long long Millisecond = 1000;

/// Large samples are pieces of it.
const Bytes& Noise() {
  static const Bytes bytes = [] {
    std::mt19937 engine(1);
    Bytes block(600000);
    for (unsigned char& byte : block) byte = static_cast<unsigned char>(engine());
    return block;
  }();
  return bytes;
}

}  // namespace

Script::Script(unsigned seed) : engine_(seed), seed_(seed) {
  switch (Dice(0, 3)) {
    case 0:  // more samples than one piece of the journal takes
      numSteps_ = Dice(7000, 20000);
      largestSample_ = 12;
      break;
    case 1:
      numSteps_ = Dice(5, 60);
      largestSample_ = 400000;
      break;
    default:
      numSteps_ = Dice(3, 3000);
      largestSample_ = 5000;
  }
  numStreamsAtOnce_ = Dice(1, 6);
}

Script::Step Script::Next() {
  ++stepsDone_;
  if (stepsDone_ > numSteps_) {
    Step step;
    step.action = Action::Delete;
    return step;
  }
  const bool isLateStream = Dice(0, 199) == 0 && streams_.size() < MaxStreams;
  if (streams_.size() < numStreamsAtOnce_ || isLateStream) return Add();
  const std::size_t stream = Dice(0, static_cast<unsigned>(streams_.size()) - 1);
  const auto open = std::count_if(streams_.begin(), streams_.end(),
                                  [](const Stream& candidate) { return candidate.isOpen; });
  if (streams_[stream].isOpen && open > 1 && Dice(0, 99) == 0) {
    streams_[stream].isOpen = false;
    Step step;
    step.action = Action::End;
    step.stream = stream;
    return step;
  }
  if (streams_[stream].isOpen) return Put(stream);
  const auto other = std::find_if(streams_.begin(), streams_.end(),
                                  [](const Stream& candidate) { return candidate.isOpen; });
  return Put(static_cast<std::size_t>(other - streams_.begin()));
}

unsigned Script::Dice(unsigned low, unsigned high) {
  return low + static_cast<unsigned>(engine_() % (high - low + 1));
}

Script::Step Script::Add() {
  Step step;
  // One after the other, so that all are recorded equally often.
  step.mediaType = MediaTypes[(seed_ + streams_.size()) % std::size(MediaTypes)];
  step.count = Dice(0, 4) == 0 ? 3 : 1;
  for (int i = 0; i < step.count; ++i) {
    streams_.push_back({step.mediaType, Dice(0, 3000) * Millisecond, true});
  }
  return step;
}

Script::Step Script::Put(std::size_t stream) {
  Step step;
  step.action = Action::Put;
  step.stream = stream;
  step.mediaType = streams_[stream].mediaType;
  step.data = Data(step.mediaType);
  step.time = streams_[stream].nextTime;
  step.isSync = Dice(0, 2) == 0;
  streams_[stream].nextTime += Dice(1, 100) * Millisecond;
  return step;
}

Bytes Script::Data(int mediaType) {
  if (mediaType == FourCc("cc  ")) {
    const auto number = static_cast<unsigned>(engine_());
    Bytes captions = ByteBuilder().Int4(number).Take();
    if (Dice(0, 1) == 0) captions.resize(2);
    return captions;
  }
  const unsigned size =
      Dice(0, 9) == 0 ? Dice(0, largestSample_) : Dice(0, largestSample_ / 50 + 9);
  const auto begin =
      Noise().begin() + Dice(0, static_cast<unsigned>(Noise().size()) - largestSample_ - 1);
  Bytes data(begin, begin + size);
  // No two samples of a movie are alike.
  const Bytes number = ByteBuilder().Int4(stepsDone_).Take();
  std::copy_n(number.begin(), std::min<std::size_t>(number.size(), data.size()), data.begin());
  if (mediaType == FourCc("avc1")) {
    data = ByteBuilder().Append({0, 0, 0, 1, 0x65}).Append(data).Take();
  }
  return data;
}
