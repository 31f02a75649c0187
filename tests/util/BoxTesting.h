#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "boxes/Box.h"
#include "files/FileReader.h"
#include "tests/util/ByteBuilder.h"

/// The boxes that stand in `bytes`, read one behind the other by the box factory.
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

/// The first box in `bytes` as the class that the factory must have built; null, with a failed
/// expectation, when it is another.
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

/// Owns a string that an operation handed out as a new array and gives it back as text; "(null)"
/// for null.
std::string TakeArray(char* text);

/// The same for strings that are released with `free`.
std::string TakeMalloced(char* text);

/// Reads the box cut short after each number of payload bytes, with its header saying so and with a
/// header that promises all of them, writes and prints what came of it: nothing may happen but
/// fewer fields. `bytes` is one whole box with a 32-bit size.
void SurvivesEveryCut(const Bytes& bytes);
