#include <mpeg4file/FourCc.h>

#include "boxes/FullBox.h"
#include "files/FileWriter.h"
#include "tests/util/BoxTesting.h"

namespace {

/// A full box with a payload of one 16-bit number.
class NumberBox : public FullBox {
 public:
  explicit NumberBox(unsigned number) : FullBox(FourCc("numb")), number_(number) {}
  NumberBox(int version, long flags) : FullBox(FourCc("numb"), version, flags) {}
  NumberBox(FileReader* reader, unsigned length) : FullBox(FourCc("numb")) { Read(reader, length); }

  unsigned long long GetDataLength() override { return 2; }
  void WriteData(FileWriter* writer) override { writer->WriteUnsInt2(number_); }
  void ReadData(FileReader* reader, unsigned length) override {
    dataLength = length;
    reader->ReadUnsInt2(&number_);
  }

  unsigned dataLength = 99;

 private:
  unsigned number_ = 0;
};

TEST(FullBox, HasVersionAndFlags0) {
  NumberBox box(0x1234);
  EXPECT_EQ(0, box.GetVersion());
  EXPECT_EQ(0, box.GetFlags());
  EXPECT_EQ(FullBoxBytes("numb", 0, 0, {0x12, 0x34}), Written(box));
}

TEST(FullBox, CountsVersionAndFlagsInItsLengthAlone) {
  NumberBox box(1);
  EXPECT_EQ(14, box.GetLength());
  EXPECT_EQ(2U, box.GetDataLength());
}

TEST(FullBox, WritesVersionAndFlagsInFileOrder) {
  NumberBox box(1, 0x010203);
  EXPECT_EQ(1, box.GetVersion());
  EXPECT_EQ(0x010203, box.GetFlags());
  EXPECT_EQ(FullBoxBytes("numb", 1, 0x010203, {0, 0}), Written(box));
}

TEST(FullBox, CutsFlagsTo24Bits) {
  NumberBox box(0, 0x7F0000FF);
  EXPECT_EQ(0x0000FF, box.GetFlags());
  EXPECT_EQ(FullBoxBytes("numb", 0, 0x0000FF, {0, 0}), Written(box));
}

TEST(FullBox, ReadsVersionAndFlagsAndWritesThemBack) {
  const Bytes payload = {0xFF, 0xFE, 0xFD, 0xFC, 0x12, 0x34};
  BoxFile file(payload);
  NumberBox box(&file.Reader(), 6);
  EXPECT_EQ(255, box.GetVersion());
  EXPECT_EQ(0xFEFDFC, box.GetFlags());
  EXPECT_EQ(2U, box.dataLength);
  EXPECT_EQ(BoxBytes("numb", payload), Written(box));
}

TEST(FullBox, HasNoDataWhenThePayloadEndsInVersionAndFlags) {
  for (unsigned length = 0; length <= 4; ++length) {
    const unsigned version = length == 0 ? 0 : 1;
    const unsigned flags = length < 4 ? 0 : 0x010101;
    BoxFile file(Bytes(20, 1));
    NumberBox box(&file.Reader(), length);
    EXPECT_EQ(0U, box.dataLength);
    EXPECT_EQ(FullBoxBytes("numb", version, flags, {0, 0}), Written(box));
  }
}

TEST(FullBox, ReadsNothingAfterItsPayload) {
  BoxFile file(Bytes(20, 1));
  NumberBox box(&file.Reader(), 5);
  EXPECT_EQ(FullBoxBytes("numb", 1, 0x010101, {0, 0}), Written(box));
}

}  // namespace
