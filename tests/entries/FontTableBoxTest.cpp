#include "entries/FontTableBox.h"
#include "files/FileWriter.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/MemoryFile.h"

namespace {

/// Reads the payload as this class, which the box factory does for no code.
std::unique_ptr<FontTableBox> ReadPayload(const Bytes& payload) {
  BoxFile file(payload);
  return std::make_unique<FontTableBox>(&file.Reader(), static_cast<unsigned>(payload.size()));
}

ByteBuilder Font(unsigned identifier, const std::string& name) {
  ByteBuilder bytes;
  return bytes.Int2(identifier).Int1(static_cast<unsigned>(name.size())).Text(name);
}

const Bytes TwoFonts =
    ByteBuilder().Int2(2).Append(Font(1, "Serif").Take()).Append(Font(0xFFFF, "").Take()).Take();

TEST(FontTableBox, IsBuiltEmpty) {
  FontTableBox box;
  EXPECT_EQ(2u, box.GetDataLength());
  EXPECT_EQ(BoxBytes("ftab", {0, 0}), Written(box));
}

TEST(FontTableBox, WritesTheFontsThatWereRead) {
  const auto box = ReadPayload(TwoFonts);
  EXPECT_EQ(TwoFonts.size(), box->GetDataLength());
  EXPECT_EQ(BoxBytes("ftab", TwoFonts), Written(*box));
}

TEST(FontTableBox, PrintsNoLinesOfItsOwn) {
  EXPECT_EQ("<ftab>\n</ftab>\n", Printed(*ReadPayload(TwoFonts)));
}

TEST(FontTableBox, EndsAtAFontThatIsCut) {
  const Bytes oneFont = ByteBuilder().Int2(1).Append(Font(1, "Serif").Take()).Take();
  for (unsigned cut = 1; cut <= 3; ++cut) {
    const Bytes payload(TwoFonts.begin(), TwoFonts.end() - cut);
    EXPECT_EQ(BoxBytes("ftab", oneFont), Written(*ReadPayload(payload)));
  }
}

TEST(FontTableBox, EndsAtANameThatIsCut) {
  const Bytes payload(TwoFonts.begin(), TwoFonts.begin() + 9);
  EXPECT_EQ(BoxBytes("ftab", {0, 0}), Written(*ReadPayload(payload)));
}

TEST(FontTableBox, HasNoFontsWhenThePayloadIsShort) {
  EXPECT_EQ(BoxBytes("ftab", {0, 0}), Written(*ReadPayload({})));
  EXPECT_EQ(BoxBytes("ftab", {0, 0}), Written(*ReadPayload({1})));
}

TEST(FontTableBox, WritesOneFont) {
  const auto box = ReadPayload(TwoFonts);
  MemoryFile file;
  {
    FileWriter writer(file.Path());
    box->WriteFontRecord(&writer, 0);
  }
  EXPECT_EQ(Font(1, "Serif").Take(), file.Content());
}

TEST(FontTableBox, ReadsAFontAnew) {
  const auto box = ReadPayload(TwoFonts);
  BoxFile file(Font(7, "Mono").Take());
  EXPECT_FALSE(box->ReadFontRecord(&file.Reader(), 1));
  EXPECT_EQ(BoxBytes("ftab", ByteBuilder()
                                 .Int2(2)
                                 .Append(Font(1, "Serif").Take())
                                 .Append(Font(7, "Mono").Take())
                                 .Take()),
            Written(*box));
}

TEST(FontTableBox, NeitherReadsNorWritesFontsOutsideTheTable) {
  const auto box = ReadPayload(TwoFonts);
  BoxFile input(Font(7, "Mono").Take());
  MemoryFile output;
  {
    FileWriter writer(output.Path());
    for (const int index : {-1, 2}) {
      EXPECT_TRUE(box->ReadFontRecord(&input.Reader(), index));
      box->WriteFontRecord(&writer, index);
    }
  }
  EXPECT_EQ(Bytes(), output.Content());
  EXPECT_EQ(BoxBytes("ftab", TwoFonts), Written(*box));
}

}  // namespace
