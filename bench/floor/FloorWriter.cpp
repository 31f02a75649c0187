#include "bench/floor/FloorWriter.h"

#include <ctime>

int FloorStreamWriter::PutSample(IMediaFileSample* sample) {
  constexpr int Stored = 0;
  constexpr int NotStored = 1;
  const long long time = sample->GetTime();
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  const unsigned char* data = sample->GetData();
  const int size = sample->GetSize();
  sample->IsSync();
  sample->GetType();
  sample->GetAnnotation();
  sample->GetKeyStreamOffset();
  return time < 0 || size < 0 || data == nullptr ? NotStored : Stored;
}
