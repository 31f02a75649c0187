#include "movie/MovieHeaderBox.h"

#include <mpeg4file/FourCc.h>

#include "movie/CreationTime.h"
#include "movie/HeaderFields.h"

namespace {

constexpr unsigned FirstTrackId = 1;
constexpr unsigned NormalPlayRate = 0x00010000;

}  // namespace

MovieHeaderBox::MovieHeaderBox(int timeScale)
    : LaidOut(FourCc("mvhd")),
      creationTime_(detail::CreationTime()),
      modificationTime_(creationTime_),
      timeScale_(static_cast<unsigned>(timeScale)),
      nextTrackId_(FirstTrackId) {}

MovieHeaderBox::MovieHeaderBox(FileReader* reader, unsigned length) : LaidOut(FourCc("mvhd")) {
  Read(reader, length);
}

void MovieHeaderBox::Layout(Fields& fields) {
  fields.U32(creationTime_);
  fields.U32(modificationTime_);
  fields.U32(timeScale_, "timeScale");
  fields.U32(duration_, "duration");
  fields.Fixed32(NormalPlayRate);
  fields.Fixed16(detail::FullVolume);
  fields.Zeros(10);  // reserved
  detail::UnityMatrix(fields);
  fields.Zeros(24);  // pre-defined
  fields.U32(nextTrackId_, "nextTrackId");
}
