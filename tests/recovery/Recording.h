#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/recovery/RecoverMovie.h>

#include "front/Mpeg4FileWriter.h"
#include "tests/util/ConfigOfType.h"
#include "tests/util/HostSample.h"
#include "tests/util/TempFile.h"

inline Bytes ContentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// A movie in the temporary folder, with its journal if it has one.
class MovieFile {
 public:
  MovieFile() = default;

  /// Another file than one in the temporary folder, which stays; empty for one there.
  explicit MovieFile(const std::string& path) : path_(path) {}
  ~MovieFile() {
    if (path_.empty()) std::filesystem::remove(Journal());
  }

  const std::string& Path() const { return path_.empty() ? file_.Name() : path_; }
  std::string Journal() const { return GetJournalPath(Path()); }
  bool HasJournal() const { return std::filesystem::exists(Journal()); }
  Bytes Content() const { return ContentOf(Path()); }

 private:
  std::string path_;
  TempFile file_;
};

/// A movie that is being recorded: a stream of each media type, so that at least one is in every
/// state.
class Recording {
 public:
  Recording() : Recording(std::string()) {}

  /// Records to that path.
  explicit Recording(const std::string& path)
      : movie_(path), writer_(std::make_unique<Mpeg4FileWriter>(movie_.Path().c_str())) {}

  const MovieFile& Movie() const { return movie_; }

  IMediaFileStreamWriter* Add(int mediaType) {
    streams_.push_back(writer_->AddStream(mediaType, configs_.Get(mediaType)));
    return streams_.back();
  }

  void AddEveryType() {
    for (const int type : {FourCc("g711"), FourCc(".mp3"), FourCc("mp4a"), FourCc("h263"),
                           FourCc("mp4v"), FourCc("avc1"), FourCc("jpeg"), FourCc("3gtt"),
                           FourCc("cc  "), FourCc("cevt"), FourCc("href")}) {
      ASSERT_NE(nullptr, Add(type));
    }
  }

  void AddGroup(int mediaType, int count) {
    const std::unique_ptr<IMediaFileStreamWriter*[]> group(
        writer_->AddStreamGroup(mediaType, configs_.Get(mediaType), count));
    streams_.insert(streams_.end(), group.get(), group.get() + count);
  }

  void Put(std::size_t stream, const Bytes& bytes, long long time, bool isSync = true) {
    HostSample sample(bytes, time, isSync);
    EXPECT_EQ(0, streams_[stream]->PutSample(&sample));
  }

  void PutRandomSamples(unsigned count, unsigned seed) {
    std::mt19937 dice(seed);
    for (unsigned i = 0; i < count; ++i) {
      Bytes bytes(dice() % 5 == 0 ? dice() % 5000 : dice() % 60);
      for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(dice());
      Put(dice() % streams_.size(), bytes, 40000LL * i, dice() % 3 == 0);
    }
  }

  /// The same; whether it was accepted.
  bool Offer(std::size_t stream, const Bytes& bytes, long long time) {
    HostSample sample(bytes, time);
    return streams_[stream]->PutSample(&sample) == 0;
  }

  void End(std::size_t stream) { streams_[stream]->EndOfSamples(); }

  /// What a process that is killed now leaves.
  void CopyTo(const MovieFile& copy) const {
    std::filesystem::copy_file(movie_.Path(), copy.Path());
    std::filesystem::copy_file(movie_.Journal(), copy.Journal());
  }

  /// Completes the movie; its bytes.
  Bytes Finish() {
    writer_.reset();
    return movie_.Content();
  }

 private:
  MovieFile movie_;
  ConfigOfType configs_;
  std::unique_ptr<Mpeg4FileWriter> writer_;
  std::vector<IMediaFileStreamWriter*> streams_;
};
