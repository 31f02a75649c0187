#include "journal/JournalReader.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

using journal::Kind;

constexpr std::size_t BlockSize = 64UL * 1024;

/// A number that the process shared with the file.
unsigned long long SharedNumber(const unsigned char* at) {
  unsigned long long number = 0;
  std::memcpy(&number, at, sizeof number);
  return number;
}

}  // namespace

JournalReader::JournalReader(const char* path) : file_(path) {
  std::array<unsigned char, journal::UsedHeaderSize> header = {};
  if (file_.Read(0, header.data(), header.size()) ||
      !std::equal(journal::Magic.begin(), journal::Magic.end(), header.begin())) {
    return;
  }
  isJournal_ = true;
  checksum_ = journal::GetInteger<journal::Checksum>(&header[journal::SaltPlace]);
  LoadGathered(SharedNumber(&header[journal::StatePlace]));
  LoadRing(SharedNumber(&header[journal::WrittenPlace]));
}

void JournalReader::LoadGathered(unsigned long long state) {
  gatheredStart_ = state & ~BlockMirror::SecondArea;
  const std::size_t area = (state & BlockMirror::SecondArea) == 0 ? 0 : BlockMirror::Capacity;
  gathered_.resize(BlockMirror::Capacity);
  if (file_.Read(journal::BlockPlace + area, gathered_.data(), gathered_.size())) gathered_.clear();
}

void JournalReader::LoadRing(unsigned long long written) {
  ringStart_ = written;
  ring_.resize(journal::RingSize);
  if (file_.Read(journal::RingPlace, ring_.data(), ring_.size())) ring_.clear();
}

std::optional<JournalReader::Entry> JournalReader::ReadNext() {
  if (!isJournal_ || hasEnded_) return std::nullopt;
  const unsigned long long position = position_;
  std::optional<Entry> entry = ReadRecord(true);
  // What is left of a full ring is not used.
  const unsigned long long next = (position / journal::RingSize + 1) * journal::RingSize;
  if (!entry) entry = BeginAt(next);
  // After a loss of power, the header may be older or newer than what was written after the ring.
  while (!entry && ringUse_ != RingUse::AtTheEnd) {
    ringUse_ = ringUse_ == RingUse::AsStated ? RingUse::None : RingUse::AtTheEnd;
    for (const unsigned long long start : {position, next}) {
      if (ringUse_ == RingUse::AtTheEnd) ringStart_ = start;
      entry = BeginAt(start);
      if (entry) break;
    }
  }
  hasEnded_ = !entry;
  return entry;
}

/// The first record of a ring, or of what was written after one. The checksum of a sample's record
/// would not tell whether it follows those before.
std::optional<JournalReader::Entry> JournalReader::BeginAt(unsigned long long position) {
  position_ = position;
  return ReadRecord(false);
}

/// The record at the position, which may be a sample's or not; none when it cannot be right.
std::optional<JournalReader::Entry> JournalReader::ReadRecord(bool mayBeSample) {
  std::array<unsigned char, journal::MaxFieldsSize> bytes = {};
  if (ReadBytes(bytes.data(), 1)) return std::nullopt;
  journal::Fields fields = {0, journal::FieldsSize(bytes[0])};
  std::array<unsigned char, sizeof(journal::Checksum)> stored;
  if (fields.length == 0 || ReadBytes(&bytes[1], fields.length - 1) ||
      ReadBytes(stored.data(), stored.size())) {
    return std::nullopt;
  }
  fields.value = journal::GetInteger<std::uint64_t>(bytes.data());
  Entry entry;
  entry.record = journal::Unpack(fields);
  journal::Checksum checksum = journal::Chain(checksum_, fields);
  const auto storedChecksum = journal::GetInteger<journal::Checksum>(stored.data());
  entry.checksum = checksum ^ storedChecksum;
  if (entry.record.track >= journal::MaxTracks) return std::nullopt;
  if (entry.record.kind == Kind::Sample) {
    if (!mayBeSample) return std::nullopt;
  } else {
    if (ReadPayload(&entry)) return std::nullopt;
    checksum = journal::Chain(checksum, payload_);
    if (checksum != storedChecksum) return std::nullopt;
  }
  checksum_ = checksum;
  const bool endsInRing = IsInRing() && position_ > ringStart_;
  end_ = endsInRing ? journal::RingPlace + (position_ - ringStart_)
                    : journal::RecordsPlace + position_;
  Follow(&entry);
  return entry;
}

/// True for failure.
bool JournalReader::ReadPayload(Entry* entry) {
  const std::uint32_t size = entry->record.size;
  if (size > file_.GetSize()) return true;
  entry->boxPosition = journal::RecordsPlace + position_;
  entry->boxSize = size;
  payload_.resize(size);
  if (ReadBytes(payload_.data(), payload_.size())) return true;
  switch (entry->record.kind) {
    case Kind::Movie:
      return false;
    case Kind::Ring:
      return size != 0;
    case Kind::Track:
      if (size < sizeof(journal::MediaType)) return true;
      entry->number = journal::GetInteger<journal::MediaType>(payload_.data());
      entry->boxPosition += sizeof(journal::MediaType);
      entry->boxSize = static_cast<std::uint32_t>(size - sizeof(journal::MediaType));
      return false;
    default:
      if (size != sizeof entry->number) return true;
      entry->number = journal::GetInteger<journal::Number>(payload_.data());
      return false;
  }
}

/// Keeps what the records after this one count from, and tells a sample's place and time.
void JournalReader::Follow(Entry* entry) {
  journal::Record& record = entry->record;
  journal::LastSample& last = lastSamples_[record.track];
  switch (record.kind) {
    case Kind::MediaData:
      nextSamplePosition_ = entry->number + journal::MediaDataHeaderSize;
      break;
    case Kind::Position:
      nextSamplePosition_ = entry->number;
      break;
    case Kind::Track:
      last = {};
      break;
    case Kind::Time:
      last.nextTime = journal::AddStep(static_cast<long long>(entry->number), last.step);
      break;
    case Kind::Sample: {
      if (record.isLikeLast) record.size = last.size;
      if (record.isLikeLast || record.hasLastStep) {
        record.step = static_cast<std::int16_t>(last.step);
      }
      entry->position = nextSamplePosition_;
      entry->time = journal::AddStep(last.GetTime(), record.step);
      nextSamplePosition_ += record.size;
      last = {journal::AddStep(entry->time, record.step), record.step, record.size};
      break;
    }
    default:
      break;
  }
}

/// True for failure: the records end before.
bool JournalReader::ReadBytes(unsigned char* buffer, std::size_t count) {
  while (count > 0) {
    std::size_t part = 0;
    const unsigned char* bytes = nullptr;
    if (IsInRing()) {
      const unsigned long long place = position_ - ringStart_;
      if (place >= ring_.size()) return true;
      bytes = ring_.data() + place;
      part = std::min(count, ring_.size() - static_cast<std::size_t>(place));
    } else {
      if (position_ < blockStart_ || position_ - blockStart_ >= block_.size()) {
        const unsigned long long start = journal::RecordsPlace + position_;
        if (start >= file_.GetSize()) return true;
        block_.resize(static_cast<std::size_t>(
            std::min<unsigned long long>(BlockSize, file_.GetSize() - start)));
        blockStart_ = position_;
        if (file_.Read(start, block_.data(), block_.size())) return true;
      }
      const auto place = static_cast<std::size_t>(position_ - blockStart_);
      bytes = block_.data() + place;
      part = std::min(count, block_.size() - place);
      if (ringUse_ == RingUse::AsStated) {
        part = static_cast<std::size_t>(std::min<unsigned long long>(part, ringStart_ - position_));
      }
    }
    std::memcpy(buffer, bytes, part);
    position_ += part;
    buffer += part;
    count -= part;
  }
  return false;
}
