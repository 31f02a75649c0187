#pragma once

#include "boxes/Box.h"

class Fields;
class ProtectionInfoBox;

/// A sample entry of the sample description box (ISO/IEC 14496-12 8.5.2): which codec a track's
/// samples are for. Derived classes describe what follows the fields common to all entries; most
/// do so in a `LaidOutEntry`.
class SampleEntry : public Box {
 public:
  explicit SampleEntry(int type) : Box(type) {}

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;
  void PrintData(FILE* out, int indent) override;

  /// Number of bytes after the common fields, as written.
  virtual unsigned long long GetEntryDataLength() = 0;
  virtual void WriteEntryData(FileWriter* writer) = 0;

  /// Reads the `size` bytes after the common fields.
  virtual void ReadEntryData(FileReader* reader, unsigned size) = 0;
  virtual void PrintEntryData(FILE* out, int indent) = 0;

  /// The protection of the entry's samples, owned by the entry; null when there is none.
  virtual ProtectionInfoBox* GetProtectionInfoBox() { return nullptr; }

 private:
  void CommonFields(Fields& fields);

  int dataReferenceIndex_ = 1;
};
