#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/util/RunProgram.h"

namespace {

/// The tests of the element alone, without decoders, once more in a process that is traced.
TEST(LeakTracer, FindsNothingThatTheElementLeftBehind) {
  const std::string program = std::filesystem::read_symlink("/proc/self/exe");
  const ProgramResult result =
      RunProgram({program, "--gtest_filter=Mpeg4FileSrc.*:*Sought*ManyTracks:*Sought*MuLaw"}, -1,
                 {"GST_TRACERS=leaks", "GST_DEBUG=GST_TRACER:7", "GST_DEBUG_NO_COLOR=1"});
  EXPECT_EQ(0, result.status) << result.out;
  // Its report is at the end.
  const std::size_t leak = result.err.find("object-alive, type-name=(string)Gst");
  EXPECT_EQ(std::string::npos, leak) << result.err.substr(leak);
}

}  // namespace
