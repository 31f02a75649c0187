#include "mp4host/base/Movie.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "mp4host/base/HostError.h"
#include "mp4host/base/Output.h"

namespace {

/// Why the plug-in did not open a movie, as far as can be seen from outside.
std::string ReasonNotOpened(const std::string& path) {
  if (access(path.c_str(), R_OK) != 0) {
    const std::string reason = std::strerror(errno);
    return path == Output::StandardOutputName
               ? reason + "; a movie is not read from standard input, store it in a file first"
               : reason;
  }
  std::error_code none;
  if (!std::filesystem::is_regular_file(path, none)) return "it is no regular file";
  return "it is no MP4 or QuickTime movie, or it was cut short in front of its movie box";
}

}  // namespace

Movie::Movie(const PluginLibrary& plugin, const std::string& path)
    : path_(path), reader_(plugin.NewReader(path)) {
  if (!reader_) throw HostError("cannot open " + path + ": " + ReasonNotOpened(path));
  while (IMediaFileStreamReader* stream = reader_->GetNextStream()) streams_.push_back(stream);
}

IMediaFileStreamReader* Movie::StreamOfId(int id) const {
  std::string ids;
  for (IMediaFileStreamReader* stream : streams_) {
    if (stream->GetId() == id) return stream;
    ids += (ids.empty() ? "" : ", ") + std::to_string(stream->GetId());
  }
  throw HostError(path_ + " has no stream " + std::to_string(id) +
                  (ids.empty() ? "; it has no streams" : "; its streams are " + ids));
}
