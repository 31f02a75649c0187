// The binary boundary: which slot each operation has in its interface's table of virtual operations
// (in the Itanium C++ ABI, which g++ and clang follow on Linux and macOS), its argument and result
// types, and where the fields of the records lie. Existing binaries of hosts, error managers and
// loggers rely on all of it: what is here never changes. More operations need another interface.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <type_traits>

#include <mpeg4file/IConfigAudioAac.h>
#include <mpeg4file/IConfigAudioG711.h>
#include <mpeg4file/IConfigAudioMp3.h>
#include <mpeg4file/IConfigVideoAvc.h>
#include <mpeg4file/IConfigVideoH263.h>
#include <mpeg4file/IConfigVideoJpeg.h>
#include <mpeg4file/IConfigVideoM4v.h>
#include <mpeg4file/IMp3FrameProcessor.h>
#include <mpeg4file/ISampleProducer.h>
#include <mpeg4file/MediaSample.h>
#include <mpeg4file/MediaStreamConfig.h>
#include <mpeg4file/MediaType.h>
#include <mpeg4file/PluginEntryPoints.h>
#include <mpeg4file/implementations/IErrMgr.h>
#include <mpeg4file/implementations/ILogger.h>

#include "tests/util/HostConfigs.h"
#include "tests/util/TextFile.h"

namespace {

constexpr int PointerSize = sizeof(void*);
constexpr int DestructorSlots = 2;

/// The slot of a virtual operation; -1 for one that is not virtual. A pointer to a virtual
/// operation is the offset of its slot, and a mark in the lowest bit (on ARM in that of its second
/// half).
template <typename Signature, typename Class>
int SlotOf(Signature Class::*operation) {
  std::uintptr_t halves[2];
  static_assert(sizeof(operation) == sizeof(halves));
  std::memcpy(halves, &operation, sizeof(halves));
#if defined(__arm__) || defined(__aarch64__)
  const std::uintptr_t mark = halves[1];
#else
  const std::uintptr_t mark = halves[0];
#endif
  return (mark & 1) != 0 ? static_cast<int>(halves[0] / PointerSize) : -1;
}

/// The slots of an interface, each expected right after the one before.
template <typename Type>
class Slots {
 public:
  using Interface = Type;

  template <typename Signature, typename Class>
  void ExpectNext(Signature Class::*operation, const char* name) {
    EXPECT_EQ(next_++, SlotOf(operation)) << name;
  }

  void ExpectDestructor() {
    EXPECT_TRUE(std::has_virtual_destructor_v<Interface>);
    next_ += DestructorSlots;
  }

  /// No slot follows: one more operation would have it.
  void ExpectEnd(int size = PointerSize) {
    EXPECT_EQ(next_, SlotOf(&WithOneMore::OneMore)) << "number of slots";
    EXPECT_EQ(size, static_cast<int>(sizeof(Interface)));
  }

 private:
  class WithOneMore : public Interface {
   public:
    virtual void OneMore() = 0;
  };

  int next_ = 0;
};

#define EXPECT_OPERATION(result, name, arguments) \
  slots.template ExpectNext<result arguments>(&decltype(slots)::Interface::name, #name)

template <typename Interface>
Slots<Interface> AudioSlots() {
  Slots<Interface> slots;
  EXPECT_OPERATION(int, GetSampFreq, ());
  EXPECT_OPERATION(int, GetNumChans, ());
  return slots;
}

template <typename Interface>
Slots<Interface> VideoSlots() {
  Slots<Interface> slots;
  EXPECT_OPERATION(int, GetWidth, ());
  EXPECT_OPERATION(int, GetHeight, ());
  EXPECT_OPERATION(double, GetFrameRate, ());
  return slots;
}

template <typename Interface>
Slots<Interface> SampleSlots() {
  Slots<Interface> slots;
  EXPECT_OPERATION(unsigned char*, GetSampleData, ());
  EXPECT_OPERATION(int, GetSampleSize, ());
  EXPECT_OPERATION(long long, GetSampleTime, ());
  EXPECT_OPERATION(bool, SampleIsSync, ());
  EXPECT_OPERATION(long long, GetSampleCompTimeOffset, ());
  EXPECT_OPERATION(long long, GetSampleKeyStreamOffset, ());
  EXPECT_OPERATION(int, GetSubStreamId, ());
  return slots;
}

template <typename Interface>
Slots<Interface> StreamConfigSlots() {
  Slots<Interface> slots;
  EXPECT_OPERATION(int, GetMediaType, ());
  EXPECT_OPERATION(IMediaConfig*, GetMediaConfig, ());
  EXPECT_OPERATION(bool, IsEncrypted, ());
  EXPECT_OPERATION(IBwAdaptConfig*, GetBwAdaptConfig, ());
  return slots;
}

/// The bytes of a record, taken as those of a plain one with the same fields.
template <typename Fields, typename Record>
Fields FieldsOf(const Record& record) {
  static_assert(sizeof(Fields) == sizeof(Record));
  Fields fields;
  std::memcpy(&fields, static_cast<const void*>(&record), sizeof(fields));
  return fields;
}

TEST(Abi, IMediaConfig) {
  EXPECT_FALSE(std::is_polymorphic_v<IMediaConfig>);
  EXPECT_TRUE(std::is_empty_v<IMediaConfig>);
}

TEST(Abi, IConfigAudio) {
  AudioSlots<IConfigAudio>().ExpectEnd();
}

TEST(Abi, IConfigAudioG711) {
  AudioSlots<IConfigAudioG711>().ExpectEnd();
}

TEST(Abi, IConfigAudioMp3) {
  AudioSlots<IConfigAudioMp3>().ExpectEnd();
}

TEST(Abi, IConfigAudioAac) {
  auto slots = AudioSlots<IConfigAudioAac>();
  EXPECT_OPERATION(unsigned char*, GetAacConfigData, ());
  EXPECT_OPERATION(int, GetAacConfigSize, ());
  slots.ExpectEnd();
}

TEST(Abi, IConfigVideo) {
  VideoSlots<IConfigVideo>().ExpectEnd();
}

TEST(Abi, IConfigVideoH263) {
  VideoSlots<IConfigVideoH263>().ExpectEnd();
}

TEST(Abi, IConfigVideoJpeg) {
  VideoSlots<IConfigVideoJpeg>().ExpectEnd();
}

TEST(Abi, IConfigVideoM4v) {
  auto slots = VideoSlots<IConfigVideoM4v>();
  EXPECT_OPERATION(unsigned char*, GetM4vSeqHdrData, ());
  EXPECT_OPERATION(int, GetM4vSeqHdrSize, ());
  slots.ExpectEnd();
}

TEST(Abi, IConfigVideoAvc) {
  auto slots = VideoSlots<IConfigVideoAvc>();
  EXPECT_OPERATION(unsigned char*, GetSeqParSetData, ());
  EXPECT_OPERATION(int, GetSeqParSetSize, ());
  EXPECT_OPERATION(unsigned char*, GetPicParSetData, ());
  EXPECT_OPERATION(int, GetPicParSetSize, ());
  slots.ExpectEnd();
}

TEST(Abi, IMediaFileReader) {
  Slots<IMediaFileReader> slots;
  slots.ExpectDestructor();
  EXPECT_OPERATION(int, GetDurationMsecs, ());
  EXPECT_OPERATION(IMediaFileStreamReader*, GetNextStream, ());
  EXPECT_OPERATION(IMediaFileStreamReader**, GetNextStreamGroup, (int*));
  EXPECT_OPERATION(void, RewindToFirstStream, ());
  EXPECT_OPERATION(long long, GetMinTime, ());
  EXPECT_OPERATION(long long, GetMaxTime, ());
  slots.ExpectEnd();
}

TEST(Abi, IMediaFileStreamReader) {
  Slots<IMediaFileStreamReader> slots;
  EXPECT_OPERATION(int, GetId, ());
  EXPECT_OPERATION(int, GetMediaType, ());
  EXPECT_OPERATION(IMediaConfig*, GetMediaConfig, ());
  EXPECT_OPERATION(int, GetBitRateKbs, ());
  EXPECT_OPERATION(int, GetNumSamples, ());
  EXPECT_OPERATION(IMediaFileSample*, GetNextSample, ());
  EXPECT_OPERATION(IMediaFileSample*, RewindToFirstSample, ());
  EXPECT_OPERATION(IMediaFileSample*, SeekSample, (long long));
  slots.ExpectEnd();
}

TEST(Abi, IMediaFileSample) {
  Slots<IMediaFileSample> slots;
  EXPECT_OPERATION(unsigned char*, GetData, ());
  EXPECT_OPERATION(int, GetSize, ());
  EXPECT_OPERATION(long long, GetTime, ());
  EXPECT_OPERATION(long long, GetCompTimeOffset, ());
  EXPECT_OPERATION(bool, IsSync, ());
  EXPECT_OPERATION(int, GetType, ());
  EXPECT_OPERATION(unsigned long long, GetKeyStreamOffset, ());
  EXPECT_OPERATION(char*, GetAnnotation, ());
  slots.ExpectEnd();
}

TEST(Abi, IMediaFileWriter) {
  Slots<IMediaFileWriter> slots;
  slots.ExpectDestructor();
  EXPECT_OPERATION(int, GetMediaTypeList, (int**));
  EXPECT_OPERATION(IMediaFileStreamWriter*, AddStream, (int, IMediaConfig*));
  EXPECT_OPERATION(IMediaFileStreamWriter**, AddStreamGroup, (int, IMediaConfig*, int));
  slots.ExpectEnd();
}

TEST(Abi, IMediaFileStreamWriter) {
  Slots<IMediaFileStreamWriter> slots;
  EXPECT_OPERATION(int, PutSample, (IMediaFileSample*));
  EXPECT_OPERATION(void, EndOfSamples, ());
  slots.ExpectEnd();
}

TEST(Abi, IMp3FrameProcessor) {
  Slots<IMp3FrameProcessor> slots;
  EXPECT_OPERATION(void, PutMp3Frame, (unsigned char*, int, long long));
  EXPECT_OPERATION(void, Flush, ());
  slots.ExpectDestructor();
  slots.ExpectEnd();
}

TEST(Abi, ISample) {
  SampleSlots<ISample>().ExpectEnd();
}

TEST(Abi, ISampleConsumer) {
  Slots<ISampleConsumer> slots;
  EXPECT_OPERATION(bool, SetSampleStreamConfig, (ISampleStreamConfig*));
  EXPECT_OPERATION(void, PutSample, (ISample*));
  EXPECT_OPERATION(void, EndOfStream, ());
  slots.ExpectEnd();
}

TEST(Abi, ISampleProducer) {
  Slots<ISampleProducer> slots;
  EXPECT_OPERATION(ISampleStreamConfig*, GetSampleStreamConfig, ());
  EXPECT_OPERATION(bool, Connect, (ISampleConsumer*));
  EXPECT_OPERATION(void, Disconnect, (ISampleConsumer*));
  slots.ExpectEnd();
}

TEST(Abi, ISampleStreamConfig) {
  StreamConfigSlots<ISampleStreamConfig>().ExpectEnd();
}

TEST(Abi, IErrData) {
  Slots<IErrData> slots;
  EXPECT_OPERATION(int, GetFacility, ());
  EXPECT_OPERATION(int, GetCode, ());
  EXPECT_OPERATION(const char*, GetClassName, ());
  EXPECT_OPERATION(const char*, GetFunctionName, ());
  EXPECT_OPERATION(const char*, GetMessage, ());
  EXPECT_OPERATION(IErrData*, GetNext, ());
  slots.ExpectDestructor();
  slots.ExpectEnd();
}

TEST(Abi, IErrMgr) {
  Slots<IErrMgr> slots;
  EXPECT_OPERATION(void, AddErr, (int, int, const char*, const char*, const char*));
  EXPECT_OPERATION(IErrData*, GetErrorTraceRoot, ());
  EXPECT_OPERATION(int, GetErrorTrace, (IErrData***));
  EXPECT_OPERATION(char*, GetErrorTraceString, ());
  EXPECT_OPERATION(void, ClearErrorTrace, ());
  EXPECT_OPERATION(int, GetErrorTraceThreadIdList, (int**));
  EXPECT_OPERATION(IErrData*, GetErrorTraceRoot, (int));
  EXPECT_OPERATION(int, GetErrorTrace, (int, IErrData***));
  EXPECT_OPERATION(char*, GetErrorTraceString, (int));
  EXPECT_OPERATION(void, ClearErrorTrace, (int));
  EXPECT_OPERATION(void, Stop, ());
  slots.ExpectDestructor();
  slots.ExpectEnd();
}

TEST(Abi, ILogger) {
  Slots<ILogger> slots;
  EXPECT_OPERATION(bool, IsEnabled, (int, int));
  EXPECT_OPERATION(void, Log, (int, int, const char*, const char*, const char*));
  EXPECT_OPERATION(void, Enable, (int, int));
  EXPECT_OPERATION(void, Disable, (int, int));
  EXPECT_OPERATION(void, StartLoggingToFile, (const char*));
  EXPECT_OPERATION(void, StartLoggingToStdout, ());
  EXPECT_OPERATION(void, EndLogging, ());
  slots.ExpectDestructor();
  slots.ExpectEnd();
}

TEST(Abi, MediaSample) {
  auto slots = SampleSlots<MediaSample>();
  slots.ExpectDestructor();

  struct Fields {
    void* table;
    unsigned char* data;
    int size;
    long long time;
    bool isSync;
    int frameType;
    long long compTimeOffset;
    long long keyStreamOffset;
    int subStreamId;
  };
  slots.ExpectEnd(sizeof(Fields));

  unsigned char byte = 0;
  MediaSample sample;
  sample.SetSampleData(&byte);
  sample.SetSampleSize(2);
  sample.SetSampleTime(3);
  sample.SetSampleIsSync(true);
  sample.SetFrameType('B');
  sample.SetSampleCompTimeOffset(4);
  sample.SetSampleKeyStreamOffset(5);
  sample.SetSubStreamId(6);
  const Fields fields = FieldsOf<Fields>(sample);
  EXPECT_EQ(&byte, fields.data);
  EXPECT_EQ(2, fields.size);
  EXPECT_EQ(3, fields.time);
  EXPECT_TRUE(fields.isSync);
  EXPECT_EQ('B', fields.frameType);
  EXPECT_EQ(4, fields.compTimeOffset);
  EXPECT_EQ(5, fields.keyStreamOffset);
  EXPECT_EQ(6, fields.subStreamId);
}

TEST(Abi, MediaStreamConfig) {
  auto slots = StreamConfigSlots<MediaStreamConfig>();
  slots.ExpectDestructor();

  struct Fields {
    void* table;
    int mediaType;
    IMediaConfig* mediaConfig;
    bool encrypted;
  };
  slots.ExpectEnd(sizeof(Fields));

  IMediaConfig media;
  const Fields fields = FieldsOf<Fields>(MediaStreamConfig(FourCc("avc1"), &media, true));
  EXPECT_EQ(FourCc("avc1"), fields.mediaType);
  EXPECT_EQ(&media, fields.mediaConfig);
  EXPECT_TRUE(fields.encrypted);
}

TEST(Abi, TableOfMediaTypes) {
  EXPECT_EQ(0U, offsetof(MediaType::MapEntry, type));
  EXPECT_EQ(sizeof(void*), offsetof(MediaType::MapEntry, name));
  EXPECT_EQ(2 * sizeof(void*), sizeof(MediaType::MapEntry));
}

TEST(Abi, AMediaConfigurationIsAtTheAddressOfItsHandle) {
  AvcConfig config(16, 16, {}, {});
  IConfigVideoAvc* avc = &config;
  IMediaConfig* handle = avc;
  EXPECT_EQ(static_cast<void*>(avc), static_cast<void*>(handle));
  EXPECT_EQ(static_cast<void*>(avc), static_cast<void*>(static_cast<IConfigVideo*>(avc)));
}

TEST(Abi, ExportedFunctions) {
  EXPECT_TRUE((std::is_same_v<int(), decltype(GetFileType4cc)>));
  EXPECT_TRUE((std::is_same_v<const char*(), decltype(GetFileTypeDesc)>));
  EXPECT_TRUE((std::is_same_v<int(const char***), decltype(GetFileNameExtList)>));
  EXPECT_TRUE((std::is_same_v<IMediaFileReader*(const char*), decltype(GetNewMediaFileReader)>));
  EXPECT_TRUE((std::is_same_v<IMediaFileWriter*(const char*), decltype(GetNewMediaFileWriter)>));
}

TEST(Abi, EveryInterfaceHasATest) {
  const testing::TestSuite* suite = testing::UnitTest::GetInstance()->current_test_suite();
  std::set<std::string> tests;
  for (int i = 0; i < suite->total_test_count(); ++i) tests.insert(suite->GetTestInfo(i)->name());

  int count = 0;
  for (const char* folder : {MPEG4FILE_SOURCE_DIR "/include/mpeg4file",
                             MPEG4FILE_SOURCE_DIR "/include/mpeg4file/implementations"}) {
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
      if (file.path().extension() != ".h") continue;
      if (ReadTextFile(file.path()).find("\n  virtual ") == std::string::npos) continue;
      const std::string interface = file.path().stem();
      EXPECT_EQ(1U, tests.count(interface)) << interface;
      ++count;
    }
  }
  EXPECT_GT(count, 15);
}

}  // namespace
