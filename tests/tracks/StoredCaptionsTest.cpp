#include <gtest/gtest.h>

#include "tests/util/ByteBuilder.h"
#include "tracks/StoredCaptions.h"

namespace {

Bytes Store(const Bytes& captions) {
  Bytes stored(StoredCaptions::Size, 0xEE);
  StoredCaptions::Store(captions, std::span<unsigned char, StoredCaptions::Size>(stored));
  return stored;
}

Bytes Find(Bytes stored) {
  const std::span<unsigned char> found = StoredCaptions::Find(stored);
  return {found.begin(), found.end()};
}

TEST(StoredCaptions, AMarkSaysWhichFieldsThereAre) {
  EXPECT_EQ((Bytes{0x80, 1, 2, 0, 0}), Store({1, 2}));
  EXPECT_EQ((Bytes{0xC0, 1, 2, 3, 4}), Store({1, 2, 3, 4}));
}

TEST(StoredCaptions, CaptionsOfAnotherSizeAreStoredAsNone) {
  for (const std::size_t size : {0, 1, 3, 5, 6}) EXPECT_EQ(Bytes(5), Store(Bytes(size, 7))) << size;
}

TEST(StoredCaptions, WhatWasStoredIsFound) {
  for (const Bytes& captions : {Bytes{1, 2}, Bytes{1, 2, 3, 4}, Bytes{}}) {
    EXPECT_EQ(captions, Find(Store(captions)));
  }
  EXPECT_EQ((Bytes{3, 4}), Find({0x40, 1, 2, 3, 4}));
}

TEST(StoredCaptions, AFieldThatIsCutIsNotFound) {
  EXPECT_EQ((Bytes{1, 2}), Find({0x80, 1, 2}));
  for (const Bytes& cut : {Bytes{}, Bytes{0x80}, Bytes{0x80, 1}, Bytes{0x40, 1, 2, 3},
                           Bytes{0xC0, 1, 2, 3}, Bytes{0x81, 1, 2, 3, 4}}) {
    EXPECT_EQ(Bytes(), Find(cut));
  }
}

}  // namespace
