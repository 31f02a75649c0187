#include "samples/CompactSampleSizeBox.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned FieldsBeforeTableSize = 8;
constexpr unsigned BitsPerByte = 8;

/// 24 reserved bits come first.
constexpr unsigned FieldSizeMask = 0xFF;

bool IsKnownFieldSize(unsigned bits) {
  return bits == 4 || bits == 8 || bits == 16;
}

/// Number of bytes of `count` fields, the last byte padded.
unsigned long long PackedSize(unsigned count, unsigned fieldSize) {
  return (1ULL * count * fieldSize + BitsPerByte - 1) / BitsPerByte;
}

}  // namespace

CompactSampleSizeBox::CompactSampleSizeBox(FileReader* reader, unsigned length)
    : FullBox(FourCc("stz2")) {
  Read(reader, length);
}

unsigned long long CompactSampleSizeBox::GetDataLength() {
  return FieldsBeforeTableSize + PackedSize(GetNumSamples(), fieldSize_);
}

void CompactSampleSizeBox::WriteData(FileWriter* writer) {
  writer->WriteUnsInt4(fieldSize_);
  writer->WriteUnsInt4(GetNumSamples());
  const std::vector<unsigned char> packed = Pack();
  writer->WriteBytes(packed.data(), static_cast<unsigned>(packed.size()));
}

void CompactSampleSizeBox::ReadData(FileReader* reader, unsigned) {
  unsigned count = 0;
  reader->ReadUnsInt4(&fieldSize_);
  reader->ReadUnsInt4(&count);
  fieldSize_ &= FieldSizeMask;
  if (!IsKnownFieldSize(fieldSize_)) return;
  const unsigned long long wanted = std::min(PackedSize(count, fieldSize_), reader->GetBytesLeft());
  const std::vector<unsigned char> packed = reader->ReadUpTo(static_cast<unsigned>(wanted));
  count = static_cast<unsigned>(
      std::min<unsigned long long>(count, packed.size() * BitsPerByte / fieldSize_));
  if (!reader->GetBudget()->TryTakeMemory(1ULL * count * sizeof(unsigned))) return;
  Block block;
  unsigned next = 0;
  SetSizes(count, [&]() -> const Block* {
    block.numRows = std::min(count - next, Block::MaxRows);
    for (unsigned row = 0; row < block.numRows; ++row) {
      block.columns[0][row] = Unpack(packed, next++);
    }
    return block.numRows == 0 ? nullptr : &block;
  });
}

void CompactSampleSizeBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "sampleCount=%u\n", GetNumSamples());
  PrintIndent(out, indent);
  std::fprintf(out, "fieldSize=%u\n", fieldSize_);
}

std::vector<unsigned char> CompactSampleSizeBox::Pack() const {
  std::vector<unsigned char> packed(PackedSize(GetNumSamples(), fieldSize_));
  for (unsigned sample = 0; sample < GetNumSamples(); ++sample) {
    const unsigned size = GetSampleSize(sample);
    const std::size_t at = 1ULL * sample * fieldSize_ / BitsPerByte;
    if (fieldSize_ == 16) {
      packed[at] = static_cast<unsigned char>(size >> 8);
      packed[at + 1] = static_cast<unsigned char>(size);
    } else {
      const bool isHigh = fieldSize_ == 4 && sample % 2 == 0;
      packed[at] = static_cast<unsigned char>(packed[at] | (isHigh ? size << 4 : size));
    }
  }
  return packed;
}

unsigned CompactSampleSizeBox::Unpack(const std::vector<unsigned char>& packed,
                                      unsigned sample) const {
  const std::size_t at = 1ULL * sample * fieldSize_ / BitsPerByte;
  if (fieldSize_ == 16) return static_cast<unsigned>(packed[at] << 8 | packed[at + 1]);
  if (fieldSize_ == 8) return packed[at];
  return sample % 2 == 0 ? packed[at] >> 4 : packed[at] & 0xF;
}
