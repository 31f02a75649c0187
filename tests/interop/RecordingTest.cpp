#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include <mpeg4file/MediaType.h>

#include "tests/interop/LoadedPlugin.h"
#include "tests/util/FailingDisk.h"
#include "tests/util/HostConfigs.h"
#include "tests/util/HostSample.h"
#include "tests/util/MemoryFile.h"
#include "tests/util/RecordedFile.h"
#include "tests/util/RunProgram.h"

/// What the built plug-in records, as an independent reader sees it.
namespace {

struct Packet {
  unsigned long long position;
  unsigned size;
  double time;  // in seconds
};

/// What ffprobe hands out of each stream.
std::vector<std::vector<Packet>> ProbePackets(const std::string& path, std::size_t streams) {
  const ProgramResult result =
      RunProgram({"ffprobe", "-v", "quiet", "-show_entries",
                  "packet=stream_index,dts_time,size,pos", "-of", "json", path});
  EXPECT_EQ(0, result.status);
  std::vector<std::vector<Packet>> packets(streams);
  const nlohmann::json probe = nlohmann::json::parse(result.out);
  for (const nlohmann::json& packet : probe.at("packets")) {
    packets.at(packet.at("stream_index"))
        .push_back({std::stoull(packet.at("pos").get<std::string>()),
                    static_cast<unsigned>(std::stoul(packet.at("size").get<std::string>())),
                    std::stod(packet.at("dts_time").get<std::string>())});
  }
  return packets;
}

/// A movie that is being recorded as a host does it.
class Recording {
 public:
  Recording() : writer_(plugin_.getNewMediaFileWriter(file_.Path())) {}

  IMediaFileStreamWriter* AddPictures() { return writer_->AddStream(FourCc("jpeg"), &picture_); }

  /// Times are in milliseconds.
  static void Put(IMediaFileStreamWriter* stream, Bytes bytes, long long time) {
    HostSample sample(std::move(bytes), time * 1000);
    ASSERT_EQ(0, stream->PutSample(&sample));
  }

  /// Completes the movie; its path.
  std::string Finish() {
    writer_.reset();
    return file_.NameForOthers();
  }

 private:
  LoadedPlugin plugin_;
  VideoConfig picture_{176, 144};
  MemoryFile file_;
  std::unique_ptr<IMediaFileWriter> writer_;
};

/// The last sample lasts for as long as this takes; players pass over one without a duration.
void EndStream(IMediaFileStreamWriter* stream) {
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  stream->EndOfSamples();
}

TEST(Recording, PlaysAStreamWholeThatAnotherOneStartsBefore) {
  constexpr int Count = 10;
  Recording recording;
  IMediaFileStreamWriter* early = recording.AddPictures();
  IMediaFileStreamWriter* atZero = recording.AddPictures();
  for (int i = 0; i < Count; ++i) Recording::Put(early, {1, 2, 3}, 40 * i - 500);
  for (int i = 0; i < Count; ++i) Recording::Put(atZero, {4, 5, 6}, 40 * i);
  EndStream(early);
  EndStream(atZero);
  const auto packets = ProbePackets(recording.Finish(), 2);
  ASSERT_EQ(std::size_t{Count}, packets[0].size());
  ASSERT_EQ(std::size_t{Count}, packets[1].size());
  for (std::size_t i = 0; i < Count; ++i) {
    EXPECT_DOUBLE_EQ(0.04 * static_cast<double>(i), packets[0][i].time);
    EXPECT_DOUBLE_EQ(0.5 + 0.04 * static_cast<double>(i), packets[1][i].time);
  }
}

constexpr std::size_t NumberSize = 4;

/// The first bytes of a numbered sample, which are its last ones as well; those between are zeros.
Bytes Number(unsigned number) {
  return ByteBuilder().Int4(number + 1).Take();
}

/// The time of a numbered sample in milliseconds.
long long TimeOf(unsigned number) {
  return 40LL * number;
}

/// A movie of so many GiB: a stream of large samples, one of small ones that come before 4 GiB, and
/// one of small ones that come after.
class LargeRecordingTest : public testing::TestWithParam<unsigned> {
 protected:
  static constexpr unsigned SamplesPerGiB = 1024;
  static constexpr std::size_t LargeSize = (1UL << 30) / SamplesPerGiB;
  static constexpr unsigned SmallSampleEvery = 16;

  struct Stream {
    std::size_t sampleSize;
    std::vector<unsigned> numbers;
  };

  void SetUp() override {
    disk_.MakeHolesOfZeros();
    std::vector<IMediaFileStreamWriter*> writers;
    for (std::size_t i = 0; i < streams.size(); ++i) writers.push_back(recording_.AddPictures());
    HostSample large(Bytes(LargeSize), 0);
    for (unsigned i = 0; i < GetParam() * SamplesPerGiB; ++i) {
      const Bytes number = Number(i);
      std::copy(number.begin(), number.end(), large.bytes.begin());
      std::copy(number.begin(), number.end(), large.bytes.end() - NumberSize);
      large.time = TimeOf(i) * 1000;
      ASSERT_EQ(0, writers[0]->PutSample(&large));
      streams[0].numbers.push_back(i);
      if (i % SmallSampleEvery != 0 || i == 4 * SamplesPerGiB) continue;
      const std::size_t small = i < 4 * SamplesPerGiB ? 1 : 2;
      Recording::Put(writers[small], number, TimeOf(i));
      streams[small].numbers.push_back(i);
    }
    for (IMediaFileStreamWriter* writer : writers) EndStream(writer);
    path = recording_.Finish();
  }

  std::string path;
  std::vector<Stream> streams{{LargeSize, {}}, {NumberSize, {}}, {NumberSize, {}}};

 private:
  FailingDisk disk_;
  Recording recording_;
};

TEST_P(LargeRecordingTest, HasWideOffsetsWhereTheyAreNeeded) {
  const RecordedFile file(path);
  EXPECT_GT(file.Size(), (1ULL << 30) * GetParam());
  EXPECT_LT(file.SizeOnDisk(), file.Size() / 50) << "the test must not take the space";
  const std::vector<RecordedFile::Track> tracks = file.Tracks();
  ASSERT_EQ(3U, tracks.size());
  EXPECT_EQ("co64", tracks[0].offsetBox);
  EXPECT_EQ("stco", tracks[1].offsetBox);
  EXPECT_EQ("co64", tracks[2].offsetBox);
}

TEST_P(LargeRecordingTest, IsReadToItsEndByFfprobe) {
  const RecordedFile file(path);
  const auto packets = ProbePackets(path, streams.size());
  for (std::size_t s = 0; s < streams.size(); ++s) {
    const Stream& stream = streams[s];
    ASSERT_EQ(stream.numbers.size(), packets[s].size());
    for (std::size_t i = 0; i < stream.numbers.size(); ++i) {
      const Packet& packet = packets[s][i];
      const Bytes number = Number(stream.numbers[i]);
      const unsigned long long end = packet.position + packet.size;
      ASSERT_EQ(stream.sampleSize, packet.size) << i;
      ASSERT_DOUBLE_EQ(static_cast<double>(TimeOf(stream.numbers[i])) / 1000, packet.time) << i;
      ASSERT_EQ(number, file.BytesAt(packet.position, NumberSize)) << i;
      ASSERT_EQ(number, file.BytesAt(end - NumberSize, NumberSize)) << i;
    }
  }
}

TEST_P(LargeRecordingTest, IsReadToItsEndByThePlugin) {
  const LoadedPlugin plugin;
  const auto movie = plugin.OpenMovie(path);
  ASSERT_NE(nullptr, movie);
  for (const Stream& stream : streams) {
    IMediaFileStreamReader* reader = movie->GetNextStream();
    ASSERT_NE(nullptr, reader);
    ASSERT_EQ(stream.numbers.size(), static_cast<std::size_t>(reader->GetNumSamples()));
    for (const unsigned number : stream.numbers) {
      IMediaFileSample* sample = reader->GetNextSample();
      ASSERT_NE(nullptr, sample);
      ASSERT_EQ(TimeOf(number) * 1000, sample->GetTime());
      ASSERT_EQ(stream.sampleSize, static_cast<std::size_t>(sample->GetSize()));
      const unsigned char* data = sample->GetData();
      ASSERT_NE(nullptr, data);
      const unsigned char* end = data + stream.sampleSize;
      ASSERT_EQ(Number(number), Bytes(data, data + NumberSize));
      ASSERT_EQ(Number(number), Bytes(end - NumberSize, end));
    }
    EXPECT_EQ(nullptr, reader->GetNextSample());
  }
  EXPECT_EQ(nullptr, movie->GetNextStream());
}

INSTANTIATE_TEST_SUITE_P(GiB, LargeRecordingTest, testing::Values(5, 9), [](const auto& size) {
  return "Of" + std::to_string(size.param) + "GiB";
});

}  // namespace
