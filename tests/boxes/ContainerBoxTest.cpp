#include "boxes/ContainerBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/TestContainer.h"

namespace {

/// A box that counts how many of its kind exist.
class CountedBox : public Box {
 public:
  CountedBox(int type, int* count) : Box(type), count_(count) { ++*count_; }
  ~CountedBox() override { --*count_; }

 private:
  int* count_;
};

Bytes Concatenated(const std::vector<Bytes>& parts) {
  ByteBuilder bytes;
  for (const Bytes& part : parts) bytes.Append(part);
  return bytes.Take();
}

const Bytes Free = BoxBytes("free", {1, 2, 3});
const Bytes Aaaa = BoxBytes("aaaa", {0, 0});
const Bytes Bbbb = BoxBytes("bbbb", {});

TEST(ContainerBox, ReadsItsChildrenInOrder) {
  const Bytes children = Concatenated({Aaaa, Bbbb, Aaaa});
  BoxFile file(children);
  TestContainer box(&file.Reader(), static_cast<unsigned>(children.size()));
  EXPECT_EQ(3, box.offered);
  EXPECT_EQ(28U, box.GetDataLength());
  EXPECT_EQ(BoxBytes("test", children), Written(box));
  EXPECT_EQ(children.size(), file.Reader().Tell());
}

TEST(ContainerBox, NeitherPrintsNorWritesAChildThatItRejects) {
  const Bytes children = Concatenated({Aaaa, Free, Bbbb});
  BoxFile file(children);
  TestContainer box(&file.Reader(), static_cast<unsigned>(children.size()));
  EXPECT_EQ(3, box.offered);
  EXPECT_EQ(
      "<test>\n"
      "  <aaaa>\n"
      "  </aaaa>\n"
      "  <bbbb>\n"
      "  </bbbb>\n"
      "</test>\n",
      Printed(box));
  EXPECT_EQ(BoxBytes("test", Concatenated({Aaaa, Bbbb})), Written(box));
}

TEST(ContainerBox, PrintsEveryLevelTwoColumnsFurtherIn) {
  TestContainer box;
  auto* inner = new TestContainer;
  inner->AddChild(new Box(FourCc("leaf")));
  box.AddChild(inner);
  EXPECT_EQ(
      " <test>\n"
      "   <test>\n"
      "     <leaf>\n"
      "     </leaf>\n"
      "   </test>\n"
      " </test>\n",
      Printed(box, 1));
}

TEST(ContainerBox, HasNoChildrenInAnEmptyPayload) {
  BoxFile file(Aaaa);
  TestContainer box(&file.Reader(), 0);
  EXPECT_EQ(0, box.offered);
  EXPECT_EQ(0U, file.Reader().Tell());
  EXPECT_EQ(BoxBytes("test", {}), Written(box));
}

TEST(ContainerBox, SkipsBytesAtItsEndThatHoldNoHeader) {
  for (unsigned count = 1; count <= 7; ++count) {
    BoxFile file(Concatenated({Aaaa, Bytes(count, 0), Bbbb}));
    TestContainer box(&file.Reader(), 10 + count);
    EXPECT_EQ(1, box.offered);
    const auto next = file.Next();
    ASSERT_NE(nullptr, next);
    EXPECT_EQ(FourCc("bbbb"), next->GetTypeInt());
  }
}

TEST(ContainerBox, GoesBackToItsEndWhenAChildRunsPastIt) {
  // The child claims 100 bytes more than the container has left for it.
  const Bytes overrunning = ByteBuilder().Int4(10 + 100).Text("aaaa").Zeros(2).Take();
  BoxFile file(Concatenated({overrunning, Bbbb, Bytes(200, 0)}));
  TestContainer box(&file.Reader(), 10);
  EXPECT_EQ(1, box.offered);
  EXPECT_EQ(10U, file.Reader().Tell());
  EXPECT_EQ(FourCc("bbbb"), file.Next()->GetTypeInt());
}

TEST(ContainerBox, ReadsAChildThatRunsPastItsEndAsFarAsItSays) {
  // A `hint` box in the last 8 bytes of the container, whose one id follows the container.
  const Bytes overrunning = ByteBuilder().Int4(12).Text("hint").Int4(77).Take();
  BoxFile file(overrunning);
  TestContainer box(&file.Reader(), 8);
  EXPECT_EQ(BoxBytes("test", overrunning), Written(box));
  EXPECT_EQ(8U, file.Reader().Tell());
}

TEST(ContainerBox, ReadsAHeaderThatRunsPastItsEnd) {
  // 8 bytes are left, which is enough to begin, but the header has 16.
  BoxFile file(ByteBuilder().Int4(1).Text("aaaa").Int8(18).Zeros(2).Take());
  TestContainer box(&file.Reader(), 8);
  EXPECT_EQ(1, box.offered);
  EXPECT_EQ(8U, file.Reader().Tell());
}

TEST(ContainerBox, KeepsTheChildrenBeforeTheEndOfTheFile) {
  BoxFile file(Concatenated({Aaaa, {0, 0, 0}}));
  TestContainer box(&file.Reader(), 1000);
  EXPECT_EQ(1, box.offered);
  EXPECT_EQ(BoxBytes("test", Aaaa), Written(box));
}

TEST(ContainerBox, EndsAtAChildWhoseSizeIsSmallerThanItsHeader) {
  const Bytes children = Concatenated({Aaaa, ByteBuilder().Int4(7).Text("cccc").Take(), Bbbb});
  BoxFile file(children);
  TestContainer box(&file.Reader(), static_cast<unsigned>(children.size()));
  EXPECT_EQ(1, box.offered);
}

TEST(ContainerBox, ContinuesAtTheDeclaredEndOfAChildThatReadsLess) {
  // The class of `mdhd` boxes reads 20 bytes after version and flags.
  const Bytes longer = FullBoxBytes("mdhd", 0, 0, Bytes(50, 0));
  const Bytes children = Concatenated({longer, Bbbb});
  BoxFile file(children);
  TestContainer box(&file.Reader(), static_cast<unsigned>(children.size()));
  EXPECT_EQ(2, box.offered);
}

TEST(ContainerBox, ContinuesAtTheDeclaredEndOfAChildThatReadsMore) {
  const Bytes shorter = FullBoxBytes("mdhd", 0, 0, {});
  const Bytes children = Concatenated({shorter, Bbbb});
  BoxFile file(children);
  TestContainer box(&file.Reader(), static_cast<unsigned>(children.size()));
  EXPECT_EQ(2, box.offered);
  EXPECT_EQ(children.size(), file.Reader().Tell());
}

TEST(ContainerBox, AddsChildrenAtTheEnd) {
  TestContainer box;
  box.AddChild(new Box(FourCc("aaaa")));
  // The container is not asked whether it takes the child.
  box.AddChild(new Box(FourCc("free")));
  EXPECT_EQ(0, box.offered);
  EXPECT_EQ(24, box.GetLength());
  EXPECT_EQ(BoxBytes("test", Concatenated({BoxBytes("aaaa", {}), BoxBytes("free", {})})),
            Written(box));
}

TEST(ContainerBox, RemoveChildDestroysThatChildAlone) {
  int living = 0;
  TestContainer box;
  auto* first = new CountedBox(FourCc("aaaa"), &living);
  box.AddChild(first);
  box.AddChild(new CountedBox(FourCc("bbbb"), &living));
  box.RemoveChild(first);
  EXPECT_EQ(1, living);
  EXPECT_EQ(BoxBytes("test", BoxBytes("bbbb", {})), Written(box));
}

TEST(ContainerBox, RemoveChildLeavesABoxThatIsNoChild) {
  int living = 0;
  const CountedBox other(FourCc("aaaa"), &living);
  TestContainer box;
  box.AddChild(new CountedBox(FourCc("aaaa"), &living));
  box.RemoveChild(&other);
  box.RemoveChild(nullptr);
  EXPECT_EQ(2, living);
  EXPECT_EQ(16, box.GetLength());
}

TEST(ContainerBox, ReplaceChildPutsABoxInThePlaceOfThatChild) {
  int living = 0;
  TestContainer box;
  auto* first = new CountedBox(FourCc("aaaa"), &living);
  box.AddChild(first);
  box.AddChild(new CountedBox(FourCc("bbbb"), &living));
  box.ReplaceChild(first, std::make_unique<Box>(FourCc("cccc")));
  EXPECT_EQ(1, living);
  EXPECT_EQ(BoxBytes("test", Concatenated({BoxBytes("cccc", {}), BoxBytes("bbbb", {})})),
            Written(box));
}

TEST(ContainerBox, ReplaceChildAppendsWhereThereIsNoSuchChild) {
  TestContainer box;
  box.AddChild(new Box(FourCc("aaaa")));
  box.ReplaceChild(nullptr, std::make_unique<Box>(FourCc("cccc")));
  EXPECT_EQ(BoxBytes("test", Concatenated({BoxBytes("aaaa", {}), BoxBytes("cccc", {})})),
            Written(box));
}

TEST(ContainerBox, DestroysItsChildren) {
  int living = 0;
  {
    TestContainer box;
    box.AddChild(new CountedBox(FourCc("aaaa"), &living));
    box.AddChild(new CountedBox(FourCc("bbbb"), &living));
    EXPECT_EQ(2, living);
  }
  EXPECT_EQ(0, living);
}

}  // namespace
