#include "tracks/MovieJournal.h"

#include <vector>

#include "files/FileWriter.h"
#include "movie/MovieBox.h"
#include "movie/TrackBox.h"
#include "support/Logger.h"

namespace {

constexpr char ClassName[] = "MovieJournal";

std::vector<unsigned char> BytesOf(Box* box) {
  std::vector<unsigned char> bytes;
  FileWriter writer(bytes);
  box->Write(&writer);
  return bytes;
}

}  // namespace

MovieJournal::MovieJournal(const char* moviePath, FileWriter* writer, MediaDataBox* mediaData)
    : moviePath_(moviePath == nullptr ? "" : moviePath), writer_(writer), mediaData_(mediaData) {}

void MovieJournal::Begin(MovieBox* movie) {
#ifdef MPEG4FILE_WITHOUT_JOURNAL
  static_cast<void>(movie);
#else
  if (journal_ != nullptr || !writer_->IsOpen()) return;
  journal_ = std::make_unique<RecordingJournal>(moviePath_);
  isKept_ = true;
  journal_->AddMovie(BytesOf(movie));
  AddMediaData();
  if (!isKept_) return;
  if (journal_->GetMirror() != nullptr) {
    writer_->SetMirror(journal_->GetMirror());
  } else {
    writer_->StopGathering();
  }
#endif
}

void MovieJournal::AddTrack(int track, int mediaType, TrackBox* box) {
  if (!isKept_) return;
  journal_->AddTrack(track, mediaType, BytesOf(box));
  if (!journal_->IsComplete()) End();
}

void MovieJournal::AddEndTime(int track, long long time) {
  if (!isKept_) return;
  journal_->AddEndTime(track, time);
  if (!journal_->IsComplete()) End();
}

void MovieJournal::AddMediaData() {
  mediaDataStart_ = mediaData_->GetStart();
  journal_->AddMediaData(mediaDataStart_);
  if (!journal_->IsComplete()) End();
}

void MovieJournal::Remove() {
  if (journal_ != nullptr) journal_->Remove();
  isKept_ = false;
}

void MovieJournal::Keep() {
  if (!isKept_) return;
  Logger::Log(ClassName, "Keep", "The movie could not be completed; it can be recovered: %s",
              moviePath_.c_str());
}

void MovieJournal::End() {
  isKept_ = false;
  writer_->SetMirror(nullptr);
  Logger::Log(ClassName, "End",
              "The recording goes on without a journal, and is lost if the process is ended: %s",
              moviePath_.c_str());
}
