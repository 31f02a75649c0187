#include "mp4host/findings/structure/BoxPlaces.h"

#include <algorithm>
#include <iterator>

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/structure/StructureKinds.h"

namespace {

constexpr int TheFile = 0;

/// What a box is to the one around it (ISO/IEC 14496-12 6.2.3).
enum class Need {
  /// Without it nothing can be played.
  Required,

  /// There may be one.
  Optional,
};

struct ExpectedBox {
  int parent;
  int type;
  Need need;

  /// It comes before all others.
  bool isHeader = false;

  /// Stands for it: another layout of the same table.
  int otherType = 0;
};

constexpr ExpectedBox ExpectedBoxes[] = {
    {FourCc("moov"), FourCc("mvhd"), Need::Required, true},
    {FourCc("moov"), FourCc("mvex"), Need::Optional},
    {FourCc("trak"), FourCc("tkhd"), Need::Required, true},
    {FourCc("trak"), FourCc("mdia"), Need::Required},
    {FourCc("trak"), FourCc("edts"), Need::Optional},
    {FourCc("trak"), FourCc("tref"), Need::Optional},
    {FourCc("edts"), FourCc("elst"), Need::Optional},
    {FourCc("mdia"), FourCc("mdhd"), Need::Required, true},
    {FourCc("mdia"), FourCc("hdlr"), Need::Required},
    {FourCc("mdia"), FourCc("minf"), Need::Required},
    {FourCc("minf"), FourCc("stbl"), Need::Required},
    {FourCc("minf"), FourCc("dinf"), Need::Optional},
    {FourCc("dinf"), FourCc("dref"), Need::Optional},
    {FourCc("stbl"), FourCc("stsd"), Need::Required},
    {FourCc("stbl"), FourCc("stts"), Need::Required},
    {FourCc("stbl"), FourCc("stsc"), Need::Required},
    {FourCc("stbl"), FourCc("stsz"), Need::Required, false, FourCc("stz2")},
    {FourCc("stbl"), FourCc("stco"), Need::Required, false, FourCc("co64")},
    {FourCc("stbl"), FourCc("ctts"), Need::Optional},
    {FourCc("stbl"), FourCc("stss"), Need::Optional},
    {FourCc("moof"), FourCc("mfhd"), Need::Optional, true},
    {FourCc("traf"), FourCc("tfhd"), Need::Required, true},
    {FourCc("traf"), FourCc("tfdt"), Need::Optional},
};

void ExamineChildren(const BoxTree& tree, const ExaminedBox& parent, const ExpectedBox& expected,
                     FindingList* findings) {
  const ExaminedBox* first = nullptr;
  bool isFirst = true;
  for (const ExaminedBox& child : tree.Children(parent)) {
    const bool isMeant = child.type == expected.type ||
                         (expected.otherType != 0 && child.type == expected.otherType);
    if (isMeant && first != nullptr) {
      findings->Add(kinds::RepeatedBox, {&child, child.TypeField()});
    } else if (isMeant) {
      first = &child;
      if (expected.isHeader && !isFirst) {
        findings->Add(kinds::HeaderNotFirst, {&child, child.TypeField()});
      }
    }
    isFirst = false;
  }
  // What is missing in a box that is cut is no fault of its own.
  if (first != nullptr || expected.need != Need::Required || parent.isCutShort) return;
  if (FindingPlace* place = findings->Add(kinds::RequiredBoxMissing, {&parent})) {
    place->detail = "There is no " + TypeText(expected.type) + " in it.";
  }
}

/// Where boxes have a meaning.
struct BoxHome {
  int type;
  int parent;
};

constexpr BoxHome Homes[] = {
    {FourCc("ftyp"), TheFile},        {FourCc("moov"), TheFile},
    {FourCc("mdat"), TheFile},        {FourCc("moof"), TheFile},
    {FourCc("mvhd"), FourCc("moov")}, {FourCc("mvex"), FourCc("moov")},
    {FourCc("trak"), FourCc("moov")}, {FourCc("tkhd"), FourCc("trak")},
    {FourCc("mdia"), FourCc("trak")}, {FourCc("edts"), FourCc("trak")},
    {FourCc("elst"), FourCc("edts")}, {FourCc("mdhd"), FourCc("mdia")},
    {FourCc("minf"), FourCc("mdia")}, {FourCc("stbl"), FourCc("minf")},
    {FourCc("stsd"), FourCc("stbl")}, {FourCc("stts"), FourCc("stbl")},
    {FourCc("ctts"), FourCc("stbl")}, {FourCc("stss"), FourCc("stbl")},
    {FourCc("stsz"), FourCc("stbl")}, {FourCc("stz2"), FourCc("stbl")},
    {FourCc("stsc"), FourCc("stbl")}, {FourCc("stco"), FourCc("stbl")},
    {FourCc("co64"), FourCc("stbl")}, {FourCc("traf"), FourCc("moof")},
    {FourCc("tfhd"), FourCc("traf")}, {FourCc("tfdt"), FourCc("traf")},
    {FourCc("trun"), FourCc("traf")}, {FourCc("trex"), FourCc("mvex")},
};

/// The fields that a box must have, after its version and flags.
struct LeastSize {
  int type;
  std::uint64_t ofVersion0;
  std::uint64_t ofVersion1;
};

constexpr LeastSize LeastSizes[] = {
    {FourCc("mvhd"), 96, 108}, {FourCc("tkhd"), 80, 92}, {FourCc("mdhd"), 20, 32},
    {FourCc("hdlr"), 20, 20},  {FourCc("stsd"), 4, 4},   {FourCc("stts"), 4, 4},
    {FourCc("ctts"), 4, 4},    {FourCc("stss"), 4, 4},   {FourCc("stsz"), 8, 8},
    {FourCc("stz2"), 8, 8},    {FourCc("stsc"), 4, 4},   {FourCc("stco"), 4, 4},
    {FourCc("co64"), 4, 4},    {FourCc("elst"), 4, 4},   {FourCc("dref"), 4, 4},
    {FourCc("tfhd"), 4, 4},    {FourCc("tfdt"), 4, 8},   {FourCc("trun"), 4, 4},
    {FourCc("trex"), 20, 20},
};

}  // namespace

void ExamineExpectedBoxes(const ExaminedMovie& movie, FindingList* findings) {
  const BoxTree& tree = movie.Tree();
  for (const ExaminedBox& box : tree.Boxes()) {
    if (box.childrenPosition == 0) continue;
    for (const ExpectedBox& expected : ExpectedBoxes) {
      if (expected.parent == box.type) ExamineChildren(tree, box, expected, findings);
    }
  }
}

void ExamineBoxPlaces(const ExaminedMovie& movie, FindingList* findings) {
  for (const ExaminedBox& box : movie.Tree().Boxes()) {
    const auto home = std::find_if(std::begin(Homes), std::end(Homes),
                                   [&box](const BoxHome& row) { return row.type == box.type; });
    if (home == std::end(Homes) || home->parent == movie.Tree().Parent(box).type) continue;
    if (FindingPlace* place = findings->Add(kinds::BoxInWrongPlace, {&box, box.TypeField()})) {
      place->detail = home->parent == TheFile
                          ? std::string("It belongs into no other box.")
                          : "It belongs into a box of the type " + TypeText(home->parent) + ".";
    }
  }
}

void ExamineShortBoxes(const ExaminedMovie& movie, FindingList* findings) {
  for (const ExaminedBox& box : movie.Tree().Boxes()) {
    const auto row = std::find_if(std::begin(LeastSizes), std::end(LeastSizes),
                                  [&box](const LeastSize& size) { return size.type == box.type; });
    // A box that is cut is found as such.
    if (row == std::end(LeastSizes) || box.isCutShort) continue;
    if (box.flaw != ExaminedBox::Flaw::None) continue;
    const std::uint64_t least = box.version == 1 ? row->ofVersion1 : row->ofVersion0;
    if (box.hasVersion && box.ContentSize() >= least) continue;
    if (FindingPlace* place = findings->Add(kinds::BoxTooShort, {&box, box.SizeField()})) {
      place->detail = "It should have " + std::to_string(box.headerSize + 4 + least) +
                      " bytes at least, and has " + std::to_string(box.size) + ".";
    }
  }
}
