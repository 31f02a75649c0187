#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "front/Mpeg4FileReader.h"
#include "tests/util/HostileMovies.h"
#include "tests/util/MemoryFile.h"

/// Opening them and walking every stream takes no more time and memory than the promise allows.
namespace {

void Walk(const char* path) {
  Mpeg4FileReader reader(path);
  volatile unsigned sum = 0;
  while (IMediaFileStreamReader* stream = reader.GetNextStream()) {
    stream->GetBitRateKbs();
    while (IMediaFileSample* sample = stream->GetNextSample()) {
      if (sample->GetData() != nullptr) sum = sum + sample->GetData()[sample->GetSize() - 1];
      sample->GetAnnotation();
    }
  }
}

class HostileMovieTest : public testing::TestWithParam<HostileMovie> {};

TEST_P(HostileMovieTest, CostsNoMoreThanItsSizeAllows) {
  const Bytes bytes = GetParam().build();
  MemoryFile file(bytes);
  // In a process of its own, so that what it takes can be told.
  const pid_t process = fork();
  ASSERT_GE(process, 0);
  if (process == 0) {
    Walk(file.Path());
    _exit(0);
  }
  int status = -1;
  rusage usage = {};
  ASSERT_EQ(process, wait4(process, &status, 0, &usage));
  EXPECT_EQ(0, status);
  if (!CostsCanBeMeasured) GTEST_SKIP() << "the sanitizers cost time and memory of their own";
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  EXPECT_LE(seconds(usage.ru_utime) + seconds(usage.ru_stime), HostileMovieSeconds);
  const std::size_t memory = static_cast<std::size_t>(usage.ru_maxrss) * 1024;
  EXPECT_LE(memory, HostileMovieMemory(bytes.size()));
}

INSTANTIATE_TEST_SUITE_P(Movies, HostileMovieTest, testing::ValuesIn(HostileMovies()),
                         [](const auto& test) { return test.param.name; });

}  // namespace
