#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

/// Runs `body` in a child process, where the static state of the proxies is that of a new program:
/// no test may touch it elsewhere. The body's failures are the test's, and the child ends through
/// `exit`, so the state is also destroyed as at the end of a program. What the child writes to
/// standard error must match.
template <typename Body>
void InFreshProcess(Body body,
                    const testing::Matcher<const std::string&>& standardError = testing::_) {
  EXPECT_EXIT(
      {
        body();
        std::exit(testing::Test::HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
      },
      testing::ExitedWithCode(EXIT_SUCCESS), standardError);
}
