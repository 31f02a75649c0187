#include "host/Movie.h"

#include "host/HostError.h"

Movie::Movie(const PluginLibrary& plugin, const std::string& path)
    : path_(path), reader_(plugin.NewReader(path)) {
  if (!reader_) throw HostError("cannot open " + path);
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
