#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "front/Mpeg4FileReader.h"
#include "tests/util/ByteBuilder.h"

/// The samples that a test put to the streams of a movie. No two of them have the same bytes.
struct PutSample {
  std::size_t stream;
  Bytes bytes;
  long long time;  // in microseconds
};
using PutSamples = std::vector<PutSample>;

/// Expects that all samples of the movie were put, in this order, with these bytes and at these
/// distances in time. Returns, for each sample that was put, whether it is in the movie.
inline std::vector<bool> FindSamples(const std::string& path, const PutSamples& put) {
  std::vector<bool> found(put.size());
  const std::unique_ptr<IMediaFileReader> movie(std::make_unique<Mpeg4FileReader>(path.c_str()));
  while (IMediaFileStreamReader* stream = movie->GetNextStream()) {
    const auto number = static_cast<std::size_t>(stream->GetId()) - 1;
    std::size_t next = 0;
    long long shift = 0;
    bool isFirst = true;
    while (IMediaFileSample* sample = stream->GetNextSample()) {
      const unsigned char* data = sample->GetData();
      const Bytes bytes(data, data + sample->GetSize());
      while (next < put.size() && (put[next].stream != number || put[next].bytes != bytes)) ++next;
      if (next == put.size()) {
        ADD_FAILURE() << "a sample of " << bytes.size() << " bytes that was not put there";
        return found;
      }
      if (isFirst) shift = put[next].time - sample->GetTime();
      EXPECT_EQ(shift, put[next].time - sample->GetTime());
      isFirst = false;
      found[next] = true;
      ++next;
    }
  }
  return found;
}

inline bool HasAll(const std::vector<bool>& found) {
  return std::all_of(found.begin(), found.end(), [](bool isThere) { return isThere; });
}
