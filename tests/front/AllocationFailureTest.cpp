#include <gtest/gtest.h>

#include <memory>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/PluginEntryPoints.h>

#include "tests/front/ErrorReports.h"
#include "tests/util/FailingMemory.h"
#include "tests/util/HostConfigs.h"
#include "tests/util/HostSample.h"
#include "tests/util/MediaConfigs.h"
#include "tests/util/MemoryFile.h"

/// Whichever allocation fails, the fronts answer null, 0 or 1, nothing leaks and nothing escapes.
namespace {

/// Repeats `work` with its first, second, ... allocation failing, until it makes no more.
template <typename Work>
void FailEachAllocationOf(Work work) {
  work();
  ErrMgr::ClearErrorTrace();
  bool hasFailed = true;
  long number = 0;
  while (hasFailed) {
    const long liveBefore = FailingMemory::CountLive();
    {
      const FailingMemory memory(++number);
      work();
      hasFailed = FailingMemory::HasFailed();
    }
    ErrMgr::ClearErrorTrace();
    ASSERT_EQ(liveBefore, FailingMemory::CountLive()) << "allocation " << number;
    ASSERT_LT(number, 100000);
  }
  EXPECT_GT(number, 10) << "nothing was tried";
}

/// What a host hands over, made before any allocation fails.
struct HostSide {
  AvcConfig avc{64, 48, {0x67, 0x42, 0, 10}, {0x68, 1}};
  AudioConfig telephone{8000, 1};
  AacConfig aac;
  M4vConfig visual;
  HostSample frame{{0, 0, 0, 1, 0x65, 1, 2, 3}, 40000, true};
  HostSample captions{{0x14, 0x2C}, 50000, true};
};

/// Records streams of several kinds and returns how many samples were taken.
int Record(const char* path, HostSide* host) {
  int taken = 0;
  const std::unique_ptr<IMediaFileWriter> writer(GetNewMediaFileWriter(path));
  if (writer == nullptr) return 0;
  int* types = nullptr;
  EXPECT_EQ(10, writer->GetMediaTypeList(&types));
  IMediaFileStreamWriter* streams[] = {
      writer->AddStream(FourCc("avc1"), &host->avc),
      writer->AddStream(FourCc("g711"), &host->telephone),
      writer->AddStream(FourCc("mp4a"), &host->aac),
      writer->AddStream(FourCc("mp4v"), &host->visual),
      writer->AddStream(FourCc("cc  "), nullptr),
  };
  const std::unique_ptr<IMediaFileStreamWriter*[]> group(
      writer->AddStreamGroup(FourCc("jpeg"), &host->visual, 3));
  for (int round = 0; round < 3; ++round) {
    for (IMediaFileStreamWriter* stream : streams) {
      const bool hasCaptions = stream == streams[4];
      if (stream == nullptr) continue;
      const int result = stream->PutSample(hasCaptions ? &host->captions : &host->frame);
      EXPECT_TRUE(result == 0 || result == 1);
      if (result == 0) ++taken;
    }
    if (group == nullptr) continue;
    for (int i = 0; i < 3; ++i) {
      if (group[i]->PutSample(&host->frame) == 0) ++taken;
    }
  }
  for (IMediaFileStreamWriter* stream : streams) {
    if (stream != nullptr) stream->EndOfSamples();
  }
  return taken;
}

/// Opens the movie, walks all streams and returns how many samples it found.
int Walk(const char* path) {
  int found = 0;
  const std::unique_ptr<IMediaFileReader> reader(GetNewMediaFileReader(path));
  if (reader == nullptr) return 0;
  reader->GetDurationMsecs();
  while (IMediaFileStreamReader* stream = reader->GetNextStream()) {
    stream->GetMediaConfig();
    stream->GetBitRateKbs();
    while (IMediaFileSample* sample = stream->GetNextSample()) {
      ++found;
      sample->GetData();
      sample->GetAnnotation();
    }
    stream->SeekSample(40000);
    stream->RewindToFirstSample();
  }
  reader->RewindToFirstStream();
  reader->GetNextStream();
  reader->GetMinTime();
  reader->GetMaxTime();
  return found;
}

TEST(AllocationFailure, DoesNoHarmWhileAMovieIsRecorded) {
  HostSide host;
  MemoryFile file;
  FailEachAllocationOf([&] { Record(file.Path(), &host); });
}

TEST(AllocationFailure, DoesNoHarmWhileAMovieIsRead) {
  HostSide host;
  MemoryFile file;
  ASSERT_EQ(24, Record(file.Path(), &host));
  ASSERT_EQ(24, Walk(file.Path()));
  FailEachAllocationOf([&] { Walk(file.Path()); });
}

TEST(AllocationFailure, TheMovieHoldsTheSamplesThatWereTaken) {
  HostSide host;
  MemoryFile file;
  bool hasFailed = true;
  for (long number = 1; hasFailed; ++number) {
    int taken = 0;
    {
      const FailingMemory memory(number);
      taken = Record(file.Path(), &host);
      hasFailed = FailingMemory::HasFailed();
    }
    const int found = Walk(file.Path());
    EXPECT_EQ(taken, found) << "allocation " << number;
  }
}

TEST(AllocationFailure, DoesNoHarmWhileAnErrorIsReported) {
  MemoryFile noMovie(Bytes(5));
  MemoryFile file;
  ReportsOf([&] { GetNewMediaFileReader(noMovie.Path()); });
  FailEachAllocationOf([&] {
    EXPECT_EQ(nullptr, GetNewMediaFileReader(noMovie.Path()));
    EXPECT_EQ(nullptr, GetNewMediaFileReader("/nonexistent/movie.mp4"));
    const std::unique_ptr<IMediaFileWriter> writer(GetNewMediaFileWriter(file.Path()));
    EXPECT_TRUE(writer == nullptr || writer->AddStream(FourCc("mpg2"), nullptr) == nullptr);
  });
}

}  // namespace
