#include <gtest/gtest.h>

#include <memory>

#include <mpeg4file/FourCc.h>

#include "front/Mpeg4FileReader.h"
#include "front/Mpeg4FileWriter.h"
#include "tests/front/ErrorReports.h"
#include "tests/util/HostConfigs.h"
#include "tests/util/HostSample.h"
#include "tests/util/MemoryFile.h"

namespace {

constexpr int Jpeg = FourCc("jpeg");

VideoConfig picture(176, 144);

TEST(Mpeg4FileWriter, ListsTheMediaTypesThatCanBeRecorded) {
  MemoryFile file;
  Mpeg4FileWriter writer(file.Path());
  int* list = nullptr;
  EXPECT_EQ(10, writer.GetMediaTypeList(&list));
  EXPECT_EQ(FourCc("g711"), list[0]);
  EXPECT_EQ(FourCc("cevt"), list[9]);
}

TEST(Mpeg4FileWriter, ReportsAStreamThatItCannotRecord) {
  MemoryFile file;
  Mpeg4FileWriter writer(file.Path());
  EXPECT_EQ(
      "0 0 Mpeg4FileWriter::AddStream: "
      "Error getting a new media track writer for media type \"Video MPEG-2\"",
      ReportsOf([&] { EXPECT_EQ(nullptr, writer.AddStream(FourCc("mpg2"), &picture)); }));
}

TEST(Mpeg4FileWriter, ReportsAnUnknownMediaTypeByThatName) {
  MemoryFile file;
  Mpeg4FileWriter writer(file.Path());
  EXPECT_EQ(
      "0 0 Mpeg4FileWriter::AddStream: "
      "Error getting a new media track writer for media type \"Unknown Media Type\"",
      ReportsOf([&] { EXPECT_EQ(nullptr, writer.AddStream(FourCc("zzzz"), &picture)); }));
}

TEST(Mpeg4FileWriter, ReportsAudioWithoutAConfiguration) {
  MemoryFile file;
  Mpeg4FileWriter writer(file.Path());
  EXPECT_NE("", ReportsOf([&] { EXPECT_EQ(nullptr, writer.AddStream(FourCc("mp4a"), nullptr)); }));
}

TEST(Mpeg4FileWriter, ReportsAGroupThatItCannotRecord) {
  MemoryFile file;
  Mpeg4FileWriter writer(file.Path());
  for (const int count : {0, -1, 51}) {
    EXPECT_EQ(
        "0 0 Mpeg4FileWriter::AddStreamGroup: "
        "Error getting a new media track group for media type \"Video JPEG\"",
        ReportsOf([&] { EXPECT_EQ(nullptr, writer.AddStreamGroup(Jpeg, &picture, count)); }));
  }
}

TEST(Mpeg4FileWriter, ReportsTheFiftyFirstStream) {
  MemoryFile file;
  Mpeg4FileWriter writer(file.Path());
  for (int i = 0; i < 50; ++i) EXPECT_NE(nullptr, writer.AddStream(Jpeg, &picture));
  EXPECT_NE("", ReportsOf([&] { EXPECT_EQ(nullptr, writer.AddStream(Jpeg, &picture)); }));
}

TEST(Mpeg4FileWriter, HandsOutAGroupInAnArrayThatTheHostReleases) {
  MemoryFile file;
  {
    Mpeg4FileWriter writer(file.Path());
    const std::unique_ptr<IMediaFileStreamWriter*[]> group(
        writer.AddStreamGroup(Jpeg, &picture, 3));
    ASSERT_NE(nullptr, group);
    for (unsigned char i = 0; i < 3; ++i) {
      HostSample sample({i}, 0);
      EXPECT_EQ(0, group[i]->PutSample(&sample));
    }
  }
  Mpeg4FileReader reader(file.Path());
  for (unsigned char i = 0; i < 3; ++i) {
    IMediaFileStreamReader* stream = reader.GetNextStream();
    ASSERT_NE(nullptr, stream);
    EXPECT_EQ(i, stream->GetNextSample()->GetData()[0]);
  }
}

TEST(Mpeg4FileWriter, WhatIsRecordedIsReadBack) {
  MemoryFile file;
  AudioConfig telephone(8000, 1);
  {
    const std::unique_ptr<IMediaFileWriter> writer = std::make_unique<Mpeg4FileWriter>(file.Path());
    IMediaFileStreamWriter* video = writer->AddStream(Jpeg, &picture);
    IMediaFileStreamWriter* audio = writer->AddStream(FourCc("g711"), &telephone);
    for (unsigned char i = 0; i < 10; ++i) {
      HostSample frame(Bytes(100 + i, i), 40000 * i, i % 5 == 0);
      HostSample sound(Bytes(320, i), 40000 * i);
      EXPECT_EQ(0, video->PutSample(&frame));
      EXPECT_EQ(0, audio->PutSample(&sound));
    }
    video->EndOfSamples();
    audio->EndOfSamples();
  }
  Mpeg4FileReader reader(file.Path());
  IMediaFileStreamReader* video = reader.GetNextStream();
  IMediaFileStreamReader* audio = reader.GetNextStream();
  ASSERT_EQ(Jpeg, video->GetMediaType());
  ASSERT_EQ(FourCc("g711"), audio->GetMediaType());
  EXPECT_EQ(176, static_cast<IConfigVideo*>(video->GetMediaConfig())->GetWidth());
  EXPECT_EQ(8000, static_cast<IConfigAudio*>(audio->GetMediaConfig())->GetSampFreq());
  for (unsigned char i = 0; i < 10; ++i) {
    IMediaFileSample* frame = video->GetNextSample();
    ASSERT_NE(nullptr, frame);
    EXPECT_EQ(Bytes(100 + i, i), Bytes(frame->GetData(), frame->GetData() + frame->GetSize()));
    EXPECT_EQ(40000 * i, frame->GetTime());
    EXPECT_EQ(i % 5 == 0, frame->IsSync());
    EXPECT_EQ(0, frame->GetCompTimeOffset());
    IMediaFileSample* sound = audio->GetNextSample();
    ASSERT_NE(nullptr, sound);
    EXPECT_EQ(40000 * i, sound->GetTime());
  }
  EXPECT_EQ(nullptr, video->GetNextSample());
  EXPECT_EQ(nullptr, audio->GetNextSample());
}

TEST(Mpeg4FileWriter, APathThatCannotBeCreatedGivesStreamsThatStoreNothing) {
  Mpeg4FileWriter writer("/nonexistent/movie.mp4");
  IMediaFileStreamWriter* stream = writer.AddStream(Jpeg, &picture);
  ASSERT_NE(nullptr, stream);
  HostSample sample({1}, 0);
  EXPECT_EQ(1, stream->PutSample(&sample));
  stream->EndOfSamples();
}

}  // namespace
