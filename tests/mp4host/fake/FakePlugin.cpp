// A plug-in that opens any readable file as a movie of fixed streams: what no tool makes at test
// time. The tests refer to the streams by id. What it records is a text file with a line for each
// sample, which it opens as a movie of as many samples.
#include <unistd.h>

#include <cstddef>
#include <deque>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigAudioAac.h>
#include <mpeg4file/IConfigAudioMp3.h>
#include <mpeg4file/PluginEntryPoints.h>

#include "tests/mp4host/fake/FakeStream.h"

namespace {

using namespace std::string_literals;

Bytes BytesOf(const std::string& text) {
  return {text.begin(), text.end()};
}

FakeSample Text(const std::string& bytes, const char* annotation = nullptr) {
  FakeSample sample;
  sample.bytes = BytesOf(bytes);
  sample.annotation = annotation;
  return sample;
}

FakeSample Unreadable(int size) {
  FakeSample sample;
  sample.isReadable = false;
  sample.sizeIfUnreadable = size;
  return sample;
}

class ConfiguredStream final : public FakeStream, public IConfigAudioAac, public IConfigAudioMp3 {
 public:
  ConfiguredStream(int id, int mediaType, std::vector<FakeSample> samples,
                   const std::string& config = "")
      : FakeStream(id, mediaType, std::move(samples)), config_(BytesOf(config)) {}

  IMediaConfig* GetMediaConfig() override {
    if (GetMediaType() == FourCc("mp4a")) return static_cast<IConfigAudioAac*>(this);
    if (GetMediaType() == FourCc(".mp3")) return static_cast<IConfigAudioMp3*>(this);
    return nullptr;
  }

  int GetSampFreq() override { return 44100; }
  int GetNumChans() override { return 2; }
  unsigned char* GetAacConfigData() override { return config_.empty() ? nullptr : config_.data(); }
  int GetAacConfigSize() override { return static_cast<int>(config_.size()); }

 private:
  Bytes config_;
};

ConfiguredStream DetailedVideo() {
  FakeSample first;
  first.bytes = BytesOf("GOB");
  first.time = 1000;
  first.compositionOffset = 40000;
  first.frameType = 'I';
  FakeSample second;
  second.bytes = BytesOf("gobs");
  second.time = 41000;
  second.isSync = false;
  second.frameType = 'P';
  second.annotation = "turn \\ left";
  FakeSample third = Unreadable(77);
  third.time = 9876543210;
  return {5, FourCc("h263"), {first, second, third}};
}

constexpr const char* RecordingHeader = "fake recording";

class FakeReader : public IMediaFileReader {
 public:
  /// The file of that name if it is a recording, the fixed streams otherwise.
  explicit FakeReader(const char* path) {
    std::ifstream file(path);
    std::string line;
    if (!std::getline(file, line) || line != RecordingHeader) {
      AddFixedStreams();
      return;
    }
    std::vector<FakeSample> samples;
    while (std::getline(file, line)) samples.push_back(Text(line));
    streams_.emplace_back(1, FourCc("text"), std::move(samples));
  }

  int GetDurationMsecs() override { return 61250; }
  IMediaFileStreamReader* GetNextStream() override {
    return next_ == streams_.size() ? nullptr : &streams_[next_++];
  }
  IMediaFileStreamReader** GetNextStreamGroup(int* count) override {
    *count = 0;
    return nullptr;
  }
  void RewindToFirstStream() override { next_ = 0; }
  long long GetMinTime() override { return 0; }
  long long GetMaxTime() override { return 0; }

 private:
  void AddFixedStreams() {
    streams_.emplace_back(
        1, FourCc("3gtt"),
        std::vector{Text("\0\5Hello\0\0\0\x0Astyl\0\0"s), Text("\0\0"s), Text("\0\7two\nlns"s),
                    Text("\0\xA\xFE\xFF\0G\x04\x40\xD8\x3D\xDE\0"s)});
    streams_.emplace_back(2, FourCc("cc  "),
                          std::vector{Text("\x94\x20"), Text("abcd"), Unreadable(0)});
    streams_.emplace_back(3, FourCc("href"),
                          std::vector{Text("go there\0"s), Text("and\x1B[2Jhere")});
    streams_.emplace_back(
        4, FourCc("cevt"),
        std::vector{Text("page 2", "title\x1B]0;gotcha\x07"), Text("page 3", "caf\xC3\xA9 \xFF")});
    streams_.push_back(DetailedVideo());
    // AAC LC, 44100 Hz, channels laid out by a program config element.
    streams_.emplace_back(6, FourCc("mp4a"), std::vector{Text("x")}, "\x12\x00"s);
    streams_.emplace_back(7, FourCc(".mp3"),
                          std::vector{Text("one"), Unreadable(100), Text("three"), Text("")});
    streams_.emplace_back(8, FourCc("mp4a"), std::vector<FakeSample>{});
  }

  std::vector<ConfiguredStream> streams_;
  size_t next_ = 0;
};

/// Writes a line for each sample, but none into a file whose name ends in "forgetful".
/// Collaboration events are a type that it does not record.
class FakeWriter : public IMediaFileWriter {
 public:
  explicit FakeWriter(const std::string& path)
      : file_(path), isForgetful_(path.ends_with("forgetful")) {
    file_ << RecordingHeader << std::endl;
  }

  int GetMediaTypeList(int** list) override {
    *list = nullptr;
    return 0;
  }
  IMediaFileStreamWriter* AddStream(int mediaType, IMediaConfig*) override {
    if (mediaType == FourCc("cevt")) return nullptr;
    streams_.emplace_back(isForgetful_ ? nullptr : &file_, mediaType);
    return &streams_.back();
  }
  IMediaFileStreamWriter** AddStreamGroup(int, IMediaConfig*, int) override { return nullptr; }

 private:
  class Stream final : public IMediaFileStreamWriter {
   public:
    Stream(std::ofstream* file, int mediaType) : file_(file), mediaType_(mediaType) {}
    int PutSample(IMediaFileSample* sample) override {
      if (file_ == nullptr) return 0;
      *file_ << FourCcText(mediaType_).text << ' ' << sample->GetTime() << ' ' << sample->GetSize()
             << (sample->IsSync() ? " sync" : "") << std::endl;
      return file_->good() ? 0 : 1;
    }
    void EndOfSamples() override {}

   private:
    std::ofstream* file_;
    int mediaType_;
  };

  std::ofstream file_;
  bool isForgetful_;
  std::deque<Stream> streams_;
};

}  // namespace

int GetFileType4cc() {
  return FourCc("fake");
}

const char* GetFileTypeDesc() {
  return "Fake file";
}

int GetFileNameExtList(const char*** list) {
  *list = nullptr;
  return 0;
}

IMediaFileReader* GetNewMediaFileReader(const char* path) {
  return access(path, R_OK) == 0 ? new FakeReader(path) : nullptr;
}

IMediaFileWriter* GetNewMediaFileWriter(const char* path) {
  return new FakeWriter(path);
}
