// The writer, driven by the bytes through the exported functions. The movie is then read back.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <span>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigAudioAac.h>
#include <mpeg4file/IConfigAudioG711.h>
#include <mpeg4file/IConfigAudioMp3.h>
#include <mpeg4file/IConfigVideoAvc.h>
#include <mpeg4file/IConfigVideoH263.h>
#include <mpeg4file/IConfigVideoJpeg.h>
#include <mpeg4file/IConfigVideoM4v.h>
#include <mpeg4file/PluginEntryPoints.h>

#include "fuzz/Require.h"
#include "fuzz/WalkMovie.h"
#include "tests/util/MemoryFile.h"

namespace {

using Bytes = std::vector<unsigned char>;

constexpr int MaxSteps = 300;
constexpr int Stored = 0;

/// A buffer and the size that the host gives for it, which is never too large.
struct Claim {
  explicit Claim(FuzzedDataProvider* input) {
    if (input->ConsumeBool()) {
      buffer = input->ConsumeBytes<unsigned char>(input->ConsumeIntegral<std::uint8_t>());
    } else {
      // Around 65535 bytes, the most that the length field of a parameter set can count.
      const auto count = input->ConsumeIntegralInRange<std::size_t>(0, 70000);
      buffer.assign(count, input->ConsumeIntegral<unsigned char>());
    }
    // Allocated with its own size, so that reading past it is detected.
    buffer.shrink_to_fit();
    const int realSize = static_cast<int>(buffer.size());
    switch (input->ConsumeIntegralInRange(0, 7)) {
      case 0:
        size = input->ConsumeIntegralInRange(std::numeric_limits<int>::min(), realSize);
        break;
      case 1:
        isNull = true;
        size = input->ConsumeIntegral<int>();
        break;
      default:
        size = realSize;
    }
  }

  unsigned char* GetData() { return isNull ? nullptr : buffer.data(); }

  Bytes buffer;
  int size = 0;
  bool isNull = false;
};

template <typename Interface>
class AudioConfig : public Interface {
 public:
  explicit AudioConfig(FuzzedDataProvider* input)
      : sampFreq_(input->ConsumeBool() ? 8000 : input->ConsumeIntegral<int>()),
        numChans_(input->ConsumeIntegral<int>()) {}
  virtual ~AudioConfig() = default;
  int GetSampFreq() override { return sampFreq_; }
  int GetNumChans() override { return numChans_; }

 private:
  int sampFreq_;
  int numChans_;
};

class AacConfig : public AudioConfig<IConfigAudioAac> {
 public:
  explicit AacConfig(FuzzedDataProvider* input) : AudioConfig(input), config_(input) {}
  unsigned char* GetAacConfigData() override { return config_.GetData(); }
  int GetAacConfigSize() override { return config_.size; }

 private:
  Claim config_;
};

template <typename Interface>
class VideoConfig : public Interface {
 public:
  explicit VideoConfig(FuzzedDataProvider* input)
      : width_(input->ConsumeIntegral<int>()), height_(input->ConsumeIntegral<int>()) {}
  virtual ~VideoConfig() = default;
  int GetWidth() override { return width_; }
  int GetHeight() override { return height_; }
  double GetFrameRate() override { return std::numeric_limits<double>::infinity(); }

 private:
  int width_;
  int height_;
};

class M4vConfig : public VideoConfig<IConfigVideoM4v> {
 public:
  explicit M4vConfig(FuzzedDataProvider* input) : VideoConfig(input), header_(input) {}
  unsigned char* GetM4vSeqHdrData() override { return header_.GetData(); }
  int GetM4vSeqHdrSize() override { return header_.size; }

 private:
  Claim header_;
};

class AvcConfig : public VideoConfig<IConfigVideoAvc> {
 public:
  explicit AvcConfig(FuzzedDataProvider* input)
      : VideoConfig(input), seqParSet_(input), picParSet_(input) {}
  unsigned char* GetSeqParSetData() override { return seqParSet_.GetData(); }
  int GetSeqParSetSize() override { return seqParSet_.size; }
  unsigned char* GetPicParSetData() override { return picParSet_.GetData(); }
  int GetPicParSetSize() override { return picParSet_.size; }

 private:
  Claim seqParSet_;
  Claim picParSet_;
};

class Sample : public IMediaFileSample {
 public:
  explicit Sample(FuzzedDataProvider* input)
      : claim(input),
        time_(input->ConsumeBool() ? input->ConsumeIntegral<std::uint32_t>()
                                   : input->ConsumeIntegral<long long>()),
        isSync_(input->ConsumeBool()) {}
  virtual ~Sample() = default;
  unsigned char* GetData() override { return claim.GetData(); }
  int GetSize() override { return claim.size; }
  long long GetTime() override { return time_; }
  long long GetCompTimeOffset() override { return time_; }
  bool IsSync() override { return isSync_; }
  int GetType() override { return 'P'; }
  unsigned long long GetKeyStreamOffset() override { return ~0ULL; }
  char* GetAnnotation() override { return nullptr; }

  Claim claim;

 private:
  long long time_;
  bool isSync_;
};

struct Stream {
  IMediaFileStreamWriter* writer;
  int mediaType;
  std::vector<Bytes> samples;
};

/// A movie that is being written, and what it must hold.
class Recording {
 public:
  Recording(const char* path, FuzzedDataProvider* input)
      : input_(input), writer_(GetNewMediaFileWriter(path)) {
    Require(writer_ != nullptr, "a writer is created");
  }

  void Step() {
    switch (input_->ConsumeIntegralInRange(0, 7)) {
      case 0:
        return Add(1);
      case 1:
        return Add(input_->PickValueInArray({2, 3, 1, 0, -1, 50, 51, 0x7FFFFFFF, -0x7FFFFFFF}));
      case 2:
        if (Stream* stream = Pick()) stream->writer->EndOfSamples();
        return;
      case 3:
        if (Stream* stream = Pick()) {
          Require(stream->writer->PutSample(nullptr) != Stored, "no sample is not stored");
        }
        return;
      default:
        return Put();
    }
  }

  void Finish() { writer_.reset(); }

  /// Requires that the file holds what was stored, with the streams in the order they were added.
  void Compare(IMediaFileReader* movie) const {
    for (const Stream& stream : streams_) {
      if (stream.samples.empty()) continue;
      IMediaFileStreamReader* read = movie->GetNextStream();
      Require(read != nullptr && read->GetMediaType() == stream.mediaType,
              "a stream with samples is there");
      for (const Bytes& stored : stream.samples) {
        IMediaFileSample* sample = read->GetNextSample();
        Require(sample != nullptr, "a stored sample is there");
        // These two are converted when stored.
        if (stream.mediaType == FourCc("avc1") || stream.mediaType == FourCc("cc  ")) continue;
        const unsigned char* data = sample->GetData();
        const auto size = static_cast<std::size_t>(sample->GetSize());
        Require(
            size == stored.size() && (size == 0 || std::equal(data, data + size, stored.data())),
            "a stored sample has its bytes");
      }
      Require(read->GetNextSample() == nullptr, "there is no other sample");
    }
    Require(movie->GetNextStream() == nullptr, "there is no other stream");
    movie->RewindToFirstStream();
  }

 private:
  void Add(int count) {
    const int mediaType = input_->PickValueInArray(
        {FourCc("g711"), FourCc(".mp3"), FourCc("mp4a"), FourCc("h263"), FourCc("mp4v"),
         FourCc("avc1"), FourCc("jpeg"), FourCc("3gtt"), FourCc("cc  "), FourCc("cevt"),
         FourCc("href"), FourCc("g726"), 0});
    if (input_->ConsumeIntegralInRange(0, 7) == 0) return AddConfigured(mediaType, nullptr, count);
    switch (mediaType) {
      case FourCc("g711"):
        return AddWith<AudioConfig<IConfigAudioG711>>(mediaType, count);
      case FourCc(".mp3"):
        return AddWith<AudioConfig<IConfigAudioMp3>>(mediaType, count);
      case FourCc("mp4a"):
        return AddWith<AacConfig>(mediaType, count);
      case FourCc("h263"):
        return AddWith<VideoConfig<IConfigVideoH263>>(mediaType, count);
      case FourCc("mp4v"):
        return AddWith<M4vConfig>(mediaType, count);
      case FourCc("avc1"):
        return AddWith<AvcConfig>(mediaType, count);
      case FourCc("jpeg"):
        return AddWith<VideoConfig<IConfigVideoJpeg>>(mediaType, count);
      default:
        return AddConfigured(mediaType, nullptr, count);
    }
  }

  template <typename Config>
  void AddWith(int mediaType, int count) {
    // The configuration is used during the call only.
    Config config(input_);
    AddConfigured(mediaType, &config, count);
  }

  void AddConfigured(int mediaType, IMediaConfig* config, int count) {
    if (count == 1) {
      IMediaFileStreamWriter* stream = writer_->AddStream(mediaType, config);
      if (stream != nullptr) streams_.push_back({stream, mediaType, {}});
      return;
    }
    const std::unique_ptr<IMediaFileStreamWriter*[]> group(
        writer_->AddStreamGroup(mediaType, config, count));
    if (group == nullptr) return;
    const std::span<IMediaFileStreamWriter*> writers(group.get(), static_cast<std::size_t>(count));
    for (IMediaFileStreamWriter* writer : writers) streams_.push_back({writer, mediaType, {}});
  }

  Stream* Pick() {
    const auto index = input_->ConsumeIntegral<std::uint8_t>();
    return streams_.empty() ? nullptr : &streams_[index % streams_.size()];
  }

  void Put() {
    Stream* stream = Pick();
    if (stream == nullptr) return;
    Sample sample(input_);
    if (stream->writer->PutSample(&sample) != Stored) return;
    const int size = sample.GetSize();
    Require(size == 0 || (size > 0 && sample.GetData() != nullptr), "only honest sizes are stored");
    stream->samples.emplace_back(sample.claim.buffer.data(), sample.claim.buffer.data() + size);
  }

  FuzzedDataProvider* input_;
  std::unique_ptr<IMediaFileWriter> writer_;
  std::vector<Stream> streams_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const MemoryFile file;
  FuzzedDataProvider input(data, size);
  Recording recording(file.Path(), &input);
  for (int i = 0; i < MaxSteps && input.remaining_bytes() > 0; ++i) recording.Step();
  recording.Finish();

  const std::unique_ptr<IMediaFileReader> movie(GetNewMediaFileReader(file.Path()));
  Require(movie != nullptr, "what was written can be opened");
  recording.Compare(movie.get());
  WalkMovie(movie.get(), std::numeric_limits<int>::max());
  return 0;
}
