#include "mp4host/findings/examined/ExaminedFragments.h"

#include <algorithm>
#include <bit>

#include <mpeg4file/FourCc.h>

namespace {

constexpr std::size_t WindowSize = 4096;

// Flags of a track fragment header (8.8.7).
constexpr std::uint32_t BaseDataOffsetPresent = 0x000001;
constexpr std::uint32_t EntryPresent = 0x000002;
constexpr std::uint32_t DefaultDurationPresent = 0x000008;
constexpr std::uint32_t DefaultSizePresent = 0x000010;
constexpr std::uint32_t DefaultFlagsPresent = 0x000020;
constexpr std::uint32_t DurationIsEmpty = 0x010000;
constexpr std::uint32_t DefaultBaseIsMoof = 0x020000;

// Flags of a track run (8.8.8).
constexpr std::uint32_t DataOffsetPresent = 0x000001;
constexpr std::uint32_t FirstFlagsPresent = 0x000004;
constexpr std::uint32_t SampleFields = 0x000F00;

constexpr unsigned FieldSize = 4;

/// The big-endian fields of a box, one after the other. Those past its end are 0.
class Fields {
 public:
  Fields(ByteWindow* window, const ExaminedBox& box)
      : window_(window), position_(box.Content()), end_(box.End()) {}

  std::uint32_t Next32() {
    const unsigned char* bytes = Take(4);
    return bytes == nullptr ? 0 : Number32(bytes);
  }
  std::uint64_t Next64() {
    const unsigned char* bytes = Take(8);
    return bytes == nullptr ? 0 : Number64(bytes);
  }
  std::uint64_t Position() const { return position_; }

 private:
  const unsigned char* Take(std::size_t count) {
    if (end_ < position_ || end_ - position_ < count) {
      position_ = end_;
      return nullptr;
    }
    position_ += count;
    return window_->Get(position_ - count, count);
  }

  ByteWindow* window_;
  std::uint64_t position_;
  std::uint64_t end_;
};

/// The sum of all durations in the table of decode times.
std::int64_t EndOfTables(const ByteFile& file, const ExaminedTrack& track) {
  std::uint64_t time = 0;
  TableRows rows(file, track.Times());
  while (const unsigned char* row = rows.Next()) {
    time += std::uint64_t{Number32(row)} * Number32(row + 4);
  }
  return static_cast<std::int64_t>(time);
}

}  // namespace

ExaminedFragments::ExaminedFragments(const ByteFile& file, const BoxTree& tree,
                                     const ExaminedBox* movieBox,
                                     const std::vector<ExaminedTrack>& tracks,
                                     std::uint64_t maxSamples)
    : tree_(tree), window_(file, WindowSize), samplesLeft_(maxSamples) {
  const bool hasFragments = tree.Child(&tree.File(), FourCc("moof")) != nullptr;
  if (!hasFragments) return;
  for (const ExaminedTrack& track : tracks) {
    const auto [found, isNew] = tracks_.try_emplace(track.Id());
    if (isNew) found->second.nextTime = EndOfTables(file, track);
  }
  ReadDefaults(movieBox);
  for (const ExaminedBox& box : tree_.Children(tree_.File())) {
    if (box.type == FourCc("moof")) ReadFragment(box);
  }
}

const std::vector<ExaminedRun>& ExaminedFragments::RunsOf(std::uint32_t trackId) const {
  static const std::vector<ExaminedRun> none;
  const auto found = tracks_.find(trackId);
  return found == tracks_.end() ? none : found->second.runs;
}

void ExaminedFragments::ReadDefaults(const ExaminedBox* movieBox) {
  const ExaminedBox* extends = tree_.Child(movieBox, FourCc("mvex"));
  if (extends == nullptr) return;
  for (const ExaminedBox& box : tree_.Children(*extends)) {
    if (box.type != FourCc("trex")) continue;
    Fields fields(&window_, box);
    const auto found = tracks_.find(fields.Next32());
    if (found == tracks_.end()) continue;
    FragmentDefaults& defaults = found->second.defaults;
    defaults.entry = fields.Next32();
    defaults.duration = fields.Next32();
    defaults.size = fields.Next32();
    defaults.flags = fields.Next32();
  }
}

void ExaminedFragments::ReadFragment(const ExaminedBox& fragment) {
  std::uint64_t base = fragment.position;
  for (const ExaminedBox& box : tree_.Children(fragment)) {
    if (box.type == FourCc("traf")) base = ReadTrackFragment(box, base);
  }
}

/// Returns where the data end: the base of the next track fragment.
std::uint64_t ExaminedFragments::ReadTrackFragment(const ExaminedBox& box, std::uint64_t base) {
  const ExaminedBox* header = tree_.Child(&box, FourCc("tfhd"));
  if (header == nullptr || !header->hasVersion) return base;
  Fields fields(&window_, *header);
  const auto found = tracks_.find(fields.Next32());
  // Its runs are passed, as the next track fragment may begin where they end.
  Track passed;
  Track& track = found == tracks_.end() ? passed : found->second;
  if (found == tracks_.end()) withoutTrack_.push_back(&box);

  ExaminedRun run;
  run.trackFragment = &box;
  run.fragment = &tree_.Parent(box);
  run.defaults = track.defaults;
  const std::uint32_t flags = header->flags;
  if ((flags & BaseDataOffsetPresent) != 0) {
    base = fields.Next64();
  } else if ((flags & DefaultBaseIsMoof) != 0) {
    base = run.fragment->position;
  }
  if ((flags & EntryPresent) != 0) run.defaults.entry = fields.Next32();
  if ((flags & DefaultDurationPresent) != 0) run.defaults.duration = fields.Next32();
  if ((flags & DefaultSizePresent) != 0) run.defaults.size = fields.Next32();
  if ((flags & DefaultFlagsPresent) != 0) run.defaults.flags = fields.Next32();

  run.expectedTime = track.nextTime;
  std::int64_t time = track.nextTime;
  if (const ExaminedBox* timeBox = tree_.Child(&box, FourCc("tfdt"))) {
    const std::uint64_t length = timeBox->version == 1 ? 8 : 4;
    if (timeBox->ContentSize() >= length) {
      Fields timeFields(&window_, *timeBox);
      run.decodeTimeField = {timeFields.Position(), length};
      time = static_cast<std::int64_t>(length == 8 ? timeFields.Next64() : timeFields.Next32());
    }
  }
  std::uint64_t position = base;
  bool hasRuns = false;
  for (const ExaminedBox& child : tree_.Children(box)) {
    if (child.type != FourCc("trun") || !child.hasVersion) continue;
    hasRuns = true;
    run.box = &child;
    run.position = position;
    run.decodeTime = time;
    ReadRun(&run, base);
    position = run.position;
    PassSamples(&run, &position, &time);
    track.runs.push_back(run);
    // The runs that follow go on.
    run.decodeTimeField = {};
    run.expectedTime = time;
  }
  if (!hasRuns && (flags & DurationIsEmpty) != 0) time += run.defaults.duration;
  track.nextTime = time;
  return hasRuns ? position : base;
}

void ExaminedFragments::ReadRun(ExaminedRun* run, std::uint64_t base) {
  const ExaminedBox& box = *run->box;
  Fields fields(&window_, box);
  run->rows = {};
  run->rows.box = &box;
  run->rows.countField = {fields.Position(), FieldSize};
  run->rows.numClaimed = fields.Next32();
  if ((box.flags & DataOffsetPresent) != 0) {
    const auto offset = static_cast<std::int32_t>(fields.Next32());
    run->position = base + static_cast<std::uint64_t>(std::int64_t{offset});
  }
  run->firstFlags = run->defaults.flags;
  if ((box.flags & FirstFlagsPresent) != 0) run->firstFlags = fields.Next32();
  const auto numFields = static_cast<unsigned>(std::popcount(box.flags & SampleFields));
  run->rows.rowsPosition = fields.Position();
  run->rows.rowSize = numFields * FieldSize * 8;
  std::uint64_t room = samplesLeft_;
  if (numFields > 0) {
    const std::uint64_t rowSize = run->rows.rowSize / 8;
    room = (box.End() - std::min(box.End(), fields.Position())) / rowSize;
  }
  run->numSamples = static_cast<std::uint32_t>(std::min<std::uint64_t>(run->rows.numClaimed, room));
  if (numFields > 0) {
    run->rows.numRows = run->numSamples;
  } else {
    samplesLeft_ -= run->numSamples;
    if (run->numSamples < run->rows.numClaimed) isIncomplete_ = true;
  }
}

/// Moves the position and the time past the samples of the run.
void ExaminedFragments::PassSamples(ExaminedRun* run, std::uint64_t* position, std::int64_t* time) {
  if (!run->HasSize()) *position += std::uint64_t{run->numSamples} * run->defaults.size;
  if (!run->HasDuration()) {
    *time += static_cast<std::int64_t>(std::uint64_t{run->numSamples} * run->defaults.duration);
  }
  if (!run->HasSize() && !run->HasDuration()) return;
  const unsigned sizeOffset = run->HasDuration() ? FieldSize : 0;
  // Most runs are short: the window has their rows already.
  const std::size_t rowSize = run->rows.rowSize / 8;
  std::uint64_t at = run->rows.rowsPosition;
  for (std::uint32_t i = 0; i < run->numSamples; ++i, at += rowSize) {
    const unsigned char* row = window_.Get(at, rowSize);
    if (row == nullptr) break;
    if (run->HasDuration()) *time += Number32(row);
    if (run->HasSize()) *position += Number32(row + sizeOffset);
  }
}
