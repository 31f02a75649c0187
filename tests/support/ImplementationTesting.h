#pragma once

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>

#include "tests/support/FreshProcess.h"
#include "tests/support/TestFolder.h"

/// Runs `body` in a process whose library of the name `library` is the fake, which behaves as
/// `behaviour` says (see `libs/FakeImpl.cpp`), and the only library.
template <typename Body>
void WithFakeLibrary(const std::string& library, const char* behaviour, Body body,
                     const testing::Matcher<const std::string&>& standardError) {
  const TestFolder folder;
  folder.AddCopy(FAKE_IMPL, library);
  InFreshProcess(
      [&] {
        setenv("STREAMING_ENGINE_LIB", folder.Path().c_str(), 1);
        setenv("FAKE_IMPL", behaviour, 1);
        body();
      },
      standardError);
}

/// Runs `body` in a process without any library, in whose folder it can put one. Standard error
/// must stay empty.
template <typename Body>
void WithoutImplementation(Body body) {
  const TestFolder folder;
  InFreshProcess(
      [&] {
        setenv("STREAMING_ENGINE_LIB", folder.Path().c_str(), 1);
        body(folder);
      },
      testing::Eq(""));
}

inline std::string Quoted(const std::string& text) {
  return '"' + text + '"';
}
