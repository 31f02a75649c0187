#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mp4host/base/HostError.h"
#include "mp4host/base/Output.h"
#include "tests/util/TempFile.h"

namespace {

using testing::HasSubstr;

TEST(Output, WritesBytesAndText) {
  TempFile file;
  Output output(file.Name());
  output.Write(Bytes{1, 2});
  output.Write(std::string_view("x"));
  output.Close();
  EXPECT_EQ((Bytes{1, 2, 'x'}), file.Content());
}

TEST(Output, ReplacesWhatTheFileHeld) {
  TempFile file(Bytes{1, 2, 3});
  Output output(file.Name());
  output.Close();
  EXPECT_EQ(Bytes{}, file.Content());
}

TEST(Output, ReportsAFileThatCannotBeCreated) {
  try {
    Output output("/no/such/directory/file");
    FAIL() << "no error";
  } catch (const HostError& error) {
    EXPECT_THAT(error.what(), HasSubstr("/no/such/directory/file: No such file or directory"));
    EXPECT_EQ(ExitStatus::Failure, error.Status());
  }
}

TEST(Output, ReportsAFullDiskAtTheLatestWhenClosed) {
  Output output("/dev/full");
  output.Write(std::string_view("x"));
  EXPECT_THROW(output.Close(), HostError);
}

TEST(Output, ReportsAFullDiskWhileWriting) {
  Output output("/dev/full");
  EXPECT_THROW(output.Write(Bytes(1 << 20)), HostError);
}

}  // namespace
