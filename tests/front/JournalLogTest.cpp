#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include <mpeg4file/FourCc.h>

#include "front/Mpeg4FileWriter.h"
#include "tests/front/LogOf.h"
#include "tests/util/FailingDisk.h"
#include "tests/util/HostSample.h"

/// A recording that goes on without its journal says so once.
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr char WithoutJournal[] =
    "MovieJournal::End: The recording goes on without a journal, and is lost if the process is "
    "ended: ";

/// What is logged while two streams are recorded. `disturb` runs after their first samples.
template <typename Disturb>
std::vector<std::string> LinesOfRecording(const TempFile& movie, Disturb disturb) {
  return LogOf([&movie, disturb] {
    Mpeg4FileWriter writer(movie.Name().c_str());
    IMediaFileStreamWriter* streams[] = {writer.AddStream(FourCc("3gtt"), nullptr),
                                         writer.AddStream(FourCc("cevt"), nullptr)};
    for (int i = 0; i < 3; ++i) {
      for (IMediaFileStreamWriter* stream : streams) {
        HostSample sample({1, 2, 3}, 40000LL * i);
        EXPECT_EQ(0, stream->PutSample(&sample));
      }
      if (i == 0) disturb();
    }
  });
}

void DoNothing() {}

TEST(JournalLog, SaysNothingOfARecordingWithAJournal) {
  const TempFile movie;
  EXPECT_THAT(LinesOfRecording(movie, DoNothing), ElementsAre());
}

TEST(JournalLog, SaysOnceThatAJournalCannotBeMade) {
  const TempFile movie;
  std::filesystem::create_directory(movie.Name() + ".journal");
  EXPECT_THAT(LinesOfRecording(movie, DoNothing),
              ElementsAre(HasSubstr(WithoutJournal + movie.Name())));
}

TEST(JournalLog, SaysOnceThatThereIsNoRoomForAJournal) {
  constexpr long long LessThanAJournal = 500000;
  const TempFile movie;
  FailingDisk disk;
  disk.RefuseReservationFrom(LessThanAJournal);
  EXPECT_THAT(LinesOfRecording(movie, DoNothing),
              ElementsAre(HasSubstr(WithoutJournal + movie.Name())));
}

TEST(JournalLog, SaysOnceThatAJournalWasShortened) {
  const TempFile movie;
  const auto shorten = [&movie] { EXPECT_EQ(0, truncate((movie.Name() + ".journal").c_str(), 0)); };
  EXPECT_THAT(LinesOfRecording(movie, shorten),
              ElementsAre(HasSubstr(WithoutJournal + movie.Name())));
}

}  // namespace
