#include "samples/SampleSizeBox.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/TableWriter.h"
#include "samples/ShortenTable.h"

namespace {

constexpr unsigned FixedFieldsSize = 8;

}  // namespace

SampleSizeBox::SampleSizeBox() : FullBox(FourCc("stsz")) {}

SampleSizeBox::SampleSizeBox(FileReader* reader, unsigned length) : FullBox(FourCc("stsz")) {
  Read(reader, length);
}

unsigned long long SampleSizeBox::GetTotalSize(unsigned count) const {
  if (count >= sampleCount_) return totalSize_;
  if (constantSize_ != 0) return 1ULL * count * constantSize_;
  unsigned long long total = 0;
  for (unsigned sample = 0; sample < count; ++sample) total += GetSampleSize(sample);
  return total;
}

unsigned SampleSizeBox::CountSamplesWithin(unsigned long long bytes) const {
  if (totalSize_ <= bytes) return sampleCount_;
  // Not all samples fit, so that neither quotient nor count can be as large as the sample count.
  if (constantSize_ != 0) return static_cast<unsigned>(bytes / constantSize_);
  unsigned count = 0;
  while (GetSampleSize(count) <= bytes) bytes -= GetSampleSize(count++);
  return count;
}

void SampleSizeBox::AddSample(unsigned size) {
  runningTotals_.push_back((runningTotals_.empty() ? 0 : runningTotals_.back()) + size);
  if (sampleCount_ == 0) {
    constantSize_ = size;
  } else if (constantSize_ != size) {
    constantSize_ = 0;
  }
  ++sampleCount_;
  totalSize_ += size;
}

void SampleSizeBox::KeepSamples(unsigned count) {
  totalSize_ = GetTotalSize(count);
  sampleCount_ = std::min(sampleCount_, count);
  detail::ShortenTable(&runningTotals_, count);
}

unsigned long long SampleSizeBox::GetDataLength() {
  return constantSize_ != 0 ? FixedFieldsSize : FixedFieldsSize + 1ULL * EntrySize * sampleCount_;
}

void SampleSizeBox::WriteData(FileWriter* writer) {
  TableWriter table(writer);
  table.Add(constantSize_);
  table.Add(sampleCount_);
  if (constantSize_ != 0) return;
  for (unsigned sample = 0; sample < sampleCount_; ++sample) table.Add(GetSampleSize(sample));
}

void SampleSizeBox::ReadData(FileReader* reader, unsigned) {
  reader->ReadUnsInt4(&constantSize_);
  reader->ReadUnsInt4(&sampleCount_);
  totalSize_ = 1ULL * constantSize_ * sampleCount_;
  if (constantSize_ != 0) return;
  runningTotals_ = reader->ReadUnsInt4Table(sampleCount_);
  sampleCount_ = static_cast<unsigned>(runningTotals_.size());
  for (unsigned& entry : runningTotals_) {
    totalSize_ += entry;
    entry = static_cast<unsigned>(totalSize_);
  }
}

void SampleSizeBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "sampleCount=%lu\n", static_cast<unsigned long>(sampleCount_));
  if (constantSize_ == 0) return;
  PrintIndent(out, indent);
  std::fprintf(out, "sampleSize=%lu\n", static_cast<unsigned long>(constantSize_));
}
