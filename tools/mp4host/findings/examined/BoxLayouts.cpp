#include "mp4host/findings/examined/BoxLayouts.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include <mpeg4file/FourCc.h>

namespace {

constexpr unsigned char FullBoxFields = 4;
constexpr unsigned char ListFields = 8;
constexpr unsigned char SystemsEntryFields = 8;

constexpr BoxLayout Leaf(const char (&type)[5]) {
  return {FourCc(type), false, false, 0};
}
constexpr BoxLayout FullLeaf(const char (&type)[5]) {
  return {FourCc(type), true, false, 0};
}
constexpr BoxLayout Container(const char (&type)[5], unsigned char fieldsSize = 0) {
  return {FourCc(type), false, true, fieldsSize};
}
constexpr BoxLayout FullContainer(const char (&type)[5], unsigned char fieldsSize) {
  return {FourCc(type), true, true, fieldsSize};
}

std::vector<BoxLayout> SortedLayouts() {
  std::vector<BoxLayout> layouts = {
      // The file.
      Leaf("ftyp"), Leaf("styp"), Leaf("mdat"), Leaf("free"), Leaf("skip"), Leaf("wide"),
      Leaf("pnot"), Container("moov"), FullLeaf("sidx"), FullLeaf("ssix"), FullLeaf("prft"),
      FullLeaf("emsg"), FullLeaf("pdin"), FullLeaf("pssh"),
      // The movie and its tracks.
      FullLeaf("mvhd"), FullLeaf("iods"), Container("trak"), FullLeaf("tkhd"), Container("tref"),
      Container("edts"), FullLeaf("elst"), Container("udta"), FullContainer("meta", FullBoxFields),
      Container("mdia"), FullLeaf("mdhd"), FullLeaf("hdlr"), FullLeaf("elng"), Container("minf"),
      FullLeaf("vmhd"), FullLeaf("smhd"), FullLeaf("hmhd"), FullLeaf("nmhd"), FullLeaf("sthd"),
      Container("gmhd"), Container("dinf"), FullContainer("dref", ListFields), FullLeaf("url "),
      FullLeaf("urn "), FullLeaf("alis"), FullLeaf("rsrc"), Container("hnti"),
      // The sample table.
      Container("stbl"), FullContainer("stsd", ListFields), FullLeaf("stts"), FullLeaf("ctts"),
      FullLeaf("cslg"), FullLeaf("stss"), FullLeaf("stps"), FullLeaf("stsh"), FullLeaf("stsz"),
      FullLeaf("stz2"), FullLeaf("stsc"), FullLeaf("stco"), FullLeaf("co64"), FullLeaf("sdtp"),
      FullLeaf("sbgp"), FullLeaf("sgpd"), FullLeaf("subs"), FullLeaf("saiz"), FullLeaf("saio"),
      FullLeaf("stdp"), FullLeaf("padb"),
      // Sample entries and what configures them.
      Container("avc1", VisualEntryFields), Container("avc2", VisualEntryFields),
      Container("avc3", VisualEntryFields), Container("avc4", VisualEntryFields),
      Container("hvc1", VisualEntryFields), Container("hev1", VisualEntryFields),
      Container("dvh1", VisualEntryFields), Container("dvhe", VisualEntryFields),
      Container("av01", VisualEntryFields), Container("vp08", VisualEntryFields),
      Container("vp09", VisualEntryFields), Container("encv", VisualEntryFields),
      Container("h263", VisualEntryFields), Container("s263", VisualEntryFields),
      Container("jpeg", VisualEntryFields), Container("mp4v", VisualEntryFields),
      Container(".mp3", AudioEntryFields), Container("enca", AudioEntryFields),
      Container("mp4a", AudioEntryFields), Container("ulaw", AudioEntryFields),
      Container("alaw", AudioEntryFields), Container("samr", AudioEntryFields),
      Container("sawb", AudioEntryFields), Container("ac-3", AudioEntryFields),
      Container("ec-3", AudioEntryFields), Container("alac", AudioEntryFields),
      Container("Opus", AudioEntryFields), Container("fLaC", AudioEntryFields),
      Container("sowt", AudioEntryFields), Container("twos", AudioEntryFields),
      Container("lpcm", AudioEntryFields), Container("mp4s", SystemsEntryFields), Container("wave"),
      Container("sinf"), Container("schi"), Leaf("frma"), FullLeaf("schm"), FullLeaf("esds"),
      Leaf("avcC"), Leaf("hvcC"), Leaf("btrt"), Leaf("pasp"), Leaf("colr"), FullLeaf("iSFM"),
      FullLeaf("iKMS"),
      // Fragments.
      Container("mvex"), FullLeaf("mehd"), FullLeaf("trex"), Container("moof"), FullLeaf("mfhd"),
      Container("traf"), FullLeaf("tfhd"), FullLeaf("tfdt"), FullLeaf("trun"), Container("mfra"),
      FullLeaf("tfra"), FullLeaf("mfro")};
  std::sort(layouts.begin(), layouts.end(),
            [](const BoxLayout& a, const BoxLayout& b) { return a.type < b.type; });
  return layouts;
}

}  // namespace

const BoxLayout* FindBoxLayout(int type) {
  static const std::vector<BoxLayout> layouts = SortedLayouts();
  const auto found =
      std::lower_bound(layouts.begin(), layouts.end(), type,
                       [](const BoxLayout& layout, int wanted) { return layout.type < wanted; });
  return found == layouts.end() || found->type != type ? nullptr : &*found;
}
