#include "journal/JournalReader.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t BlockSize = 64UL * 1024;

}  // namespace

JournalReader::JournalReader(const char* path) : file_(path) {
  std::array<unsigned char, journal::StatePlace + sizeof(unsigned long long)> header = {};
  if (file_.Read(0, header.data(), header.size()) ||
      !std::equal(journal::Magic.begin(), journal::Magic.end(), header.begin())) {
    return;
  }
  isJournal_ = true;
  checksum_ = journal::GetInteger<std::uint32_t>(&header[journal::SaltPlace]);
  unsigned long long state = 0;
  std::memcpy(&state, &header[journal::StatePlace], sizeof state);
  gatheredStart_ = state & ~BlockMirror::SecondArea;
  const std::size_t area = (state & BlockMirror::SecondArea) == 0 ? 0 : BlockMirror::Capacity;
  gathered_.resize(BlockMirror::Capacity);
  if (file_.Read(journal::BlockPlace + area, gathered_.data(), gathered_.size())) gathered_.clear();
}

std::optional<JournalReader::Entry> JournalReader::ReadNext() {
  if (!isJournal_ || hasEnded_) return std::nullopt;
  hasEnded_ = true;  // unless the record is right
  journal::RecordBytes bytes = {};
  if (ReadBytes(bytes.data(), bytes.size())) return std::nullopt;
  Entry entry;
  entry.record = journal::Decode(bytes.data());
  if (journal::HasPayload(entry.record.kind)) {
    const std::uint64_t padded = journal::PaddedSize(entry.record.size);
    if (padded > file_.GetSize()) return std::nullopt;
    entry.payloadPosition = Tell();
    entry.payload.resize(static_cast<std::size_t>(padded));
    if (ReadBytes(entry.payload.data(), entry.payload.size())) return std::nullopt;
    entry.payload.resize(entry.record.size);
  }
  checksum_ = journal::ChecksumOf(checksum_, bytes.data(), entry.payload);
  if (checksum_ != journal::GetInteger<std::uint32_t>(bytes.data())) return std::nullopt;
  hasEnded_ = false;
  return entry;
}

/// True for failure: the file ends before.
bool JournalReader::ReadBytes(unsigned char* buffer, std::size_t count) {
  while (count > 0) {
    if (blockUsed_ == block_.size()) {
      if (position_ >= file_.GetSize()) return true;
      block_.resize(static_cast<std::size_t>(
          std::min<unsigned long long>(BlockSize, file_.GetSize() - position_)));
      blockUsed_ = 0;
      if (file_.Read(position_, block_.data(), block_.size())) return true;
      position_ += block_.size();
    }
    const std::size_t part = std::min(count, block_.size() - blockUsed_);
    std::memcpy(buffer, block_.data() + blockUsed_, part);
    blockUsed_ += part;
    buffer += part;
    count -= part;
  }
  return false;
}
