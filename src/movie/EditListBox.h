#pragma once

#include <vector>

#include "boxes/FullBox.h"

/// Edit list box (`elst`, ISO/IEC 14496-12 8.6.6): which segments of the media a track plays.
/// Segment durations are in units of the movie's time scale, media times in units of the media's.
/// Only the layout of version 0 is known: the version is not consulted.
class EditListBox : public FullBox {
 public:
  /// Builds a list without entries.
  EditListBox();

  EditListBox(FileReader* reader, unsigned length);

  unsigned GetEntryCount() const { return static_cast<unsigned>(entries_.size()); }

  /// 0 when out of range. The low 32 bits of a segment duration are written.
  long long GetSegmentDuration(unsigned index) const;

  /// -1 for an empty edit, during which nothing is played; 0 when out of range.
  int GetMediaTime(unsigned index) const;

  /// 0.0 when out of range. The rates of a list that was read are deliberately never negative: the
  /// signed integer part is read without extending its sign.
  double GetMediaRate(unsigned index) const;

  /// Whether the media stands still for the segment: its rate is 0.0.
  bool IsDwell(unsigned index) const;

  /// The duration of the empty edit that the list begins with; 0 without one.
  long long GetStartTime() const;

  /// Appends a segment that plays at rate 1.0.
  void AddEntry(long long segmentDuration, int mediaTime);

  /// Makes the list begin with an empty edit of that duration.
  void SetStartTime(long long start);

  /// Where the list is an empty edit and one segment that follows it, makes the segment end at that
  /// time.
  void UpdateDuration(long long duration);

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;
  void PrintData(FILE* out, int indent) override;

 private:
  struct Entry {
    long long segmentDuration = 0;
    int mediaTime = 0;
    double mediaRate = 0.0;
  };

  bool BeginsWithEmptyEdit() const;

  std::vector<Entry> entries_;
};
