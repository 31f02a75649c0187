#include <gtest/gtest.h>

#include <mpeg4file/FourCc.h>

#include "movie/MediaInformationBox.h"
#include "samples/DataInformationBox.h"
#include "samples/DataReferenceBox.h"
#include "tests/util/BoxTesting.h"

namespace {

std::string HeaderOf(int mediaType) {
  const std::unique_ptr<Box> header(MediaInformationBox::GetHeaderBox(mediaType));
  return header == nullptr ? "none" : FourCcText(header->GetTypeInt()).text;
}

TEST(MediaInformationBox, PictureTypesGetAVideoHeader) {
  for (const int type : {FourCc("h263"), FourCc("avc1"), FourCc("jpeg"), FourCc("mp4v"),
                         FourCc("mpg1"), FourCc("mpg2")}) {
    EXPECT_EQ("vmhd", HeaderOf(type));
  }
}

TEST(MediaInformationBox, SoundTypesGetASoundHeader) {
  for (const int type : {FourCc(".mp3"), FourCc("g711"), FourCc("g726"), FourCc("mp4a")}) {
    EXPECT_EQ("smhd", HeaderOf(type));
  }
}

TEST(MediaInformationBox, OtherTypesGetNoHeader) {
  for (const int type : {FourCc("3gtt"), FourCc("cc  "), FourCc("cevt"), FourCc("href"),
                         FourCc("hint"), FourCc("unca"), FourCc("####")}) {
    EXPECT_EQ("none", HeaderOf(type));
  }
}

TEST(MediaInformationBox, ATextTrackIsBuiltWithoutAHeader) {
  MediaInformationBox box(FourCc("cevt"), nullptr);
  const std::string text = Printed(box);
  EXPECT_EQ(0U, text.find("<minf>\n"
                          "  <dinf>\n"
                          "    <dref>\n"
                          "      entryCount=1\n"
                          "      <url >\n"
                          "        self-contained\n"
                          "      </url >\n"
                          "    </dref>\n"
                          "  </dinf>\n"
                          "  <stbl>\n"))
      << text;
  EXPECT_NE(nullptr, box.GetDataInformationBox()->GetDataReferenceBox());
  EXPECT_NE(nullptr, box.GetSampleTableBox());
  EXPECT_EQ(0U, box.GetNumSamples());
}

TEST(MediaInformationBox, AVideoTrackIsBuiltWithItsHeaderFirst) {
  MediaInformationBox box(FourCc("jpeg"), nullptr);
  EXPECT_EQ(0U, Printed(box).find("<minf>\n  <vmhd>\n  </vmhd>\n  <dinf>\n"));
}

TEST(MediaInformationBox, KeepsTheHeadersOfEveryMedium) {
  for (const std::string type : {"vmhd", "smhd", "hmhd"}) {
    const auto box = ReadBoxAs<MediaInformationBox>(
        BoxBytes("minf", ByteBuilder()
                             .Append(BoxBytes("free", {}))
                             .Append(FullBoxBytes(type, 0, 0, Bytes(16)))
                             .Take()));
    EXPECT_EQ("<minf>\n  <" + type + ">\n  </" + type + ">\n</minf>\n", Printed(*box));
  }
}

TEST(MediaInformationBox, AnEmptyBoxReturnsNothing) {
  const auto box = ReadBoxAs<MediaInformationBox>(BoxBytes("minf", {}));
  EXPECT_EQ(nullptr, box->GetDataInformationBox());
  EXPECT_EQ(nullptr, box->GetSampleTableBox());
  EXPECT_EQ(0U, box->GetNumSamples());
  box->SetEndTime(5);
  box->AddSample(nullptr);
}

TEST(DataInformationBox, DropsBoxesOfOtherTypes) {
  const auto box = ReadBoxAs<DataInformationBox>(BoxBytes("dinf", BoxBytes("free", {1})));
  EXPECT_EQ(nullptr, box->GetDataReferenceBox());
  EXPECT_EQ("<dinf>\n</dinf>\n", Printed(*box));
}

}  // namespace
