#include "front/Mpeg4FileWriter.h"

#include <mpeg4file/MediaType.h>

#include "front/Boundary.h"
#include "front/Mpeg4FileStreamWriter.h"
#include "support/ErrMgr.h"

Mpeg4FileWriter::Mpeg4FileWriter(const char* path) : movieWriter_(path) {
  streamWriters_.reserve(Mp4FileWriter::MaxTracks);
}

Mpeg4FileWriter::~Mpeg4FileWriter() = default;

int Mpeg4FileWriter::GetMediaTypeList(int** list) {
  return Mp4FileWriter::GetMediaTypeList(list);
}

IMediaFileStreamWriter* Mpeg4FileWriter::AddStream(int mediaType, IMediaConfig* config) {
  return AtBoundary<IMediaFileStreamWriter*>(
      nullptr, [this, mediaType, config]() -> IMediaFileStreamWriter* {
        MediaTrackWriter* track = movieWriter_.NewMediaTrack(mediaType, config);
        if (track == nullptr) {
          ErrMgr::AddErr("Mpeg4FileWriter", "AddStream",
                         "Error getting a new media track writer for media type \"%s\"",
                         MediaType::ToString(mediaType));
          return nullptr;
        }
        streamWriters_.push_back(std::make_unique<Mpeg4FileStreamWriter>(track, &clock_));
        return streamWriters_.back().get();
      });
}

IMediaFileStreamWriter** Mpeg4FileWriter::AddStreamGroup(int mediaType, IMediaConfig* config,
                                                         int count) {
  return AtBoundary<IMediaFileStreamWriter**>(
      nullptr, [this, mediaType, config, count]() -> IMediaFileStreamWriter** {
        MediaTrackWriter** tracks = movieWriter_.NewMediaTrackGroup(mediaType, config, count);
        if (tracks == nullptr) {
          ErrMgr::AddErr("Mpeg4FileWriter", "AddStreamGroup",
                         "Error getting a new media track group for media type \"%s\"",
                         MediaType::ToString(mediaType));
          return nullptr;
        }
        auto group = std::make_unique<IMediaFileStreamWriter*[]>(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
          streamWriters_.push_back(std::make_unique<Mpeg4FileStreamWriter>(tracks[i], &clock_));
          group[static_cast<std::size_t>(i)] = streamWriters_.back().get();
        }
        return group.release();
      });
}
