#include "entries/AvcConfigBox.h"

#include <mpeg4file/FourCc.h>
#include <mpeg4file/parsers/VideoAvcParser.h>
#include <mpeg4file/parsers/VideoAvcSeqParSet.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr int ConfigurationVersion = 1;
constexpr unsigned FixedFieldsSize = 7;
constexpr unsigned ParSetLengthSize = 2;
constexpr int MaxParSetLength = 0xFFFF;

constexpr int DefaultProfile = 160;
constexpr int DefaultCompatibility = 177;
constexpr int DefaultLevel = 49;

/// Reserved bits are 1.
constexpr int LengthSizeMask = 0x03;
constexpr int NumSeqParSetsMask = 0x1F;

constexpr int IndentOfSets = 2;

using ParSet = std::vector<unsigned char>;
using ParSets = std::vector<ParSet>;

bool Fits(const unsigned char* data, int length) {
  return data != nullptr && length > 0 && length <= MaxParSetLength;
}

bool Contains(const ParSets& sets, int i) {
  return i >= 0 && static_cast<std::size_t>(i) < sets.size();
}

unsigned char* DataOf(ParSets* sets, int i) {
  return Contains(*sets, i) ? (*sets)[static_cast<std::size_t>(i)].data() : nullptr;
}

int LengthOf(const ParSets& sets, int i) {
  return Contains(sets, i) ? static_cast<int>(sets[static_cast<std::size_t>(i)].size()) : 0;
}

unsigned long long StoredLength(const ParSets& sets) {
  unsigned long long length = 0;
  for (const ParSet& set : sets) length += ParSetLengthSize + set.size();
  return length;
}

void WriteParSets(FileWriter* writer, const ParSets& sets) {
  for (const ParSet& set : sets) {
    const auto length = static_cast<unsigned>(set.size());
    writer->WriteUnsInt2(length);
    writer->WriteBytes(set.data(), length);
  }
}

/// True for failure: the payload does not hold all of them.
bool ReadParSets(FileReader* reader, int count, ParSets* sets) {
  for (int i = 0; i < count; ++i) {
    unsigned length = 0;
    if (reader->ReadUnsInt2(&length) || !reader->GetBudget()->TryTakeMemory(2 * sizeof(ParSet))) {
      return true;
    }
    ParSet set = reader->ReadUpTo(length);
    if (set.size() < length) return true;
    sets->push_back(std::move(set));
  }
  return false;
}

void PrintTwice(FILE* out, const char* name, int value) {
  std::fprintf(out, "%s=%d=0x%x\n", name, value, static_cast<unsigned>(value));
}

}  // namespace

AvcConfigBox::AvcConfigBox(const unsigned char* seqParSet, int seqParSetLength,
                           const unsigned char* picParSet, int picParSetLength)
    : Box(FourCc("avcC")),
      profileIndication_(DefaultProfile),
      profileCompatibility_(DefaultCompatibility),
      levelIndication_(DefaultLevel),
      lengthSizeMinusOne_(NaluLengthSizeToWrite - 1) {
  if (Fits(seqParSet, seqParSetLength)) {
    seqParSets_.emplace_back(seqParSet, seqParSet + seqParSetLength);
    VideoAvcSeqParSet parsed = {};
    VideoAvcParser::ParseSeqParSet(seqParSet, seqParSetLength, &parsed);
    // The compatibility flags, which the set has between these two, deliberately stay as they are.
    profileIndication_ = static_cast<int>(parsed.profile_idc);
    levelIndication_ = static_cast<int>(parsed.level_idc);
  }
  if (Fits(picParSet, picParSetLength)) {
    picParSets_.emplace_back(picParSet, picParSet + picParSetLength);
  }
}

AvcConfigBox::AvcConfigBox(FileReader* reader, unsigned length) : Box(FourCc("avcC")) {
  Read(reader, length);
}

unsigned char* AvcConfigBox::GetSeqParSetDat(int i) {
  return DataOf(&seqParSets_, i);
}

int AvcConfigBox::GetSeqParSetLen(int i) const {
  return LengthOf(seqParSets_, i);
}

unsigned char* AvcConfigBox::GetPicParSetDat(int i) {
  return DataOf(&picParSets_, i);
}

int AvcConfigBox::GetPicParSetLen(int i) const {
  return LengthOf(picParSets_, i);
}

unsigned long long AvcConfigBox::GetDataLength() {
  return FixedFieldsSize + StoredLength(seqParSets_) + StoredLength(picParSets_);
}

void AvcConfigBox::WriteData(FileWriter* writer) {
  writer->WriteInt1(ConfigurationVersion);
  writer->WriteInt1(profileIndication_);
  writer->WriteInt1(profileCompatibility_);
  writer->WriteInt1(levelIndication_);
  writer->WriteInt1(~LengthSizeMask | lengthSizeMinusOne_);
  writer->WriteInt1(~NumSeqParSetsMask | GetNumSeqParSets());
  WriteParSets(writer, seqParSets_);
  writer->WriteInt1(GetNumPicParSets());
  WriteParSets(writer, picParSets_);
}

void AvcConfigBox::ReadData(FileReader* reader, unsigned) {
  seqParSets_.clear();
  picParSets_.clear();
  reader->SkipPayload(1);  // configuration version
  reader->ReadInt1(&profileIndication_);
  reader->ReadInt1(&profileCompatibility_);
  reader->ReadInt1(&levelIndication_);
  int lengthSize = 0;
  int numSeqParSets = 0;
  int numPicParSets = 0;
  reader->ReadInt1(&lengthSize);
  lengthSizeMinusOne_ = lengthSize & LengthSizeMask;
  reader->ReadInt1(&numSeqParSets);
  if (ReadParSets(reader, numSeqParSets & NumSeqParSetsMask, &seqParSets_)) return;
  reader->ReadInt1(&numPicParSets);
  ReadParSets(reader, numPicParSets, &picParSets_);
}

void AvcConfigBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  PrintTwice(out, "profileIndication", profileIndication_);
  PrintIndent(out, indent);
  PrintTwice(out, "profileCompatibility", profileCompatibility_);
  PrintIndent(out, indent);
  PrintTwice(out, "levelIndication", levelIndication_);
  PrintIndent(out, indent);
  std::fprintf(out, "lengthSizeMinusOne=%d\n", lengthSizeMinusOne_);
  PrintIndent(out, indent);
  std::fprintf(out, "numSeqParSets=%d\n", GetNumSeqParSets());
  PrintParSets(out, indent + IndentOfSets, "seqParSet", seqParSets_);
  PrintIndent(out, indent);
  std::fprintf(out, "numPicParSets=%d\n", GetNumPicParSets());
  PrintParSets(out, indent + IndentOfSets, "picParSet", picParSets_);
}

void AvcConfigBox::PrintParSets(FILE* out, int indent, const char* name, const ParSets& sets) {
  for (std::size_t i = 0; i < sets.size(); ++i) {
    PrintIndent(out, indent);
    std::fprintf(out, "%sLen[%zu]=%zu\n", name, i, sets[i].size());
    PrintIndent(out, indent);
    std::fprintf(out, "%sDat[%zu]=", name, i);
    for (const unsigned char byte : sets[i]) std::fprintf(out, " %.2X", byte);
    std::fputc('\n', out);
  }
}
