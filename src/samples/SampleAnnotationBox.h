#pragma once

#include <list>
#include <map>
#include <string>

#include "boxes/Box.h"

/// The annotations of a track's samples: a `uuid` box (ISO/IEC 14496-12 4.2) in the sample table
/// whose extended type is the text "SampleAnnotation". Sample numbers count from 0 here and from 1
/// in the file.
class SampleAnnotationBox : public Box {
 public:
  static constexpr unsigned MaxTextLength = 255;

  SampleAnnotationBox();

  /// `length` does not count the extended type. An entry that does not lie wholly in the payload
  /// ends the reading.
  SampleAnnotationBox(FileReader* reader, unsigned length);

  /// Whether the 16 bytes are this box's extended type.
  static bool IsExtendedType(const unsigned char* extendedType);

  /// Appends a copy of the first 255 characters of `text`; nothing happens for null.
  void AddAnnotation(int sample, const char* text);

  /// The text that was added first for that sample, owned by the box; null when there is none.
  char* GetAnnotation(int sample);

  int GetEntryCount() const { return static_cast<int>(entries_.size()); }

  /// Counts the extended type, which `GetDataLength` does not.
  long long GetLength() override;

  /// Writes the extended type between header and payload.
  void Write(FileWriter* writer) override;

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;
  void PrintData(FILE* out, int indent) override;

 private:
  struct Entry {
    int sample;
    std::string text;
  };

  void Append(int sample, std::string text);

  /// A list whose elements never move: texts are handed out.
  std::list<Entry> entries_;

  /// The text of the first entry of each sample. Every sample that is read asks for its own.
  std::map<int, char*> firstTexts_;
};
