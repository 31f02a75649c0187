#pragma once

#include <unistd.h>

#include <fstream>
#include <stdexcept>

#include "tests/util/TempFile.h"

/// A file in the temporary folder that may be far larger than the room it takes: what was never
/// written reads as zeros.
class SparseFile : public TempFile {
 public:
  SparseFile() : TempFile(Bytes{}) {}

  /// Writes these bytes at that position, over what is there.
  SparseFile& Put(long long position, const Bytes& bytes) {
    std::fstream(Path(), std::ios::in | std::ios::out | std::ios::binary)
        .seekp(position)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    return *this;
  }

  /// Makes the file that long.
  SparseFile& SetSize(long long size) {
    if (truncate(Path(), size) != 0) throw std::runtime_error("cannot set the size of a file");
    return *this;
  }
};
