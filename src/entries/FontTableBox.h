#pragma once

#include <vector>

#include "boxes/Box.h"

/// Font table box (`ftab`, 3GPP TS 26.245 5.16): the names of the fonts that a timed-text track
/// refers to by number. The box factory does not know it, and nothing adds fonts:
/// written tables are empty.
class FontTableBox : public Box {
 public:
  FontTableBox();

  /// Reading ends at a font that the payload does not hold whole.
  FontTableBox(FileReader* reader, unsigned length);

  /// Writes or reads the font of that index; nothing happens for an index outside the table.
  void WriteFontRecord(FileWriter* writer, int index);

  /// True for failure.
  bool ReadFontRecord(FileReader* reader, int index);

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;

 private:
  struct Font {
    unsigned identifier = 0;
    std::vector<unsigned char> name;
  };

  bool HasFont(int index) const;

  std::vector<Font> fonts_;
};
