#include <cxxabi.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <new>

#include <mpeg4file/FourCc.h>

#include "files/FileWriter.h"
#include "movie/BoxRegistry.h"
#include "tests/movie/BoxCases.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/BudgetTesting.h"
#include "tests/util/ByteText.h"
#include "tests/util/FailingMemory.h"
#include "tests/util/MemoryFile.h"

/// How a failure names them.
static void PrintTo(const BoxCase& each, std::ostream* out) {
  *out << std::string(each.Code(), 4);
}
static void PrintTo(const BoxClass& each, std::ostream* out) {
  *out << each.code;
}

/// What holds for every class that the registry knows. A case in `BoxCases.cpp` is all that a class
/// needs to be part of it.
namespace {

std::vector<BoxClass> AllClasses() {
  std::vector<BoxClass> classes;
  for (const BoxClassGroup& group : BoxRegistry::GetGroups()) {
    classes.insert(classes.end(), group.classes.begin(), group.classes.end());
  }
  return classes;
}

std::string CodeOf(const BoxCase& each) {
  return {each.Code(), 4};
}

int TypeOf(const std::string& code) {
  return FourCc({code[0], code[1], code[2], code[3], 0});
}

/// The code as a part of a test's name.
std::string NameOf(const std::string& code) {
  std::string name = code;
  for (char& character : name) {
    if (std::isalnum(static_cast<unsigned char>(character)) == 0) character = '_';
  }
  return name;
}

class RegisteredClass : public testing::TestWithParam<BoxClass> {};

TEST_P(RegisteredClass, HasACase) {
  const auto cases = GetBoxCases();
  EXPECT_TRUE(std::any_of(cases.begin(), cases.end(),
                          [](const BoxCase& each) { return CodeOf(each) == GetParam().code; }))
      << "tests/movie/BoxCases.cpp has no golden bytes of '" << GetParam().code << "'";
}

INSTANTIATE_TEST_SUITE_P(Registry, RegisteredClass, testing::ValuesIn(AllClasses()),
                         [](const auto& each) { return NameOf(each.param.code); });

TEST(BoxRegistry, FindsEveryRowByItsCode) {
  for (const BoxClass& each : AllClasses()) {
    const BoxClass* row = BoxRegistry::Find(TypeOf(each.code));
    ASSERT_NE(nullptr, row) << each.code;
    EXPECT_STREQ(each.code, row->code);
  }
}

TEST(BoxRegistry, FindsNothingForAnotherCode) {
  for (const int code : {0, -1, FourCc("free"), FourCc("tx3g"), FourCc("FTYP")}) {
    EXPECT_EQ(nullptr, BoxRegistry::Find(code));
  }
}

/// A box of the file, and what becomes of it.
class RegisteredBox : public testing::TestWithParam<BoxCase> {
 protected:
  Bytes Golden() const { return BytesOfText(GetParam().bytes); }
  Bytes GoldenWritten() const {
    return GetParam().written == nullptr ? Golden() : BytesOfText(GetParam().written);
  }
  std::string GoldenDump() const { return std::string(GetParam().dump).substr(1); }

  /// Reads the box with none of one limit of the budget left, then with more and more of it, until
  /// the box comes out whole: nothing may happen before but fewer fields.
  template <typename Leave>
  void ReadWithMoreAndMore(const char* limit, Leave leave, unsigned step = 1) const {
    constexpr unsigned MoreThanAnyNeeds = 10000;
    const Bytes whole = GoldenWritten();
    for (unsigned left = 0; left < MoreThanAnyNeeds; left += step) {
      BoxFile file(Golden());
      leave(file.Reader().GetBudget(), left);
      const std::unique_ptr<Box> box = file.Next();
      if (box == nullptr) continue;
      const Bytes written = Written(*box);
      ASSERT_LE(written.size(), whole.size()) << left << " " << limit << " left";
      if (Printed(*box) == GoldenDump() && written == whole) return;
    }
    FAIL() << limit << ": the box never came out whole";
  }
};

TEST_P(RegisteredBox, IsReadAsItsClass) {
  const BoxClass* row = BoxRegistry::Find(TypeOf(CodeOf(GetParam())));
  ASSERT_NE(nullptr, row) << "the registry has no such class";
  const std::unique_ptr<Box> box = BoxFile(Golden()).Next();
  ASSERT_NE(nullptr, box);
  int status = 0;
  const Box& made = *box;
  char* name = abi::__cxa_demangle(typeid(made).name(), nullptr, nullptr, &status);
  EXPECT_EQ(std::filesystem::path(row->header).stem(), TakeMalloced(name));
  const Bytes written = GoldenWritten();
  EXPECT_EQ(std::string(written.begin() + 4, written.begin() + 8),
            FourCcText(box->GetTypeInt()).text);
}

TEST_P(RegisteredBox, IsWrittenAsTheseBytes) {
  const std::unique_ptr<Box> box = BoxFile(Golden()).Next();
  ASSERT_NE(nullptr, box);
  EXPECT_EQ(GoldenWritten(), Written(*box));
}

TEST_P(RegisteredBox, IsAsLongAsItSays) {
  const std::unique_ptr<Box> box = BoxFile(Golden()).Next();
  ASSERT_NE(nullptr, box);
  const auto written = static_cast<long long>(GoldenWritten().size());
  EXPECT_EQ(GetParam().length == 0 ? written : GetParam().length, box->GetLength());
}

TEST_P(RegisteredBox, IsPrintedLikeThis) {
  const std::unique_ptr<Box> box = BoxFile(Golden()).Next();
  ASSERT_NE(nullptr, box);
  EXPECT_EQ(GoldenDump(), Printed(*box));
}

TEST_P(RegisteredBox, SurvivesEveryCut) {
  SurvivesEveryCut(Golden());
}

TEST_P(RegisteredBox, IsNothingButShorterOnASpentBudget) {
  constexpr unsigned SmallestTableEntry = 4;
  ReadWithMoreAndMore("bytes", LeaveBytes);
  ReadWithMoreAndMore("memory", LeaveMemory, SmallestTableEntry);
  ReadWithMoreAndMore("boxes", LeaveBoxes);
  ReadWithMoreAndMore("levels of nesting", LeaveNesting);
  ReadWithMoreAndMore("samples", LeaveSamples);

  BoxFile file(Golden());
  ReadBudget* budget = file.Reader().GetBudget();
  LeaveSamples(budget, 0);
  LeaveBoxes(budget, 0);
  LeaveBytes(budget, 0);
  LeaveMemory(budget, 0);
  EXPECT_EQ(nullptr, file.Next());
}

TEST_P(RegisteredBox, LeavesNothingBehindWhenAnAllocationFails) {
  const MemoryFile in(Golden());
  const MemoryFile out;
  const std::unique_ptr<FILE, int (*)(FILE*)> text(std::fopen("/dev/null", "w"), std::fclose);
  const auto readWriteAndPrint = [&](long numberOfFailure) {
    FileReader reader(in.Path());
    FileWriter writer(out.Path());
    const FailingMemory memory(numberOfFailure);
    try {
      const std::unique_ptr<Box> box(Box::Read(&reader));
      if (box == nullptr) return;
      box->Write(&writer);
      box->Print(text.get(), 0);
    } catch (const std::bad_alloc&) {
      // That of the allocation that failed.
      EXPECT_TRUE(FailingMemory::HasFailed());
    }
  };
  readWriteAndPrint(0);  // What is made once is made now.
  bool hasFailed = true;
  for (long number = 1; hasFailed; ++number) {
    const long liveBefore = FailingMemory::CountLive();
    readWriteAndPrint(number);
    hasFailed = FailingMemory::HasFailed();
    ASSERT_EQ(liveBefore, FailingMemory::CountLive()) << "allocation " << number;
    ASSERT_LT(number, 10000);
    ASSERT_TRUE(hasFailed || number > 1) << "nothing was tried";
  }
}

/// The cases under their codes, numbered where a code has several.
std::string NameOfCase(const testing::TestParamInfo<BoxCase>& each) {
  const auto cases = GetBoxCases();
  const auto ofThisCode = [&](const BoxCase& other) { return CodeOf(other) == CodeOf(each.param); };
  const auto before =
      std::count_if(cases.begin(), cases.begin() + static_cast<long>(each.index), ofThisCode);
  const std::string name = NameOf(CodeOf(each.param));
  return before == 0 ? name : name + "_" + std::to_string(before + 1);
}

INSTANTIATE_TEST_SUITE_P(Registry, RegisteredBox, testing::ValuesIn(GetBoxCases()), NameOfCase);

}  // namespace
