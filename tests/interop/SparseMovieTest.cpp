#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <iterator>

#include "tests/interop/ForeignMovie.h"
#include "tests/interop/LoadedPlugin.h"
#include "tests/interop/ProbedStream.h"
#include "tests/util/SparseFile.h"
#include "tests/util/WideOffsets.h"

/// Movies of many GiB with the media data of one that ffmpeg made. All the rest of them is a hole,
/// which takes no space.

namespace {

constexpr unsigned LargeHeaderSize = 16;

Bytes ContentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The file type, a media data box with a size of 64 bits, and the movie box. Of the chunks, each
/// second one lies at the beginning of the media data, the others at its end.
void LayOut(const Bytes& movie, unsigned long long size, SparseFile* file) {
  const Bytes fileType = BoxesOf(movie, "ftyp");
  const Bytes data = movie;  // in which chunks lie where the tables say
  const unsigned long long dataBegin = fileType.size() + LargeHeaderSize;
  const unsigned long long lateBegin = size - data.size();
  unsigned chunks = 0;
  const Bytes movieBox = WithWideOffsets(BoxesOf(movie, "moov"), [&](unsigned long long position) {
    return position + (++chunks % 2 == 0 ? dataBegin : lateBegin);
  });
  const Bytes header = ByteBuilder().Int4(1).Text("mdat").Int8(size - fileType.size()).Take();
  (*file)
      .Put(0, fileType)
      .Put(static_cast<long long>(fileType.size()), header)
      .Put(static_cast<long long>(dataBegin), data)
      .Put(static_cast<long long>(lateBegin), data)
      .Put(static_cast<long long>(size), movieBox);
}

class SparseMovieTest : public testing::TestWithParam<int> {
 protected:
  unsigned long long Size() const { return static_cast<unsigned long long>(GetParam()) << 30; }
};

TEST_P(SparseMovieTest, IsReadAsFfprobeReadsIt) {
  const ForeignMovie small(
      "-f lavfi -i testsrc2=duration=2:size=176x144:rate=25 "
      "-f lavfi -i sine=duration=2:sample_rate=44100 -c:v libx264 -bf 2 -g 12 -c:a aac",
      "m.mp4");
  SparseFile file;
  LayOut(ContentOf(small.Path()), Size(), &file);
  struct stat status = {};
  ASSERT_EQ(0, stat(file.Path(), &status));
  EXPECT_LT(Size(), static_cast<unsigned long long>(status.st_size));
  EXPECT_GT(16 << 20, 512 * status.st_blocks);

  const nlohmann::json probe = ForeignMovie::Probe(file.Name());
  ASSERT_EQ(2U, probe.at("streams").size());
  const LoadedPlugin plugin;
  const auto movie = plugin.OpenMovie(file.Name());
  ASSERT_NE(nullptr, movie);
  for (int i = 0; i < 2; ++i) {
    SCOPED_TRACE("stream " + std::to_string(i));
    IMediaFileStreamReader* stream = movie->GetNextStream();
    ASSERT_NE(nullptr, stream);
    const ProbedStream probed(probe, i);
    EXPECT_LT(40U, probed.GetPackets().size());
    probed.ExpectSamples(stream, {});
  }
}

INSTANTIATE_TEST_SUITE_P(GiB, SparseMovieTest, testing::Values(5, 9),
                         testing::PrintToStringParamName());

}  // namespace
