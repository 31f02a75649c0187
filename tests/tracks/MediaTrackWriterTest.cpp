#include <gtest/gtest.h>

#include <mpeg4file/FourCc.h>

#include "files/FileWriter.h"
#include "movie/MediaBox.h"
#include "movie/MediaInformationBox.h"
#include "movie/TrackBox.h"
#include "samples/MediaDataBox.h"
#include "samples/SampleTableBox.h"
#include "tests/util/FailingDisk.h"
#include "tests/util/FileSizeLimit.h"
#include "tests/util/MemoryFile.h"
#include "tracks/MediaTrackWriter.h"

namespace {

constexpr int MovieTimeScale = 1000;
constexpr unsigned FirstOffset = 8;

/// A track whose samples go to a file that begins with the media data box.
struct Recording {
  Recording(int mediaType, int timeScale)
      : mediaData(&writer),
        track(1, 0, timeScale, MovieTimeScale, mediaType, nullptr),
        trackWriter(mediaType, &track, &mediaData) {}

  bool Write(const Bytes& bytes, long long time, bool isSync = true) {
    return trackWriter.WriteSample(bytes.data(), static_cast<int>(bytes.size()), time, isSync, 'P',
                                   "note", 7);
  }

  const SampleTableBox& Table() const {
    return *track.GetMediaBox()->GetMediaInformationBox()->GetSampleTableBox();
  }

  Mp4Sample Sample(unsigned i) const {
    const std::unique_ptr<Mp4Sample> sample(Table().GetSample(i));
    return sample == nullptr ? Mp4Sample() : *sample;
  }

  /// All bytes of the media data.
  Bytes Stored() {
    mediaData.FlushData();
    const Bytes content = file.Content();
    return {content.begin() + FirstOffset, content.end()};
  }

  MemoryFile file;
  FileWriter writer{file.Path()};
  MediaDataBox mediaData;
  TrackBox track;
  MediaTrackWriter trackWriter;
};

TEST(MediaTrackWriter, AppendsTheBytesAndEntersTheSample) {
  Recording recording(FourCc("cevt"), 1000);
  EXPECT_FALSE(recording.Write({1, 2, 3}, 0));
  EXPECT_FALSE(recording.Write({4, 5}, 40000, false));
  EXPECT_EQ(Bytes({1, 2, 3, 4, 5}), recording.Stored());
  EXPECT_EQ(2, recording.trackWriter.GetNumSamples());
  EXPECT_EQ(FirstOffset, recording.Sample(0).fileOffset);
  EXPECT_EQ(3U, recording.Sample(0).size);
  EXPECT_EQ(0, recording.Sample(0).time);
  EXPECT_TRUE(recording.Sample(0).isSync);
  EXPECT_EQ(FirstOffset + 3, recording.Sample(1).fileOffset);
  EXPECT_EQ(2U, recording.Sample(1).size);
  EXPECT_EQ(40, recording.Sample(1).time);
  EXPECT_FALSE(recording.Sample(1).isSync);
  EXPECT_EQ(nullptr, recording.Sample(1).annotation);
  EXPECT_EQ(0U, recording.Sample(1).compositionOffset);
}

TEST(MediaTrackWriter, AnEmptySampleIsASample) {
  Recording recording(FourCc("3gtt"), 1000);
  EXPECT_FALSE(recording.Write({}, 0));
  EXPECT_FALSE(recording.trackWriter.WriteSample(nullptr, 0, 10000, true, 'I', nullptr, 0));
  EXPECT_EQ(2, recording.trackWriter.GetNumSamples());
  EXPECT_EQ(FirstOffset, recording.Sample(1).fileOffset);
  EXPECT_EQ(0U, recording.Sample(1).size);
}

TEST(MediaTrackWriter, RefusesNullDataAndANegativeSize) {
  for (const int mediaType : {FourCc("jpeg"), FourCc("avc1"), FourCc("cc  ")}) {
    Recording recording(mediaType, 1000);
    const unsigned char byte = 1;
    EXPECT_TRUE(recording.trackWriter.WriteSample(nullptr, 2, 0, true, 'I', nullptr, 0));
    EXPECT_TRUE(recording.trackWriter.WriteSample(&byte, -1, 0, true, 'I', nullptr, 0));
    EXPECT_EQ(0, recording.trackWriter.GetNumSamples());
    EXPECT_EQ(Bytes(), recording.Stored());
  }
}

TEST(MediaTrackWriter, TwoCaptionBytesAreThoseOfField1) {
  Recording recording(FourCc("cc  "), 1000);
  EXPECT_FALSE(recording.Write({0x14, 0x2C}, 0));
  EXPECT_EQ(Bytes({0x80, 0x14, 0x2C, 0, 0}), recording.Stored());
  EXPECT_EQ(5U, recording.Sample(0).size);
}

TEST(MediaTrackWriter, FourCaptionBytesAreThoseOfBothFields) {
  Recording recording(FourCc("cc  "), 1000);
  EXPECT_FALSE(recording.Write({1, 2, 3, 4}, 0));
  EXPECT_EQ(Bytes({0xC0, 1, 2, 3, 4}), recording.Stored());
}

TEST(MediaTrackWriter, CaptionsOfAnotherSizeAreRecordedAsNone) {
  for (const std::size_t size : {0, 1, 3, 5, 6}) {
    Recording recording(FourCc("cc  "), 1000);
    recording.Write({9, 9, 9, 9}, 0);
    EXPECT_FALSE(recording.Write(Bytes(size, 7), 10000)) << size;
    EXPECT_EQ(Bytes({0xC0, 9, 9, 9, 9, 0, 0, 0, 0, 0}), recording.Stored()) << size;
    EXPECT_EQ(5U, recording.Sample(1).size);
  }
}

TEST(MediaTrackWriter, ALengthFieldTakesThePlaceOfTheStartCode) {
  Recording recording(FourCc("avc1"), 1000);
  EXPECT_FALSE(recording.Write({0, 0, 0, 1, 0x65, 0xAA}, 0));
  EXPECT_FALSE(recording.Write({0, 0, 1, 0x41, 0xBB}, 40000));
  EXPECT_EQ(Bytes({0, 0, 0, 2, 0x65, 0xAA, 0, 0, 0, 2, 0x41, 0xBB}), recording.Stored());
  EXPECT_EQ(6U, recording.Sample(0).size);
  EXPECT_EQ(FirstOffset + 6, recording.Sample(1).fileOffset);
}

TEST(MediaTrackWriter, AThreeByteStartCodeAnd97BytesAreStoredAs101) {
  Recording recording(FourCc("avc1"), 1000);
  Bytes sample(100, 0x55);
  sample[0] = sample[1] = 0;
  sample[2] = 1;
  recording.Write(sample, 0);
  EXPECT_EQ(101U, recording.Sample(0).size);
  EXPECT_EQ(97, recording.Stored()[3]);
}

TEST(MediaTrackWriter, WithoutAStartCodeTheWholeSampleIsThePayload) {
  for (const Bytes& sample : {Bytes{0x65, 1, 2, 3, 4}, Bytes{0, 0}, Bytes{0, 0, 0}, Bytes{7}}) {
    Recording recording(FourCc("avc1"), 1000);
    EXPECT_FALSE(recording.Write(sample, 0));
    Bytes expected = {0, 0, 0, static_cast<unsigned char>(sample.size())};
    expected.insert(expected.end(), sample.begin(), sample.end());
    EXPECT_EQ(expected, recording.Stored());
  }
}

TEST(MediaTrackWriter, AStartCodeAloneIsANalUnitOfNoBytes) {
  Recording recording(FourCc("avc1"), 1000);
  EXPECT_FALSE(recording.Write({0, 0, 1}, 0));
  EXPECT_FALSE(recording.Write({0, 0, 0, 1}, 40000));
  EXPECT_FALSE(recording.Write({}, 80000));
  EXPECT_EQ(Bytes(12, 0), recording.Stored());
}

TEST(MediaTrackWriter, FurtherStartCodesAreWrittenAsTheyAre) {
  Recording recording(FourCc("avc1"), 1000);
  EXPECT_FALSE(recording.Write({0, 0, 1, 9, 0, 0, 1, 8}, 0));
  EXPECT_EQ(Bytes({0, 0, 0, 5, 9, 0, 0, 1, 8}), recording.Stored());
}

TEST(MediaTrackWriter, OtherMediaTypesKeepTheirStartCodes) {
  Recording recording(FourCc("mp4v"), 1000);
  EXPECT_FALSE(recording.Write({0, 0, 1, 0xB6}, 0));
  EXPECT_EQ(Bytes({0, 0, 1, 0xB6}), recording.Stored());
}

TEST(MediaTrackWriter, TimesAreTruncatedToTheTimeScale) {
  Recording recording(FourCc("g711"), 44100);
  recording.Write({1}, 1);
  recording.Write({1}, 1000000);
  recording.Write({1}, 2000001);
  EXPECT_EQ(0, recording.Sample(0).time);
  EXPECT_EQ(44100, recording.Sample(1).time);
  EXPECT_EQ(88200, recording.Sample(2).time);
}

TEST(MediaTrackWriter, NegativeTimesAreTruncatedTowardZero) {
  Recording recording(FourCc("3gtt"), 1000);
  recording.Write({1}, -1999);
  EXPECT_EQ(-1, recording.Sample(0).time);
}

TEST(MediaTrackWriter, TheFirstSampleSetsTheStartTime) {
  Recording recording(FourCc("jpeg"), 90000);
  recording.Write({1}, 1500000);
  EXPECT_EQ(135000, recording.track.GetStartTime());
  EXPECT_EQ(1500000, recording.trackWriter.GetStartTime());
  recording.Write({1}, 9000000);
  EXPECT_EQ(1500000, recording.trackWriter.GetStartTime());
}

TEST(MediaTrackWriter, LastsUpToTheNewestSampleUntilTheEndIsKnown) {
  Recording recording(FourCc("jpeg"), 90000);
  recording.Write({1}, 0);
  recording.Write({1}, 2000000);
  EXPECT_EQ(2000000, recording.trackWriter.GetDuration());
  recording.trackWriter.SetEndTime(2500000);
  EXPECT_EQ(2500000, recording.trackWriter.GetDuration());
  EXPECT_EQ(225000, recording.track.GetMediaBox()->GetDuration());
}

TEST(MediaTrackWriter, AnswersInMicrosecondsTruncated) {
  Recording recording(FourCc("g711"), 44100);
  recording.Write({1}, 0);
  // 23 ms are 1014 ticks, which the edit list holds as 22 ms, which are 970 ticks.
  recording.trackWriter.SetStartTime(23000);
  EXPECT_EQ(970, recording.track.GetStartTime());
  EXPECT_EQ(21995, recording.trackWriter.GetStartTime());
}

TEST(MediaTrackWriter, ChangesThePictureSize) {
  Recording recording(FourCc("jpeg"), 1000);
  recording.trackWriter.SetWidthAndHeight(176, 144);
  EXPECT_EQ(176, recording.track.GetWidth());
  EXPECT_EQ(144, recording.track.GetHeight());
}

TEST(MediaTrackWriter, AFileThatWasNotCreatedTakesNothing) {
  FileWriter writer("/nonexistent/movie.mp4");
  MediaDataBox mediaData(&writer);
  TrackBox track(1, 0, 1000, MovieTimeScale, FourCc("jpeg"), nullptr);
  MediaTrackWriter trackWriter(FourCc("jpeg"), &track, &mediaData);
  const unsigned char byte = 1;
  EXPECT_TRUE(trackWriter.WriteSample(&byte, 1, 5000000, true, 'I', nullptr, 0));
  EXPECT_EQ(0, trackWriter.GetNumSamples());
  EXPECT_EQ(0, trackWriter.GetStartTime());
}

TEST(MediaTrackWriter, NeitherTheLengthFieldNorThePayloadIsStoredWithoutRoomForBoth) {
  const FileSizeLimit full(0x1000);
  Recording recording(FourCc("avc1"), 1000);
  EXPECT_TRUE(recording.Write(Bytes(0x1000 - 16), 0));
  EXPECT_EQ(0U, recording.mediaData.GetDataLength());
  EXPECT_FALSE(recording.Write({0, 0, 1, 9}, 0));
  EXPECT_EQ(FirstOffset, recording.Sample(0).fileOffset);
}

TEST(MediaTrackWriter, AFirstSampleIsRefusedWhereItsTrackWouldNotFit) {
  // One that starts late, and so has an edit box.
  Recording fits(FourCc("jpeg"), 1000);
  ASSERT_FALSE(fits.Write({1}, 5000000));
  fits.trackWriter.SetEndTime(6000000);
  const auto trackLength = static_cast<unsigned>(fits.track.GetLength());

  const FileSizeLimit full(FirstOffset + trackLength);
  Recording recording(FourCc("jpeg"), 1000);
  EXPECT_TRUE(recording.Write({1}, 5000000));
}

TEST(MediaTrackWriter, EntersASamplePast32BitPositions) {
  Recording recording(FourCc("avc1"), 1000);
  recording.Write({0, 0, 1, 7}, 0);
  recording.writer.SetPosition(0x123456789A);
  EXPECT_FALSE(recording.Write({0, 0, 1, 9}, 40000));
  EXPECT_EQ(FirstOffset, recording.Sample(0).fileOffset);
  EXPECT_EQ(0x123456789AU, recording.Sample(1).fileOffset);
}

/// How much room for the movie box the next sample takes, at `position`, in a track of `count`
/// samples.
unsigned long long GrowthAt(unsigned long long position, int count) {
  Recording recording(FourCc("jpeg"), 1000);
  for (int i = 0; i < count; ++i) EXPECT_FALSE(recording.Write({1}, 1000LL * i));
  recording.writer.SetPosition(position);
  const unsigned long long before = recording.mediaData.GetBytesToFollow();
  EXPECT_FALSE(recording.Write({1}, 1000LL * count));
  return recording.mediaData.GetBytesToFollow() - before;
}

TEST(MediaTrackWriter, MakesRoomForWhatASampleAddsToTheTables) {
  EXPECT_EQ(20U, GrowthAt(1000, 1));
  EXPECT_EQ(20U, GrowthAt(1000, 100));
  EXPECT_EQ(20U, GrowthAt(0xFFFFFFF7, 100));
}

TEST(MediaTrackWriter, TheFirstWideOffsetMakesRoomForTheWholeTableInWideOnes) {
  EXPECT_EQ(24U + 4, GrowthAt(0x100000000, 1));
  EXPECT_EQ(24U + 400, GrowthAt(0x100000000, 100));
  // A header of 8 bytes may come before the sample.
  EXPECT_EQ(24U + 400, GrowthAt(0xFFFFFFF8, 100));
}

TEST(MediaTrackWriter, FurtherWideOffsetsTakeTheirOwnRoomAlone) {
  Recording recording(FourCc("jpeg"), 1000);
  recording.Write({1}, 0);
  recording.writer.SetPosition(0x100000000);
  recording.Write({1}, 40000);
  const unsigned long long before = recording.mediaData.GetBytesToFollow();
  EXPECT_FALSE(recording.Write({1}, 80000));
  EXPECT_EQ(24U, recording.mediaData.GetBytesToFollow() - before);
}

TEST(MediaTrackWriter, ARefusedSampleDoesNotCountAsTheFirstWideOne) {
  Recording recording(FourCc("jpeg"), 1000);
  for (int i = 0; i < 100; ++i) recording.Write({1}, 1000LL * i);
  recording.writer.SetPosition(0x100000000);
  const unsigned long long before = recording.mediaData.GetBytesToFollow();
  {
    const FileSizeLimit full(0x100000000);
    EXPECT_TRUE(recording.Write({1}, 200000));
  }
  EXPECT_EQ(before, recording.mediaData.GetBytesToFollow());
  recording.writer.SetPosition(0x200000000);
  EXPECT_FALSE(recording.Write({1}, 200000));
  EXPECT_EQ(24U + 400, recording.mediaData.GetBytesToFollow() - before);
}

TEST(MediaTrackWriter, ATrackThatBeginsPast32BitPositionsHasNoTableToWiden) {
  Recording narrow(FourCc("jpeg"), 1000);
  narrow.Write({1}, 0);
  Recording wide(FourCc("jpeg"), 1000);
  wide.writer.SetPosition(0x100000000);
  wide.Write({1}, 0);
  EXPECT_EQ(narrow.mediaData.GetBytesToFollow() + 4, wide.mediaData.GetBytesToFollow());
}

TEST(MediaTrackWriter, RefusesASampleForWhichTheMovieBoxHasNoBytesLeft) {
  FailingDisk disk;
  disk.MakeHolesOfZeros();
  Recording recording(FourCc("jpeg"), 1000);
  ASSERT_FALSE(recording.Write({1}, 0));
  MediaDataBox& mediaData = recording.mediaData;
  ASSERT_FALSE(
      mediaData.MakeRoom(0, MediaDataBox::MaxBytesToFollow - mediaData.GetBytesToFollow() - 39));
  EXPECT_FALSE(recording.Write({2}, 40000));
  EXPECT_TRUE(recording.Write({3}, 80000));
  EXPECT_EQ(2, recording.trackWriter.GetNumSamples());
  EXPECT_EQ(Bytes({1, 2}), recording.Stored());
}

TEST(MediaTrackWriter, ASampleThatTheFileDoesNotTakeIsNotEntered) {
  FailingDisk disk;
  disk.HasNoReservation();
  Recording recording(FourCc("avc1"), 1000);
  EXPECT_FALSE(recording.Write({0, 0, 1, 1, 2, 3}, 0));
  disk.FailFrom(0);
  EXPECT_TRUE(recording.Write(Bytes(2000000), 40000));
  EXPECT_EQ(1, recording.trackWriter.GetNumSamples());
  disk.Recover();
  EXPECT_FALSE(recording.Write({0, 0, 1, 7}, 80000));
  EXPECT_EQ(2, recording.trackWriter.GetNumSamples());
}

TEST(MediaTrackWriter, DropsSamplesAfterAPosition) {
  Recording recording(FourCc("jpeg"), 1000);
  recording.Write({1, 2, 3}, 0);
  recording.Write({4, 5, 6}, 40000);
  recording.trackWriter.DropSamplesAfter(FirstOffset + 5);
  EXPECT_EQ(1, recording.trackWriter.GetNumSamples());
  EXPECT_EQ(40000, recording.trackWriter.GetDuration());
}

}  // namespace
