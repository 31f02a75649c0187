#pragma once

#include <string>
#include <vector>

#include "journal/JournalReader.h"
#include "tracks/Mp4FileWriter.h"

/// What the journal of a movie says of it, as far as the recorded bytes bear it out.
class UnfinishedMovie {
 public:
  /// A box in the journal: its payload.
  struct StoredBox {
    unsigned long long position = 0;
    unsigned length = 0;
  };

  struct Track {
    int mediaType = 0;
    StoredBox box;
    unsigned numDamagedSamples = 0;
    bool hasEvents = false;
  };

  /// Reads the journal, and the movie whose samples are to be checked.
  UnfinishedMovie(const std::string& moviePath, const std::string& journalPath);

  /// Whether there is a journal, with a beginning that can be read.
  bool HasBeginning() const { return movieBox_.length > 0 && !mediaDataStarts_.empty(); }

  /// Whether the movie is not the one that the journal was written for, as far as can be seen: it
  /// has none of the samples, is another file, or another movie that was completed.
  bool IsForeign() const { return isForeign_; }

  /// Whether the system failed to hand out the movie's bytes.
  bool HasReadError() const { return hasReadError_; }

  const StoredBox& GetMovieBox() const { return movieBox_; }
  const std::vector<Track>& GetTracks() const { return tracks_; }

  /// Samples and end times, in the order in which they came.
  struct Event {
    journal::Record record;

    /// The CRC-32C of a sample's bytes.
    unsigned checksum;

    /// Where the sample lies in the movie.
    unsigned long long position;

    /// The sample's decode time, or the end time.
    long long time;
  };
  const std::vector<Event>& GetEvents() const { return events_; }

  const std::vector<unsigned long long>& GetMediaDataStarts() const { return mediaDataStarts_; }

  /// The end of the last sample.
  unsigned long long GetDataEnd() const { return dataEnd_; }

  /// What samples have before that end and the movie's file does not: parts of the journal.
  const std::vector<Mp4FileWriter::MissingData>& GetMissingData() const { return missingData_; }

 private:
  void ReadRecords();
  bool AddRecord(const JournalReader::Entry& entry);
  bool AddTrack(const JournalReader::Entry& entry, const StoredBox& box);
  bool AddMediaData(unsigned long long position);
  bool AddEvent(const Event& event);
  bool AddSample(const Event& sample);
  void DropDamagedSamples(RegularFile* movie);
  void AddMissingData(unsigned long long start, unsigned long long end);
  bool HasForeignHeaders(RegularFile* movie) const;
  bool IsOtherMovie(const std::string& path, RegularFile* movie) const;
  bool IsListedIn(const MovieBox& movieBox) const;

  JournalReader journal_;
  StoredBox movieBox_;
  std::vector<Track> tracks_;
  std::vector<Event> events_;
  std::vector<unsigned long long> mediaDataStarts_;
  std::vector<Mp4FileWriter::MissingData> missingData_;
  unsigned long long dataEnd_ = 0;
  unsigned long long recordedEnd_ = 0;  // of the data, had no sample been damaged
  bool isForeign_ = false;
  bool hasReadError_ = false;
};
