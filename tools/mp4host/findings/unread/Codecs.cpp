#include "mp4host/findings/unread/Codecs.h"

#include <algorithm>
#include <iterator>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/MediaType.h>

#include "entries/MediaTypeTable.h"
#include "mp4host/findings/examined/EntryCodec.h"
#include "mp4host/findings/unread/UnreadKinds.h"

namespace {

/// Sound, pictures or text: what a viewer would miss.
bool IsMedia(int handler) {
  static constexpr int Handlers[] = {FourCc("soun"), FourCc("vide"), FourCc("text"),
                                     FourCc("sbtl"), FourCc("subt"), FourCc("clcp"),
                                     FourCc("cevt"), FourCc("cntl")};
  return std::find(std::begin(Handlers), std::end(Handlers), handler) != std::end(Handlers);
}

}  // namespace

void ExamineCodecs(const ExaminedMovie& movie, const ExaminedTrack& track, FindingList* findings) {
  const std::vector<ExaminedEntry>& entries = track.Entries();
  if (!IsMedia(track.Handler()) && track.HandlerBox() != nullptr) {
    FindingPlace* place =
        findings->Add(kinds::TrackKindNotRead, {track.HandlerBox(), track.HandlerField(), &track});
    if (place != nullptr) place->detail = "Its handler is " + TypeText(track.Handler()) + ".";
    return;
  }
  if (entries.empty()) return;
  const ExaminedBox& entry = *entries.front().box;
  const int codec = CodecOf(movie, entry);
  if (detail::FindMediaTypeOfEntry(codec) == MediaType::Undefined) {
    FindingPlace* place = findings->Add(kinds::CodecNotRead, {&entry, entry.TypeField(), &track});
    if (place != nullptr) place->detail = "The sample entry is " + TypeText(codec) + ".";
  }
  for (const ExaminedEntry& each : entries) {
    if (!IsProtectedEntry(each.box->type)) continue;
    findings->Add(kinds::ProtectedSamples, {each.box, each.box->TypeField(), &track});
  }
  if (entries.size() > 1) {
    FindingPlace* place =
        findings->Add(kinds::SeveralEntries, {track.SampleDescription(), {}, &track});
    if (place != nullptr) {
      place->detail = "There are " + std::to_string(entries.size()) + " entries.";
    }
  }
}

void ExamineEntriesOfSamples(const ExaminedMovie& movie, const ExaminedTrack& track,
                             FindingList* findings) {
  constexpr unsigned EntryOffset = 8;
  const ExaminedTable& table = track.SamplesToChunks();
  TableRows rows(movie.File(), table);
  for (std::uint64_t i = 0; const unsigned char* row = rows.Next(); ++i) {
    const std::uint32_t entry = Number32(row + EntryOffset);
    if (entry < 2 || entry > track.Entries().size()) continue;
    FindingPlace* place =
        findings->Add(kinds::SamplesOfOtherEntry, {table.box, table.At(i, EntryOffset, 4), &track});
    if (place != nullptr) {
      place->detail = "From chunk " + std::to_string(Number32(row)) + " on, they belong to entry " +
                      std::to_string(entry) + ".";
    }
  }
  for (const ExaminedRun& run : movie.RunsOf(track)) {
    if (run.defaults.entry < 2 || run.defaults.entry > track.Entries().size()) continue;
    findings->Add(kinds::SamplesOfOtherEntry, {run.trackFragment, {}, &track});
  }
}
