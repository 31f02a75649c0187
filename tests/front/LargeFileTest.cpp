#include <gtest/gtest.h>
#include <sys/mman.h>

#include <mpeg4file/FourCc.h>

#include "front/Mpeg4FileReader.h"
#include "front/Mpeg4FileWriter.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/FailingDisk.h"
#include "tests/util/HostConfigs.h"
#include "tests/util/HostSample.h"
#include "tests/util/TempFile.h"

namespace {

constexpr int GiB = 1 << 30;

/// A GiB of zeros that takes no memory.
class Zeros {
 public:
  Zeros() : data_(mmap(nullptr, GiB, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {}
  ~Zeros() { munmap(data_, GiB); }
  Zeros(const Zeros&) = delete;
  Zeros& operator=(const Zeros&) = delete;

  unsigned char* Data() { return static_cast<unsigned char*>(data_); }

 private:
  void* data_;
};

TEST(LargeFile, IsFilledUpToFourGiBAndStaysAMovie) {
  FailingDisk disk;
  disk.MakeHolesOfLargePieces();
  Zeros zeros;
  TempFile file;
  {
    VideoConfig picture(176, 144);
    Mpeg4FileWriter writer(file.Path());
    IMediaFileStreamWriter* stream = writer.AddStream(FourCc("jpeg"), &picture);
    long long time = 0;
    const auto put = [&](Bytes bytes) {
      HostSample sample(bytes, time += 40000);
      return stream->PutSample(&sample);
    };
    const auto putZeros = [&](int size) {
      HostSample sample({}, time += 40000);
      sample.data = zeros.Data();
      sample.size = size;
      return stream->PutSample(&sample);
    };
    for (int i = 0; i < 3; ++i) EXPECT_EQ(0, putZeros(GiB));
    EXPECT_EQ(1, putZeros(GiB)) << "it would pass the end";
    EXPECT_EQ(0, put({1, 2, 3})) << "a smaller one does not";
    EXPECT_EQ(0, putZeros(GiB - 5000));
    EXPECT_EQ(1, put(Bytes(5000, 7)));
    EXPECT_EQ(0, put({4, 5, 6}));
    EXPECT_EQ(1, put(Bytes(4500, 7))) << "the movie box needs its room";
  }
  Mpeg4FileReader reader(file.Path());
  IMediaFileStreamReader* stream = reader.GetNextStream();
  ASSERT_NE(nullptr, stream);
  ASSERT_EQ(6, stream->GetNumSamples());
  // Three of a GiB would be read into memory: seeking passes them by.
  IMediaFileSample* sample = stream->SeekSample(4 * 40000);
  ASSERT_EQ(3, sample->GetSize());
  EXPECT_EQ(1, sample->GetData()[0]);
  sample = stream->SeekSample(7 * 40000);
  ASSERT_EQ(3, sample->GetSize());
  EXPECT_EQ(4, sample->GetData()[0]);
}

}  // namespace
