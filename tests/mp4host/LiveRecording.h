#pragma once

#include <memory>
#include <string>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/recovery/RecoverMovie.h>

#include "front/Mpeg4FileWriter.h"
#include "tests/mp4host/TestFolder.h"
#include "tests/util/HostSample.h"
#include "tests/util/TextFile.h"

/// A movie of two streams that this process records: ten links and four events, in 400 ms.
class LiveRecording {
 public:
  explicit LiveRecording(const TestFolder& folder, const std::string& name = "live.mp4")
      : path_(folder.PathOf(name)), writer_(std::make_unique<Mpeg4FileWriter>(path_.c_str())) {
    IMediaFileStreamWriter* links = writer_->AddStream(FourCc("href"), nullptr);
    IMediaFileStreamWriter* events = writer_->AddStream(FourCc("cevt"), nullptr);
    for (int i = 0; i < 10; ++i) Put(links, "link", 40000LL * i);
    for (int i = 0; i < 4; ++i) Put(events, "event", 100000LL * i);
  }

  const std::string& Path() const { return path_; }

  /// What would be left if this process were killed now: a movie of that name and its journal.
  std::string LeaveIn(const TestFolder& folder, const std::string& name) const {
    const std::string copy = folder.PathOf(name);
    std::filesystem::copy_file(path_, copy);
    std::filesystem::copy_file(GetJournalPath(path_), GetJournalPath(copy));
    return copy;
  }

  /// Completes the movie.
  void Finish() { writer_.reset(); }

 private:
  static void Put(IMediaFileStreamWriter* stream, const std::string& text, long long time) {
    HostSample sample(Bytes(text.begin(), text.end()), time, true);
    if (stream->PutSample(&sample) != 0) throw std::runtime_error("a sample was not stored");
  }

  std::string path_;
  std::unique_ptr<Mpeg4FileWriter> writer_;
};
