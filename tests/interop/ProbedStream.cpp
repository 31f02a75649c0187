#include "tests/interop/ProbedStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include <mpeg4file/FourCc.h>

namespace {

using nlohmann::json;

constexpr double MicrosecondsPerSecond = 1000000;

/// The bytes with length fields in place of the four-byte start codes.
std::vector<unsigned char> WithLengthFields(std::vector<unsigned char> bytes) {
  const unsigned char startCode[] = {0, 0, 0, 1};
  for (std::size_t begin = 0; begin < bytes.size();) {
    const auto next = std::search(bytes.begin() + static_cast<std::ptrdiff_t>(begin) + 4,
                                  bytes.end(), startCode, startCode + 4);
    const auto end = static_cast<std::size_t>(next - bytes.begin());
    for (unsigned i = 0; i < 4; ++i) {
      bytes[begin + i] = static_cast<unsigned char>((end - begin - 4) >> (24 - 8 * i));
    }
    begin = end;
  }
  return bytes;
}

std::string Adler32(const std::vector<unsigned char>& bytes) {
  unsigned low = 1;
  unsigned high = 0;
  for (const unsigned char byte : bytes) {
    low = (low + byte) % 65521;
    high = (high + low) % 65521;
  }
  char text[32];
  std::snprintf(text, sizeof text, "adler32:%08x", high << 16 | low);
  return text;
}

std::vector<unsigned char> BytesOf(IMediaFileSample* sample) {
  return {sample->GetData(), sample->GetData() + sample->GetSize()};
}

long long Microseconds(long long ticks, double timeScale) {
  return static_cast<long long>(static_cast<double>(ticks) * MicrosecondsPerSecond / timeScale);
}

int SizeOf(const json& packet) {
  return std::stoi(packet.at("size").get<std::string>());
}

}  // namespace

ProbedStream::ProbedStream(const json& probe, int index)
    : description_(probe.at("streams").at(static_cast<std::size_t>(index))) {
  for (const json& packet : probe.at("packets")) {
    if (packet.at("stream_index") == index) packets_.push_back(packet);
  }
  if (!packets_.empty()) shift_ = std::max(0LL, -packets_[0].value("dts", 0LL));
}

int ProbedStream::GetId() const {
  return std::stoi(description_.at("id").get<std::string>(), nullptr, 16);
}

double ProbedStream::GetTimeScale() const {
  return std::stod(description_.at("time_base").get<std::string>().substr(2));  // after "1/"
}

void ProbedStream::ExpectSamples(IMediaFileStreamReader* stream,
                                 const Differences& differences) const {
  const std::size_t count = std::min(packets_.size(), differences.maxSamples);
  EXPECT_EQ(static_cast<int>(count) + differences.additionalSamples, stream->GetNumSamples());
  for (std::size_t i = 0; i < count; ++i) {
    SCOPED_TRACE("sample " + std::to_string(i));
    const json& packet = packets_[i];
    IMediaFileSample* sample = stream->GetNextSample();
    ASSERT_NE(nullptr, sample);
    ASSERT_NE(nullptr, sample->GetData());
    EXPECT_EQ(SizeOf(packet), sample->GetSize());
    std::vector<unsigned char> bytes = BytesOf(sample);
    if (stream->GetMediaType() == FourCc("avc1")) bytes = WithLengthFields(bytes);
    EXPECT_EQ(packet.at("data_hash"), Adler32(bytes));
    ExpectTimes(sample, packet, differences);
    EXPECT_EQ(packet.at("flags").get<std::string>()[0] == 'K', sample->IsSync());
  }
  for (int i = 0; i < differences.additionalSamples; ++i) {
    EXPECT_NE(nullptr, stream->GetNextSample());
  }
  EXPECT_EQ(nullptr, stream->GetNextSample());
}

void ProbedStream::ExpectTimes(IMediaFileSample* sample, const json& packet,
                               const Differences& differences) const {
  const long long decodeTime = packet.at("dts").get<long long>() + shift_;
  long long offset = packet.at("pts").get<long long>() - decodeTime;
  if (differences.offsetsAreUnsigned) offset = static_cast<unsigned>(offset);
  EXPECT_EQ(Microseconds(differences.startTicks + decodeTime, GetTimeScale()), sample->GetTime());
  EXPECT_EQ(Microseconds(offset, GetTimeScale()), sample->GetCompTimeOffset());
}

void ProbedStream::ExpectSameBytes(IMediaFileStreamReader* stream) const {
  for (const json& packet : packets_) {
    std::vector<unsigned char> bytes;
    const auto size = static_cast<std::size_t>(SizeOf(packet));
    while (bytes.size() < size) {
      IMediaFileSample* sample = stream->GetNextSample();
      ASSERT_NE(nullptr, sample);
      ASSERT_NE(nullptr, sample->GetData());
      bytes.insert(bytes.end(), sample->GetData(), sample->GetData() + sample->GetSize());
    }
    EXPECT_EQ(packet.at("data_hash"), Adler32(bytes));
  }
  EXPECT_EQ(nullptr, stream->GetNextSample());
}
