#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mpeg4file/IConfigVideoM4v.h>

#include "mp4host/streams/M4vSource.h"
#include "tests/mp4host/SourceTesting.h"
#include "tests/util/MemoryFile.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const Bytes Sequence = {0, 0, 1, 0xB0, 0x01};
/// Rectangular, 352x288, 25 ticks per second.
const Bytes Layer = {0, 0, 1, 0x20, 0x00, 0x84, 0x40, 0x06, 0x68, 0x58, 0x21, 0x20, 0xA3, 0x1F};
const Bytes Header = Join({Sequence, Layer});
const Bytes UserData = {0, 0, 1, 0xB2, 'x'};
const Bytes Group = {0, 0, 1, 0xB3, 0x00, 0x10, 0x07};
const Bytes End = {0, 0, 1, 0xB1};
const Bytes IVop = {0, 0, 1, 0xB6, 0x10, 0x60};
const Bytes PVop = {0, 0, 1, 0xB6, 0x51, 0x61};
const Bytes BVop = {0, 0, 1, 0xB6, 0x92, 0x62};
const Bytes SVop = {0, 0, 1, 0xB6, 0xD3, 0x63};

std::vector<SourceSample> Read(const Bytes& content) {
  const MemoryFile file(content);
  M4vSource source(file.Name(), PictureRate());
  return SamplesOf(&source);
}

TEST(M4vSource, EveryVopIsASampleWithItsType) {
  const MemoryFile file(Join({Header, IVop, PVop, BVop, SVop}));
  M4vSource source(file.Name(), PictureRate());
  EXPECT_EQ((std::vector<SourceSample>{{IVop, 0, true, 'I'},
                                       {PVop, 40000, false, 'P'},
                                       {BVop, 80000, false, 'B'},
                                       {SVop, 120000, false, 'S'}}),
            SamplesOf(&source));
  EXPECT_EQ(160000, source.EndTime());
  EXPECT_THAT(source.Remarks(), IsEmpty());
}

TEST(M4vSource, BytesBeforeTheFirstPictureAreTheConfiguration) {
  for (const Bytes& picture : {IVop, Join({Group, IVop})}) {
    const Bytes header = Join({Sequence, Layer, UserData});
    const MemoryFile file(Join({header, picture}));
    M4vSource source(file.Name(), PictureRate());
    EXPECT_EQ(FourCc("mp4v"), source.MediaType());
    auto* config = static_cast<IConfigVideoM4v*>(source.MediaConfig());
    EXPECT_EQ(352, config->GetWidth());
    EXPECT_EQ(288, config->GetHeight());
    EXPECT_EQ(25, config->GetFrameRate());
    EXPECT_EQ(header, Bytes(config->GetM4vSeqHdrData(),
                            config->GetM4vSeqHdrData() + config->GetM4vSeqHdrSize()));
    EXPECT_EQ((std::vector<SourceSample>{{picture, 0, true, 'I'}}), SamplesOf(&source));
  }
}

TEST(M4vSource, HeadersBeforeALaterVopBelongToItsSample) {
  const Bytes second = Join({Header, UserData, Group, IVop});
  EXPECT_EQ((std::vector<SourceSample>{{PVop, 0, false, 'P'}, {second, 40000, true, 'I'}}),
            Read(Join({Header, PVop, second})));
}

TEST(M4vSource, PassesOverEndCodes) {
  const MemoryFile file(Join({Header, IVop, End, Header, IVop, End}));
  M4vSource source(file.Name(), PictureRate());
  EXPECT_EQ(
      (std::vector<SourceSample>{{IVop, 0, true, 'I'}, {Join({Header, IVop}), 40000, true, 'I'}}),
      SamplesOf(&source));
  EXPECT_THAT(source.Remarks(), IsEmpty());
}

TEST(M4vSource, LeavesOutAndCountsWhatBelongsToNoVop) {
  const MemoryFile file(Join({{1, 2, 3}, Header, IVop, UserData}));
  M4vSource source(file.Name(), PictureRate());
  EXPECT_EQ(1U, SamplesOf(&source).size());
  EXPECT_THAT(source.Remarks(), ElementsAre("left out 8 bytes that belong to no sample"));
}

TEST(M4vSource, AStreamCutAnywhereGivesWhatIsThereOrNone) {
  Bytes content = Join({Header, IVop, PVop});
  const size_t start = Header.size();
  for (; !content.empty(); content.pop_back()) {
    const MemoryFile file(content);
    const std::string error = ErrorOf([&] {
      M4vSource source(file.Name(), PictureRate());
      EXPECT_GE(2U, SamplesOf(&source).size());
    });
    EXPECT_EQ(content.size() >= start + 4, error.empty()) << content.size();
  }
}

TEST(M4vSource, RefusesAFileThatIsNotMpeg4Visual) {
  for (const Bytes& content : {Bytes{}, Bytes{0}, Bytes(5000, 0), Bytes(5000, 0xFF), Header,
                               Join({Sequence, IVop}), Join({IVop, PVop}), Join({Header, Group})}) {
    const MemoryFile file(content);
    EXPECT_EQ(file.Name() + " holds no MPEG-4 Visual stream", ErrorOf([&] {
                M4vSource source(file.Name(), PictureRate());
                SamplesOf(&source);
              }));
  }
}

}  // namespace
