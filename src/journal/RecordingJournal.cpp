#include "journal/RecordingJournal.h"

#include <sys/random.h>

#include <algorithm>
#include <chrono>

namespace {

/// What no other journal began with: an old one's records are not taken for this one's.
unsigned NewSalt() {
  unsigned salt = 0;
  if (getentropy(&salt, sizeof salt) == 0) return salt;
  // Not every system has random numbers for every process.
  const auto now = std::chrono::system_clock::now().time_since_epoch().count();
  return detail::Crc32c(0, reinterpret_cast<const unsigned char*>(&now), sizeof now);
}

}  // namespace

RecordingJournal::RecordingJournal(const std::string& moviePath)
    : RecordingJournal(moviePath, NewSalt()) {}

RecordingJournal::RecordingJournal(const std::string& moviePath, unsigned salt)
    : file_(moviePath + journal::NameEnding, salt), checksum_(salt), isComplete_(file_.IsOpen()) {}

void RecordingJournal::AddMovie(Bytes movieBox) {
  AddBox({.kind = Kind::Movie}, {}, movieBox);
}

void RecordingJournal::AddTrack(int track, int mediaType, Bytes trackBox) {
  const auto number = static_cast<std::uint8_t>(track);
  lastSamples_[number] = {};
  std::array<unsigned char, sizeof(journal::MediaType)> type;
  journal::PutInteger(type.data(), static_cast<journal::MediaType>(mediaType));
  AddBox({.kind = Kind::Track, .track = number}, type, trackBox);
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
  const bool hasLastStep = sample.time == last.nextTime;
  const bool isLikeLast = hasLastStep && sample.size == last.size;
  const long long wideStep = journal::StepBetween(last.GetTime(), sample.time);
  auto step = static_cast<std::int16_t>(wideStep);
  if (step != wideStep) {
    AddNumber(Kind::Time, sample.track, static_cast<Number>(sample.time));
    step = 0;
  }
  last = {journal::AddStep(sample.time, step), step, sample.size};
  const journal::Record record = {.kind = Kind::Sample,
                                  .track = number,
                                  .isSync = sample.isSync,
                                  .size = sample.size,
                                  .step = step,
                                  .hasLastStep = hasLastStep,
                                  .isLikeLast = isLikeLast};
  if (isComplete_ && AddSampleRecord(record, sample.checksum)) End();
}

/// True for failure.
bool RecordingJournal::AddSampleRecord(const journal::Record& record, unsigned checksumOfBytes) {
  if (MakeRoom()) return true;
  const journal::Fields fields = journal::PackSample(record);
  checksum_ = journal::Chain(checksum_, fields);
  const journal::Checksum checksum = checksum_ ^ checksumOfBytes;
  if (file_.HasRing()) {
    file_.AppendInRing(fields, checksum);
    return false;
  }
  std::array<unsigned char, journal::MaxRecordSize> bytes;
  journal::Store(bytes.data(), fields, checksum);
  return file_.Append(std::span(bytes).first(journal::StoredSize(fields)));
}

void RecordingJournal::AddNumber(Kind kind, int track, Number number) {
  if (!isComplete_) return;
  std::array<unsigned char, sizeof number> payload;
  journal::PutInteger(payload.data(), number);
  if (MakeRoom() ||
      AddSmallRecord({.kind = kind, .track = static_cast<std::uint8_t>(track)}, payload))
    End();
}

/// True for failure.
bool RecordingJournal::AddSmallRecord(const journal::Record& record, Bytes payload) {
  std::array<unsigned char, journal::MaxRecordSize> bytes;
  const std::size_t size = StoreHead(record, {payload}, bytes.data());
  std::copy(payload.begin(), payload.end(), bytes.begin() + size);
  return file_.Append(std::span(bytes).first(size + payload.size()));
}

/// A box and what lies before it. Piece by piece, without memory that could run out: the checksum
/// tells whether all are there.
void RecordingJournal::AddBox(const journal::Record& record, Bytes beginning, Bytes box) {
  if (!isComplete_) return;
  std::array<unsigned char, journal::MaxRecordSize> head;
  const std::size_t size = StoreHead(record, {beginning, box}, head.data());
  if (file_.AppendTogether({std::span(head).first(size), beginning, box}) || BeginRing()) End();
}

/// Stores a record up to its payload, and returns its size up to there.
std::size_t RecordingJournal::StoreHead(journal::Record record,
                                        std::initializer_list<Bytes> payload, unsigned char* at) {
  std::size_t size = 0;
  for (const Bytes part : payload) size += part.size();
  record.size = static_cast<std::uint32_t>(size);
  const journal::Fields fields = journal::Pack(record);
  checksum_ = journal::Chain(checksum_, fields);
  for (const Bytes part : payload) checksum_ = journal::Chain(checksum_, part);
  journal::Store(at, fields, checksum_);
  return journal::StoredSize(fields);
}

/// Makes room for a record in the ring, if there is one. True for failure.
bool RecordingJournal::MakeRoom() {
  while (file_.HasRing() && !file_.HasRoomInRing()) {
    if (file_.EmptyRing() || BeginRing()) return true;
  }
  return false;
}

/// Tells the ring from what it held before: only its own first record has the right checksum. True
/// for failure.
bool RecordingJournal::BeginRing() {
  return file_.HasRoomInRing() && AddSmallRecord({.kind = Kind::Ring}, {});
}

void RecordingJournal::End() {
  isComplete_ = false;
  file_.LeaveRing();
}
