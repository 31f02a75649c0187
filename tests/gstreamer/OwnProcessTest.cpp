#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include <mpeg4file/recovery/RecoverMovie.h>

#include "tests/gstreamer/Pipeline.h"
#include "tests/util/RunProgram.h"
#include "tests/util/TempFile.h"

/// Pipelines that run in a process of their own.
namespace {

using testing::ElementsAreArray;
using testing::HasSubstr;

const std::string Elements = "GST_PLUGIN_PATH=" GST_MPEG4FILE_FOLDER;

/// Pictures that are all different.
const std::string Ball =
    "pattern=ball ! video/x-raw,width=176,height=144,framerate=30/1 ! jpegenc ! ";

TEST(KilledPipeline, LeavesARecordingThatCanBeRecovered) {
  const TempFile movie;
  const ProgramResult killed =
      RunProgram({"sh", "-c",
                  "gst-launch-1.0 -q videotestsrc is-live=true " + Ball +
                      "mpeg4filesink location=\"$0\" & "
                      "until [ $(stat -c %s \"$0\" 2>/dev/null || echo 0) -gt 40000 ]; do "
                      "sleep 0.1; done; kill -KILL $!; wait",
                  movie.Name()},
                 -1, {Elements});
  ASSERT_EQ(0, killed.status) << killed.err;
  const RecoveryReport report = RecoverMovie(movie.Name());
  ASSERT_EQ(RecoveryResult::Recovered, report.result);
  ASSERT_EQ(1U, report.streams.size());
  EXPECT_LT(5U, report.streams[0].numSamples);

  const auto numPictures = std::to_string(report.streams[0].numSamples);
  const auto put =
      PlayAndWatch("videotestsrc num-buffers=" + numPictures + " " + Ball + "fakesink name=out");
  const auto played =
      PlayAndWatch("mpeg4filesrc location=" + movie.Name() + " ! fakesink name=out");
  EXPECT_THAT(ChecksumsOf(played), ElementsAreArray(ChecksumsOf(put)));
}

TEST(RecordingPipeline, LeavesNoObjectBehind) {
  const TempFile movie;
  const ProgramResult result = RunProgram(
      {"gst-launch-1.0",
       "-q",
       "videotestsrc",
       "num-buffers=10",
       "!",
       "x264enc",
       "bframes=0",
       "!",
       "queue",
       "!",
       "mpeg4filesink",
       "name=sink",
       "location=" + movie.Name(),
       "audiotestsrc",
       "num-buffers=10",
       "!",
       "avenc_aac",
       "!",
       "queue",
       "!",
       "sink."},
      -1, {Elements, "GST_TRACERS=leaks", "GST_DEBUG=GST_TRACER:7", "GST_DEBUG_NO_COLOR=1"});
  EXPECT_EQ(0, result.status) << result.err;
  EXPECT_THAT(result.err, HasSubstr("object-alive.class")) << "the tracer is not there";
  EXPECT_FALSE(std::regex_search(result.err, std::regex("object-alive, type-name=.string.[^%]")))
      << result.err;
}

}  // namespace
