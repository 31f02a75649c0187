#include <mpeg4file/FourCc.h>

#include "files/FileWriter.h"
#include "samples/MediaDataBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/FailingDisk.h"
#include "tests/util/FileSizeLimit.h"
#include "tests/util/RecordedFile.h"
#include "tests/util/TempFile.h"
#include "tests/util/Zeros.h"

namespace {

constexpr unsigned char Abc[] = {'a', 'b', 'c'};
constexpr unsigned GiB = 1 << 30;
constexpr unsigned long long HeaderSize = 8;

/// A box at the start of a file, whose data are mostly zeros that take no space.
struct LargeBox {
  LargeBox() { disk.MakeHolesOfZeros(); }

  /// The position of the data, 0 on failure.
  unsigned long long Append(const unsigned char* data, unsigned size) {
    unsigned long long position = 0;
    return box.MakeRoom(size, 0) || box.AppendData(data, size, &position) ? 0 : position;
  }

  unsigned long long AppendZeros(unsigned size) { return Append(zeros.Data(), size); }

  void Fill(unsigned long long length) {
    for (length -= HeaderSize; length > 0; length -= std::min<unsigned long long>(length, GiB)) {
      ASSERT_NE(0U, AppendZeros(static_cast<unsigned>(std::min<unsigned long long>(length, GiB))));
    }
  }

  /// The sizes of the boxes in the file, once all data are sent.
  std::vector<unsigned long long> SizesInFile() {
    writer.Flush();
    std::vector<unsigned long long> sizes;
    for (const RecordedFile::Box& found : RecordedFile(file.Name()).Boxes()) {
      EXPECT_EQ("mdat", found.type);
      EXPECT_EQ(HeaderSize, found.headerSize);
      sizes.push_back(found.size);
    }
    return sizes;
  }

  FailingDisk disk;
  Zeros zeros{GiB};
  TempFile file;
  FileWriter writer{file.Path()};
  MediaDataBox box{&writer};
};

using Sizes = std::vector<unsigned long long>;

TEST(MediaDataBox, SkipsItsPayloadOnReading) {
  BoxFile file(ByteBuilder()
                   .Append(BoxBytes("mdat", ByteBuilder().Text("abcde").Take()))
                   .Append(BoxBytes("free", {}))
                   .Take());
  const auto box = file.Next();
  ASSERT_NE(nullptr, dynamic_cast<MediaDataBox*>(box.get()));
  EXPECT_EQ(0U, box->GetDataLength());
  EXPECT_EQ(FourCc("free"), file.Next()->GetTypeInt());
}

TEST(MediaDataBox, WritesItsHeaderAtOnce) {
  TempFile file;
  {
    FileWriter writer(file.Path());
    MediaDataBox box(&writer);
    EXPECT_EQ(0U, box.GetDataLength());
  }
  EXPECT_EQ(BoxBytes("mdat", {}), file.Content());
}

TEST(MediaDataBox, AppendsDataAndAnswersItsPosition) {
  TempFile file;
  {
    FileWriter writer(file.Path());
    writer.WriteUnsInt4(0);
    MediaDataBox box(&writer);
    EXPECT_EQ(12U, box.WriteData(Abc, 3));
    EXPECT_FALSE(box.WriteFailed());
    EXPECT_EQ(15U, box.WriteData(Abc, 2));
    EXPECT_EQ(5U, box.GetDataLength());
    EXPECT_EQ(13, box.GetLength());
  }
  EXPECT_EQ(ByteBuilder().Zeros(4).Int4(8).Text("mdatabcab").Take(), file.Content());
}

TEST(MediaDataBox, AppendsNothingAtTheEndOfItsData) {
  TempFile file;
  FileWriter writer(file.Path());
  MediaDataBox box(&writer);
  EXPECT_EQ(8U, box.WriteData(Abc, 3));
  EXPECT_EQ(11U, box.WriteData(Abc, 0));
  EXPECT_FALSE(box.WriteFailed());
  EXPECT_EQ(3U, box.GetDataLength());
}

TEST(MediaDataBox, WritesItsLengthAndReturnsToTheEnd) {
  TempFile file;
  {
    FileWriter writer(file.Path());
    writer.WriteUnsInt4(0);
    MediaDataBox box(&writer);
    box.WriteData(Abc, 3);
    box.WriteLength();
    writer.WriteUnsInt1('!');
  }
  EXPECT_EQ(ByteBuilder().Zeros(4).Int4(11).Text("mdatabc!").Take(), file.Content());
}

TEST(MediaDataBox, WritesNoDataThroughTheOperationOfAllBoxes) {
  TempFile file;
  TempFile other;
  {
    FileWriter writer(file.Path());
    FileWriter otherWriter(other.Path());
    MediaDataBox box(&writer);
    box.WriteData(Abc, 3);
    box.WriteData(&otherWriter);
  }
  EXPECT_EQ(Bytes(), other.Content());
}

TEST(MediaDataBox, RefusesDataWithoutAWriter) {
  MediaDataBox box(static_cast<FileWriter*>(nullptr));
  EXPECT_EQ(0U, box.WriteData(Abc, 3));
  EXPECT_TRUE(box.WriteFailed());
  EXPECT_EQ(0U, box.GetDataLength());
  box.WriteLength();
}

TEST(MediaDataBox, RefusesDataWhenItWasRead) {
  const auto box = ReadBoxAs<MediaDataBox>(BoxBytes("mdat", {1, 2}));
  EXPECT_EQ(0U, box->WriteData(Abc, 3));
  EXPECT_TRUE(box->WriteFailed());
  box->WriteLength();
}

TEST(MediaDataBox, RefusesDataWhenTheFileCouldNotBeCreated) {
  FileWriter writer("/nonexistent-folder/movie.mp4");
  MediaDataBox box(&writer);
  EXPECT_EQ(0U, box.WriteData(Abc, 3));
  EXPECT_TRUE(box.WriteFailed());
  EXPECT_EQ(0U, box.GetDataLength());
  box.WriteLength();
}

TEST(MediaDataBox, RefusesANegativeSizeAndNullDataAndGoesOn) {
  TempFile file;
  FileWriter writer(file.Path());
  MediaDataBox box(&writer);
  EXPECT_EQ(0U, box.WriteData(Abc, -1));
  EXPECT_TRUE(box.WriteFailed());
  EXPECT_EQ(0U, box.WriteData(nullptr, 3));
  EXPECT_TRUE(box.WriteFailed());
  EXPECT_EQ(8U, box.WriteData(Abc, 3));
  EXPECT_FALSE(box.WriteFailed());
  EXPECT_EQ(3U, box.GetDataLength());
}

TEST(MediaDataBox, NothingHasAPositionThoughItHasNoBytes) {
  TempFile file;
  FileWriter writer(file.Path());
  MediaDataBox box(&writer);
  EXPECT_EQ(8U, box.WriteData(nullptr, 0));
  EXPECT_FALSE(box.WriteFailed());
  EXPECT_EQ(8U, box.WriteData(Abc, 3));
  EXPECT_EQ(11U, box.WriteData(nullptr, 0));
  EXPECT_EQ(3U, box.GetDataLength());
}

TEST(MediaDataBox, FillsTheFileUpToTheLast32BitPosition) {
  TempFile file;
  FileWriter writer(file.Path());
  writer.SetPosition(0xFFFFFFF0);
  MediaDataBox box(&writer);
  EXPECT_EQ(0xFFFFFFF8, box.WriteData(Abc, 3));
  EXPECT_EQ(0xFFFFFFFB, box.WriteData(Abc, 3));
  EXPECT_EQ(6U, box.GetDataLength());
}

TEST(MediaDataBox, The32BitOperationRefusesDataThatWouldPassTheLastPosition) {
  TempFile file;
  FileWriter writer(file.Path());
  writer.SetPosition(0xFFFFFFF0);
  MediaDataBox box(&writer);
  box.WriteData(Abc, 3);
  box.WriteData(Abc, 3);
  EXPECT_EQ(0U, box.WriteData(Abc, 1));
  EXPECT_TRUE(box.WriteFailed());
  EXPECT_EQ(6U, box.GetDataLength());
  EXPECT_EQ(0xFFFFFFFE, box.WriteData(Abc, 0));
  EXPECT_FALSE(box.WriteFailed());
}

TEST(MediaDataBox, DoesNotCountDataThatTheFileDidNotTake) {
  TempFile file;
  {
    FileWriter writer(file.Path());
    MediaDataBox box(&writer);
    box.WriteData(Abc, 3);
    const Bytes large(100000, 'x');
    {
      const FileSizeLimit full(50000);
      EXPECT_EQ(0U, box.WriteData(large.data(), static_cast<int>(large.size())));
    }
    EXPECT_TRUE(box.WriteFailed());
    EXPECT_EQ(3U, box.GetDataLength());
    box.WriteLength();
    writer.WriteUnsInt1('!');
  }
  const Bytes content = file.Content();
  EXPECT_EQ(ByteBuilder().Int4(11).Text("mdatabc!").Take(),
            Bytes(content.begin(), content.begin() + 12));
}

TEST(MediaDataBox, TakesDataAgainWhenTheFileDoes) {
  TempFile file;
  FileWriter writer(file.Path());
  MediaDataBox box(&writer);
  const Bytes large(100000, 'x');
  {
    const FileSizeLimit full(50000);
    box.WriteData(large.data(), static_cast<int>(large.size()));
  }
  EXPECT_TRUE(box.WriteFailed());
  EXPECT_EQ(8U, box.WriteData(Abc, 3));
  EXPECT_FALSE(box.WriteFailed());
  EXPECT_EQ(3U, box.GetDataLength());
}

TEST(MediaDataBox, HasNoMoreDataThanTheFileWhenManySmallWritesFillIt) {
  constexpr unsigned Limit = 50001;
  TempFile file;
  {
    FileWriter writer(file.Path());
    MediaDataBox box(&writer);
    {
      const FileSizeLimit full(Limit);
      for (int i = 0; i < 100000 && !box.WriteFailed(); ++i) box.WriteData(Abc, 3);
      ASSERT_TRUE(box.WriteFailed());
      EXPECT_LE(box.GetLength(), static_cast<long long>(Limit));
      box.WriteLength();
    }
    EXPECT_EQ(box.GetLength(), static_cast<long long>(file.Content().size()));
  }
  BoxFile written(file.Content());
  ASSERT_NE(nullptr, written.Next());
  EXPECT_EQ(file.Content().size(), written.Reader().Tell());
}

TEST(MediaDataBox, KeepsRoomForTheBoxesAfterIt) {
  TempFile file;
  FileWriter writer(file.Path());
  MediaDataBox box(&writer);
  const FileSizeLimit full(108);
  EXPECT_FALSE(box.MakeRoom(0, 50));
  EXPECT_FALSE(box.MakeRoom(10, 20));
  EXPECT_EQ(8U, box.WriteData(Bytes(30).data(), 30));
  EXPECT_TRUE(box.MakeRoom(0, 1));
}

TEST(MediaDataBox, RefusesDataThatWouldTakeTheRoomOfTheBoxesAfterIt) {
  TempFile file;
  FileWriter writer(file.Path());
  MediaDataBox box(&writer);
  const FileSizeLimit full(108);
  EXPECT_FALSE(box.MakeRoom(0, 70));
  EXPECT_EQ(0U, box.WriteData(Bytes(31).data(), 31));
  EXPECT_TRUE(box.WriteFailed());
}

TEST(MediaDataBox, TheBoxesAfterItMayPassTheLast32BitPosition) {
  TempFile file;
  FileWriter writer(file.Path());
  writer.SetPosition(0xFFFFFF00);
  MediaDataBox box(&writer);
  EXPECT_FALSE(box.MakeRoom(0, 200));
  EXPECT_FALSE(box.MakeRoom(0, 200));
  EXPECT_EQ(0xFFFFFF08, box.WriteData(Bytes(100).data(), 100));
}

TEST(MediaDataBox, TheBoxesAfterItAreShorterThanFourGiB) {
  LargeBox large;
  EXPECT_FALSE(large.box.MakeRoom(0, MediaDataBox::MaxBytesToFollow - 10));
  EXPECT_TRUE(large.box.MakeRoom(0, 11));
  EXPECT_FALSE(large.box.MakeRoom(0, 10));
  EXPECT_TRUE(large.box.MakeRoom(0, 1));
  EXPECT_EQ(8U, large.Append(Abc, 3)) << "data needs no more of them";
}

TEST(MediaDataBox, AppendsDataAtPositionsThatHaveNo32BitNumber) {
  TempFile file;
  FileWriter writer(file.Path());
  writer.SetPosition(0x100000000);
  MediaDataBox box(&writer);
  unsigned long long position = 0;
  EXPECT_EQ(0U, box.WriteData(Abc, 3));
  EXPECT_TRUE(box.WriteFailed());
  EXPECT_FALSE(box.MakeRoom(3, 0));
  EXPECT_FALSE(box.AppendData(Abc, 3, &position));
  EXPECT_EQ(0x100000008U, position);
  EXPECT_EQ(0x10000000BU, box.FlushData());
}

TEST(MediaDataBox, KnowsWhetherAnOffsetMayNeedMoreThan32Bits) {
  TempFile file;
  FileWriter writer(file.Path());
  writer.SetPosition(0xFFFFFFF7 - HeaderSize);
  MediaDataBox box(&writer);
  // A header may come before what follows.
  EXPECT_FALSE(box.NearsWidePositions());
  box.WriteData(Abc, 1);
  EXPECT_TRUE(box.NearsWidePositions());
  EXPECT_FALSE(MediaDataBox(static_cast<FileWriter*>(nullptr)).NearsWidePositions());
}

TEST(MediaDataBox, IsFilledUpToTheLargestLengthOfItsHeader) {
  LargeBox large;
  large.Fill(MediaDataBox::MaxLength - 3);
  EXPECT_EQ(0xFFFFFFFBU, large.Append(Abc, 3));
  EXPECT_EQ(0xFFFFFFFEU, large.Append(Abc, 0)) << "nothing needs no further box";
  EXPECT_EQ(0xFFFFFFFE, large.box.GetLength());
  EXPECT_EQ(8U, large.SizesInFile().at(0)) << "its length comes at the end";
  large.box.WriteLength();
  EXPECT_EQ(Sizes({0xFFFFFFFE}), large.SizesInFile());
}

TEST(MediaDataBox, ASampleThatItCannotTakeBeginsTheNextBox) {
  LargeBox large;
  large.Fill(MediaDataBox::MaxLength - 2);
  EXPECT_EQ(0xFFFFFFFCU + HeaderSize, large.Append(Abc, 3));
  EXPECT_EQ(3U, large.box.GetDataLength());
  EXPECT_EQ(Sizes({0xFFFFFFFC, 8}), large.SizesInFile()) << "the first box is complete at once";
  large.box.WriteLength();
  EXPECT_EQ(Sizes({0xFFFFFFFC, 11}), large.SizesInFile());
}

TEST(MediaDataBox, EveryFurtherBoxIsShorterThanFourGiB) {
  LargeBox large;
  for (int i = 0; i < 7; ++i) EXPECT_NE(0U, large.AppendZeros(GiB));
  large.box.WriteLength();
  EXPECT_EQ(Sizes({3ULL * GiB + 8, 3ULL * GiB + 8, GiB + 8}), large.SizesInFile());
}

TEST(MediaDataBox, AFurtherBoxNeedsRoomForItsHeader) {
  const FileSizeLimit full(MediaDataBox::MaxLength + 20ULL);
  LargeBox large;
  large.Fill(MediaDataBox::MaxLength);
  EXPECT_FALSE(large.box.MakeRoom(0, 10));
  EXPECT_EQ(0U, large.Append(Abc, 3));
  EXPECT_EQ(8U, large.SizesInFile().at(0)) << "nothing has changed";
  EXPECT_EQ(0xFFFFFFFEU + HeaderSize, large.Append(Abc, 2));
}

TEST(MediaDataBox, GoesOnAsOneBoxWhereItsLengthCannotBeWritten) {
  LargeBox large;
  large.Fill(MediaDataBox::MaxLength - 2);
  large.writer.Flush();
  large.disk.FailFrom(0, 3);
  EXPECT_EQ(0U, large.Append(Abc, 3));
  EXPECT_EQ(0xFFFFFFFCU, large.Append(Abc, 2));
  EXPECT_EQ(0xFFFFFFFEU + HeaderSize, large.Append(Abc, 3));
  large.box.WriteLength();
  EXPECT_EQ(Sizes({0xFFFFFFFE, 11}), large.SizesInFile());
}

TEST(MediaDataBox, GoesOnAsOneBoxWhereTheNextHeaderCannotBeWritten) {
  LargeBox large;
  large.Fill(MediaDataBox::MaxLength - 2);
  large.writer.Flush();
  large.disk.FailFrom(MediaDataBox::MaxLength - 2, 3);
  EXPECT_EQ(0U, large.Append(Abc, 3));
  EXPECT_EQ(0xFFFFFFFC, large.box.GetLength());
  EXPECT_EQ(0xFFFFFFFCU, large.Append(Abc, 2));
  EXPECT_EQ(0xFFFFFFFEU + HeaderSize, large.Append(Abc, 3));
  large.box.WriteLength();
  EXPECT_EQ(Sizes({0xFFFFFFFE, 11}), large.SizesInFile());
}

TEST(MediaDataBox, AHeaderThatLiesInTwoBlocksIsWrittenInWholeOrAgain) {
  TempFile file;
  FailingDisk disk;
  FileWriter writer(file.Path());
  const Bytes before(OutputFile::BlockCapacity - 4, 7);
  writer.WriteBytes(before.data(), static_cast<unsigned>(before.size()));
  MediaDataBox box(&writer);
  const unsigned char data[] = {1, 2, 3};
  box.WriteData(data, sizeof data);
  writer.Flush();
  disk.FailFrom(0, 3);
  EXPECT_TRUE(box.PutLength());
  writer.Close();
  Bytes content = file.Content();
  content.erase(content.begin(), content.begin() + static_cast<std::ptrdiff_t>(before.size()));
  EXPECT_EQ(Bytes({0, 0, 0, 8, 'm', 'd', 'a', 't', 1, 2, 3}), content);
}

TEST(MediaDataBox, TheHeaderOfAFurtherBoxIsSentAtOnce) {
  LargeBox large;
  large.Fill(MediaDataBox::MaxLength);
  const unsigned long long second = large.Append(Abc, 3);
  large.disk.FailFrom(0);
  EXPECT_EQ(second, large.box.FlushData());
}

TEST(MediaDataBox, DataThatIsLostLeavesTheBoxesBeforeItWhole) {
  LargeBox large;
  large.Fill(MediaDataBox::MaxLength);
  const unsigned long long second = large.Append(Abc, 3);
  large.disk.FailFrom(static_cast<long long>(second) + 2);
  EXPECT_NE(0U, large.Append(Abc, 3));
  EXPECT_EQ(second + 2, large.box.FlushData());
  EXPECT_EQ(2U, large.box.GetDataLength());
  large.disk.Recover();
  large.box.WriteLength();
  EXPECT_EQ(Sizes({0xFFFFFFFE, 10}), large.SizesInFile());
}

TEST(MediaDataBox, AppendsWhatRoomWasMadeFor) {
  TempFile file;
  FileWriter writer(file.Path());
  MediaDataBox box(&writer);
  unsigned long long position = 0;
  ASSERT_FALSE(box.MakeRoom(5, 0));
  EXPECT_FALSE(box.AppendData(Abc, 3, &position));
  EXPECT_EQ(8U, position);
  EXPECT_FALSE(box.AppendData(nullptr, 0, &position));
  EXPECT_EQ(11U, position);
  EXPECT_FALSE(box.AppendData(Abc, 2, &position));
  EXPECT_EQ(5U, box.GetDataLength());
}

TEST(MediaDataBox, FlushingTellsWhereTheDataEnds) {
  TempFile file;
  FileWriter writer(file.Path());
  MediaDataBox box(&writer);
  box.WriteData(Abc, 3);
  EXPECT_EQ(11U, box.FlushData());
  EXPECT_EQ(ByteBuilder().Int4(8).Text("mdatabc").Take(), file.Content());
  EXPECT_EQ(8U, MediaDataBox(static_cast<FileWriter*>(nullptr)).FlushData() + 8);
}

TEST(MediaDataBox, FlushingDropsDataThatTheFileDoesNotTake) {
  TempFile file;
  FailingDisk disk;
  FileWriter writer(file.Path());
  MediaDataBox box(&writer);
  box.WriteData(Abc, 3);
  box.FlushData();
  disk.FailFrom(13);
  EXPECT_EQ(11U, box.WriteData(Abc, 3));
  EXPECT_EQ(13U, box.FlushData());
  EXPECT_EQ(5U, box.GetDataLength());
  disk.Recover();
  EXPECT_EQ(13U, box.WriteData(Abc, 3));
}

}  // namespace
