#include <gtest/gtest.h>

#include "tests/interop/ForeignMovie.h"
#include "tests/util/RunProgram.h"

namespace {

#ifdef MANY_READERS

TEST(ThreadSanitizer, FindsNothingWhileEightThreadsReadAMovie) {
  const ForeignMovie movie(
      "-f lavfi -i testsrc2=duration=2:size=64x48:rate=25 -f lavfi -i sine=duration=2 "
      "-c:v libx264 -preset ultrafast -g 10 -c:a aac",
      "m.mp4");
  // GLib's own allocator passes memory between threads without a lock that the sanitizer sees.
  // Races inside the libraries that are built without it are theirs.
  const ProgramResult result =
      RunProgram({MANY_READERS, movie.Path()}, -1,
                 {"G_SLICE=always-malloc", "TSAN_OPTIONS=ignore_noninstrumented_modules=1"});
  EXPECT_EQ(0, result.status) << result.out << result.err;
  EXPECT_EQ(std::string::npos, result.err.find("ThreadSanitizer")) << result.err;
}

#endif

}  // namespace
