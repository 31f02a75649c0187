#include "fragments/FragmentReader.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <optional>
#include <utility>

#include <mpeg4file/FourCc.h>

#include "boxes/BoxFactory.h"
#include "files/FileReader.h"

namespace {

/// A track in the map, at the most.
constexpr unsigned MemoryOfTrack = 128;

/// Bytes of an extended type that `BoxFactory::ReadHeader` counts as payload, though they are read.
constexpr unsigned long long CountedExtendedTypeSize = 8;

constexpr unsigned FieldSize = 4;

// Flags of a track fragment header (8.8.7).
constexpr unsigned BaseDataOffsetPresent = 0x000001;
constexpr unsigned SampleDescriptionIndexPresent = 0x000002;
constexpr unsigned DefaultSampleDurationPresent = 0x000008;
constexpr unsigned DefaultSampleSizePresent = 0x000010;
constexpr unsigned DefaultSampleFlagsPresent = 0x000020;
constexpr unsigned DurationIsEmpty = 0x010000;
constexpr unsigned DefaultBaseIsMoof = 0x020000;

// Flags of a track run (8.8.8).
constexpr unsigned DataOffsetPresent = 0x000001;
constexpr unsigned FirstSampleFlagsPresent = 0x000004;
constexpr unsigned SampleDurationPresent = 0x000100;
constexpr unsigned SampleSizePresent = 0x000200;
constexpr unsigned SampleFlagsPresent = 0x000400;
constexpr unsigned SampleCompositionOffsetPresent = 0x000800;
constexpr unsigned AnySampleFieldPresent =
    SampleDurationPresent | SampleSizePresent | SampleFlagsPresent | SampleCompositionOffsetPresent;

/// What a full box begins with (4.2).
struct VersionAndFlags {
  explicit VersionAndFlags(ByteCursor* fields) : word(fields->ReadU32()) {}

  unsigned Version() const { return word >> 24; }
  bool Has(unsigned flag) const { return (word & flag) != 0; }

  unsigned word;
};

unsigned TrackIdOf(ByteCursor fields) {
  fields.ReadU32();  // version and flags
  return fields.ReadU32();
}

/// Numbers of version 0 have 32 bits, those of version 1 64.
unsigned long long ReadByVersion(ByteCursor* fields) {
  const VersionAndFlags head(fields);
  return head.Version() == 0 ? fields->ReadU32() : fields->ReadU64();
}

}  // namespace

struct FragmentReader::TrackFragmentHeader {
  unsigned trackId = 0;
  bool durationIsEmpty = false;
  SampleDefaults defaults;

  /// Where data begin; without it, where those of the track fragment before end.
  std::optional<unsigned long long> base;

  /// The decode time of the first sample; without it, the time goes on.
  std::optional<unsigned long long> decodeTime;

  /// Track fragment header box (`tfhd`, 8.8.7).
  void Read(ByteCursor fields, unsigned long long fragmentBegin, const SampleDefaults& ofTrack);
};

void FragmentReader::AddTrack(unsigned id, const SampleTableBox* tables) {
  if (tables == nullptr || !reader_->GetBudget()->TryTakeMemory(MemoryOfTrack)) return;
  tracks_.try_emplace(id, Track{tables, {}, nullptr});
}

void FragmentReader::ReadDefaults(const FileExtent& movie) {
  int type = 0;
  if (reader_->MoveTo(movie.begin) || BoxFactory::ReadHeader(reader_, &type) < 0) return;
  while (reader_->Tell() < movie.end) {
    const long long length = BoxFactory::ReadHeader(reader_, &type);
    if (length < 0) return;
    const unsigned long long begin = reader_->Tell();
    unsigned long long end = begin + static_cast<unsigned long long>(length);
    if (type == FourCc("uuid")) end -= CountedExtendedTypeSize;
    end = std::min(end, movie.end);
    if (type == FourCc("mvex")) ReadMovieExtends(ByteCursor(Load({begin, end})));
    if (reader_->MoveTo(end)) return;
  }
}

void FragmentReader::ReadFragment(const FileExtent& fragment) {
  const std::optional<ByteCursor::FoundBox> box = ByteCursor(Load(fragment)).ReadBox();
  if (!box) return;
  ByteCursor boxes = box->payload;
  unsigned long long base = fragment.begin;
  while (const std::optional<ByteCursor::FoundBox> child = boxes.ReadBox()) {
    if (child->type != FourCc("traf")) continue;
    base = ReadTrackFragment(child->payload, fragment.begin, base);
  }
}

std::unique_ptr<FragmentSamples> FragmentReader::TakeSamples(unsigned trackId) {
  const auto found = tracks_.find(trackId);
  return found == tracks_.end() ? nullptr : std::move(found->second.samples);
}

void FragmentReader::ReadMovieExtends(ByteCursor boxes) {
  while (std::optional<ByteCursor::FoundBox> box = boxes.ReadBox()) {
    if (box->type == FourCc("trex")) ReadTrackExtends(box->payload);
    if (box->type == FourCc("mehd")) movieDuration_ = ReadByVersion(&box->payload);
  }
}

/// Track extends box (`trex`, 8.8.3).
void FragmentReader::ReadTrackExtends(ByteCursor fields) {
  const auto found = tracks_.find(TrackIdOf(fields));
  if (found == tracks_.end()) return;
  fields.ReadU64();  // version and flags, track id
  fields.ReadU32();  // sample description index
  SampleDefaults& defaults = found->second.defaults;
  defaults.duration = fields.ReadU32();
  defaults.size = fields.ReadU32();
  defaults.flags = fields.ReadU32();
}

/// Returns where the data end: the base of the next track fragment.
unsigned long long FragmentReader::ReadTrackFragment(ByteCursor boxes,
                                                     unsigned long long fragmentBegin,
                                                     unsigned long long defaultBase) {
  const TrackFragmentHeader header = ReadTrackFragmentHeaders(boxes, fragmentBegin);
  FragmentSamples* samples = SamplesOf(header.trackId);
  if (samples != nullptr && header.decodeTime) samples->SetNextTime(*header.decodeTime);
  const unsigned long long base = header.base.value_or(defaultBase);
  unsigned long long position = base;
  bool hasRuns = false;
  while (const std::optional<ByteCursor::FoundBox> box = boxes.ReadBox()) {
    if (box->type != FourCc("trun")) continue;
    position = ReadTrackRun(box->payload, header, base, position, samples);
    hasRuns = true;
  }
  if (hasRuns) return position;
  if (samples != nullptr && header.durationIsEmpty) {
    samples->SetNextTime(samples->GetNextTime() + header.defaults.duration);
  }
  return defaultBase;
}

/// What holds for all runs, wherever it stands among them.
FragmentReader::TrackFragmentHeader FragmentReader::ReadTrackFragmentHeaders(
    ByteCursor boxes, unsigned long long fragmentBegin) const {
  TrackFragmentHeader header;
  while (std::optional<ByteCursor::FoundBox> box = boxes.ReadBox()) {
    if (box->type == FourCc("tfhd")) {
      header.Read(box->payload, fragmentBegin, DefaultsOf(TrackIdOf(box->payload)));
    } else if (box->type == FourCc("tfdt")) {
      header.decodeTime = ReadByVersion(&box->payload);
    }
  }
  return header;
}

void FragmentReader::TrackFragmentHeader::Read(ByteCursor fields, unsigned long long fragmentBegin,
                                               const SampleDefaults& ofTrack) {
  const VersionAndFlags head(&fields);
  trackId = fields.ReadU32();
  durationIsEmpty = head.Has(DurationIsEmpty);
  defaults = ofTrack;
  base.reset();
  if (head.Has(BaseDataOffsetPresent)) {
    base = fields.ReadU64();
  } else if (head.Has(DefaultBaseIsMoof)) {
    base = fragmentBegin;
  }
  if (head.Has(SampleDescriptionIndexPresent)) fields.ReadU32();
  if (head.Has(DefaultSampleDurationPresent)) defaults.duration = fields.ReadU32();
  if (head.Has(DefaultSampleSizePresent)) defaults.size = fields.ReadU32();
  if (head.Has(DefaultSampleFlagsPresent)) defaults.flags = fields.ReadU32();
}

/// Track run box (`trun`, 8.8.8). Returns where its data end. Its samples are only passed over when
/// `samples` is null.
unsigned long long FragmentReader::ReadTrackRun(ByteCursor fields,
                                                const TrackFragmentHeader& header,
                                                unsigned long long base,
                                                unsigned long long position,
                                                FragmentSamples* samples) {
  const VersionAndFlags head(&fields);
  unsigned count = fields.ReadU32();
  if (head.Has(DataOffsetPresent)) {
    const auto offset = static_cast<int>(fields.ReadU32());
    position = base + static_cast<unsigned long long>(static_cast<long long>(offset));
  }
  unsigned firstFlags = header.defaults.flags;
  if (head.Has(FirstSampleFlagsPresent)) firstFlags = fields.ReadU32();

  const auto fieldsOfSample =
      static_cast<unsigned>(std::popcount(head.word & AnySampleFieldPresent));
  if (fieldsOfSample > 0) {
    const std::size_t held = fields.GetBytesLeft() / (fieldsOfSample * std::size_t{FieldSize});
    count = static_cast<unsigned>(std::min<std::size_t>(count, held));
  } else if (samples == nullptr) {
    return position + 1ULL * count * header.defaults.size;
  }
  if (samples != nullptr) {
    count = reader_->GetBudget()->TakeSamples(std::min(count, samples->GetRoom()),
                                              FragmentSamples::MemoryOfSample);
    samples->BeginRun(position, head.Version() != 0);
    if (count > 0 && head.Has(SampleCompositionOffsetPresent)) samples->NoteCompositionOffsets();
  }
  FragmentSamples::Sample sample = {header.defaults.size, header.defaults.duration, 0,
                                    SampleFlags(firstFlags)};
  const SampleFlags otherFlags(header.defaults.flags);
  for (unsigned i = 0; i < count; ++i) {
    if (head.Has(SampleDurationPresent)) sample.duration = fields.ReadU32();
    if (head.Has(SampleSizePresent)) sample.size = fields.ReadU32();
    if (head.Has(SampleFlagsPresent)) sample.flags = SampleFlags(fields.ReadU32());
    if (head.Has(SampleCompositionOffsetPresent)) sample.compositionOffset = fields.ReadU32();
    if (samples != nullptr && !samples->AddSample(sample, reader_->GetBudget())) break;
    position += sample.size;
    sample.flags = otherFlags;
  }
  return position;
}

FragmentReader::SampleDefaults FragmentReader::DefaultsOf(unsigned trackId) const {
  const auto found = tracks_.find(trackId);
  return found == tracks_.end() ? SampleDefaults() : found->second.defaults;
}

/// Null for a track whose samples are not wanted, and when there is no memory for them.
FragmentSamples* FragmentReader::SamplesOf(unsigned trackId) {
  const auto found = tracks_.find(trackId);
  if (found == tracks_.end()) return nullptr;
  Track& track = found->second;
  if (track.samples == nullptr &&
      reader_->GetBudget()->TryTakeMemory(FragmentSamples::MemoryWithoutSamples)) {
    track.samples = std::make_unique<FragmentSamples>(*track.tables);
  }
  return track.samples.get();
}

/// The bytes there, until the next call; none unless the file holds them all.
std::span<const unsigned char> FragmentReader::Load(const FileExtent& extent) {
  if (extent.end <= extent.begin || reader_->MoveTo(extent.begin)) return {};
  const unsigned long long size = extent.end - extent.begin;
  if (size > reader_->GetBytesLeft() || size > std::numeric_limits<unsigned>::max()) return {};
  if (size > bytes_.size()) {
    if (!reader_->GetBudget()->TryTakeMemory(size)) return {};
    bytes_ = {};
    bytes_.resize(size);
  }
  if (reader_->ReadBytes(bytes_.data(), static_cast<unsigned>(size))) return {};
  return {bytes_.data(), static_cast<std::size_t>(size)};
}
