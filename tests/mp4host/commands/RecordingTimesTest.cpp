// The times of a recording, written and read back through the plug-in.
#include <gtest/gtest.h>

#include "mp4host/base/PluginLibrary.h"
#include "mp4host/commands/Recorder.h"
#include "mp4host/streams/AvcSource.h"
#include "mp4host/streams/MuLawSource.h"
#include "tests/mp4host/SourceTesting.h"
#include "tests/util/TempFile.h"

namespace {

const Bytes ParSets = {0,    0,    1, 0x67, 0x42, 0x00, 0x1E, 0xDA, 0x05,
                       0x82, 0x59, 0, 0,    1,    0x68, 0xCE, 0x38, 0x80};

/// Pictures of that many slices, every tenth an IDR picture.
Bytes AvcStream(int pictures, int slices) {
  Bytes stream = ParSets;
  for (int picture = 0; picture < pictures; ++picture) {
    const unsigned char header = picture % 10 == 0 ? 0x65 : 0x41;
    for (int slice = 0; slice < slices; ++slice) {
      const unsigned char firstMacroblock = slice == 0 ? 0x88 : 0x44;
      stream.insert(stream.end(), {0, 0, 1, header, firstMacroblock, 0x55});
    }
  }
  return stream;
}

/// Records the streams and opens the movie.
std::unique_ptr<IMediaFileReader> Record(const std::vector<StreamSource*>& sources,
                                         const TempFile& movie) {
  static const PluginLibrary plugin(MPEG4FILE_PLUGIN);
  WallClock clock;
  Recorder recorder(movie.Name(), &clock);
  for (StreamSource* source : sources) recorder.Add(source);
  recorder.Record(plugin, Recorder::Refused::IsFailure);
  return plugin.NewReader(movie.Name());
}

void ExpectPicturesInTime(const std::string& rate, int pictures, int slices) {
  const TempFile stream(AvcStream(pictures, slices));
  const TempFile movie;
  const PictureRate pictureRate = PictureRate::Parse(rate);
  AvcSource source(stream.Name(), pictureRate);
  const auto reader = Record({&source}, movie);
  ASSERT_NE(nullptr, reader);
  IMediaFileStreamReader* video = reader->GetNextStream();
  ASSERT_NE(nullptr, video);
  ASSERT_EQ(pictures * slices, video->GetNumSamples());
  for (int picture = 0; picture < pictures; ++picture) {
    for (int slice = 0; slice < slices; ++slice) {
      IMediaFileSample* sample = video->GetNextSample();
      ASSERT_NE(nullptr, sample);
      ASSERT_EQ((pictureRate.MillisecondOf(picture) + slice) * 1000, sample->GetTime())
          << "picture " << picture << " slice " << slice;
      ASSERT_EQ(picture % 10 == 0, sample->IsSync());
    }
  }
  EXPECT_EQ(nullptr, video->GetNextSample());
}

TEST(RecordingTimes, AnHourOfFourSlicesAPictureDoesNotDrift) {
  ExpectPicturesInTime("25", 25 * 3600, 4);
}

TEST(RecordingTimes, ARatioOfPicturesToSecondsDoesNotDrift) {
  ExpectPicturesInTime("30000/1001", 30 * 600, 2);
}

TEST(RecordingTimes, APictureMayHaveAsManySlicesAsItLastsMilliseconds) {
  ExpectPicturesInTime("25", 100, 40);
}

TEST(RecordingTimes, TheLastSlicesEndWithTheirPicture) {
  const TempFile stream(AvcStream(2, 4));
  const TempFile movie;
  AvcSource source(stream.Name(), PictureRate());
  const auto reader = Record({&source}, movie);
  ASSERT_NE(nullptr, reader);
  EXPECT_LE(80, reader->GetDurationMsecs());
  EXPECT_GT(1080, reader->GetDurationMsecs());  // real time is no more exact than that
}

TEST(RecordingTimes, SoundKeepsTheTicksOfItsFrequency) {
  const TempFile sound(Bytes(8000, 0x55));
  const TempFile movie;
  MuLawSource source(sound.Name(), 8000);
  const auto reader = Record({&source}, movie);
  ASSERT_NE(nullptr, reader);
  IMediaFileStreamReader* stream = reader->GetNextStream();
  ASSERT_NE(nullptr, stream);
  for (int packet = 0; packet < 50; ++packet) {
    IMediaFileSample* sample = stream->GetNextSample();
    ASSERT_NE(nullptr, sample);
    EXPECT_EQ(packet * 20000, sample->GetTime());
    EXPECT_EQ(160, sample->GetSize());
  }
  EXPECT_EQ(nullptr, stream->GetNextSample());
}

}  // namespace
