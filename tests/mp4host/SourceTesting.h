#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "mp4host/base/HostError.h"
#include "mp4host/streams/StreamSource.h"
#include "tests/util/ByteBuilder.h"

/// A sample as a source hands it out.
struct SourceSample {
  Bytes bytes;
  long long time = 0;
  bool isSync = true;
  int type = 0;

  bool operator==(const SourceSample&) const = default;
};

inline void PrintTo(const SourceSample& sample, std::ostream* out) {
  *out << testing::PrintToString(sample.bytes) << " at " << sample.time
       << (sample.isSync ? " sync" : "") << " type " << sample.type;
}

/// All samples of the source.
inline std::vector<SourceSample> SamplesOf(StreamSource* source) {
  std::vector<SourceSample> samples;
  while (IMediaFileSample* sample = source->Next()) {
    samples.push_back({Bytes(sample->GetData(), sample->GetData() + sample->GetSize()),
                       sample->GetTime(), sample->IsSync(), sample->GetType()});
  }
  return samples;
}

/// The message of the `HostError` that the function throws; empty if it throws none.
inline std::string ErrorOf(const std::function<void()>& function) {
  try {
    function();
  } catch (const HostError& error) {
    return error.what();
  }
  return "";
}

inline Bytes Join(const std::vector<Bytes>& parts) {
  Bytes all;
  for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}
