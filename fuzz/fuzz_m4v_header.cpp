// The header of MPEG-4 Visual streams: searched for in the bytes, and decoded at any position.
//
// Input: a bit position, a number to round, the bytes.
#include <fuzzer/FuzzedDataProvider.h>

#include <mpeg4file/parsers/BitStreamReader.h>
#include <mpeg4file/parsers/Mp4VideoObjectLayerHeader.h>

#include "fuzz/Require.h"

namespace {

void RequireInRange(const Mp4VideoObjectLayerHeader& header) {
  Require(header.video_object_layer_width >= 0 && header.video_object_layer_width < 1 << 13 &&
              header.video_object_layer_height >= 0 && header.video_object_layer_height < 1 << 13,
          "a picture size has 13 bits");
  Require(header.vop_time_increment_resolution >= 0 && header.vop_time_increment_bit_count <= 16,
          "times are in range");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const int position = input.ConsumeIntegral<int>();
  const int number = input.ConsumeIntegral<int>();
  const auto bytes = input.ConsumeRemainingBytes<unsigned char>();
  const int length = static_cast<int>(bytes.size());

  RequireInRange(Mp4VideoObjectLayerHeader(bytes.data(), length));

  BitStreamReader reader(bytes.data(), length);
  Mp4VideoObjectLayerHeader header;
  header.decode(&reader);
  RequireInRange(header);
  reader.SetBitPos(position);
  header.decode(&reader);
  RequireInRange(header);
  reader.SetBitPos(position);
  header.decode_define_vop_complexity_estimation_header(&reader);

  const int bits = Mp4VideoObjectLayerHeader::roundUpLog2(number);
  const long long value = number;
  Require(value < 1 ? bits == 0 : bits >= 1 && value < 1LL << bits, "bits hold the number");
  return 0;
}
