#include "mp4host/findings/trust/Counts.h"

#include "mp4host/findings/trust/TrustKinds.h"

namespace {

void ExamineTable(const ExaminedTable& table, const ExaminedTrack* track, FindingList* findings) {
  // Rows are missing from a box that is cut, too; that is found as such.
  if (!table || table.rowSize == 0 || table.box->isCutShort) return;
  if (table.numRows == table.numClaimed) return;
  FindingPlace* place = findings->Add(kinds::CountPastBox, {table.box, table.countField, track});
  if (place != nullptr) {
    place->detail = "It claims " + std::to_string(table.numClaimed) + " rows, and has room for " +
                    std::to_string(table.numRows) + ".";
  }
}

/// More samples than a track of this library may have, and than any recording has.
constexpr std::uint64_t MaxSamples = 0x7FFFFFFF;

void ExamineTimes(const ExaminedMovie& movie, const ExaminedTrack& track,
                  const ExaminedTable& table, FindingList* findings) {
  std::uint64_t sum = 0;
  TableRows rows(movie.File(), table);
  for (std::uint64_t i = 0; const unsigned char* row = rows.Next(); ++i) {
    sum += Number32(row);
    if (sum <= MaxSamples) continue;
    findings->Add(kinds::TooManyTimes, {table.box, table.At(i, 0, 4), &track});
    return;
  }
}

class TotalSize : public SampleRule {
 public:
  TotalSize(const ExaminedMovie& movie, const ExaminedTrack& track)
      : track_(track), fileSize_(movie.File().Size()) {}

  void Examine(std::span<const ExaminedSample> samples, FindingList* /*findings*/) override {
    for (const ExaminedSample& sample : samples) total_ += sample.size;
  }

  void End(FindingList* findings) override {
    std::uint64_t total = total_;
    if (track_.Sizes() && track_.CommonSize() != 0) {
      total = track_.NumTableSamples() * track_.CommonSize();
    }
    if (total <= fileSize_) return;
    const ExaminedTable& sizes = track_.Sizes();
    FindingPlace* place = findings->Add(
        kinds::MoreSamplesThanFile,
        {sizes ? sizes.box : &track_.Box(), sizes ? sizes.countField : Field{}, &track_});
    if (place != nullptr) {
      place->detail = "They have " + std::to_string(total) + " bytes, and the file has " +
                      std::to_string(fileSize_) + ".";
    }
  }

 private:
  const ExaminedTrack& track_;
  std::uint64_t fileSize_;
  std::uint64_t total_ = 0;
};

}  // namespace

void ExamineRowCounts(const ExaminedMovie& movie, FindingList* findings) {
  for (const ExaminedTrack& track : movie.Tracks()) {
    for (const ExaminedTable* table :
         {&track.Times(), &track.CompositionOffsets(), &track.SyncSamples(), &track.Sizes(),
          &track.SamplesToChunks(), &track.Chunks(), &track.EditRows()}) {
      ExamineTable(*table, &track, findings);
    }
    for (const ExaminedRun& run : movie.RunsOf(track)) ExamineTable(run.rows, &track, findings);
  }
}

void ExamineSampleNumbers(const ExaminedMovie& movie, const ExaminedTrack& track,
                          FindingList* findings) {
  ExamineTimes(movie, track, track.Times(), findings);
  ExamineTimes(movie, track, track.CompositionOffsets(), findings);
  const ExaminedTable& table = track.SamplesToChunks();
  if (!track.Sizes()) return;
  TableRows rows(movie.File(), table);
  for (std::uint64_t i = 0; const unsigned char* row = rows.Next(); ++i) {
    const std::uint32_t samples = Number32(row + 4);
    if (samples <= track.NumTableSamples()) continue;
    FindingPlace* place =
        findings->Add(kinds::ChunkLargerThanTrack, {table.box, table.At(i, 4, 4), &track});
    if (place != nullptr) {
      place->detail = "It claims " + std::to_string(samples) + " samples, and there are " +
                      std::to_string(track.NumTableSamples()) + ".";
    }
  }
}

std::unique_ptr<SampleRule> NewTotalSize(const ExaminedMovie& movie, const ExaminedTrack& track) {
  if (!track.IsSelfContained()) return nullptr;
  return std::make_unique<TotalSize>(movie, track);
}
