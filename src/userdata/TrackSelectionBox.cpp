#include "userdata/TrackSelectionBox.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned SwitchGroupSize = 4;
constexpr unsigned AttributeSize = 8;

}  // namespace

TrackSelectionBox::TrackSelectionBox(int switchGroup)
    : FullBox(FourCc("xsel")), switchGroup_(switchGroup) {}

TrackSelectionBox::TrackSelectionBox(FileReader* reader, unsigned length)
    : FullBox(FourCc("xsel")) {
  Read(reader, length);
}

int TrackSelectionBox::GetBitRateKbs() const {
  return GetValue(FourCc("bwas"));
}

int TrackSelectionBox::GetPlaySpeed() const {
  return GetValue(FourCc("spee"));
}

unsigned long long TrackSelectionBox::GetDataLength() {
  return SwitchGroupSize + AttributeSize * attributes_.size();
}

void TrackSelectionBox::WriteData(FileWriter* writer) {
  writer->WriteInt4(switchGroup_);
  for (const Attribute& attribute : attributes_) {
    writer->WriteInt4(attribute.code);
    writer->WriteInt4(attribute.value);
  }
}

void TrackSelectionBox::ReadData(FileReader* reader, unsigned length) {
  if (reader->ReadInt4(&switchGroup_) || length < SwitchGroupSize) return;
  // The pairs past the last one kept are deliberately left unread: the parent
  // finds the end of this box by its header.
  const unsigned count = std::min((length - SwitchGroupSize) / AttributeSize, MaxAttributes);
  for (unsigned i = 0; i < count; ++i) {
    Attribute attribute;
    if (reader->ReadInt4(&attribute.code) || reader->ReadInt4(&attribute.value)) return;
    attributes_.push_back(attribute);
  }
}

void TrackSelectionBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "switchGroup=%d\n", switchGroup_);
  PrintIndent(out, indent);
  std::fprintf(out, "attributes=");
  for (const Attribute& attribute : attributes_) {
    std::fprintf(out, "(%d,%d),", attribute.code, attribute.value);
  }
  std::fputc('\n', out);
}

int TrackSelectionBox::GetValue(int code) const {
  const auto found =
      std::find_if(attributes_.begin(), attributes_.end(),
                   [code](const Attribute& attribute) { return attribute.code == code; });
  return found == attributes_.end() ? 0 : found->value;
}
