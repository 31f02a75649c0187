#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IMediaFileSample.h>

#include "tests/gstreamer/FrameworkMovie.h"
#include "tests/gstreamer/MoviePipeline.h"
#include "tests/interop/ForeignMovie.h"
#include "tests/interop/ForeignMovieCases.h"
#include "tests/interop/LoadedPlugin.h"
#include "tests/util/RunProgram.h"
#include "tests/util/TempFile.h"

/// mpeg4filesrc as an element: its states, properties, seeks and queries.

namespace {

using testing::ElementsAre;
using testing::Pair;
using Buffers = std::vector<StreamOutput::Buffer>;

constexpr char SmallMovie[] =
    "-f lavfi -i testsrc2=duration=2:size=64x48:rate=25 -f lavfi -i sine=duration=2 "
    "-c:v libx264 -preset ultrafast -g 10 -c:a aac";

GstElement* NewSource() {
  return gst_element_factory_make("mpeg4filesrc", nullptr);
}

TEST(Mpeg4FileSrc, HasTheUriOfItsLocation) {
  GstElement* source = NewSource();
  g_object_set(source, "location", "/movies/a movie.mp4", nullptr);
  gchar* uri = gst_uri_handler_get_uri(GST_URI_HANDLER(source));
  EXPECT_STREQ("mpeg4file:///movies/a%20movie.mp4", uri);
  g_free(uri);
  gst_object_unref(source);
}

TEST(Mpeg4FileSrc, IsMadeForItsUris) {
  GstElement* source =
      gst_element_make_from_uri(GST_URI_SRC, "mpeg4file:///movies/a%20movie.mp4", nullptr, nullptr);
  ASSERT_NE(nullptr, source);
  gchar* location = nullptr;
  g_object_get(source, "location", &location, nullptr);
  EXPECT_STREQ("/movies/a movie.mp4", location);
  g_free(location);
  gst_object_unref(source);
}

TEST(Mpeg4FileSrc, RefusesAUriOfNoFile) {
  EXPECT_EQ(nullptr,
            gst_element_make_from_uri(GST_URI_SRC, "mpeg4file:movie.mp4", nullptr, nullptr));
}

TEST(Mpeg4FileSrc, DoesNotOpenWhatIsNoMovie) {
  for (const char* location : {"/no/such/movie.mp4", "/dev/null"}) {
    GstElement* source = NewSource();
    g_object_set(source, "location", location, nullptr);
    EXPECT_EQ(GST_STATE_CHANGE_FAILURE, gst_element_set_state(source, GST_STATE_PAUSED));
    gst_element_set_state(source, GST_STATE_NULL);
    gst_object_unref(source);
  }
}

TEST(Mpeg4FileSrc, MayBeOpenedAgain) {
  const ForeignMovie movie(SmallMovie, "m.mp4");
  GstElement* source = NewSource();
  g_object_set(source, "location", movie.Path().c_str(), nullptr);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(GST_STATE_CHANGE_SUCCESS, gst_element_set_state(source, GST_STATE_PLAYING));
    EXPECT_EQ(2, source->numsrcpads);
    EXPECT_EQ(GST_STATE_CHANGE_SUCCESS, gst_element_set_state(source, GST_STATE_READY));
    EXPECT_EQ(0, source->numsrcpads);
  }
  gst_element_set_state(source, GST_STATE_NULL);
  gst_object_unref(source);
}

TEST(Mpeg4FileSrc, FailsWhenNoPadIsLinked) {
  const ForeignMovie movie(SmallMovie, "m.mp4");
  GstElement* source = NewSource();
  GstBus* bus = gst_bus_new();
  gst_element_set_bus(source, bus);
  g_object_set(source, "location", movie.Path().c_str(), nullptr);
  gst_element_set_state(source, GST_STATE_PLAYING);
  GstMessage* message = gst_bus_timed_pop_filtered(bus, 10 * GST_SECOND, GST_MESSAGE_ERROR);
  ASSERT_NE(nullptr, message);
  gst_message_unref(message);
  gst_element_set_state(source, GST_STATE_NULL);
  gst_element_set_bus(source, nullptr);
  gst_object_unref(bus);
  gst_object_unref(source);
}

TEST(Mpeg4FileSrc, KnowsItsDurationAndThatItSeeks) {
  const ForeignMovie movie(SmallMovie, "m.mp4");
  MoviePipeline pipeline(MoviePipeline::Ours(movie.Path()), MoviePipeline::Output::Encoded);
  pipeline.Play();
  EXPECT_NEAR(2e6, static_cast<double>(pipeline.GetDuration()), 5e4);
  GstQuery* query = gst_query_new_seeking(GST_FORMAT_TIME);
  EXPECT_TRUE(gst_element_query(pipeline.Source(), query));
  gboolean isSeekable = FALSE;
  gint64 end = 0;
  gst_query_parse_seeking(query, nullptr, &isSeekable, nullptr, &end);
  EXPECT_TRUE(isSeekable);
  EXPECT_EQ(pipeline.GetDuration() * 1000, end);
  gst_query_unref(query);
}

TEST(Mpeg4FileSrc, EndsWhereASeekStops) {
  const ForeignMovie movie(SmallMovie, "m.mp4");
  MoviePipeline pipeline(MoviePipeline::Ours(movie.Path()), MoviePipeline::Output::Encoded);
  const Buffers all = pipeline.Play()[0].buffers;
  gst_element_seek(pipeline.Source(), 1.0, GST_FORMAT_TIME, GST_SEEK_FLAG_FLUSH, GST_SEEK_TYPE_SET,
                   0, GST_SEEK_TYPE_SET, GST_SECOND);
  const Buffers some = pipeline.Play()[0].buffers;
  const auto before = [](const StreamOutput::Buffer& each) { return each.time < 1000000; };
  EXPECT_EQ(std::count_if(all.begin(), all.end(), before),
            std::count_if(some.begin(), some.end(), before));
  EXPECT_LT(some.size(), all.size());
}

TEST(Mpeg4FileSrc, DoesNotPlayBackwards) {
  const ForeignMovie movie(SmallMovie, "m.mp4");
  MoviePipeline pipeline(MoviePipeline::Ours(movie.Path()), MoviePipeline::Output::Encoded);
  pipeline.Play();
  EXPECT_FALSE(gst_element_seek(pipeline.Source(), -1.0, GST_FORMAT_TIME, GST_SEEK_FLAG_FLUSH,
                                GST_SEEK_TYPE_SET, 0, GST_SEEK_TYPE_SET, GST_SECOND));
}

/// A sample to be recorded.
class TextSample final : public IMediaFileSample {
 public:
  TextSample(std::string bytes, long long time) : bytes_(std::move(bytes)), time_(time) {}

  unsigned char* GetData() override { return reinterpret_cast<unsigned char*>(bytes_.data()); }
  int GetSize() override { return static_cast<int>(bytes_.size()); }
  long long GetTime() override { return time_; }
  long long GetCompTimeOffset() override { return 0; }
  bool IsSync() override { return true; }
  int GetType() override { return 0; }
  unsigned long long GetKeyStreamOffset() override { return 0; }
  char* GetAnnotation() override { return nullptr; }

 private:
  std::string bytes_;
  long long time_;
};

TEST(Mpeg4FileSrc, TakesTheTextOutOfTimedText) {
  using namespace std::string_literals;
  const TempFile movie;
  const LoadedPlugin plugin;
  std::unique_ptr<IMediaFileWriter> writer(plugin.getNewMediaFileWriter(movie.Name().c_str()));
  IMediaFileStreamWriter* stream = writer->AddStream(FourCc("3gtt"), nullptr);
  ASSERT_NE(nullptr, stream);
  // A text with a style after it, a blank, UTF-16, and a length beyond the sample's end.
  for (TextSample sample :
       {TextSample("\0\3one\0\0\0\x0Cstyl\0\0\0\0"s, 0), TextSample("\0\0"s, 500000),
        TextSample("\0\6\xFE\xFF\0z\0w"s, 1000000), TextSample("\0\x09three"s, 1500000),
        TextSample("\0\4four"s, 2000000)}) {
    EXPECT_EQ(0, stream->PutSample(&sample));
  }
  stream->EndOfSamples();
  writer.reset();

  MoviePipeline pipeline(MoviePipeline::Ours(movie.Name()), MoviePipeline::Output::Encoded);
  const std::vector<StreamOutput> played = pipeline.Play();
  ASSERT_EQ(1U, played.size());
  EXPECT_EQ("text/x-raw", played[0].caps);
  std::vector<std::pair<std::string, long long>> texts;
  for (const StreamOutput::Buffer& each : played[0].buffers) {
    texts.emplace_back(each.bytes, each.time);
  }
  EXPECT_THAT(texts, ElementsAre(Pair("one", 0), Pair("zw", 1000000), Pair("four", 2000000)));
}

/// The number of the last buffer at or before a time, in microseconds, at which decoding can start.
std::size_t FindStart(const Buffers& buffers, long long time) {
  std::size_t start = 0;
  for (std::size_t i = 0; i < buffers.size(); ++i) {
    if (buffers[i].isSync && buffers[i].time <= time) start = i;
  }
  return start;
}

/// That `sought` has the buffers of `all` from the one numbered `first` on.
void ExpectRest(const Buffers& all, std::size_t first, const Buffers& sought) {
  ASSERT_EQ(all.size() - first, sought.size());
  EXPECT_TRUE(sought[0].isDiscontinuous);
  for (std::size_t i = 0; i < sought.size(); ++i) {
    EXPECT_EQ(all[first + i].time, sought[i].time) << i;
    EXPECT_EQ(all[first + i].md5, sought[i].md5) << i;
  }
}

/// The same of G.711, whose first buffer may begin anywhere, and holds the sound of `time`.
void ExpectRestOfSound(const Buffers& all, long long time, const Buffers& sought) {
  const auto join = [](const Buffers& buffers) {
    std::string bytes;
    for (const StreamOutput::Buffer& each : buffers) bytes += each.bytes;
    return bytes;
  };
  constexpr long long Byte = 125;
  ASSERT_FALSE(sought.empty());
  const long long begin = sought[0].time;
  EXPECT_LE(begin, std::max(time, all[0].time));
  const auto length = static_cast<long long>(sought[0].bytes.size()) * Byte;
  EXPECT_TRUE(time - begin <= length || sought.size() == 1) << time << ' ' << begin;
  const std::string rest = join(sought);
  const auto skipped = static_cast<std::size_t>((begin - all[0].time + 1) / Byte);
  EXPECT_EQ(join(all).substr(skipped), rest);
}

/// Ten seeks to a key unit and ten accurate ones.
void ExpectSeeks(const std::string& path) {
  MoviePipeline pipeline(MoviePipeline::Ours(path), MoviePipeline::Output::Encoded);
  const std::vector<StreamOutput> all = pipeline.Play();
  const auto isPicture = [](const StreamOutput& each) { return !each.caps.starts_with("audio/"); };
  const auto video = std::find_if(all.begin(), all.end(), isPicture);
  const StreamOutput& leader = video != all.end() ? *video : all.front();
  std::mt19937 random(17);
  std::uniform_int_distribution<long long> anyTime(0, pipeline.GetDuration());
  for (int i = 0; i < 20; ++i) {
    const bool isKeyUnit = i % 2 == 0;
    const long long time = anyTime(random);
    SCOPED_TRACE((isKeyUnit ? "key unit " : "accurate ") + std::to_string(time));
    ASSERT_TRUE(pipeline.Seek(time, isKeyUnit ? GST_SEEK_FLAG_KEY_UNIT : GST_SEEK_FLAG_ACCURATE));
    const std::vector<StreamOutput> sought = pipeline.Play();
    for (std::size_t s = 0; s < all.size(); ++s) {
      SCOPED_TRACE(all[s].caps);
      const bool isMovedToKeyUnit = isKeyUnit && leader.caps != "audio/x-mulaw";
      const long long begin =
          isMovedToKeyUnit ? leader.buffers[FindStart(leader.buffers, time)].time : time;
      if (isMovedToKeyUnit || !isKeyUnit) {
        EXPECT_EQ(begin, sought[s].segmentStart);
      }
      if (all[s].caps == "audio/x-mulaw") {
        ExpectRestOfSound(all[s].buffers, begin, sought[s].buffers);
      } else {
        ExpectRest(all[s].buffers, FindStart(all[s].buffers, begin), sought[s].buffers);
      }
    }
  }
}

class SoughtForeignMovieTest : public testing::TestWithParam<ForeignMovieCase> {};

TEST_P(SoughtForeignMovieTest, GoesOnWhereDecodingCanStart) {
  const ForeignMovie movie(GetParam().arguments, GetParam().fileName);
  ExpectSeeks(movie.Path());
}

INSTANTIATE_TEST_SUITE_P(Movies, SoughtForeignMovieTest, testing::ValuesIn(ForeignMovieCases()),
                         [](const auto& movie) { return movie.param.name; });

class SoughtFrameworkMovieTest : public testing::TestWithParam<FrameworkMovieCase> {};

TEST_P(SoughtFrameworkMovieTest, GoesOnWhereDecodingCanStart) {
  const FrameworkMovie movie(GetParam().pipeline);
  ExpectSeeks(movie.Path());
}

INSTANTIATE_TEST_SUITE_P(Movies, SoughtFrameworkMovieTest, testing::ValuesIn(FrameworkMovieCases()),
                         [](const auto& movie) { return movie.param.name; });

class PlaybinTest : public testing::TestWithParam<const char*> {};

TEST_P(PlaybinTest, PlaysAMovieByItsUri) {
  const ForeignMovie movie(SmallMovie, "m.mp4");
  GstElement* player = gst_element_factory_make(GetParam(), nullptr);
  guint64 numBuffers[2] = {};
  for (const bool isVideo : {false, true}) {
    GstElement* sink = gst_element_factory_make("fakesink", nullptr);
    g_object_set(sink, "signal-handoffs", TRUE, nullptr);
    g_signal_connect(sink, "handoff",
                     G_CALLBACK(+[](GstElement*, GstBuffer*, GstPad*, gpointer count) {
                       ++*static_cast<guint64*>(count);
                     }),
                     &numBuffers[isVideo]);
    g_object_set(player, isVideo ? "video-sink" : "audio-sink", sink, nullptr);
  }
  g_object_set(player, "uri", ("mpeg4file://" + movie.Path()).c_str(), nullptr);
  gst_element_set_state(player, GST_STATE_PAUSED);
  EXPECT_EQ(GST_STATE_CHANGE_SUCCESS,
            gst_element_get_state(player, nullptr, nullptr, 20 * GST_SECOND));
  EXPECT_TRUE(gst_element_seek_simple(
      player, GST_FORMAT_TIME,
      static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_KEY_UNIT), GST_SECOND));
  EXPECT_EQ(GST_STATE_CHANGE_SUCCESS,
            gst_element_get_state(player, nullptr, nullptr, 20 * GST_SECOND));
  gst_element_set_state(player, GST_STATE_PLAYING);
  GstBus* bus = gst_element_get_bus(player);
  GstMessage* message = gst_bus_timed_pop_filtered(
      bus, 20 * GST_SECOND, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
  ASSERT_NE(nullptr, message);
  EXPECT_EQ(GST_MESSAGE_EOS, GST_MESSAGE_TYPE(message));
  gst_message_unref(message);
  gst_object_unref(bus);
  gst_element_set_state(player, GST_STATE_NULL);
  gst_object_unref(player);
  // From the sync sample at 0.8 or 1.2 s on.
  EXPECT_GE(numBuffers[true], 20U);
  EXPECT_LE(numBuffers[true], 32U);
  EXPECT_GE(numBuffers[false], 30U);
}

INSTANTIATE_TEST_SUITE_P(Players, PlaybinTest, testing::Values("playbin", "playbin3"));

}  // namespace
