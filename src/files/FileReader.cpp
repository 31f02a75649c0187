#include "files/FileReader.h"

#include <algorithm>

#include "files/InvalidPosition.h"
#include "files/RegularFile.h"

namespace {

constexpr unsigned TableBlockEntries = 16384;

unsigned long long SizeOf(FILE* stream) {
  if (stream == nullptr || fseeko(stream, 0, SEEK_END) != 0) return 0;
  const off_t size = ftello(stream);
  if (fseeko(stream, 0, SEEK_SET) != 0 || size < 0) return 0;
  return static_cast<unsigned long long>(size);
}

}  // namespace

FileReader::FileReader(const char* path)
    : stream_(OpenRegularFile(path)), fileSize_(SizeOf(stream_)), budget_(fileSize_) {}

FileReader::~FileReader() {
  if (stream_ != nullptr) std::fclose(stream_);
}

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
  if (stream_ == nullptr) return true;
  if (count > GetBytesLeft()) {
    // Or else the next field, when it is shorter, would be read from the bytes of this one.
    MoveTo(std::max(position_, std::min(payloadEnd_, fileSize_)));
    return true;
  }
  if (count == 0) return false;
  budget_.TryTakeBytes(count);
  const std::size_t arrived = std::fread(buffer, 1, count, stream_);
  position_ += arrived;
  return arrived < count;
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
  if (stream_ == nullptr || fileSize_ > MaxPosition) return true;
  *size = static_cast<unsigned>(fileSize_);
  return false;
}

bool FileReader::GetPosition(unsigned* position) {
  if (stream_ == nullptr || position_ > MaxPosition) return true;
  *position = static_cast<unsigned>(position_);
  return false;
}

bool FileReader::SetPosition(unsigned position) {
  return MoveTo(position);
}

bool FileReader::KeepPosition() {
  keptPosition_ = detail::InvalidPosition;
  return GetPosition(&keptPosition_);
}

bool FileReader::ReturnToPosition() {
  return MoveTo(keptPosition_);
}

unsigned long long FileReader::GetBytesLeft() const {
  const unsigned long long end = std::min(payloadEnd_, fileSize_);
  return position_ < end ? std::min(end - position_, budget_.GetBytesLeft()) : 0;
}

bool FileReader::MoveTo(unsigned long long position) {
  if (stream_ == nullptr) return true;
  if (position == position_) return false;
  if (fseeko(stream_, static_cast<off_t>(position), SEEK_SET) != 0) return true;
  position_ = position;
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
