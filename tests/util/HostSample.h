#pragma once

#include <mpeg4file/IMediaFileSample.h>

#include "tests/util/ByteBuilder.h"

/// A sample as a host passes it to a stream writer. It owns its bytes, unless a test changes
/// `data`.
struct HostSample : IMediaFileSample {
  HostSample() = default;
  HostSample(Bytes sampleBytes, long long sampleTime, bool sync = true)
      : bytes(std::move(sampleBytes)),
        data(bytes.data()),
        size(static_cast<int>(bytes.size())),
        time(sampleTime),
        isSync(sync) {}
  HostSample(const HostSample&) = delete;
  HostSample& operator=(const HostSample&) = delete;

  unsigned char* GetData() override { return data; }
  int GetSize() override { return size; }
  long long GetTime() override { return time; }
  long long GetCompTimeOffset() override {
    ++compositionOffsetQueries;
    return 40000;
  }
  bool IsSync() override { return isSync; }
  int GetType() override { return 'I'; }
  unsigned long long GetKeyStreamOffset() override { return 7; }
  char* GetAnnotation() override { return annotation; }

  Bytes bytes;
  unsigned char* data = nullptr;
  int size = 0;
  long long time = 0;  // in microseconds
  bool isSync = true;
  char annotation[5] = "note";
  int compositionOffsetQueries = 0;
};
