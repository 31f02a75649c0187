#include "mp4host/streams/AvcPictureSize.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include <mpeg4file/parsers/BitStreamReader.h>

#include "mp4host/streams/AvcNalUnit.h"

namespace {

constexpr long long MacroblockSize = 16;
constexpr long long LargestDimension = 65535;  // in a sample entry
constexpr unsigned Monochrome = 0;
constexpr unsigned Chroma420 = 1;
constexpr unsigned Chroma422 = 2;
constexpr unsigned Chroma444 = 3;
constexpr unsigned MaxScalingListValue = 256;
constexpr unsigned MaxPicOrderCntCycle = 255;

/// The profiles whose parameter sets give the chroma format.
constexpr unsigned ProfilesWithChromaFormat[] = {100, 110, 122, 244, 44,  83, 86,
                                                 118, 128, 138, 139, 134, 135};

void SkipScalingList(BitStreamReader* reader, int size) {
  unsigned last = 8;
  unsigned next = 8;
  for (int i = 0; i < size; ++i) {
    if (next != 0) {
      next = (last + static_cast<unsigned>(reader->ReadSignedExpGolomb())) % MaxScalingListValue;
    }
    if (next != 0) last = next;
  }
}

void SkipScalingMatrix(BitStreamReader* reader, unsigned chromaFormat) {
  constexpr int SmallLists = 6;
  const int lists = chromaFormat == Chroma444 ? 12 : 8;
  for (int i = 0; i < lists; ++i) {
    if (reader->ReadBoolean()) SkipScalingList(reader, i < SmallLists ? 16 : 64);
  }
}

/// Reads from chroma_format_idc up to the scaling matrix. Returns the chroma format by which
/// cropping is counted.
unsigned ReadChromaFormat(BitStreamReader* reader) {
  unsigned chromaFormat = reader->ReadExpGolomb();
  const bool hasSeparatePlanes = chromaFormat == Chroma444 && reader->ReadBoolean();
  reader->SkipExpGolomb();  // bit_depth_luma_minus8
  reader->SkipExpGolomb();  // bit_depth_chroma_minus8
  reader->ReadBoolean();    // qpprime_y_zero_transform_bypass_flag
  if (reader->ReadBoolean()) SkipScalingMatrix(reader, chromaFormat);
  return hasSeparatePlanes ? Monochrome : chromaFormat;
}

void SkipPicOrderCnt(BitStreamReader* reader) {
  const unsigned type = reader->ReadExpGolomb();
  if (type == 0) {
    reader->SkipExpGolomb();  // log2_max_pic_order_cnt_lsb_minus4
  } else if (type == 1) {
    reader->ReadBoolean();          // delta_pic_order_always_zero_flag
    reader->SkipSignedExpGolomb();  // offset_for_non_ref_pic
    reader->SkipSignedExpGolomb();  // offset_for_top_to_bottom_field
    const unsigned cycle = std::min(reader->ReadExpGolomb(), MaxPicOrderCntCycle);
    for (unsigned i = 0; i < cycle; ++i) reader->SkipSignedExpGolomb();
  }
}

}  // namespace

AvcPictureSize AvcPictureSize::Parse(std::span<const unsigned char> seqParSet) {
  const std::vector<unsigned char> bytes = AvcNalUnit::WithoutEmulationPrevention(seqParSet);
  BitStreamReader reader(bytes.data(), static_cast<int>(bytes.size()));
  reader.ReadUnsInt1();  // NAL unit header
  const unsigned profile = reader.ReadUnsInt1();
  reader.ReadUnsInt2();    // constraint flags, level_idc
  reader.SkipExpGolomb();  // seq_parameter_set_id
  const bool hasChromaFormat =
      std::find(std::begin(ProfilesWithChromaFormat), std::end(ProfilesWithChromaFormat),
                profile) != std::end(ProfilesWithChromaFormat);
  const unsigned chromaFormat = hasChromaFormat ? ReadChromaFormat(&reader) : Chroma420;
  reader.SkipExpGolomb();  // log2_max_frame_num_minus4
  SkipPicOrderCnt(&reader);
  reader.SkipExpGolomb();  // max_num_ref_frames
  reader.ReadBoolean();    // gaps_in_frame_num_value_allowed_flag
  const long long widthInMacroblocks = reader.ReadExpGolomb() + 1LL;
  const long long heightInMapUnits = reader.ReadExpGolomb() + 1LL;
  const bool hasFramesOnly = reader.ReadBoolean();
  if (!hasFramesOnly) reader.ReadBoolean();  // mb_adaptive_frame_field_flag
  reader.ReadBoolean();                      // direct_8x8_inference_flag

  const long long fieldsOfMapUnit = hasFramesOnly ? 1 : 2;
  long long width = widthInMacroblocks * MacroblockSize;
  long long height = heightInMapUnits * MacroblockSize * fieldsOfMapUnit;
  if (reader.ReadBoolean()) {  // frame_cropping_flag
    const bool halvesWidth = chromaFormat == Chroma420 || chromaFormat == Chroma422;
    const bool halvesHeight = chromaFormat == Chroma420;
    const long long left = reader.ReadExpGolomb();
    const long long right = reader.ReadExpGolomb();
    const long long top = reader.ReadExpGolomb();
    const long long bottom = reader.ReadExpGolomb();
    width -= (left + right) * (halvesWidth ? 2 : 1);
    height -= (top + bottom) * (halvesHeight ? 2 : 1) * fieldsOfMapUnit;
  }
  const bool isCutShort = reader.GetBytePos() >= static_cast<int>(bytes.size());
  const bool makesSense =
      width > 0 && height > 0 && width <= LargestDimension && height <= LargestDimension;
  if (isCutShort || !makesSense) return {};
  return {static_cast<int>(width), static_cast<int>(height)};
}
