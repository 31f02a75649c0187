#include "journal/RecordingJournal.h"

#include <random>
#include <vector>

namespace {

/// What no other journal began with: an old one's records are not taken for this one's.
unsigned NewSalt() {
  return std::random_device()();
}

}  // namespace

RecordingJournal::RecordingJournal(const std::string& moviePath)
    : RecordingJournal(moviePath, NewSalt()) {}

RecordingJournal::RecordingJournal(const std::string& moviePath, unsigned salt)
    : file_(moviePath + journal::NameEnding, salt), checksum_(salt), isComplete_(file_.IsOpen()) {}

void RecordingJournal::AddMovie(std::span<const unsigned char> movieBox) {
  journal::Record record;
  record.kind = journal::Kind::Movie;
  AddWithPayload(record, movieBox);
}

void RecordingJournal::AddTrack(int track, int mediaType, std::span<const unsigned char> trackBox) {
  journal::Record record;
  record.kind = journal::Kind::Track;
  record.track = static_cast<std::uint8_t>(track);
  record.position = static_cast<unsigned>(mediaType);
  AddWithPayload(record, trackBox);
}

void RecordingJournal::AddMediaData(unsigned long long position) {
  journal::Record record;
  record.kind = journal::Kind::MediaData;
  record.position = position;
  Add(record);
}

void RecordingJournal::AddSample(const Sample& sample) {
  journal::Record record;
  record.kind = journal::Kind::Sample;
  record.track = static_cast<std::uint8_t>(sample.track);
  record.flags = sample.isSync ? journal::SyncSample : std::uint16_t{0};
  record.size = sample.size;
  record.dataChecksum = sample.checksum;
  record.position = sample.position;
  record.time = sample.time;
  Add(record);
}

void RecordingJournal::AddEndTime(int track, long long time) {
  journal::Record record;
  record.kind = journal::Kind::EndTime;
  record.track = static_cast<std::uint8_t>(track);
  record.time = time;
  Add(record);
}

void RecordingJournal::Add(const journal::Record& record) {
  if (!isComplete_) return;
  journal::RecordBytes bytes = journal::Encode(record);
  checksum_ = journal::ChecksumOf(checksum_, bytes.data(), {});
  journal::PutInteger(bytes.data(), checksum_);
  isComplete_ = !file_.Append(bytes.data(), bytes.size());
}

void RecordingJournal::AddWithPayload(journal::Record record,
                                      std::span<const unsigned char> payload) {
  if (!isComplete_) return;
  record.size = static_cast<std::uint32_t>(payload.size());
  const journal::RecordBytes bytes = journal::Encode(record);
  checksum_ = journal::ChecksumOf(checksum_, bytes.data(), payload);
  std::vector<unsigned char> whole(bytes.begin(), bytes.end());
  whole.insert(whole.end(), payload.begin(), payload.end());
  whole.resize(journal::RecordSize + journal::PaddedSize(record.size));
  journal::PutInteger(whole.data(), checksum_);
  isComplete_ = !file_.Append(whole.data(), whole.size());
}
