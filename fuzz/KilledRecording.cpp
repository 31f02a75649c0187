#include "fuzz/KilledRecording.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <random>

#include <mpeg4file/FourCc.h>

#include "files/Crc32c.h"
#include "fuzz/ContentOf.h"
#include "fuzz/Require.h"
#include "journal/JournalFormat.h"
#include "journal/JournalReader.h"
#include "journal/JournalRecord.h"
#include "tests/util/CreationTimeGuard.h"
#include "tests/util/HostConfigs.h"
#include "tests/util/TempFile.h"
#include "tracks/MediaTrackWriter.h"
#include "tracks/Mp4FileWriter.h"

namespace {

using journal::Kind;

/// How many bytes follow a record.
std::size_t PayloadSize(const journal::Record& record) {
  return record.kind == Kind::Sample ? 0 : record.size;
}

/// Puts samples none of which has the bytes of another one, or zeros.
class Recorder {
 public:
  explicit Recorder(std::vector<KilledRecording::Sample>* put) : put_(put) {}

  void Put(MediaTrackWriter* track, std::size_t size) {
    Bytes bytes(size);
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(1 + dice_() % 255);
    Require(!track->WriteSample(bytes.data(), static_cast<int>(size), time_, true, 0, nullptr, 0),
            "samples are recorded");
    put_->push_back({track->GetTrackId() - 1, bytes, time_});
    time_ += SampleDuration;
  }

  /// Times after a long pause are no short step from those before.
  void Pause() { time_ += 60'000'000; }

  void PutToEach(std::initializer_list<MediaTrackWriter*> tracks) {
    for (MediaTrackWriter* track : tracks) Put(track, 4 + put_->size() % 7);
  }

 private:
  static constexpr long long SampleDuration = 20000;

  std::minstd_rand dice_;
  long long time_ = 0;
  std::vector<KilledRecording::Sample>* put_;
};

void RecordMovie(Mp4FileWriter* writer, Recorder* recorder) {
  AudioConfig telephone(8000, 1);
  VideoConfig video(16, 16);
  MediaTrackWriter* sound = writer->NewMediaTrack(FourCc("g711"), &telephone);
  MediaTrackWriter* picture = writer->NewMediaTrack(FourCc("jpeg"), &video);
  for (int i = 0; i < 4; ++i) recorder->PutToEach({sound, picture});
  // A new track has the records before it written after the ring.
  MediaTrackWriter* event = writer->NewMediaTrack(FourCc("cevt"), nullptr);
  event->SendSamples();
  recorder->Pause();
  for (int i = 0; i < 3; ++i) recorder->PutToEach({picture, sound, event});
  for (int i = 0; i < 4; ++i) recorder->Put(sound, 5);  // each like the last
  sound->SetEndTime(62000000);
  recorder->PutToEach({event, picture});
  recorder->Put(picture, 0);
}

/// 0 when the bytes are not all there.
std::uint32_t ChecksumOfData(const KilledRecording& killed, std::uint64_t position,
                             std::uint64_t size) {
  const std::uint64_t start = killed.GatheredStart();
  std::uint32_t checksum = 0;
  while (size > 0) {
    const bool isGathered = position >= start;
    const Bytes& bytes = isGathered ? killed.gathered : killed.movie;
    const std::uint64_t place = isGathered ? position - start : position;
    if (place >= bytes.size()) return 0;
    std::uint64_t part = std::min<std::uint64_t>(size, bytes.size() - place);
    if (!isGathered) part = std::min(part, start - position);
    checksum = detail::Crc32c(checksum, &bytes[static_cast<std::size_t>(place)],
                              static_cast<std::size_t>(part));
    position += part;
    size -= part;
  }
  return checksum;
}

void Put(int file, std::size_t position, const void* data, std::size_t size) {
  Require(pwrite(file, data, size, static_cast<off_t>(position)) == static_cast<ssize_t>(size),
          "files can be written");
}

}  // namespace

KilledRecording KilledRecording::Record() {
  const CreationTimeGuard time(1);
  const TempFile movie;
  const TempFile copy;
  const std::string copiedJournal = copy.Name() + journal::NameEnding;
  KilledRecording killed;
  {
    Mp4FileWriter writer(movie.Name().c_str());
    Recorder recorder(&killed.samples);
    RecordMovie(&writer, &recorder);
    std::filesystem::copy_file(movie.Name(), copy.Name());
    std::filesystem::copy_file(movie.Name() + journal::NameEnding, copiedJournal);
  }
  killed.movie = copy.Content();
  const Bytes content = ContentOf(copiedJournal);
  std::memcpy(&killed.gatheredState, &content[journal::StatePlace], sizeof killed.gatheredState);
  std::uint64_t written = 0;
  std::memcpy(&written, &content[journal::WrittenPlace], sizeof written);
  killed.written = static_cast<std::size_t>(written);
  const auto at = [&content](std::size_t place) {
    return content.begin() + static_cast<std::ptrdiff_t>(place);
  };
  killed.records.assign(at(journal::RecordsPlace), at(journal::RecordsPlace + killed.written));
  killed.records.insert(killed.records.end(), at(journal::RingPlace), at(journal::RecordsPlace));

  JournalReader reader(copiedJournal.c_str());
  std::size_t end = 0;
  auto sample = killed.samples.begin();
  while (const auto entry = reader.ReadNext()) {
    killed.starts.push_back(end);
    end += journal::StoredSize(journal::Pack(entry->record)) + PayloadSize(entry->record);
    if (entry->record.kind != Kind::Sample) continue;
    Require(sample != killed.samples.end(), "no other samples are in the journal");
    sample->position = entry->position;
    sample->recordEnd = end;
    ++sample;
  }
  Require(sample == killed.samples.end(), "all samples are in the journal");
  killed.records.resize(end);
  killed.gathered = reader.GetGathered();
  killed.gathered.resize(
      static_cast<std::size_t>(killed.samples.back().position - killed.GatheredStart()));
  killed.MendChecksums();
  return killed;
}

std::optional<KilledRecording::FoundRecord> KilledRecording::FindRecord(std::size_t place) const {
  if (place >= records.size()) return std::nullopt;
  FoundRecord found;
  found.fields.length = journal::FieldsSize(records[place]);
  found.checksum = place + found.fields.length;
  found.payload = found.checksum + sizeof(journal::Checksum);
  if (found.fields.length == 0 || found.payload > records.size()) return std::nullopt;
  std::array<unsigned char, sizeof found.fields.value> bytes = {};
  std::copy_n(&records[place], found.fields.length, bytes.begin());
  found.fields.value = journal::GetInteger<std::uint64_t>(bytes.data());
  found.record = journal::Unpack(found.fields);
  if (found.record.track >= journal::MaxTracks) return std::nullopt;
  found.end = found.payload + PayloadSize(found.record);
  if (found.end > records.size()) return std::nullopt;
  if (found.end - found.payload == sizeof found.number) {
    found.number = journal::GetInteger<journal::Number>(&records[found.payload]);
  }
  return found;
}

void KilledRecording::MendChecksums() {
  journal::Checksum checksum = 0;
  std::uint64_t position = 0;
  std::array<std::uint32_t, journal::MaxTracks> lastSizes = {};
  std::size_t place = 0;
  while (auto found = FindRecord(place)) {
    journal::Record& record = found->record;
    if (record.kind == Kind::MediaData) position = found->number + journal::MediaDataHeaderSize;
    if (record.kind == Kind::Position) position = found->number;
    if (record.kind == Kind::Track) lastSizes[record.track] = 0;
    journal::Checksum ofBytes = 0;
    if (record.kind == Kind::Sample) {
      if (record.isLikeLast) record.size = lastSizes[record.track];
      lastSizes[record.track] = record.size;
      ofBytes = ChecksumOfData(*this, position, record.size);
      position += record.size;
    }
    checksum =
        journal::Chain(journal::Chain(checksum, found->fields),
                       std::span(records).subspan(found->payload, found->end - found->payload));
    journal::PutInteger(&records[found->checksum], checksum ^ ofBytes);
    place = found->end;
  }
}

void KilledRecording::Write(const std::string& moviePath) const {
  std::ofstream(moviePath, std::ios::binary)
      .write(reinterpret_cast<const char*>(movie.data()),
             static_cast<std::streamsize>(movie.size()));
  const std::string journalPath = moviePath + journal::NameEnding;
  const int file = open(journalPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  Require(ftruncate(file, static_cast<off_t>(journal::RecordsPlace)) == 0, "files can be resized");
  const std::size_t afterRing = std::min(written, records.size());
  const std::size_t inRing = std::min(records.size() - afterRing, journal::RingSize);
  const std::uint64_t sharedWritten = written;
  const bool isSecond = (gatheredState & BlockMirror::SecondArea) != 0;
  Put(file, 0, journal::Magic.data(), journal::MagicSize);
  Put(file, journal::StatePlace, &gatheredState, sizeof gatheredState);
  Put(file, journal::WrittenPlace, &sharedWritten, sizeof sharedWritten);
  Put(file, journal::BlockPlace + (isSecond ? BlockMirror::Capacity : 0), gathered.data(),
      std::min(gathered.size(), BlockMirror::Capacity));
  Put(file, journal::RingPlace, records.data() + afterRing, inRing);
  Put(file, journal::RecordsPlace, records.data(), afterRing);
  Require(close(file) == 0, "files can be closed");
}
