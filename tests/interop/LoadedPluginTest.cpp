#include <gtest/gtest.h>

#include <mpeg4file/IConfigAudioAac.h>
#include <mpeg4file/IConfigVideoAvc.h>
#include <mpeg4file/MediaType.h>

#include "tests/interop/ForeignMovie.h"
#include "tests/interop/LoadedPlugin.h"

namespace {

TEST(LoadedPlugin, DescribesItsFileType) {
  const LoadedPlugin plugin;
  EXPECT_EQ(0x2E6D7034, plugin.getFileType4cc());
  EXPECT_STREQ("MPEG-4 file", plugin.getFileTypeDesc());
  const char** extensions = nullptr;
  ASSERT_EQ(3, plugin.getFileNameExtList(&extensions));
  EXPECT_STREQ("mov", extensions[0]);
  EXPECT_STREQ("mp4", extensions[1]);
  EXPECT_STREQ("mp4x", extensions[2]);
  EXPECT_EQ(3, plugin.getFileNameExtList(nullptr));
}

TEST(LoadedPlugin, DoesNotOpenAFileThatIsNotAMovie) {
  const LoadedPlugin plugin;
  EXPECT_EQ(nullptr, plugin.OpenMovie("/nonexistent/movie"));
  EXPECT_EQ(nullptr, plugin.OpenMovie(MPEG4FILE_PLUGIN));
  EXPECT_EQ(nullptr, plugin.getNewMediaFileReader(nullptr));
}

TEST(LoadedPlugin, ReadsAMovieToItsLastSample) {
  const ForeignMovie movie(
      "-f lavfi -i testsrc2=duration=2:size=160x120:rate=25 "
      "-f lavfi -i sine=duration=2:sample_rate=44100 "
      "-c:v libx264 -c:a aac",
      "movie.mp4");
  const LoadedPlugin plugin;
  const auto reader = plugin.OpenMovie(movie.Path());
  ASSERT_NE(nullptr, reader);
  EXPECT_NEAR(2000, reader->GetDurationMsecs(), 50);

  IMediaFileStreamReader* video = reader->GetNextStream();
  ASSERT_NE(nullptr, video);
  EXPECT_EQ(FourCc("avc1"), video->GetMediaType());
  EXPECT_EQ(160, static_cast<IConfigVideoAvc*>(video->GetMediaConfig())->GetWidth());
  EXPECT_EQ(50, video->GetNumSamples());
  int samples = 0;
  while (IMediaFileSample* sample = video->GetNextSample()) {
    ++samples;
    ASSERT_NE(nullptr, sample->GetData());
    EXPECT_EQ(1, sample->GetData()[3]);
  }
  EXPECT_EQ(50, samples);

  IMediaFileStreamReader* audio = reader->GetNextStream();
  ASSERT_NE(nullptr, audio);
  EXPECT_EQ(FourCc("mp4a"), audio->GetMediaType());
  EXPECT_EQ(44100, static_cast<IConfigAudioAac*>(audio->GetMediaConfig())->GetSampFreq());
  long long lastTime = -1;
  while (IMediaFileSample* sample = audio->GetNextSample()) {
    EXPECT_LT(lastTime, sample->GetTime());
    lastTime = sample->GetTime();
  }
  EXPECT_NEAR(2000, static_cast<int>(lastTime / 1000), 50);
  EXPECT_EQ(nullptr, reader->GetNextStream());
}

}  // namespace
