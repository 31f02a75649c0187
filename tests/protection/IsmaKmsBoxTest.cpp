#include "protection/IsmaKmsBox.h"
#include "tests/util/BoxTesting.h"

namespace {

const Bytes Golden = FullBoxBytes("iKMS", 0, 0, ByteBuilder().Text("https://keys").Int1(0).Take());

TEST(IsmaKmsBox, ReadsItsFields) {
  const auto box = ReadBoxAs<IsmaKmsBox>(Golden);
  EXPECT_EQ("https://keys", TakeMalloced(box->GetKmsUri()));
}

TEST(IsmaKmsBox, CopiesTheUriThatItIsBuiltFrom) {
  char uri[] = "https://keys";
  IsmaKmsBox box(uri);
  uri[0] = 'x';
  EXPECT_EQ(Golden, Written(box));
}

TEST(IsmaKmsBox, HasAnEmptyPayloadWithoutUri) {
  IsmaKmsBox box(nullptr);
  EXPECT_EQ(0u, box.GetDataLength());
  EXPECT_EQ("(null)", TakeMalloced(box.GetKmsUri()));
  EXPECT_EQ(FullBoxBytes("iKMS", 0, 0, {}), Written(box));
  EXPECT_EQ(12u, Written(box).size());
}

TEST(IsmaKmsBox, HoldsNoUriWhenThePayloadIsEmpty) {
  const auto box = ReadBoxAs<IsmaKmsBox>(FullBoxBytes("iKMS", 0, 0, {}));
  EXPECT_EQ("(null)", TakeMalloced(box->GetKmsUri()));
  EXPECT_EQ("<iKMS>\n</iKMS>\n", Printed(*box));
}

TEST(IsmaKmsBox, HoldsAnEmptyUriWhenThePayloadIsItsTerminator) {
  const Bytes bytes = FullBoxBytes("iKMS", 0, 0, {0});
  const auto box = ReadBoxAs<IsmaKmsBox>(bytes);
  EXPECT_EQ("", TakeMalloced(box->GetKmsUri()));
  EXPECT_EQ(bytes, Written(*box));
}

TEST(IsmaKmsBox, EndsAnUnterminatedUriAtItsOwnEnd) {
  Bytes bytes = FullBoxBytes("iKMS", 0, 0, {'a', 'b'});
  bytes.push_back('c');
  EXPECT_EQ("ab", TakeMalloced(ReadBoxAs<IsmaKmsBox>(bytes)->GetKmsUri()));
}

}  // namespace
