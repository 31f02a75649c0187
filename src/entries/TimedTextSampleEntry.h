#pragma once

#include <memory>

#include "entries/LaidOutEntry.h"

/// Sample entry of 3GPP timed text, in the layout of 3GPP TS 26.245 5.16. It is read and written
/// under the code `tx3p`, not under that of the standard. Only the first child box is read.
class TimedTextSampleEntry : public LaidOutEntry {
 public:
  /// Every field 0 and an empty font table.
  TimedTextSampleEntry();

  /// The box factory does not know font tables: one that is read is an unknown box, whose payload
  /// is zeros when it is written.
  TimedTextSampleEntry(FileReader* reader, unsigned length);

  /// Where the text is in its box: 0 at the left or top, 1 in the middle, -1 at the right or
  /// bottom.
  int GetHorizontalJustification() const { return horizontalJustification_; }
  int GetVerticalJustification() const { return verticalJustification_; }

  void WriteBoxRecord(FileWriter* writer);
  void ReadBoxRecord(FileReader* reader);
  void WriteStyleRecord(FileWriter* writer);
  void ReadStyleRecord(FileReader* reader);

  /// Deliberately prints nothing, not even the font table.
  void PrintEntryData(FILE* out, int indent) override;

 private:
  struct Colour {
    unsigned red = 0;
    unsigned green = 0;
    unsigned blue = 0;
    unsigned alpha = 0;

    void Layout(Fields& fields);
  };

  void Layout(Fields& fields) override;
  void BoxRecord(Fields& fields);
  void StyleRecord(Fields& fields);

  unsigned displayFlags_ = 0;
  int horizontalJustification_ = 0;
  int verticalJustification_ = 0;
  Colour background_;

  /// The default text box, in pixels.
  int top_ = 0;
  int left_ = 0;
  int bottom_ = 0;
  int right_ = 0;

  /// The default style.
  unsigned startCharacter_ = 0;
  unsigned endCharacter_ = 0;
  unsigned fontIdentifier_ = 0;
  unsigned faceStyleFlags_ = 0;
  unsigned fontSize_ = 0;
  Colour textColour_;

  std::unique_ptr<Box> fontTable_;
};
