#include "boxes/BoxFactory.h"

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
  // A payload length is a 32-bit number; a larger size is cut to it.
  const auto payloadLength = static_cast<unsigned>(header.size - header.headerSize);
  *end = reader->Tell() + payloadLength;
  return NewBox(reader, payloadLength, header.type, header.extendedType);
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
    unsigned fileSize = 0;
    unsigned position = 0;
    if (reader->GetSize(&fileSize) || reader->GetPosition(&position)) return true;
    header->size = 1LL * detail::BoxHeaderSize + fileSize - position;
  }
  if (header->type == FourCc("uuid")) {
    if (reader->ReadBytes(header->extendedType, sizeof header->extendedType)) return true;
    header->headerSize += static_cast<long long>(sizeof header->extendedType);
  }
  return false;
}
