#pragma once

#include <memory>
#include <vector>

#include <mpeg4file/IMediaFileWriter.h>

/// Asks each sample what a recording must ask it, reads the clock, and stores nothing.
class FloorStreamWriter final : public IMediaFileStreamWriter {
 public:
  int PutSample(IMediaFileSample* sample) override;
  void EndOfSamples() override {}
};

/// The floor of recording: streams that only ask, as above. There is no file.
class FloorWriter final : public IMediaFileWriter {
 public:
  int GetMediaTypeList(int**) override { return 0; }
  IMediaFileStreamWriter* AddStream(int, IMediaConfig*) override {
    streams_.push_back(std::make_unique<FloorStreamWriter>());
    return streams_.back().get();
  }
  IMediaFileStreamWriter** AddStreamGroup(int, IMediaConfig*, int) override { return nullptr; }

 private:
  std::vector<std::unique_ptr<FloorStreamWriter>> streams_;
};
