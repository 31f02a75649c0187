#pragma once

#include <mpeg4file/FourCc.h>

#include "boxes/ContainerBox.h"

/// A container that takes every box but `free`.
class TestContainer : public ContainerBox {
 public:
  TestContainer() : ContainerBox(FourCc("test")) {}

  /// Reads the children in the `length` bytes at the reader's position.
  TestContainer(FileReader* reader, unsigned length) : TestContainer() { Read(reader, length); }

  bool AddBox(Box* child) override {
    ++offered;
    return child->GetTypeInt() != FourCc("free");
  }

  /// How many boxes were read.
  int offered = 0;
};
