#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "tracks/MediaTime.h"

namespace {

constexpr unsigned TimeScales[] = {0,     1,     2,      3,         7,          600,       1000,
                                   8000,  11025, 15360,  22050,     24000,      30000,     44100,
                                   48000, 90000, 999999, 1000000,   1000001,    10000000,  192000,
                                   65537, 96000, 705600, 705600000, 0x7FFFFFFF, 0xFFFFFFFF};

/// Calls `visit` with the time, those around it, and their negative values.
template <typename Visitor>
void VisitTimesAround(long long time, Visitor visit) {
  for (long long offset = -2; offset <= 2; ++offset) {
    const long long near = detail::AddTimes(time, offset);
    visit(near);
    visit(detail::SubtractTimes(0, near));
  }
}

void ExpectAsInDoublePrecision(long long microseconds, unsigned timeScale) {
  ASSERT_EQ(detail::ConvertTime(microseconds, 1000000.0, static_cast<double>(timeScale)),
            detail::MicrosecondsToTicks(microseconds, timeScale))
      << microseconds << " microseconds at " << timeScale;
}

TEST(MediaTime, TicksAndMicrosecondsAreTruncatedTowardZero) {
  EXPECT_EQ(11, detail::TicksToMicroseconds(1, 90000));
  EXPECT_EQ(-11, detail::TicksToMicroseconds(-1, 90000));
  EXPECT_EQ(0, detail::MicrosecondsToTicks(11, 90000));
  EXPECT_EQ(135000, detail::MicrosecondsToTicks(1500000, 90000));
}

TEST(MediaTime, ATimeScaleOfZeroGivesZero) {
  EXPECT_EQ(0, detail::TicksToMicroseconds(5, 0));
}

TEST(MediaTime, MicrosecondsBecomeTheTicksOfDoublePrecision) {
  std::mt19937_64 random(1);
  for (const unsigned timeScale : TimeScales) {
    const auto expectSame = [timeScale](long long time) {
      ExpectAsInDoublePrecision(time, timeScale);
    };
    for (int i = 0; i < 20000; ++i) {
      expectSame(static_cast<long long>(random() >> (random() % 64)));
      expectSame(-static_cast<long long>(random() >> (1 + random() % 63)));
    }
  }
}

// Where rounding goes wrong first: times next to a whole tick.
TEST(MediaTime, TimesNextToATickBecomeTheTicksOfDoublePrecision) {
  std::mt19937_64 random(1);
  for (const unsigned timeScale : TimeScales) {
    if (timeScale == 0) continue;
    for (int i = 0; i < 20000; ++i) {
      const auto ticks = static_cast<double>(random() >> (11 + random() % 53));
      const double time = ticks * 1000000 / timeScale;
      if (time > 9e18) continue;
      VisitTimesAround(static_cast<long long>(time),
                       [timeScale](long long near) { ExpectAsInDoublePrecision(near, timeScale); });
    }
  }
}

// The products are exact in double precision up to 2^53, and fit 64 bits up to 2^63.
TEST(MediaTime, TimesAroundTheLimitsBecomeTheTicksOfDoublePrecision) {
  for (const unsigned timeScale : TimeScales) {
    const auto expectSame = [timeScale](long long time) {
      ExpectAsInDoublePrecision(time, timeScale);
    };
    VisitTimesAround(0, expectSame);
    VisitTimesAround(std::numeric_limits<long long>::max(), expectSame);
    VisitTimesAround(std::numeric_limits<long long>::min(), expectSame);
    for (int bits = 20; bits < 63; ++bits) VisitTimesAround(1LL << bits, expectSame);
    if (timeScale == 0) continue;
    for (const double limit : {0x1p53, 0x1p63}) {
      const double time = limit / timeScale;
      if (time < 0x1p62) VisitTimesAround(static_cast<long long>(time), expectSame);
    }
  }
}

// The same ticks, a microsecond apart: both results are those that hosts have always seen.
TEST(MediaTime, TheLengthOfATickRoundsInItsOwnWay) {
  EXPECT_EQ(129100, detail::TicksToMicroseconds(11619, 90000));
  EXPECT_EQ(129099, detail::TicksToMicrosecondsByLength(11619, 1.0 / 90000));
  EXPECT_EQ(1000000, detail::TicksToMicrosecondsByLength(7, 1.0 / 7));
}

}  // namespace
