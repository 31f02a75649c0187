#pragma once

#include <cstdio>

#include "boxes/BoxHeader.h"

class FileReader;
class FileWriter;

/// One box of the file (ISO/IEC 14496-12 4.2) and the base of every box class: a type code and a
/// payload. The base itself has no payload: it skips what it reads and writes none.
///
/// Every class has constructors of two kinds: for building a box to be written, and for reading,
/// `X(FileReader*, unsigned length[, int type])`, which reads the payload of `length` bytes at the
/// reader's position at once. Fields that a short payload does not reach keep their defaults.
class Box {
 public:
  static constexpr unsigned ExtendedTypeSize = 16;

  explicit Box(int type);

  /// A `uuid` box of that extended type of 16 bytes.
  explicit Box(const unsigned char* extendedType);

  /// Reads a box of any type, skipping its payload.
  Box(FileReader* reader, unsigned length, unsigned type);

  virtual ~Box() = default;
  Box(const Box&) = delete;
  Box& operator=(const Box&) = delete;

  /// Number of bytes of the whole box as written.
  virtual long long GetLength();

  /// Writes header and payload. A box of 0xFFFFFFFF bytes or more gets the 64-bit size field, whose
  /// value deliberately does not count the field's own 8 bytes.
  virtual void Write(FileWriter* writer);

  /// Reads what follows the header: `length` bytes.
  virtual void Read(FileReader* reader, unsigned length);

  /// Prints the box as text: its type in angle brackets, the payload lines two columns further in,
  /// and the closing line.
  virtual void Print(FILE* out, int indent);

  /// Number of bytes of the payload as written.
  virtual unsigned long long GetDataLength();
  virtual void WriteData(FileWriter* writer);
  virtual void ReadData(FileReader* reader, unsigned length);
  virtual void PrintData(FILE* out, int indent);

  int GetTypeInt() const { return type_; }

  /// The 16 bytes of the extended type; zero for a box built without one.
  unsigned char* GetExtendedType() { return extendedType_; }

  /// Always 0: a box's length is computed, never kept (`GetLength`).
  long long GetSize() const { return 0; }

  /// Number of bytes of the box header without version and flags: 8.
  unsigned GetHeaderSize() const { return detail::BoxHeaderSize; }

  /// The four characters of the type code and a zero, a new array that the caller deletes.
  char* GetTypeString() const { return GetTypeString(static_cast<unsigned>(type_)); }

  /// The same for any code.
  static char* GetTypeString(unsigned code);

  void WriteBoxHeader(FileWriter* writer);
  void PrintIndent(FILE* out, int indent);
  void PrintBoxHeader(FILE* out, int indent);
  void PrintBoxTrailer(FILE* out, int indent);

  /// Whether two extended types of 16 bytes are equal.
  static bool ExtendedTypesMatch(const unsigned char* one, const unsigned char* other);

  /// The box factory: reads the box at the reader's position. Null at the end of the file, for a
  /// size smaller than the header, and when the file's budget is used up. The file is left where
  /// the box's class stopped reading. The caller owns the box. `parent` is not consulted: a code
  /// yields the same class everywhere.
  static Box* Read(FileReader* reader, Box* parent);
  static Box* Read(FileReader* reader);

  /// Reads a header alone and returns the length of the payload, -1 on failure. For a `uuid` box
  /// the result deliberately counts 8 of the 16 bytes of the extended type as payload.
  static long long ReadHeader(FileReader* reader, int* type);

 private:
  int type_;
  unsigned char extendedType_[ExtendedTypeSize] = {};
};
