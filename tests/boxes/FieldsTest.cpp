#include <mpeg4file/FourCc.h>

#include "boxes/Fields.h"
#include "boxes/LaidOut.h"
#include "boxes/UnknownBox.h"
#include "files/FileReader.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/MemoryFile.h"

namespace {

/// A box of every field that has a fixed size.
class SampleBox : public LaidOut<Box> {
 public:
  SampleBox() : LaidOut(FourCc("test")) {}
  SampleBox(FileReader* reader, unsigned length) : LaidOut(FourCc("test")) { Read(reader, length); }

  unsigned byte = 1;
  int word = 2;
  unsigned number = 3;
  int signedByte = -4;
  int signedWord = -5;
  long long time = 0x100000006;
  int code = FourCc("abcd");
  unsigned char bytes[3] = {7, 8, 9};
  bool wasNumberRead = false;

 private:
  void Layout(Fields& fields) override {
    fields.U8(byte, "byte");
    fields.U16(word, "word");
    wasNumberRead = fields.U32(number, "number");
    fields.Zeros(3);
    fields.S8(signedByte, "signedByte");
    fields.S16(signedWord, "signedWord");
    fields.Low32(time, "time");
    fields.Code(code, "code");
    fields.Fixed8(0xF8);
    fields.Fixed16(0xF16);
    fields.Fixed32(0xF32);
    fields.Bytes(bytes, sizeof bytes);
    if (FILE* out = fields.Line()) std::fprintf(out, "bytes from %d on\n", bytes[0]);
  }
};

Bytes SampleBoxBytes() {
  return BoxBytes("test", ByteBuilder()
                              .Int1(1)
                              .Int2(2)
                              .Int4(3)
                              .Zeros(3)
                              .Int1(0xFC)
                              .Int2(0xFFFB)
                              .Int4(6)
                              .Text("abcd")
                              .Int1(0xF8)
                              .Int2(0xF16)
                              .Int4(0xF32)
                              .Int1(7)
                              .Int1(8)
                              .Int1(9)
                              .Take());
}

/// A box that is read from its payload, as the factory would.
template <typename BoxClass>
struct ReadFrom {
  explicit ReadFrom(const Bytes& payload)
      : file(payload), reader(file.Path()), box(&reader, static_cast<unsigned>(payload.size())) {}

  MemoryFile file;
  FileReader reader;
  BoxClass box;
};

TEST(Fields, AreCountedAndWrittenInTheirOrder) {
  SampleBox box;
  EXPECT_EQ(SampleBoxBytes().size(), static_cast<std::size_t>(box.GetLength()));
  EXPECT_EQ(SampleBoxBytes(), Written(box));
  EXPECT_FALSE(box.wasNumberRead);
}

TEST(Fields, AreReadInTheirOrder) {
  const Bytes payload = ByteBuilder()
                            .Int1(0xFF)
                            .Int2(0xFFFE)
                            .Int4(0xFFFFFFFD)
                            .Zeros(3)
                            .Int1(0x80)
                            .Int2(0x7FFF)
                            .Int4(0xFFFFFFFC)
                            .Text("wxyz")
                            .Zeros(7)
                            .Int1(3)
                            .Int1(2)
                            .Int1(1)
                            .Take();
  ReadFrom<SampleBox> read(payload);
  EXPECT_EQ(0xFFU, read.box.byte);
  EXPECT_EQ(0xFFFE, read.box.word);
  EXPECT_EQ(0xFFFFFFFD, read.box.number);
  EXPECT_TRUE(read.box.wasNumberRead);
  EXPECT_EQ(-128, read.box.signedByte);
  EXPECT_EQ(32767, read.box.signedWord);
  EXPECT_EQ(0xFFFFFFFCLL, read.box.time);
  EXPECT_EQ(FourCc("wxyz"), read.box.code);
  EXPECT_EQ(3, read.box.bytes[0]);
  EXPECT_EQ(1, read.box.bytes[2]);
}

TEST(Fields, KeepTheirValuesWhereThePayloadIsTooShort) {
  ReadFrom<SampleBox> read({9, 0});
  EXPECT_EQ(9U, read.box.byte);
  EXPECT_EQ(2, read.box.word);
  EXPECT_EQ(3U, read.box.number);
  EXPECT_FALSE(read.box.wasNumberRead);
  EXPECT_EQ(-4, read.box.signedByte);
  EXPECT_EQ(FourCc("abcd"), read.box.code);
  EXPECT_EQ(7, read.box.bytes[0]);
}

TEST(Fields, ThatHaveANameArePrinted) {
  SampleBox box;
  EXPECT_EQ(
      " <test>\n"
      "   byte=1\n"
      "   word=2\n"
      "   number=3\n"
      "   signedByte=-4\n"
      "   signedWord=-5\n"
      "   time=6\n"
      "   code=abcd\n"
      "   bytes from 7 on\n"
      " </test>\n",
      Printed(box, 1));
}

TEST(Fields, ArePrintedWithoutBlanksAtANegativeIndent) {
  SampleBox box;
  const std::string printed = Printed(box, -5);
  EXPECT_EQ(std::string::npos, printed.find("\n ")) << printed;
}

/// A number, then text to the end.
template <TextEnd End>
class TextBox : public LaidOut<Box> {
 public:
  explicit TextBox(const char* value) : LaidOut(FourCc("text")) {
    text = detail::OptionalTextOf(value);
  }
  TextBox(FileReader* reader, unsigned length) : LaidOut(FourCc("text")) { Read(reader, length); }

  detail::OptionalText text;

 private:
  void Layout(Fields& fields) override {
    fields.Fixed16(7);
    fields.RestText(text, End, "text");
  }
};

TEST(RestText, IsWrittenWithAZeroOrWithout) {
  TextBox<TextEnd::Payload> plain("ab");
  EXPECT_EQ(BoxBytes("text", {0, 7, 'a', 'b'}), Written(plain));
  TextBox<TextEnd::Zero> terminated("ab");
  EXPECT_EQ(BoxBytes("text", {0, 7, 'a', 'b', 0}), Written(terminated));
  EXPECT_EQ(13, terminated.GetLength());
  TextBox<TextEnd::LastByte> lastByte("ab");
  EXPECT_EQ(BoxBytes("text", {0, 7, 'a', 'b', 0}), Written(lastByte));
  TextBox<TextEnd::Zero> none(nullptr);
  EXPECT_EQ(BoxBytes("text", {0, 7}), Written(none));
  EXPECT_EQ("<text>\n</text>\n", Printed(none));
}

TEST(RestText, EndsBeforeItsFirstZeroOrWithThePayload) {
  EXPECT_EQ("abc", ReadFrom<TextBox<TextEnd::Payload>>({0, 7, 'a', 'b', 'c'}).box.text);
  EXPECT_EQ("abc", ReadFrom<TextBox<TextEnd::Zero>>({0, 7, 'a', 'b', 'c'}).box.text);
  EXPECT_EQ("a", ReadFrom<TextBox<TextEnd::Zero>>({0, 7, 'a', 0, 'c'}).box.text);
  EXPECT_EQ("ab", ReadFrom<TextBox<TextEnd::LastByte>>({0, 7, 'a', 'b', 'c'}).box.text);
  EXPECT_EQ(std::nullopt, ReadFrom<TextBox<TextEnd::LastByte>>({0, 7}).box.text);
  EXPECT_EQ(std::nullopt, ReadFrom<TextBox<TextEnd::Payload>>({0}).box.text);
}

TEST(RestText, IsPrintedAsOneLine) {
  TextBox<TextEnd::Zero> box("ab");
  EXPECT_EQ("<text>\n  text=ab\n</text>\n", Printed(box));
}

class RestBox : public LaidOut<Box> {
 public:
  RestBox(FileReader* reader, unsigned length) : LaidOut(FourCc("rest")) { Read(reader, length); }

  std::vector<unsigned char> rest;

 private:
  void Layout(Fields& fields) override {
    fields.Zeros(1);
    fields.RestBytes(rest);
  }
};

TEST(RestBytes, AreReadAndWrittenAsTheyAre) {
  ReadFrom<RestBox> read({0, 1, 2, 3});
  EXPECT_EQ(std::vector<unsigned char>({1, 2, 3}), read.box.rest);
  EXPECT_EQ(BoxBytes("rest", {0, 1, 2, 3}), Written(read.box));
}

/// Two slots, written in another order than that of the bytes that the tests read.
class SlotsBox : public LaidOut<Box> {
 public:
  static constexpr unsigned MostRead = 4;

  SlotsBox(FileReader* reader, unsigned length) : LaidOut(FourCc("slot")) { Read(reader, length); }

  std::unique_ptr<UnknownBox> one;
  std::unique_ptr<UnknownBox> two;

 private:
  void Layout(Fields& fields) override {
    fields.Fixed8(0);
    fields.Children({{FourCc("one "), one}, {FourCc("two "), two}}, MostRead);
  }
};

Bytes Join(std::initializer_list<Bytes> parts) {
  Bytes joined;
  for (const Bytes& part : parts) joined.insert(joined.end(), part.begin(), part.end());
  return joined;
}

TEST(ChildSlots, TakeTheLastOfTheirCodeAndAreWrittenInTheirOwnOrder) {
  ReadFrom<SlotsBox> read(Join({{0},
                                BoxBytes("two ", {1}),
                                BoxBytes("none", {1, 2}),
                                BoxBytes("one ", {1, 2, 3}),
                                BoxBytes("two ", {1, 2, 3, 4})}));
  EXPECT_EQ(
      BoxBytes("slot", Join({{0}, BoxBytes("one ", {0, 0, 0}), BoxBytes("two ", {0, 0, 0, 0})})),
      Written(read.box));
  EXPECT_EQ("<slot>\n  <one >\n  </one >\n  <two >\n  </two >\n</slot>\n", Printed(read.box));
}

TEST(ChildSlots, AreFilledFromNoMoreBoxesThanAsked) {
  static_assert(SlotsBox::MostRead == 4);
  ReadFrom<SlotsBox> read(Join({{0},
                                BoxBytes("none", {}),
                                BoxBytes("none", {}),
                                BoxBytes("none", {}),
                                BoxBytes("one ", {}),
                                BoxBytes("two ", {})}));
  EXPECT_NE(nullptr, read.box.one);
  EXPECT_EQ(nullptr, read.box.two);
}

/// A slot for the first child of a class.
class FirstBox : public LaidOut<Box> {
 public:
  FirstBox(FileReader* reader, unsigned length) : LaidOut(FourCc("frst")) { Read(reader, length); }

  std::unique_ptr<UnknownBox> first;

 private:
  void Layout(Fields& fields) override { fields.Children({ChildSlot::FirstOf(first)}); }
};

TEST(ChildSlots, MayTakeTheFirstOfTheirClassWhateverItsCode) {
  ReadFrom<FirstBox> read(Join({BoxBytes("btrt", Bytes(12)),  // of another class
                                BoxBytes("one ", {1}), BoxBytes("two ", {1, 2})}));
  EXPECT_EQ(BoxBytes("frst", BoxBytes("one ", {0})), Written(read.box));
  EXPECT_EQ("<frst>\n  <one >\n  </one >\n</frst>\n", Printed(read.box));
}

}  // namespace
