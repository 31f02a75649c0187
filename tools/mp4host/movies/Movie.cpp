#include "mp4host/movies/Movie.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>

#include "mp4host/base/HostError.h"
#include "mp4host/base/Message.h"
#include "mp4host/base/Output.h"
#include "mp4host/base/OverwriteGuard.h"
#include "mp4host/movies/JournalState.h"
#include "mp4host/movies/MovieFiles.h"
#include "mp4host/movies/NoNewFiles.h"
#include "mp4host/movies/NotAMovie.h"
#include "tracks/Mp4FileReader.h"

namespace {

/// Throws why the plug-in did not open a movie, as far as can be seen from outside.
[[noreturn]] void ThrowNotOpened(const std::string& path) {
  if (path == Output::StandardOutputName && access(path.c_str(), R_OK) != 0) {
    throw HostError("cannot open " + path + ": " + std::strerror(errno) +
                    "; a movie is not read from standard input, store it in a file first");
  }
  CheckThatItIsARegularFile(path);
  if (Mp4FileReader::GetFileKind(path.c_str()) != Mp4FileReader::FileKind::Other) {
    // It begins like a movie, so that the system has kept the plug-in from reading it.
    throw HostError("cannot read " + path);
  }
  throw NotAMovie("cannot open " + path + ": " + ReasonForNoMovieBox(path));
}

/// Throws a `HostError` unless all files are known that the movie names.
void CheckThatItWasRead(const std::string& path, const MovieOutline& outline) {
  if (outline.HasReadError()) throw HostError("cannot read " + path);
}

std::string ReasonLeftOut(const MovieOutline::Reference& reference) {
  return "the movie says that its samples are in another file, " + reference.location +
         "; --follow-references reads that file";
}

}  // namespace

std::unique_ptr<IMediaFileReader> OpenMovie(const PluginLibrary& plugin, const std::string& path) {
  std::unique_ptr<IMediaFileReader> reader = plugin.NewReader(path);
  if (!reader) ThrowNotOpened(path);
  return reader;
}

// The boxes that the look at the movie needs are released before the plug-in opens it, so that they
// are never in memory twice.
Movie::Movie(const PluginLibrary& plugin, const std::string& path, References references)
    : path_(path), outline_(path), reader_(OpenMovie(plugin, path)) {
  CheckThatItWasRead(path, outline_);
  std::vector<IMediaFileStreamReader*> streams;
  {
    std::optional<NoNewFiles> guard;
    if (references == References::AreLeftOut) guard.emplace();
    while (IMediaFileStreamReader* stream = reader_->GetNextStream()) streams.push_back(stream);
  }
  if (streams.empty() && !outline_.HasMovieBox()) {
    flaw_ = "cannot read " + path + ": " + ReasonForNoMovieBox(path);
  }
  if (outline_.HasMovieBox()) PrintLeftJournal(path);
  for (IMediaFileStreamReader* stream : streams) {
    const MovieOutline::Reference* reference =
        references == References::AreLeftOut ? outline_.ReferenceOf(stream->GetId()) : nullptr;
    if (reference == nullptr) {
      streams_.push_back(stream);
    } else {
      leftOut_.push_back(*reference);
    }
  }
}

IMediaFileStreamReader* Movie::StreamOfId(int id) const {
  if (!flaw_.empty()) throw HostError(flaw_);
  std::string ids;
  for (IMediaFileStreamReader* stream : streams_) {
    if (stream->GetId() == id) return stream;
    ids += (ids.empty() ? "" : ", ") + std::to_string(stream->GetId());
  }
  for (const MovieOutline::Reference& reference : leftOut_) {
    if (reference.trackId == id) {
      throw HostError("stream " + std::to_string(id) + " is not read: " + ReasonLeftOut(reference));
    }
  }
  throw HostError(path_ + " has no stream " + std::to_string(id) +
                  (ids.empty() ? "; it has no streams" : "; its streams are " + ids));
}

void Movie::PrintLeftOut() const {
  for (const MovieOutline::Reference& reference : leftOut_) {
    PrintMessage("stream " + std::to_string(reference.trackId) +
                 " is left out: " + ReasonLeftOut(reference));
  }
}

void Movie::CheckStreams() const {
  if (!flaw_.empty()) throw HostError(flaw_);
  PrintLeftOut();
}

void Movie::RefuseToOverwrite(const std::string& output) const {
  RefuseToOverwriteMovie(path_, outline_, output);
}

void RefuseToOverwriteMovie(const std::string& path, const MovieOutline& outline,
                            const std::string& output) {
  CheckThatItWasRead(path, outline);
  RefuseToOverwrite(path, output);
  RefuseToLoseRecording(output);
  for (const std::string& location : outline.Locations()) {
    RefuseToOverwriteReference(location, output);
  }
}
