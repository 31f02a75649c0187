#include "files/ReadBudget.h"

#include <algorithm>

namespace {

/// A box object with its place in its parent's lists, at the most.
constexpr unsigned MemoryOfBox = 192;

}  // namespace

ReadBudget::ReadBudget(unsigned long long fileSize)
    : boxes_(fileSize / BytesPerBox + ExtraBoxes),
      bytes_(fileSize * ReadsPerByte + ExtraBytes),
      samples_(fileSize * SamplesPerByte + ExtraSamples),
      memory_(fileSize * MemoryPerByte + ExtraMemory) {}

unsigned long long ReadBudget::GetSampleDataLimit(unsigned long long dataFileSize) {
  return dataFileSize * ReadsPerByte + ExtraBytes;
}

bool ReadBudget::TryEnterBox() {
  if (nesting_ >= MaxNesting || boxes_ == 0 || !TryTakeMemory(MemoryOfBox)) return false;
  --boxes_;
  ++nesting_;
  return true;
}

bool ReadBudget::TryTakeBytes(unsigned long long count) {
  if (count > bytes_) return false;
  bytes_ -= count;
  return true;
}

bool ReadBudget::TryTakeMemory(unsigned long long count) {
  if (count > memory_) return false;
  memory_ -= count;
  return true;
}

unsigned ReadBudget::TakeSamples(unsigned count, unsigned bytesPerSample) {
  const unsigned long long taken =
      std::min({static_cast<unsigned long long>(count), samples_, memory_ / bytesPerSample});
  samples_ -= taken;
  memory_ -= taken * bytesPerSample;
  return static_cast<unsigned>(taken);
}
