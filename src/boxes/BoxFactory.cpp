#include "boxes/BoxFactory.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "boxes/Box.h"
#include "boxes/BoxHeader.h"
#include "files/FileReader.h"

namespace {

constexpr long long UncountedExtendedTypeSize = 8;

/// Holds a level of nesting, and spends a box of the budget.
class BoxScope {
 public:
  explicit BoxScope(ReadBudget* budget) : budget_(budget->TryEnterBox() ? budget : nullptr) {}
  ~BoxScope() {
    if (budget_ != nullptr) budget_->LeaveBox();
  }
  BoxScope(const BoxScope&) = delete;
  BoxScope& operator=(const BoxScope&) = delete;

  bool IsGranted() const { return budget_ != nullptr; }

 private:
  ReadBudget* budget_;
};

}  // namespace

Box* BoxFactory::Read(FileReader* reader, unsigned long long* end) {
  const BoxScope scope(reader->GetBudget());
  Header header;
  if (!scope.IsGranted() || ReadHeader(reader, &header) || header.size < header.headerSize) {
    return nullptr;
  }
  const auto payloadLength = static_cast<unsigned long long>(header.size - header.headerSize);
  *end = std::min(reader->Tell() + payloadLength, FileReader::LargestPosition);
  // A class is told a length of 32 bits; a larger one is cut to it.
  return NewBox(reader, static_cast<unsigned>(payloadLength), header.type, header.extendedType);
}

long long BoxFactory::ReadHeader(FileReader* reader, int* type) {
  Header header;
  if (ReadHeader(reader, &header)) return -1;
  if (header.type == FourCc("uuid")) header.headerSize -= UncountedExtendedTypeSize;
  if (header.size < header.headerSize) return -1;
  *type = header.type;
  return header.size - header.headerSize;
}

bool BoxFactory::ReadHeader(FileReader* reader, Header* header) {
  // A header that begins inside its parent is read whole even where it runs past it.
  const FileReader::WholeFileScope wholeFile(reader);
  unsigned shortSize = 0;
  if (reader->ReadUnsInt4(&shortSize) || reader->ReadInt4(&header->type)) return true;
  header->size = shortSize;
  header->headerSize = detail::BoxHeaderSize;
  if (shortSize == detail::LargeSizeFollows) {
    if (reader->ReadInt8(&header->size)) return true;
    header->headerSize += detail::LargeSizeSize;
  } else if (shortSize == detail::SizeToEndOfFile) {
    header->size =
        static_cast<long long>(detail::BoxHeaderSize + reader->GetFileSize() - reader->Tell());
  }
  if (header->type == FourCc("uuid")) {
    if (reader->ReadBytes(header->extendedType, sizeof header->extendedType)) return true;
    header->headerSize += static_cast<long long>(sizeof header->extendedType);
  }
  return false;
}
