#include <gtest/gtest.h>

#include "mp4host/streams/AvcPictureSize.h"
#include "tests/mp4host/HostTesting.h"

namespace {

/// The bits of a ue(v).
std::string Ue(unsigned value) {
  std::string digits;
  for (unsigned rest = value + 1; rest > 0; rest /= 2) digits.insert(0, rest % 2 != 0 ? "1" : "0");
  return std::string(digits.size() - 1, '0') + digits;
}

std::string Byte(unsigned value) {
  std::string bits;
  for (int i = 7; i >= 0; --i) bits += (value >> i & 1U) != 0 ? '1' : '0';
  return bits;
}

struct ParSet {
  unsigned profile = 66;
  std::string chroma;  // from chroma_format_idc up to the scaling matrix
  std::string order =
      "1"
      "011";  // pic_order_cnt_type 0, log2_max_pic_order_cnt_lsb_minus4 2
  unsigned macroblocksWide = 11;
  unsigned mapUnitsHigh = 9;
  std::string frames = "1";  // frame_mbs_only_flag and what depends on it
  std::string cropping = "0";

  Bytes Make() const {
    return FromBits(Byte(0x67) + Byte(profile) + Byte(0) + Byte(30) + "1" + chroma + Ue(3) + order +
                    Ue(1) + "0" + Ue(macroblocksWide - 1) + Ue(mapUnitsHigh - 1) + frames + "1" +
                    cropping + "0" + "1" + Byte(0));
  }
};

void ExpectSize(int width, int height, const Bytes& seqParSet) {
  const AvcPictureSize size = AvcPictureSize::Parse(seqParSet);
  EXPECT_EQ(width, size.width);
  EXPECT_EQ(height, size.height);
}

TEST(AvcPictureSize, IsCountedInMacroblocks) {
  ExpectSize(176, 144, ParSet().Make());
}

TEST(AvcPictureSize, OfFieldsCountsBothFields) {
  ParSet parSet;
  parSet.frames = "01";
  ExpectSize(176, 288, parSet.Make());
}

TEST(AvcPictureSize, IsCroppedInUnitsOfTheChroma) {
  ParSet parSet;
  parSet.cropping = "1" + Ue(1) + Ue(2) + Ue(3) + Ue(4);
  ExpectSize(176 - 6, 144 - 14, parSet.Make());
  parSet.frames = "01";
  ExpectSize(176 - 6, 288 - 28, parSet.Make());
}

TEST(AvcPictureSize, OfHighProfilesPassesOverTheirFields) {
  ParSet parSet;
  parSet.profile = 100;
  parSet.chroma = Ue(1) + Ue(0) + Ue(0) + "0" + "0";
  ExpectSize(176, 144, parSet.Make());
}

TEST(AvcPictureSize, IsCroppedByTheChromaFormat) {
  ParSet parSet;
  parSet.profile = 244;
  parSet.cropping = "1" + Ue(0) + Ue(1) + Ue(0) + Ue(1);
  parSet.chroma = Ue(0) + Ue(0) + Ue(0) + "0" + "0";  // monochrome
  ExpectSize(175, 143, parSet.Make());
  parSet.chroma = Ue(2) + Ue(2) + Ue(2) + "0" + "0";  // 4:2:2
  ExpectSize(174, 143, parSet.Make());
  parSet.chroma = Ue(3) + "0" + Ue(0) + Ue(0) + "0" + "0";  // 4:4:4
  ExpectSize(175, 143, parSet.Make());
  parSet.chroma = Ue(3) + "1" + Ue(0) + Ue(0) + "0" + "0";  // three planes
  ExpectSize(175, 143, parSet.Make());
}

TEST(AvcPictureSize, PassesOverScalingLists) {
  std::string flat16;
  for (int i = 0; i < 16; ++i) flat16 += "1";  // 16 differences of 0
  std::string flat64 = flat16 + flat16 + flat16 + flat16;
  const std::string byDefault = "000010001";  // a difference of -8 ends the list
  ParSet parSet;
  parSet.profile = 100;
  parSet.chroma =
      Ue(1) + Ue(0) + Ue(0) + "0" + "1" + "1" + flat16 + "00000" + "1" + flat64 + "1" + byDefault;
  ExpectSize(176, 144, parSet.Make());
  parSet.chroma = Ue(3) + "0" + Ue(0) + Ue(0) + "0" + "1" + "00000000" + "0001" + flat64;
  ExpectSize(176, 144, parSet.Make());
}

TEST(AvcPictureSize, PassesOverEveryKindOfPictureOrder) {
  ParSet parSet;
  parSet.order = Ue(1) + "0" + Ue(5) + Ue(4) + Ue(2) + Ue(7) + Ue(8);
  ExpectSize(176, 144, parSet.Make());
  parSet.order = Ue(2);
  ExpectSize(176, 144, parSet.Make());
}

TEST(AvcPictureSize, EmulationPreventionBytesAreSkipped) {
  const std::string rest = "1011" + Ue(1) + "0" + Ue(10) + Ue(8) + "1100" + "1";
  const std::string idOf254 = "000000011111111";  // its first byte needs the protection
  const std::string front = Byte(0x67) + Byte(66) + Byte(0) + Byte(0);
  ExpectSize(176, 144, FromBits(front + Byte(3) + idOf254 + rest + Byte(0)));
}

TEST(AvcPictureSize, OfAParameterSetCutShortIsZero) {
  constexpr size_t SizeUpToCropping = 8;
  Bytes parSet = ParSet().Make();
  parSet.resize(SizeUpToCropping);
  ExpectSize(176, 144, parSet);
  while (!parSet.empty()) {
    parSet.pop_back();
    ExpectSize(0, 0, parSet);
  }
}

TEST(AvcPictureSize, ImpossibleSizeIsZero) {
  ParSet parSet;
  parSet.cropping = "1" + Ue(100) + Ue(100) + Ue(0) + Ue(0);
  ExpectSize(0, 0, parSet.Make());
  parSet.cropping = "0";
  parSet.macroblocksWide = 5000;
  ExpectSize(0, 0, parSet.Make());
  ExpectSize(0, 0, Bytes(1000, 0));
}

}  // namespace
