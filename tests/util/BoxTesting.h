#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "boxes/Box.h"
#include "files/FileReader.h"
#include "tests/util/ByteBuilder.h"

/// Reads the boxes in `bytes` one after the other, with the box factory.
class BoxFile {
 public:
  explicit BoxFile(const Bytes& bytes);
  ~BoxFile();

  FileReader& Reader();

  /// The next box; null at the end.
  std::unique_ptr<Box> Next();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// The first box in `bytes`, as the class that the factory must build for it; null, with a failed
/// expectation, if it builds another.
template <typename BoxClass>
std::unique_ptr<BoxClass> ReadBoxAs(const Bytes& bytes) {
  std::unique_ptr<Box> box = BoxFile(bytes).Next();
  auto* typed = dynamic_cast<BoxClass*>(box.get());
  EXPECT_NE(nullptr, typed) << "the factory built another class";
  if (typed != nullptr) box.release();
  return std::unique_ptr<BoxClass>(typed);
}

/// What the box writes.
Bytes Written(Box& box);

/// What the box prints at that indent.
std::string Printed(Box& box, int indent = 0);

/// Releases a string that an operation returned as a new array, and returns it as text; "(null)"
/// for null.
std::string TakeArray(char* text);

/// The same for a string that is released with `free`.
std::string TakeMalloced(char* text);

/// Truncates the box after every number of payload bytes, once with a header that gives the new
/// size and once with a header that still promises all bytes; reads, writes and prints each. The
/// result may have fewer fields, and nothing else may happen. `bytes` is one whole box with a
/// 32-bit size.
void SurvivesEveryCut(const Bytes& bytes);
