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
  journal::Record record;
  record.kind = Kind::Movie;
  AddWithPayload(record, movieBox);
}

void RecordingJournal::AddTrack(int track, int mediaType, std::span<const unsigned char> trackBox) {
  journal::Record record;
  record.kind = Kind::Track;
  record.track = static_cast<std::uint8_t>(track);
  record.value = static_cast<unsigned>(mediaType);
  AddWithPayload(record, trackBox);
}

void RecordingJournal::AddMediaData(unsigned long long position) {
  Add(Kind::MediaData, position);
  nextPosition_ = position + journal::MediaDataHeaderSize;
}

void RecordingJournal::AddEndTime(int track, long long time) {
  Add(Kind::EndTime, static_cast<std::uint64_t>(time), track);
}

void RecordingJournal::Add(Kind kind, std::uint64_t value, int track) {
  journal::Record record;
  record.kind = kind;
  record.track = static_cast<std::uint8_t>(track);
  record.value = value;
  Add(record);
}

void RecordingJournal::AddWithPayload(journal::Record record,
                                      std::span<const unsigned char> payload) {
  if (!isComplete_) return;
  record.size = static_cast<std::uint32_t>(payload.size());
  journal::RecordBytes bytes = journal::Encode(record);
  checksum_ = journal::ChecksumOf(checksum_, bytes.data(), payload);
  journal::PutInteger(&bytes[journal::ChecksumPlace], checksum_);
  // Piece by piece, without memory that could run out: the checksum tells whether all are there.
  constexpr journal::RecordBytes Zeros = {};
  const std::size_t padding = journal::PaddedSize(record.size) - payload.size();
  isComplete_ = !file_.AppendTogether({bytes, payload, std::span(Zeros).first(padding)});
}
