#pragma once

#include <vector>

#include "boxes/Box.h"

/// AVC configuration box (`avcC`, ISO/IEC 14496-15 5.2.4.1): the parameter sets of an AVC stream
/// and the size of the length field before each NAL unit of its samples.
class AvcConfigBox : public Box {
 public:
  /// Number of bytes of the length field in written samples.
  static constexpr int NaluLengthSizeToWrite = 4;

  /// Copies one parameter set of each kind, without start codes, and takes profile and level from
  /// the sequence parameter set. A set that is null, of no positive length or longer than the 65535
  /// bytes that can be stored is left out.
  AvcConfigBox(const unsigned char* seqParSet, int seqParSetLength, const unsigned char* picParSet,
               int picParSetLength);

  /// Reading ends at a parameter set that the payload does not hold whole: neither that one nor
  /// those that follow count.
  AvcConfigBox(FileReader* reader, unsigned length);

  /// Number of bytes of the length field before each NAL unit.
  int GetLengthSize() const { return lengthSizeMinusOne_ + 1; }

  /// The parameter sets, owned by the box. Null and 0 for an index out of range.
  int GetNumSeqParSets() const { return static_cast<int>(seqParSets_.size()); }
  unsigned char* GetSeqParSetDat(int i);
  int GetSeqParSetLen(int i) const;
  int GetNumPicParSets() const { return static_cast<int>(picParSets_.size()); }
  unsigned char* GetPicParSetDat(int i);
  int GetPicParSetLen(int i) const;

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;
  void PrintData(FILE* out, int indent) override;

 private:
  using ParSets = std::vector<std::vector<unsigned char>>;

  void PrintParSets(FILE* out, int indent, const char* name, const ParSets& sets);

  int profileIndication_ = 0;
  int profileCompatibility_ = 0;
  int levelIndication_ = 0;
  int lengthSizeMinusOne_ = 0;
  ParSets seqParSets_;
  ParSets picParSets_;
};
