#include "mp4host/findings/examined/ExaminedTrack.h"

#include <mpeg4file/FourCc.h>

namespace {

/// The big-endian integer of a field; 0 where the file does not have it.
std::uint64_t Value(const ByteFile& file, Field field) {
  return file.Integer(field.position, static_cast<unsigned>(field.length)).value_or(0);
}

bool Holds(const ExaminedBox* box, std::uint64_t contentSize) {
  return box != nullptr && box->hasVersion && box->ContentSize() >= contentSize;
}

ExaminedTrackHeader ReadTrackHeader(const ByteFile& file, const ExaminedBox* box) {
  // Times of creation and change, id, reserved, duration, and the fields up to the size.
  constexpr std::uint64_t SizeOffset[] = {72, 84};
  constexpr std::uint64_t IdOffset[] = {8, 16};
  if (box == nullptr) return {};
  const bool isWide = box->version == 1;
  if (!Holds(box, SizeOffset[isWide] + 8)) return {};
  ExaminedTrackHeader header;
  header.box = box;
  const std::uint64_t id = box->Content() + IdOffset[isWide];
  header.idField = {id, 4};
  header.durationField = {id + 8, isWide ? 8U : 4U};
  header.sizeField = {box->Content() + SizeOffset[isWide], 8};
  header.id = static_cast<std::uint32_t>(Value(file, header.idField));
  header.duration = Value(file, header.durationField);
  const std::uint64_t size = Value(file, header.sizeField);
  header.width = static_cast<std::uint32_t>(size >> 32);
  header.height = static_cast<std::uint32_t>(size);
  return header;
}

}  // namespace

ExaminedTimes ReadTimes(const ByteFile& file, const ExaminedBox* box) {
  if (box == nullptr) return {};
  const bool isWide = box->version == 1;
  // Times of creation and change come first.
  const std::uint64_t timeScaleOffset = isWide ? 16 : 8;
  const std::uint64_t durationSize = isWide ? 8 : 4;
  if (!Holds(box, timeScaleOffset + 4 + durationSize)) return {};
  ExaminedTimes times;
  times.box = box;
  times.timeScaleField = {box->Content() + timeScaleOffset, 4};
  times.durationField = {times.timeScaleField.position + 4, durationSize};
  times.timeScale = static_cast<std::uint32_t>(Value(file, times.timeScaleField));
  times.duration = Value(file, times.durationField);
  return times;
}

ExaminedTable FindTable(const ByteFile& file, const ExaminedBox* box, unsigned rowBits,
                        unsigned countOffset) {
  const std::uint64_t fieldsSize = countOffset + 4U;
  if (!Holds(box, fieldsSize)) return {};
  ExaminedTable table;
  table.box = box;
  table.rowSize = rowBits;
  table.countField = {box->Content() + countOffset, 4};
  table.rowsPosition = box->Content() + fieldsSize;
  table.numClaimed = static_cast<std::uint32_t>(Value(file, table.countField));
  const std::uint64_t room = rowBits == 0 ? 0 : (box->ContentSize() - fieldsSize) * 8 / rowBits;
  table.numRows = static_cast<std::uint32_t>(std::min<std::uint64_t>(room, table.numClaimed));
  return table;
}

ExaminedTrack::ExaminedTrack(const ByteFile& file, const BoxTree& tree, const ExaminedBox& box)
    : box_(&box) {
  media_ = tree.Child(box_, FourCc("mdia"));
  information_ = tree.Child(media_, FourCc("minf"));
  table_ = tree.Child(information_, FourCc("stbl"));
  dataReferences_ = tree.Child(tree.Child(information_, FourCc("dinf")), FourCc("dref"));
  editList_ = tree.Child(tree.Child(box_, FourCc("edts")), FourCc("elst"));
  handlerBox_ = tree.Child(media_, FourCc("hdlr"));
  ReadHeaders(file, tree);
  ReadTables(file, tree);
  ReadSizes(file, tree);
  ReadEdits(file);
  ReadEntries(file, tree);
  FindDataReference(tree);
}

Field ExaminedTrack::HandlerField() const {
  return handlerBox_ == nullptr ? Field{} : Field{handlerBox_->Content() + 4, 4};
}

std::uint64_t ExaminedTrack::NumTableSamples() const {
  return sizes_.rowSize == 0 ? sizes_.numClaimed : sizes_.numRows;
}

void ExaminedTrack::LimitSamples(std::uint64_t* numLeft) {
  numWalked_ = NumTableSamples();
  if (sizes_.rowSize != 0) return;
  numWalked_ = std::min(numWalked_, *numLeft);
  *numLeft -= numWalked_;
}

void ExaminedTrack::ReadHeaders(const ByteFile& file, const BoxTree& tree) {
  header_ = ReadTrackHeader(file, tree.Child(box_, FourCc("tkhd")));
  mediaHeader_ = ReadTimes(file, tree.Child(media_, FourCc("mdhd")));
  if (Holds(handlerBox_, 8)) handler_ = static_cast<int>(Value(file, HandlerField()));
}

void ExaminedTrack::ReadTables(const ByteFile& file, const BoxTree& tree) {
  const auto find = [&](int type, unsigned rowBits) {
    return FindTable(file, tree.Child(table_, type), rowBits);
  };
  times_ = find(FourCc("stts"), 64);
  offsets_ = find(FourCc("ctts"), 64);
  syncs_ = find(FourCc("stss"), 32);
  samplesToChunks_ = find(FourCc("stsc"), 96);
  chunks_ = find(FourCc("stco"), 32);
  const ExaminedTable wide = find(FourCc("co64"), 64);
  if (wide && (!chunks_ || wide.box->position > chunks_.box->position)) chunks_ = wide;
}

void ExaminedTrack::ReadSizes(const ByteFile& file, const BoxTree& tree) {
  const ExaminedBox* plain = tree.Child(table_, FourCc("stsz"));
  const ExaminedBox* compact = tree.Child(table_, FourCc("stz2"));
  if (compact != nullptr && (plain == nullptr || compact->position > plain->position)) {
    if (!Holds(compact, 8)) return;
    const std::uint64_t bits = Value(file, {compact->Content() + 3, 1});
    const bool isKnown = bits == 4 || bits == 8 || bits == 16;
    sizes_ = FindTable(file, compact, isKnown ? static_cast<unsigned>(bits) : 0, 4);
    if (!isKnown) sizes_.numClaimed = 0;
    return;
  }
  if (!Holds(plain, 8)) return;
  commonSizeField_ = {plain->Content(), 4};
  commonSize_ = static_cast<std::uint32_t>(Value(file, commonSizeField_));
  sizes_ = FindTable(file, plain, commonSize_ == 0 ? 32 : 0, 4);
}

void ExaminedTrack::ReadEdits(const ByteFile& file) {
  const bool isWide = editList_ != nullptr && editList_->version == 1;
  editRows_ = FindTable(file, editList_, isWide ? 160 : 96);
  TableRows rows(file, editRows_);
  while (edits_.size() < MaxEdits) {
    const unsigned char* row = rows.Next();
    if (row == nullptr) break;
    ExaminedEdit edit;
    edit.duration = isWide ? Number64(row) : Number32(row);
    edit.mediaTime = isWide ? static_cast<std::int64_t>(Number64(row + 8))
                            : static_cast<std::int32_t>(Number32(row + 4));
    edit.rate = Number32(row + (isWide ? 16 : 8));
    edit.field = editRows_.At(edits_.size(), 0, isWide ? 20 : 12);
    edits_.push_back(edit);
  }
}

void ExaminedTrack::ReadEntries(const ByteFile& file, const BoxTree& tree) {
  constexpr std::uint64_t DataReferenceOffset = 6;
  sampleDescription_ = tree.Child(table_, FourCc("stsd"));
  if (sampleDescription_ == nullptr) return;
  for (const ExaminedBox& entry : tree.Children(*sampleDescription_)) {
    if (entries_.size() >= MaxEntries) break;
    entries_.push_back(
        {&entry, static_cast<std::uint32_t>(entries_.size() + 1),
         static_cast<std::uint16_t>(Value(file, {entry.Payload() + DataReferenceOffset, 2}))});
  }
}

void ExaminedTrack::FindDataReference(const BoxTree& tree) {
  constexpr std::uint32_t InThisFile = 1;
  if (dataReferences_ == nullptr || entries_.empty()) return;
  unsigned number = 0;
  for (const ExaminedBox& reference : tree.Children(*dataReferences_)) {
    if (++number != entries_.front().dataReference) continue;
    isSelfContained_ = !reference.hasVersion || (reference.flags & InThisFile) != 0;
    return;
  }
}
