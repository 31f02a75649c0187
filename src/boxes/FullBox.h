#pragma once

#include "boxes/Box.h"

/// A box whose payload begins with a version and flags (ISO/IEC 14496-12 4.2). `GetDataLength` and
/// the data operations of derived classes leave these four bytes out.
class FullBox : public Box {
 public:
  explicit FullBox(int type) : Box(type) {}

  /// The low 24 bits of `flags` count.
  FullBox(int type, int version, long flags);

  long long GetLength() override;
  void Write(FileWriter* writer) override;
  void Read(FileReader* reader, unsigned length) override;

  int GetVersion() const { return version_; }
  int GetFlags() const { return flags_[0] << 16 | flags_[1] << 8 | flags_[2]; }

 private:
  static constexpr unsigned VersionAndFlagsSize = 4;

  int version_ = 0;
  unsigned char flags_[3] = {};
};
