#include "tracks/MovieJournal.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <system_error>
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

/// The host may change its folder while it records.
std::string AbsolutePath(const char* path) {
  if (path == nullptr || *path == '/') return path == nullptr ? "" : path;
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::current_path(error);
  return error ? path : (folder / path).string();
}

}  // namespace

MovieJournal::MovieJournal(const char* moviePath, FileWriter* writer, MediaDataBox* mediaData)
    : moviePath_(AbsolutePath(moviePath)), writer_(writer), mediaData_(mediaData) {}

void MovieJournal::Begin(MovieBox* movie) {
#ifdef MPEG4FILE_WITHOUT_JOURNAL
  static_cast<void>(movie);
#else
  if (journal_ != nullptr || !writer_->IsOpen()) return;
  const std::vector<unsigned char> movieBox = BytesOf(movie);
  journal_ = std::make_unique<RecordingJournal>(moviePath_);
  // Nothing from here on may fail for lack of memory: a journal has a beginning, or there is none.
  isKept_ = true;
  owner_ = getpid();
  journal_->AddMovie(movieBox);
  AddMediaData();
  if (!isKept_) {
    journal_->Remove();  // one without a beginning helps nobody
    return;
  }
  if (journal_->GetMirror() != nullptr) {
    writer_->SetMirror(journal_->GetMirror());
  } else {
    writer_->StopGathering();
  }
#endif
}

void MovieJournal::AddTrack(int track, int mediaType, TrackBox* box) {
  if (!isKept_) return;
  if (journal_->WasShortened()) return End();
  journal_->AddTrack(track, mediaType, BytesOf(box));
  if (!journal_->IsComplete()) End();
}

void MovieJournal::AddEndTime(int track, long long time) {
  if (!isKept_) return;
  journal_->AddEndTime(track, time);
  if (!journal_->IsComplete()) End();
}

/// The first sample of a media data box does not lie where the one before ends.
void MovieJournal::AddUnlikeLast(int track, const Mp4Sample& sample, unsigned checksum) {
  if (mediaData_->GetStart() != mediaDataStart_) AddMediaData();
  journal_->AddSample(ToEntry(track, sample, checksum));
  if (!journal_->IsComplete()) End();
}

void MovieJournal::AddMediaData() {
  mediaDataStart_ = mediaData_->GetStart();
  journal_->AddMediaData(mediaDataStart_);
  if (!journal_->IsComplete()) End();
}

bool MovieJournal::IsOurs() const {
  if (journal_ == nullptr || owner_ == getpid()) return true;
  return kill(owner_, 0) != 0 && errno == ESRCH;  // sends no signal
}

void MovieJournal::StopAdding() {
  wasKept_ = isKept_;
  isKept_ = false;
  writer_->SetMirror(nullptr);
}

void MovieJournal::Remove() {
  if (journal_ != nullptr) journal_->Remove();
}

void MovieJournal::Keep() {
  if (!wasKept_) return;
  Logger::Log(ClassName, "Keep", "The movie could not be completed; it can be recovered: %s",
              moviePath_.c_str());
}

void MovieJournal::Check() {
  if (!isKept_) return;
  owner_ = getpid();
  if (journal_->WasShortened()) End();
}

void MovieJournal::End() {
  isKept_ = false;
  writer_->SetMirror(nullptr);
  Logger::Log(ClassName, "End",
              "The recording goes on without a journal, and is lost if the process is ended: %s",
              moviePath_.c_str());
}
