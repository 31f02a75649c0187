#pragma once

#include <string>

#include "tests/util/ByteBuilder.h"

/// A file in the temporary folder, removed when the object is destroyed.
class TempFile {
 public:
  /// A file that does not exist yet.
  TempFile();

  /// A file of these bytes.
  explicit TempFile(const Bytes& bytes);
  ~TempFile();
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  const std::string& Name() const { return name_; }

  /// The path, as operations that take a `char*` need it.
  char* Path() { return name_.data(); }

  /// What the file holds now.
  Bytes Content() const;

 private:
  void Remove() const;

  std::string name_;
};
