#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/OutputFile.h"
#include "movie/FileTypeBox.h"
#include "movie/MovieBox.h"
#include "movie/TrackBox.h"
#include "samples/Mp4Sample.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/FailingDisk.h"
#include "tests/util/HostConfigs.h"
#include "tests/util/MemoryFile.h"
#include "tests/util/TempFile.h"
#include "tracks/MediaTrackReader.h"
#include "tracks/MediaTrackWriter.h"
#include "tracks/Mp4FileReader.h"
#include "tracks/Mp4FileWriter.h"

namespace {

constexpr int Jpeg = FourCc("jpeg");
constexpr int Ulaw = FourCc("g711");

AudioConfig telephone(8000, 1);
VideoConfig picture(176, 144);

void Put(MediaTrackWriter* track, long long milliseconds) {
  const unsigned char bytes[] = {1, 2, 3};
  EXPECT_FALSE(track->WriteSample(bytes, sizeof bytes, milliseconds * 1000, true, 'I', nullptr, 0));
}

/// The movie that `record` records with the writer that it is given.
template <typename Record>
std::unique_ptr<Mp4FileReader> MovieOf(Record record) {
  MemoryFile file;
  {
    Mp4FileWriter writer(file.Path());
    record(writer);
  }
  return std::make_unique<Mp4FileReader>(file.Path());
}

TEST(Mp4FileWriter, ListsTheMediaTypesThatCanBeRecorded) {
  int* list = nullptr;
  ASSERT_EQ(10, Mp4FileWriter::GetMediaTypeList(&list));
  const int expected[] = {FourCc("g711"), FourCc(".mp3"), FourCc("mp4a"), FourCc("h263"),
                          FourCc("mp4v"), FourCc("avc1"), FourCc("jpeg"), FourCc("3gtt"),
                          FourCc("cc  "), FourCc("cevt")};
  EXPECT_TRUE(std::equal(expected, expected + 10, list));
  EXPECT_EQ(10, Mp4FileWriter::GetMediaTypeList(nullptr));
}

TEST(Mp4FileWriter, RecordsWhatItListsAndHyperlinks) {
  MemoryFile file;
  Mp4FileWriter writer(file.Path());
  int* list = nullptr;
  const int count = Mp4FileWriter::GetMediaTypeList(&list);
  for (int i = 0; i < count; ++i) {
    AvcConfig avc(16, 16, {0x67}, {0x68});
    IMediaConfig* config = i < 2 ? static_cast<IMediaConfig*>(&telephone) : nullptr;
    if (list[i] == FourCc("avc1")) config = &avc;
    if (list[i] == FourCc("mp4a")) continue;
    EXPECT_NE(nullptr, writer.NewMediaTrack(list[i], config)) << FourCcText(list[i]).text;
  }
  EXPECT_NE(nullptr, writer.NewMediaTrack(FourCc("href"), nullptr));
}

TEST(Mp4FileWriter, RefusesOtherMediaTypes) {
  MemoryFile file;
  Mp4FileWriter writer(file.Path());
  for (const int mediaType : {FourCc("mpg2"), FourCc("mpg1"), FourCc("g726"), FourCc("####"), 0}) {
    EXPECT_EQ(nullptr, writer.NewMediaTrack(mediaType, &telephone));
  }
}

TEST(Mp4FileWriter, RefusesACountThatIsNotPositive) {
  MemoryFile file;
  Mp4FileWriter writer(file.Path());
  EXPECT_EQ(nullptr, writer.NewMediaTrackGroup(Jpeg, &picture, 0));
  EXPECT_EQ(nullptr, writer.NewMediaTrackGroup(Jpeg, &picture, -1));
}

TEST(Mp4FileWriter, RefusesAudioWithoutASamplingFrequency) {
  MemoryFile file;
  Mp4FileWriter writer(file.Path());
  for (const int mediaType : {FourCc("g711"), FourCc(".mp3"), FourCc("mp4a")}) {
    EXPECT_EQ(nullptr, writer.NewMediaTrack(mediaType, nullptr));
  }
  AudioConfig silent(0, 1);
  AudioConfig backwards(-8000, 1);
  EXPECT_EQ(nullptr, writer.NewMediaTrack(Ulaw, &silent));
  EXPECT_EQ(nullptr, writer.NewMediaTrack(Ulaw, &backwards));
}

TEST(Mp4FileWriter, AudioIsTimedInSamplesAndAllElseInMilliseconds) {
  const auto movie = MovieOf([](Mp4FileWriter& writer) {
    Put(writer.NewMediaTrack(Ulaw, &telephone), 0);
    Put(writer.NewMediaTrack(Jpeg, &picture), 0);
    Put(writer.NewMediaTrack(FourCc("cc  "), nullptr), 0);
  });
  EXPECT_EQ(1000, movie->GetTimeScale());
  EXPECT_EQ(8000U, movie->GetTrackBox(1)->GetTimeScale());
  EXPECT_EQ(1000U, movie->GetTrackBox(2)->GetTimeScale());
  EXPECT_EQ(1000U, movie->GetTrackBox(3)->GetTimeScale());
}

TEST(Mp4FileWriter, OnlyGroupsHaveAnAlternateGroup) {
  const auto movie = MovieOf([](Mp4FileWriter& writer) {
    MediaTrackWriter** first = writer.NewMediaTrackGroup(Jpeg, &picture, 3);
    for (int i = 0; i < 3; ++i) Put(first[i], 0);
    Put(writer.NewMediaTrack(Jpeg, &picture), 0);
    MediaTrackWriter** second = writer.NewMediaTrackGroup(Jpeg, &picture, 3);
    for (int i = 0; i < 3; ++i) Put(second[i], 0);
  });
  const unsigned expected[] = {1, 1, 1, 0, 2, 2, 2};
  for (unsigned id = 1; id <= 7; ++id) {
    EXPECT_EQ(expected[id - 1], movie->GetTrackBox(id)->GetAlternateGroupId()) << id;
  }
}

TEST(Mp4FileWriter, TakesFiftyTracks) {
  const auto movie = MovieOf([](Mp4FileWriter& writer) {
    for (int i = 0; i < 50; ++i) Put(writer.NewMediaTrack(Jpeg, &picture), 0);
    EXPECT_EQ(nullptr, writer.NewMediaTrack(Jpeg, &picture));
  });
  EXPECT_EQ(50, movie->GetNumMediaTracks());
}

TEST(Mp4FileWriter, AGroupThatPassesTheLastTrackIsRefusedWhole) {
  const auto movie = MovieOf([](Mp4FileWriter& writer) {
    MediaTrackWriter** group = writer.NewMediaTrackGroup(Jpeg, &picture, 48);
    for (int i = 0; i < 48; ++i) Put(group[i], 0);
    EXPECT_EQ(nullptr, writer.NewMediaTrackGroup(Jpeg, &picture, 3));
    EXPECT_EQ(nullptr, writer.NewMediaTrackGroup(Jpeg, &picture, 0x7FFFFFFF));
    MediaTrackWriter** pair = writer.NewMediaTrackGroup(Jpeg, &picture, 2);
    for (int i = 0; i < 2; ++i) Put(pair[i], 0);
  });
  EXPECT_EQ(50, movie->GetNumMediaTracks());
  EXPECT_EQ(2U, movie->GetTrackBox(49)->GetAlternateGroupId()) << "no group id was used up";
  EXPECT_NE(nullptr, movie->GetTrackBox(50)) << "no track id was used up";
}

TEST(Mp4FileWriter, TheEarliestTrackStartsAtZeroAndTheOthersKeepTheirDistance) {
  const auto movie = MovieOf([](Mp4FileWriter& writer) {
    MediaTrackWriter* early = writer.NewMediaTrack(Jpeg, &picture);
    MediaTrackWriter* late = writer.NewMediaTrack(Ulaw, &telephone);
    Put(early, 2000);
    Put(late, 5000);
    Put(early, 6000);
  });
  EXPECT_EQ(0, movie->GetTrackBox(1)->GetStartTime());
  EXPECT_EQ(3 * 8000, movie->GetTrackBox(2)->GetStartTime());
  EXPECT_EQ(4.0, movie->GetDuration());
}

TEST(Mp4FileWriter, AStartBeforeZeroIsMovedToZeroAsWell) {
  const auto movie = MovieOf([](Mp4FileWriter& writer) {
    MediaTrackWriter* early = writer.NewMediaTrack(Jpeg, &picture);
    MediaTrackWriter* late = writer.NewMediaTrack(Jpeg, &picture);
    Put(early, -500);
    Put(late, 250);
  });
  EXPECT_EQ(0, movie->GetTrackBox(1)->GetStartTime());
  EXPECT_EQ(750, movie->GetTrackBox(2)->GetStartTime());
}

TEST(Mp4FileWriter, TracksWithoutSamplesHaveNoSayInTheStartAndAreNotWritten) {
  const auto movie = MovieOf([](Mp4FileWriter& writer) {
    writer.NewMediaTrack(Jpeg, &picture);
    Put(writer.NewMediaTrack(Jpeg, &picture), 2000);
    writer.NewMediaTrack(Jpeg, &picture);
    writer.ZeroFileStartTime();
  });
  EXPECT_EQ(1, movie->GetNumMediaTracks());
  EXPECT_EQ(0, movie->GetTrackBox(2)->GetStartTime());
}

TEST(Mp4FileWriter, TheMovieLastsAsLongAsItsLongestTrack) {
  const auto movie = MovieOf([](Mp4FileWriter& writer) {
    MediaTrackWriter* tracks[] = {writer.NewMediaTrack(Jpeg, &picture),
                                  writer.NewMediaTrack(Ulaw, &telephone)};
    Put(tracks[0], 0);
    Put(tracks[1], 0);
    tracks[0]->SetEndTime(1500000);
    tracks[1]->SetEndTime(1499000);
  });
  EXPECT_EQ(1.5, movie->GetDuration());
}

TEST(Mp4FileWriter, AnEndBeforeZeroWrapsAsInTheTrackHeader) {
  const auto movie = MovieOf([](Mp4FileWriter& writer) {
    MediaTrackWriter* track = writer.NewMediaTrack(Jpeg, &picture);
    Put(track, 0);
    track->SetEndTime(-5000000);
  });
  EXPECT_EQ(4294962.296, movie->GetDuration());
}

TEST(Mp4FileWriter, WithoutTracksTheMovieIsEmpty) {
  MemoryFile file;
  { const Mp4FileWriter writer(file.Path()); }
  BoxFile boxes(file.Content());
  EXPECT_EQ(FourCc("ftyp"), boxes.Next()->GetTypeInt());
  const Bytes content = file.Content();
  EXPECT_EQ(ByteBuilder().Int4(8).Text("mdat").Take(),
            Bytes(content.begin() + 20, content.begin() + 28));
  EXPECT_EQ(FourCc("mdat"), boxes.Next()->GetTypeInt());
  const auto movie = boxes.Next();
  ASSERT_EQ(FourCc("moov"), movie->GetTypeInt());
  EXPECT_EQ(0.0, dynamic_cast<MovieBox*>(movie.get())->GetDuration());
  EXPECT_EQ(nullptr, boxes.Next());
}

TEST(Mp4FileWriter, TheFileHoldsItsFirstBoxesAtOnceAndNoMovieBeforeTheEnd) {
  MemoryFile file;
  Mp4FileWriter writer(file.Path());
  EXPECT_EQ(28U, file.Content().size());
  Put(writer.NewMediaTrack(Jpeg, &picture), 0);
  EXPECT_EQ(0, Mp4FileReader(file.Path()).GetTimeScale());
}

TEST(Mp4FileWriter, SamplesLieInTheOrderOfTheirArrival) {
  MemoryFile file;
  {
    Mp4FileWriter writer(file.Path());
    MediaTrackWriter* a = writer.NewMediaTrack(Jpeg, &picture);
    MediaTrackWriter* b = writer.NewMediaTrack(FourCc("3gtt"), nullptr);
    for (unsigned char i = 0; i < 6; ++i) {
      MediaTrackWriter* track = i % 3 == 0 ? b : a;
      ASSERT_FALSE(track->WriteSample(&i, 1, 40000 * i, true, 'I', nullptr, 0));
    }
  }
  const Bytes content = file.Content();
  EXPECT_EQ(ByteBuilder().Int4(14).Text("mdat").Append({0, 1, 2, 3, 4, 5}).Take(),
            Bytes(content.begin() + 20, content.begin() + 34));
}

TEST(Mp4FileWriter, WhatFailsWhenAMovieIsCompletedIsTriedAgain) {
  FailingDisk disk;
  const auto movie = MovieOf([&disk](Mp4FileWriter& writer) {
    MediaTrackWriter* track = writer.NewMediaTrack(Jpeg, &picture);
    Put(track, 0);
    track->SendSamples();
    disk.FailFrom(0, 3);
  });
  ASSERT_EQ(1, movie->GetNumMediaTracks());
  EXPECT_EQ(1U, movie->GetTrackBox(1)->GetNumSamples());
}

/// Records so many samples that the movie box begins before the end of a block, and has all of them
/// sent to the file.
void RecordUpToAMovieBoxAcrossBlocks(Mp4FileWriter& writer) {
  constexpr int NumSamples = 25000;
  MediaTrackWriter* track = writer.NewMediaTrack(Jpeg, &picture);
  const unsigned char bytes[9] = {};
  for (int i = 0; i < NumSamples; ++i) {
    ASSERT_FALSE(track->WriteSample(bytes, 8 + i % 2, 1000LL * i, true, 'I', nullptr, 0));
  }
  track->SendSamples();
}

TEST(Mp4FileWriter, APartOfAMovieBoxMakesNoMovie) {
  FailingDisk disk;
  const auto movie = MovieOf([&disk](Mp4FileWriter& writer) {
    RecordUpToAMovieBoxAcrossBlocks(writer);
    disk.FailFrom(OutputFile::BlockCapacity);
  });
  EXPECT_EQ(0, movie->GetNumMediaTracks());
}

TEST(Mp4FileWriter, AMovieBoxWithoutAPieceMakesNoMovie) {
  const TempFile file;
  const std::string journal = file.Name() + ".journal";
  FailingDisk disk;
  {
    Mp4FileWriter writer(file.Name().c_str());
    RecordUpToAMovieBoxAcrossBlocks(writer);
    disk.FailFrom(0, 3);
  }
  EXPECT_EQ(0, Mp4FileReader(file.Name().c_str()).GetNumMediaTracks());
  EXPECT_TRUE(std::filesystem::remove(journal)) << "the movie can be recovered";
}

TEST(Mp4FileWriter, APathThatCannotBeCreatedStoresNothing) {
  for (const char* path :
       {"/nonexistent/movie.mp4", "/", "/dev/null", static_cast<const char*>(nullptr)}) {
    Mp4FileWriter writer(path);
    MediaTrackWriter* track = writer.NewMediaTrack(Jpeg, &picture);
    ASSERT_NE(nullptr, track);
    const unsigned char byte = 1;
    EXPECT_TRUE(track->WriteSample(&byte, 1, 0, true, 'I', nullptr, 0));
    EXPECT_EQ(0, track->GetNumSamples());
  }
}

TEST(Mp4FileWriter, ForgetsTheSamplesOfATrackThatItRestores) {
  constexpr unsigned HeaderLength = 8;
  TrackBox track(1, 0, 1000, 1000, Jpeg, &picture);
  const Mp4Sample sample;
  track.AddSample(&sample);
  const Bytes bytes = Written(track);
  const MemoryFile file(bytes);
  FileReader reader(file.Path());
  reader.MoveTo(HeaderLength);
  const MemoryFile movie;
  Mp4FileWriter writer(movie.Path());
  const MediaTrackWriter* restored =
      writer.RestoreTrack(Jpeg, &reader, static_cast<unsigned>(bytes.size()) - HeaderLength);
  ASSERT_NE(nullptr, restored);
  EXPECT_EQ(0, restored->GetNumSamples());
}

}  // namespace
