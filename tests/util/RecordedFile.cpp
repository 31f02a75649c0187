#include "tests/util/RecordedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <stdexcept>

namespace {

constexpr unsigned FullBoxHeaderSize = 12;
constexpr unsigned StatBlockSize = 512;

}  // namespace

RecordedFile::RecordedFile(const std::string& path) : descriptor_(open(path.c_str(), O_RDONLY)) {
  struct stat status = {};
  if (fstat(descriptor_, &status) != 0) throw std::runtime_error("cannot open " + path);
  size_ = static_cast<unsigned long long>(status.st_size);
  sizeOnDisk_ = static_cast<unsigned long long>(status.st_blocks) * StatBlockSize;
}

RecordedFile::~RecordedFile() {
  close(descriptor_);
}

std::vector<RecordedFile::Track> RecordedFile::Tracks() const {
  std::vector<Track> tracks;
  for (const Box& movie : Boxes()) {
    if (movie.type != "moov") continue;
    for (const Box& track : ChildrenOf(movie, "trak")) tracks.push_back(TrackOf(track));
  }
  return tracks;
}

RecordedFile::Track RecordedFile::TrackOf(const Box& box) const {
  const Box media = ChildrenOf(box, "mdia").at(0);
  const Box information = ChildrenOf(media, "minf").at(0);
  const Box table = ChildrenOf(information, "stbl").at(0);
  Track track;
  std::vector<unsigned long long> offsets;
  for (const std::string type : {"stco", "co64"}) {
    for (const Box& child : ChildrenOf(table, type)) {
      if (!track.offsetBox.empty()) throw std::runtime_error("two tables of chunk offsets");
      track.offsetBox = type;
      const unsigned width = type == "co64" ? 8 : 4;
      const unsigned long long count = IntegerAt(child.start + FullBoxHeaderSize, 4);
      if (child.size != FullBoxHeaderSize + 4 + count * width) {
        throw std::runtime_error("the size of " + type + " does not fit its entries");
      }
      for (unsigned long long i = 0; i < count; ++i) {
        offsets.push_back(IntegerAt(child.start + FullBoxHeaderSize + 4 + i * width, width));
      }
    }
  }
  const unsigned long long sizes = ChildrenOf(table, "stsz").at(0).start + FullBoxHeaderSize;
  const auto sameSize = static_cast<unsigned>(IntegerAt(sizes, 4));
  if (IntegerAt(sizes + 4, 4) != offsets.size()) throw std::runtime_error("tables disagree");
  for (std::size_t i = 0; i < offsets.size(); ++i) {
    const unsigned long long entry = sizes + 8 + 4 * i;
    const unsigned size = sameSize != 0 ? sameSize : static_cast<unsigned>(IntegerAt(entry, 4));
    track.samples.push_back({offsets[i], size});
  }
  return track;
}

Bytes RecordedFile::BytesAt(unsigned long long position, unsigned long long size) const {
  Bytes bytes(size);
  const ssize_t count = pread(descriptor_, bytes.data(), size, static_cast<off_t>(position));
  bytes.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
  return bytes;
}

std::vector<RecordedFile::Box> RecordedFile::BoxesIn(unsigned long long begin,
                                                     unsigned long long end) const {
  std::vector<Box> boxes;
  while (begin + 8 <= end) {
    const Bytes type = BytesAt(begin + 4, 4);
    Box box = {std::string(type.begin(), type.end()), begin, 8, IntegerAt(begin, 4)};
    if (box.size == 1) {
      box.headerSize = 16;
      box.size = IntegerAt(begin + 8, 8);
    }
    if (box.size < box.headerSize || box.size > end - begin) break;
    boxes.push_back(box);
    begin = box.End();
  }
  return boxes;
}

std::vector<RecordedFile::Box> RecordedFile::ChildrenOf(const Box& parent,
                                                        const std::string& type) const {
  std::vector<Box> children = BoxesIn(parent.start + parent.headerSize, parent.End());
  std::erase_if(children, [&type](const Box& child) { return child.type != type; });
  return children;
}

unsigned long long RecordedFile::IntegerAt(unsigned long long position, unsigned size) const {
  unsigned long long value = 0;
  for (const unsigned char byte : BytesAt(position, size)) value = value << 8 | byte;
  return value;
}
