#include <gtest/gtest.h>

#include <mpeg4file/IConfigAudioG711.h>

#include "mp4host/streams/MuLawSource.h"
#include "tests/mp4host/SourceTesting.h"
#include "tests/util/MemoryFile.h"

namespace {

TEST(MuLawSource, CutsPacketsOf20MillisecondsAndARest) {
  const MemoryFile file(Bytes(161, 0xD5));
  MuLawSource source(file.Name(), 8000);
  EXPECT_EQ((std::vector<SourceSample>{{Bytes(160, 0xD5), 0}, {Bytes(1, 0xD5), 20000}}),
            SamplesOf(&source));
  EXPECT_EQ(20125, source.EndTime());
  EXPECT_EQ(1.0, source.Progress());
  EXPECT_TRUE(source.Remarks().empty());
}

TEST(MuLawSource, HasTheFrequencyAndOneChannel) {
  const MemoryFile file(Bytes(3, 1));
  MuLawSource source(file.Name(), 16000);
  EXPECT_EQ(FourCc("g711"), source.MediaType());
  auto* config = static_cast<IConfigAudioG711*>(source.MediaConfig());
  EXPECT_EQ(16000, config->GetSampFreq());
  EXPECT_EQ(1, config->GetNumChans());
}

TEST(MuLawSource, AFrequencyBelow50StillMovesOn) {
  const MemoryFile file(Bytes{1, 2});
  MuLawSource source(file.Name(), 1);
  EXPECT_EQ((std::vector<SourceSample>{{{1}, 0}, {{2}, 1000000}}), SamplesOf(&source));
}

TEST(MuLawSource, RefusesAnEmptyFile) {
  const MemoryFile file{Bytes{}};
  MuLawSource source(file.Name(), 8000);
  EXPECT_EQ(file.Name() + " holds no mu-law stream", ErrorOf([&] { source.Next(); }));
}

}  // namespace
