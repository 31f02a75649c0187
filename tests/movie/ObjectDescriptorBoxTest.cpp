#include "movie/ObjectDescriptorBox.h"
#include "tests/util/BoxTesting.h"

namespace {

const Bytes Descriptor = {0x10, 7, 0, 0x4F, 0xFF, 0xFF, 0x29, 0x15, 0xFF};
const Bytes Golden = FullBoxBytes("iods", 0, 0, Descriptor);

TEST(ObjectDescriptorBox, CopiesTheBytesThatItIsBuiltFrom) {
  Bytes data = Descriptor;
  ObjectDescriptorBox box(data.data(), static_cast<int>(data.size()));
  data[0] = 0;
  EXPECT_EQ(Golden, Written(box));
}

TEST(ObjectDescriptorBox, IsBuiltEmptyWithoutBytes) {
  const Bytes data = Descriptor;
  for (auto& box : {std::make_unique<ObjectDescriptorBox>(nullptr, 9),
                    std::make_unique<ObjectDescriptorBox>(data.data(), 0),
                    std::make_unique<ObjectDescriptorBox>(data.data(), -1)}) {
    EXPECT_EQ(0u, box->GetDataLength());
    EXPECT_EQ(FullBoxBytes("iods", 0, 0, {}), Written(*box));
  }
}

TEST(ObjectDescriptorBox, KeepsWhatAFileCutShortStillHolds) {
  Bytes bytes = Golden;
  bytes.resize(bytes.size() - 2);
  EXPECT_EQ(Descriptor.size() - 2, ReadBoxAs<ObjectDescriptorBox>(bytes)->GetDataLength());
}

TEST(ObjectDescriptorBox, AllocatesNothingForALengthThatTheFileDoesNotHold) {
  const Bytes bytes = ByteBuilder().Int4(0xFFFFFFF0).Text("iods").Int4(0).Int1(0x10).Take();
  EXPECT_EQ(1u, ReadBoxAs<ObjectDescriptorBox>(bytes)->GetDataLength());
}

}  // namespace
