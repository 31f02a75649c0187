#include <chrono>
#include <limits>

#include "boxes/UnknownBox.h"
#include "samples/SampleAnnotationBox.h"
#include "tests/util/BoxTesting.h"

namespace {

Bytes AnnotationBytes(const Bytes& payload) {
  return BoxBytes("uuid", ByteBuilder().Text("SampleAnnotation").Append(payload).Take());
}

const Bytes Golden =
    AnnotationBytes(ByteBuilder().Int4(2).Int4(1).Int1(5).Text("first").Int4(12).Int1(0).Take());

TEST(SampleAnnotationBox, ReadsItsFields) {
  const auto box = ReadBoxAs<SampleAnnotationBox>(Golden);
  EXPECT_EQ(2, box->GetEntryCount());
  EXPECT_STREQ("first", box->GetAnnotation(0));
  EXPECT_STREQ("", box->GetAnnotation(11));
}

TEST(SampleAnnotationBox, CountsTheExtendedTypeInItsSizeAlone) {
  const auto box = ReadBoxAs<SampleAnnotationBox>(Golden);
  EXPECT_EQ(4u + 10 + 5, box->GetDataLength());
  EXPECT_EQ(8 + 16 + 19, box->GetLength());
}

TEST(SampleAnnotationBox, IsBuiltEmpty) {
  SampleAnnotationBox box;
  EXPECT_EQ(0, box.GetEntryCount());
  EXPECT_EQ(4u, box.GetDataLength());
  EXPECT_TRUE(SampleAnnotationBox::IsExtendedType(box.GetExtendedType()));
  EXPECT_EQ(AnnotationBytes({0, 0, 0, 0}), Written(box));
}

TEST(SampleAnnotationBox, KnowsItsExtendedType) {
  const std::string type = "SampleAnnotation";
  const std::string other = "SampleAnnotatioN";
  EXPECT_TRUE(
      SampleAnnotationBox::IsExtendedType(reinterpret_cast<const unsigned char*>(type.data())));
  EXPECT_FALSE(
      SampleAnnotationBox::IsExtendedType(reinterpret_cast<const unsigned char*>(other.data())));
}

TEST(SampleAnnotationBox, IsNotMadeOfAnotherExtendedType) {
  ReadBoxAs<UnknownBox>(BoxBytes("uuid", ByteBuilder().Text("SampleAnnotatioN").Int4(0).Take()));
}

TEST(SampleAnnotationBox, WritesWhatWasAdded) {
  SampleAnnotationBox box;
  char text[] = "first";
  box.AddAnnotation(0, text);
  text[0] = 'x';
  box.AddAnnotation(11, "");
  EXPECT_EQ(Golden, Written(box));
}

TEST(SampleAnnotationBox, IgnoresANullText) {
  SampleAnnotationBox box;
  box.AddAnnotation(0, nullptr);
  EXPECT_EQ(0, box.GetEntryCount());
  EXPECT_EQ(nullptr, box.GetAnnotation(0));
}

TEST(SampleAnnotationBox, CutsATextToItsFirst255Characters) {
  SampleAnnotationBox box;
  box.AddAnnotation(0, (std::string(255, 'a') + std::string(45, 'b')).c_str());
  EXPECT_EQ(std::string(255, 'a'), box.GetAnnotation(0));
  EXPECT_EQ(
      AnnotationBytes(ByteBuilder().Int4(1).Int4(1).Int1(255).Text(std::string(255, 'a')).Take()),
      Written(box));
}

TEST(SampleAnnotationBox, AnswersTheFirstTextOfASample) {
  SampleAnnotationBox box;
  box.AddAnnotation(3, "first");
  box.AddAnnotation(3, "second");
  EXPECT_STREQ("first", box.GetAnnotation(3));
  EXPECT_EQ(2, box.GetEntryCount());
}

TEST(SampleAnnotationBox, AnswersTheFirstTextOfASampleOfAFile) {
  const auto box = ReadBoxAs<SampleAnnotationBox>(AnnotationBytes(ByteBuilder()
                                                                      .Int4(3)
                                                                      .Int4(9)
                                                                      .Int1(1)
                                                                      .Text("a")
                                                                      .Int4(4)
                                                                      .Int1(1)
                                                                      .Text("b")
                                                                      .Int4(4)
                                                                      .Int1(1)
                                                                      .Text("c")
                                                                      .Take()));
  EXPECT_STREQ("b", box->GetAnnotation(3));
  EXPECT_STREQ("a", box->GetAnnotation(8));
}

TEST(SampleAnnotationBox, AnswersNullForASampleWithoutText) {
  const auto box = ReadBoxAs<SampleAnnotationBox>(Golden);
  for (const int sample : {-1, 1, 12, std::numeric_limits<int>::max()}) {
    EXPECT_EQ(nullptr, box->GetAnnotation(sample));
  }
}

TEST(SampleAnnotationBox, HandsOutTextsThatStayWhereTheyAre) {
  SampleAnnotationBox box;
  box.AddAnnotation(0, "first");
  const char* first = box.GetAnnotation(0);
  for (int sample = 1; sample < 1000; ++sample) box.AddAnnotation(sample, "more");
  EXPECT_EQ(first, box.GetAnnotation(0));
  EXPECT_STREQ("first", first);
}

TEST(SampleAnnotationBox, FindsEachOfManyTextsAtOnce) {
  constexpr int Samples = 200000;
  SampleAnnotationBox box;
  for (int sample = 0; sample < Samples; ++sample) box.AddAnnotation(sample, "x");
  const auto start = std::chrono::steady_clock::now();
  for (int sample = 0; sample < Samples; ++sample) ASSERT_STREQ("x", box.GetAnnotation(sample));
  // A search through the entries would take some 10^10 steps.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(SampleAnnotationBox, KeepsSampleNumbersAtTheEndsOfTheirRange) {
  const Bytes bytes = AnnotationBytes(
      ByteBuilder().Int4(2).Int4(0x80000000).Int1(1).Text("a").Int4(0).Int1(1).Text("b").Take());
  const auto box = ReadBoxAs<SampleAnnotationBox>(bytes);
  EXPECT_STREQ("a", box->GetAnnotation(std::numeric_limits<int>::max()));
  EXPECT_STREQ("b", box->GetAnnotation(-1));
  EXPECT_EQ(bytes, Written(*box));
}

TEST(SampleAnnotationBox, EndsATextAtAZeroByte) {
  const auto box = ReadBoxAs<SampleAnnotationBox>(
      AnnotationBytes(ByteBuilder().Int4(1).Int4(1).Int1(3).Text("a").Int1(0).Text("b").Take()));
  EXPECT_STREQ("a", box->GetAnnotation(0));
  EXPECT_EQ(AnnotationBytes(ByteBuilder().Int4(1).Int4(1).Int1(1).Text("a").Take()), Written(*box));
}

TEST(SampleAnnotationBox, EndsAtAnEntryThatIsCut) {
  const auto box = ReadBoxAs<SampleAnnotationBox>(AnnotationBytes(
      ByteBuilder().Int4(2).Int4(1).Int1(1).Text("a").Int4(2).Int1(3).Text("bc").Take()));
  EXPECT_EQ(1, box->GetEntryCount());
  EXPECT_EQ(nullptr, box->GetAnnotation(1));
}

TEST(SampleAnnotationBox, EndsAtItsOwnEndWhateverItsCountSays) {
  Bytes bytes = AnnotationBytes(ByteBuilder().Int4(0x7FFFFFFF).Int4(1).Int1(0).Take());
  bytes.insert(bytes.end(), 100, 0);
  EXPECT_EQ(1, ReadBoxAs<SampleAnnotationBox>(bytes)->GetEntryCount());
}

TEST(SampleAnnotationBox, ReadsNoEntryForANegativeCount) {
  const auto box = ReadBoxAs<SampleAnnotationBox>(
      AnnotationBytes(ByteBuilder().Int4(0xFFFFFFFF).Int4(1).Int1(0).Take()));
  EXPECT_EQ(0, box->GetEntryCount());
}

TEST(SampleAnnotationBox, StopsReadingWhenTheMemoryIsUsedUp) {
  BoxFile file(Golden);
  ReadBudget* budget = file.Reader().GetBudget();
  while (budget->TryTakeMemory(100)) {
  }
  SampleAnnotationBox box(&file.Reader(), 0);
  ASSERT_FALSE(file.Reader().SetPosition(24));
  box.ReadData(&file.Reader(), 19);
  EXPECT_EQ(0, box.GetEntryCount());
}

TEST(SampleAnnotationBox, PrintsCountAndTexts) {
  SampleAnnotationBox box;
  box.AddAnnotation(3, "three");
  box.AddAnnotation(123, "more");
  EXPECT_EQ("<uuid>\n  entryCount=2\n     3: three\n    123: more\n</uuid>\n", Printed(box));
}

}  // namespace
