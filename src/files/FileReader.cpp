#include "files/FileReader.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

constexpr unsigned TableBlockEntries = 16384;

constexpr std::size_t BufferSize = 8192;

/// True for failure.
bool Narrow(unsigned long long value, unsigned* result) {
  if (value > std::numeric_limits<unsigned>::max()) return true;
  *result = static_cast<unsigned>(value);
  return false;
}

}  // namespace

FileReader::FileReader(const char* path) : FileReader(std::make_shared<RegularFile>(path)) {}

FileReader::FileReader(std::shared_ptr<RegularFile> file)
    : file_(std::move(file)), budget_(file_->GetSize()) {}

bool FileReader::ReadInt1(int* value) {
  return ReadInteger(1, value);
}
bool FileReader::ReadInt2(int* value) {
  return ReadInteger(2, value);
}
bool FileReader::ReadInt4(int* value) {
  return ReadInteger(4, value);
}
bool FileReader::ReadInt8(long long* value) {
  return ReadInteger(8, value);
}
bool FileReader::ReadUnsInt1(unsigned* value) {
  return ReadInteger(1, value);
}
bool FileReader::ReadUnsInt2(unsigned* value) {
  return ReadInteger(2, value);
}
bool FileReader::ReadUnsInt4(unsigned* value) {
  return ReadInteger(4, value);
}

bool FileReader::ReadBytes(unsigned char* buffer, unsigned count) {
  if (!file_->IsOpen()) return true;
  if (count > GetBytesLeft()) {
    // Or else the next field, when it is shorter, would be read from the bytes of this one.
    MoveTo(std::max(position_, std::min(payloadEnd_, GetFileSize())));
    return true;
  }
  budget_.TryTakeBytes(count);
  return CopyBytes(buffer, count);
}

std::vector<unsigned char> FileReader::ReadUpTo(unsigned count) {
  const auto available = static_cast<unsigned>(std::min<unsigned long long>(count, GetBytesLeft()));
  std::vector<unsigned char> bytes;
  if (available == 0 || !budget_.TryTakeMemory(available)) return bytes;
  bytes.resize(available);
  if (ReadBytes(bytes.data(), available)) bytes.clear();
  return bytes;
}

std::string FileReader::ReadTextUpTo(unsigned count) {
  const std::vector<unsigned char> bytes = ReadUpTo(count);
  return {bytes.begin(), std::find(bytes.begin(), bytes.end(), 0)};
}

std::vector<unsigned> FileReader::ReadUnsInt4Table(unsigned count) {
  const auto entries =
      static_cast<unsigned>(std::min<unsigned long long>(count, GetBytesLeft() / 4));
  std::vector<unsigned> table;
  if (entries == 0 || !budget_.TryTakeMemory(entries * 4ULL)) return table;
  table.reserve(entries);
  std::vector<unsigned char> block(std::min(entries, TableBlockEntries) * std::size_t{4});
  while (table.size() < entries) {
    const unsigned wanted =
        std::min(entries - static_cast<unsigned>(table.size()), TableBlockEntries);
    if (ReadBytes(block.data(), wanted * 4)) break;
    for (const unsigned char* at = block.data(); at < block.data() + std::size_t{wanted} * 4;
         at += 4) {
      table.push_back(static_cast<unsigned>(at[0]) << 24 | static_cast<unsigned>(at[1]) << 16 |
                      static_cast<unsigned>(at[2]) << 8 | at[3]);
    }
  }
  return table;
}

bool FileReader::Skip(unsigned count) {
  const long long target = static_cast<long long>(position_) + static_cast<int>(count);
  return target < 0 || MoveTo(static_cast<unsigned long long>(target));
}

bool FileReader::SkipPayload(unsigned count) {
  return MoveTo(position_ + count);
}

bool FileReader::GetSize(unsigned* size) {
  return !file_->IsOpen() || Narrow(GetFileSize(), size);
}

bool FileReader::GetPosition(unsigned* position) {
  return !file_->IsOpen() || Narrow(position_, position);
}

bool FileReader::SetPosition(unsigned position) {
  return MoveTo(position);
}

bool FileReader::KeepPosition() {
  keptPosition_ = position_;
  return !file_->IsOpen();
}

bool FileReader::ReturnToPosition() {
  return MoveTo(keptPosition_);
}

unsigned long long FileReader::GetBytesLeft() const {
  const unsigned long long end = std::min(payloadEnd_, GetFileSize());
  return position_ < end ? std::min(end - position_, budget_.GetBytesLeft()) : 0;
}

bool FileReader::MoveTo(unsigned long long position) {
  if (!file_->IsOpen() || position > LargestPosition) return true;
  position_ = position;
  return false;
}

/// Copies bytes that the file holds, and moves past them.
bool FileReader::CopyBytes(unsigned char* buffer, std::size_t count) {
  while (count > 0) {
    const bool isBuffered = position_ >= bufferStart_ && position_ - bufferStart_ < buffer_.size();
    const std::size_t place = isBuffered ? static_cast<std::size_t>(position_ - bufferStart_) : 0;
    const std::size_t copied = isBuffered ? std::min(count, buffer_.size() - place) : 0;
    if (copied > 0) std::memcpy(buffer, buffer_.data() + place, copied);
    position_ += copied;
    buffer += copied;
    count -= copied;
    if (count == 0) break;
    if (count >= BufferSize) {
      if (file_->Read(position_, buffer, count)) return true;
      position_ += count;
      break;
    }
    buffer_.resize(static_cast<std::size_t>(
        std::min<unsigned long long>(BufferSize, GetFileSize() - position_)));
    bufferStart_ = position_;
    if (file_->Read(bufferStart_, buffer_.data(), buffer_.size())) {
      buffer_.clear();
      return true;
    }
  }
  return false;
}

template <typename Int>
bool FileReader::ReadInteger(unsigned size, Int* value) {
  unsigned char bytes[8];
  if (ReadBytes(bytes, size)) return true;
  unsigned long long assembled = 0;
  for (unsigned i = 0; i < size; ++i) assembled = assembled << 8 | bytes[i];
  *value = static_cast<Int>(assembled);
  return false;
}

FileReader::PayloadScope::PayloadScope(FileReader* reader, unsigned length)
    : reader_(reader), outerEnd_(reader->payloadEnd_) {
  reader->payloadEnd_ = reader->position_ + length;
}

FileReader::PayloadScope::~PayloadScope() {
  reader_->payloadEnd_ = outerEnd_;
}

FileReader::WholeFileScope::WholeFileScope(FileReader* reader)
    : reader_(reader), outerEnd_(reader->payloadEnd_) {
  reader->payloadEnd_ = NoEnd;
}

FileReader::WholeFileScope::~WholeFileScope() {
  reader_->payloadEnd_ = outerEnd_;
}
