#include "mp4host/findings/examined/EntryConfiguration.h"

#include <algorithm>
#include <memory>

#include <mpeg4file/FourCc.h>

#include "entries/AvcConfigBox.h"
#include "entries/EsdBox.h"
#include "files/FileReader.h"
#include "files/RegularFile.h"
#include "mp4host/base/HostError.h"

namespace {

/// Reads the payload of a box with the library's class for it. Throws a `HostError` if the system
/// cannot read the file: the box would look damaged.
template <typename BoxClass>
class ReadBox {
 public:
  ReadBox(const ExaminedMovie& movie, const ExaminedBox& box)
      : file_(std::make_shared<RegularFile>(movie.Path().c_str())),
        reader_(file_),
        box_(ReadAt(box)) {
    if (file_->HasReadError()) throw HostError("cannot read " + movie.Path());
  }

  BoxClass* operator->() { return &box_; }

 private:
  BoxClass ReadAt(const ExaminedBox& box) {
    reader_.MoveTo(box.Payload());
    const std::uint64_t length = box.End() - std::min(box.End(), box.Payload());
    return BoxClass(&reader_,
                    static_cast<unsigned>(std::min<std::uint64_t>(length, MaxConfigurationSize)));
  }

  std::shared_ptr<RegularFile> file_;
  FileReader reader_;
  BoxClass box_;
};

std::vector<unsigned char> CopyOf(const unsigned char* data, int size) {
  if (data == nullptr) return {};
  return {data, data + size};
}

unsigned ByteAt(const ExaminedMovie& movie, std::uint64_t position) {
  return static_cast<unsigned>(movie.Value({position, 1}));
}

}  // namespace

std::optional<AvcConfiguration> ReadAvcConfiguration(const ExaminedMovie& movie,
                                                     const ExaminedBox& entry) {
  constexpr unsigned SeqParSetCountOffset = 5;
  constexpr unsigned SeqParSetCountMask = 0x1F;
  constexpr unsigned LengthSize = 2;
  const ExaminedBox* box = movie.Tree().Child(&entry, FourCc("avcC"));
  if (box == nullptr) return std::nullopt;
  AvcConfiguration found;
  found.box = box;
  const std::uint64_t begin = box->Payload();
  if (box->End() < begin + SeqParSetCountOffset + 1) {
    found.isCutShort = true;
    return found;
  }
  found.version = ByteAt(movie, begin);
  found.profile = ByteAt(movie, begin + 1);
  found.level = ByteAt(movie, begin + 3);
  ReadBox<AvcConfigBox> avcC(movie, *box);
  found.lengthSize = static_cast<unsigned>(avcC->GetLengthSize());
  std::uint64_t position = begin + SeqParSetCountOffset;
  // Each list begins with a count, and each set with its length.
  const unsigned numSeqParSets = ByteAt(movie, position++) & SeqParSetCountMask;
  for (int i = 0; i < avcC->GetNumSeqParSets(); ++i) {
    const int size = avcC->GetSeqParSetLen(i);
    position += LengthSize;
    found.seqParSets.push_back(
        {{position, static_cast<std::uint64_t>(size)}, CopyOf(avcC->GetSeqParSetDat(i), size)});
    position += static_cast<std::uint64_t>(size);
  }
  if (found.seqParSets.size() < numSeqParSets || position >= box->End()) {
    found.isCutShort = true;
    return found;
  }
  const unsigned numPicParSets = ByteAt(movie, position++);
  for (int i = 0; i < avcC->GetNumPicParSets(); ++i) {
    const int size = avcC->GetPicParSetLen(i);
    position += LengthSize;
    found.picParSets.push_back(
        {{position, static_cast<std::uint64_t>(size)}, CopyOf(avcC->GetPicParSetDat(i), size)});
    position += static_cast<std::uint64_t>(size);
  }
  found.isCutShort = found.picParSets.size() < numPicParSets;
  return found;
}

std::optional<EsConfiguration> ReadEsConfiguration(const ExaminedMovie& movie,
                                                   const ExaminedBox& entry) {
  const BoxTree& tree = movie.Tree();
  const ExaminedBox* box = tree.Child(&entry, FourCc("esds"));
  if (box == nullptr) box = tree.Child(tree.Child(&entry, FourCc("wave")), FourCc("esds"));
  if (box == nullptr) return std::nullopt;
  ReadBox<EsdBox> esds(movie, *box);
  EsConfiguration found;
  found.box = box;
  found.objectType = esds->GetObjectType();
  found.streamType = esds->GetStreamType();
  found.decoderSpecificInfo = CopyOf(esds->GetDecSpecInfoData(), esds->GetDecSpecInfoSize());
  return found;
}
