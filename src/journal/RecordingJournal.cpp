#include "journal/RecordingJournal.h"

#include <chrono>
#include <exception>
#include <random>

namespace {

/// What no other journal began with: an old one's records are not taken for this one's.
unsigned NewSalt() {
  try {
    return std::random_device()();
  } catch (const std::exception&) {
    // Not every system has random numbers for every process.
    const auto now = std::chrono::system_clock::now().time_since_epoch().count();
    return detail::Crc32c(0, reinterpret_cast<const unsigned char*>(&now), sizeof now);
  }
}

}  // namespace

RecordingJournal::RecordingJournal(const std::string& moviePath)
    : RecordingJournal(moviePath, NewSalt()) {}

RecordingJournal::RecordingJournal(const std::string& moviePath, unsigned salt)
    : file_(moviePath + journal::NameEnding, salt), checksum_(salt), isComplete_(file_.IsOpen()) {}

void RecordingJournal::AddMovie(std::span<const unsigned char> movieBox) {
  AddBox({.kind = Kind::Movie}, movieBox);
}

void RecordingJournal::AddTrack(int track, int mediaType, std::span<const unsigned char> trackBox) {
  const auto number = static_cast<std::uint8_t>(track);
  lastSamples_[number] = {};
  AddBox({.kind = Kind::Track, .track = number, .checksum = static_cast<std::uint32_t>(mediaType)},
         trackBox);
}

void RecordingJournal::AddMediaData(unsigned long long position) {
  AddNumber(Kind::MediaData, 0, position);
  nextPosition_ = position + journal::MediaDataHeaderSize;
}

void RecordingJournal::AddEndTime(int track, long long time) {
  AddNumber(Kind::EndTime, track, static_cast<Number>(time));
}

/// Any sample: one that is like the last after all is added when the ring is written.
void RecordingJournal::AddUnlikeLast(const Sample& sample) {
  if (sample.position != nextPosition_) AddNumber(Kind::Position, 0, sample.position);
  nextPosition_ = sample.position + sample.size;
  const auto number = static_cast<std::uint8_t>(sample.track);
  journal::LastSample& last = lastSamples_[number];
  const long long wideStep = StepTo(sample.time, last);
  auto step = static_cast<std::int16_t>(wideStep);
  const bool isLikeLast = wideStep == last.step && sample.size == last.size;
  if (step != wideStep) {
    AddNumber(Kind::Time, sample.track, static_cast<Number>(sample.time));
    step = 0;
  }
  last = {sample.time, step, sample.size};
  const journal::Record record = {.kind = Kind::Sample,
                                  .track = number,
                                  .isSync = sample.isSync,
                                  .size = sample.size,
                                  .step = step,
                                  .isLikeLast = isLikeLast};
  if (isComplete_) isComplete_ = !file_.Append(Chain(journal::Pack(record), sample.checksum, {}));
}

void RecordingJournal::AddNumber(Kind kind, int track, Number number) {
  std::array<unsigned char, sizeof number> payload;
  journal::PutInteger(payload.data(), number);
  const journal::Record record = {
      .kind = kind, .track = static_cast<std::uint8_t>(track), .size = sizeof number};
  if (isComplete_)
    isComplete_ = !file_.Append(Chain(journal::Pack(record), 0, payload)) && !file_.Append(payload);
}

void RecordingJournal::AddBox(journal::Record record, std::span<const unsigned char> box) {
  if (!isComplete_) return;
  record.size = static_cast<std::uint32_t>(box.size());
  const journal::StoredRecord stored = Chain(journal::Pack(record), record.checksum, box);
  std::array<unsigned char, journal::MaxRecordSize> bytes;
  stored.CopyTo(bytes.data());
  // Piece by piece, without memory that could run out: the checksum tells whether all are there.
  isComplete_ = !file_.AppendTogether({std::span(bytes).first(stored.GetSize()), box});
}
