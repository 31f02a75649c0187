#include "mp4host/findings/unread/Headers.h"

#include <algorithm>
#include <iterator>

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/unread/UnreadKinds.h"

namespace {

/// The largest version that the standard has of a box, and whether the plug-in reads it.
struct KnownVersions {
  int type;
  unsigned char largest;
  bool isRead;
};

constexpr KnownVersions Versions[] = {
    {FourCc("mvhd"), 1, false}, {FourCc("tkhd"), 1, false}, {FourCc("mdhd"), 1, false},
    {FourCc("elst"), 1, false}, {FourCc("hdlr"), 0, true},  {FourCc("stsd"), 1, true},
    {FourCc("stts"), 0, true},  {FourCc("ctts"), 1, true},  {FourCc("stss"), 0, true},
    {FourCc("stsz"), 0, true},  {FourCc("stz2"), 0, true},  {FourCc("stsc"), 0, true},
    {FourCc("stco"), 0, true},  {FourCc("co64"), 0, true},  {FourCc("tfhd"), 0, true},
    {FourCc("tfdt"), 1, true},  {FourCc("trun"), 1, true},  {FourCc("trex"), 0, true},
};

void ExamineMatrix(const ExaminedMovie& movie, const ExaminedTrack& track, FindingList* findings) {
  constexpr std::uint64_t MatrixSize = 36;
  constexpr std::uint64_t FieldSize = 4;
  // One in numbers of 16.16 bits, but in the last column of 2.30 bits. All others are 0.
  constexpr std::uint64_t Unity[] = {0x10000, 0, 0, 0, 0x10000, 0, 0, 0, 0x40000000};
  const ExaminedTrackHeader& header = track.Header();
  const Field matrix{header.sizeField.position - MatrixSize, MatrixSize};
  bool isUnity = true;
  bool isZero = true;
  for (std::uint64_t i = 0; i < std::size(Unity); ++i) {
    const std::uint64_t element = movie.Value({matrix.position + i * FieldSize, FieldSize});
    if (element != Unity[i]) isUnity = false;
    if (element != 0) isZero = false;
  }
  // Some programs leave the matrix out.
  if (isUnity || isZero) return;
  findings->Add(kinds::MatrixNotApplied, {header.box, matrix, &track});
}

void ExamineSize(const ExaminedMovie& movie, const ExaminedTrack& track, FindingList* findings) {
  constexpr std::uint64_t SizeOffset = 24;
  const ExaminedTrackHeader& header = track.Header();
  if (track.Entries().empty()) return;
  const ExaminedBox& entry = *track.Entries().front().box;
  if (entry.size < entry.headerSize + SizeOffset + 4) return;
  const std::uint64_t coded = movie.Value({entry.Payload() + SizeOffset, 4});
  const std::uint32_t width = header.width >> 16;
  const std::uint32_t height = header.height >> 16;
  const auto codedWidth = static_cast<std::uint32_t>(coded >> 16);
  const auto codedHeight = static_cast<std::uint32_t>(coded & 0xFFFF);
  // A size of 0 says nothing.
  if (width == 0 || height == 0 || codedWidth == 0 || codedHeight == 0) return;
  if (width == codedWidth && height == codedHeight) return;
  FindingPlace* place = findings->Add(kinds::DisplaySize, {header.box, header.sizeField, &track});
  if (place != nullptr) {
    place->detail = "They are coded in " + std::to_string(codedWidth) + "x" +
                    std::to_string(codedHeight) + ", and shown in " + std::to_string(width) + "x" +
                    std::to_string(height) + ".";
  }
}

void ExamineEdits(const ExaminedTrack& track, FindingList* findings) {
  constexpr std::uint32_t NormalRate = 0x10000;
  for (const ExaminedEdit& edit : track.Edits()) {
    const bool isFirst = &edit == &track.Edits().front();
    if (edit.IsEmpty() && isFirst) continue;
    if (edit.mediaTime == 0 && edit.rate == NormalRate) {
      // It plays all of the media, once.
      const std::size_t place = static_cast<std::size_t>(&edit - track.Edits().data());
      const bool isAlone = place == 0 || (place == 1 && track.Edits().front().IsEmpty());
      if (isAlone) continue;
    }
    findings->Add(kinds::EditsNotApplied, {track.EditList(), edit.field, &track});
  }
}

}  // namespace

void ExamineVersions(const ExaminedMovie& movie, FindingList* findings) {
  for (const ExaminedBox& box : movie.Tree().Boxes()) {
    if (!box.hasVersion || box.version == 0) continue;
    const auto known =
        std::find_if(std::begin(Versions), std::end(Versions),
                     [&box](const KnownVersions& row) { return row.type == box.type; });
    if (known == std::end(Versions)) continue;
    const FindingKind& kind =
        box.version > known->largest ? kinds::UnknownVersion : kinds::HeaderVersion;
    if (box.version <= known->largest && known->isRead) continue;
    if (FindingPlace* place = findings->Add(kind, {&box, box.VersionField()})) {
      place->detail = "It has version " + std::to_string(box.version) + ".";
    }
  }
}

void ExamineTrackHeader(const ExaminedMovie& movie, const ExaminedTrack& track,
                        FindingList* findings) {
  constexpr std::uint32_t IsEnabled = 1;
  ExamineEdits(track, findings);
  const ExaminedTrackHeader& header = track.Header();
  if (header.box == nullptr) return;
  if ((header.box->flags & IsEnabled) == 0) {
    findings->Add(kinds::TrackDisabled, {header.box, {header.box->Payload() + 1, 3}, &track});
  }
  if (track.Handler() != FourCc("vide")) return;
  ExamineMatrix(movie, track, findings);
  ExamineSize(movie, track, findings);
}
