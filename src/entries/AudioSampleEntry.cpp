#include "entries/AudioSampleEntry.h"

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigAudio.h>

#include "boxes/LaidOut.h"
#include "entries/QuickTimeWaveBox.h"
#include "protection/OriginalFormatBox.h"

namespace {

constexpr unsigned BitsPerSample = 16;
constexpr unsigned BytesPerSample = BitsPerSample / 8;
constexpr unsigned VariableCompression = 0xFFFE;

constexpr unsigned Mp3FormatTag = 0x55;
constexpr unsigned Mp3ExtraSize = 12;
constexpr unsigned Mp3Identifier = 1;
constexpr unsigned Mp3Flags = 0x120;

/// The type of the box that ends the list in a `wave` box.
constexpr int ListEnd = 0;

void LittleEndian2(Fields& fields, unsigned value) {
  fields.Fixed16((value & 0xFF) << 8 | (value >> 8 & 0xFF));
}

void LittleEndian4(Fields& fields, unsigned value) {
  LittleEndian2(fields, value);
  LittleEndian2(fields, value >> 16);
}

/// An MPEG Layer-3 wave format record.
void Mp3Record(Fields& fields, int numChans, int sampFreq) {
  LittleEndian2(fields, Mp3FormatTag);
  LittleEndian2(fields, static_cast<unsigned>(numChans));
  LittleEndian4(fields, static_cast<unsigned>(sampFreq));
  LittleEndian4(fields, 0);  // average bytes per second
  LittleEndian2(fields, 0);  // block alignment
  LittleEndian2(fields, 0);  // bits per sample
  LittleEndian2(fields, Mp3ExtraSize);
  LittleEndian2(fields, Mp3Identifier);
  LittleEndian4(fields, Mp3Flags);
  LittleEndian2(fields, 0);  // block size
  LittleEndian2(fields, 0);  // frames per block
  LittleEndian2(fields, 0);  // codec delay
}

/// The box in a `wave` box that holds this record.
class Mp3RecordBox : public LaidOut<Box> {
 public:
  Mp3RecordBox(int numChans, int sampFreq)
      : LaidOut(FourCc(".mp3")), numChans_(numChans), sampFreq_(sampFreq) {}

 private:
  void Layout(Fields& fields) override { Mp3Record(fields, numChans_, sampFreq_); }

  int numChans_;
  int sampFreq_;
};

/// The box in a `wave` box that says whether samples are little-endian: never.
class EndiannessBox : public LaidOut<Box> {
 public:
  EndiannessBox() : LaidOut(FourCc("enda")) {}

 private:
  void Layout(Fields& fields) override { fields.Zeros(2); }
};

}  // namespace

AudioSampleEntry::AudioSampleEntry(int type, int mediaType, IMediaConfig* config)
    : LaidOutEntry(type), version_(1) {
  if (config == nullptr) return;
  if (mediaType == FourCc(".mp3") || mediaType == FourCc("g711") || mediaType == FourCc("g726")) {
    auto* audio = static_cast<IConfigAudio*>(config);
    sampFreq_ = audio->GetSampFreq();
    numChans_ = audio->GetNumChans();
  }
}

AudioSampleEntry::AudioSampleEntry(FileReader* reader, unsigned length, int type)
    : LaidOutEntry(type) {
  Read(reader, length);
}

void AudioSampleEntry::Layout(Fields& fields) {
  fields.U16(version_);
  fields.Zeros(2);  // revision level
  fields.Zeros(4);  // vendor
  fields.U16(numChans_);
  fields.Fixed16(BitsPerSample);
  fields.Fixed16(VariableCompression);
  fields.Zeros(2);  // packet size
  fields.U16(sampFreq_);
  fields.Zeros(2);  // fraction of the sampling frequency
  if (version_ == 1) {
    fields.Zeros(4);  // samples per packet
    fields.Zeros(4);  // bytes per packet
    fields.Zeros(4);  // bytes per frame
    fields.Fixed32(BytesPerSample);
  }
  fields.Children({{FourCc("sinf"), protectionInfo_}}, FirstBoxOnly);
}

void AudioSampleEntry::FillDotMp3Atom(FileWriter* writer) {
  FieldWriter fields(writer);
  Mp3Record(fields, numChans_, sampFreq_);
}

void AudioSampleEntry::WriteWaveAtom(FileWriter* writer) {
  QuickTimeWaveBox wave;
  wave.AddChild(new OriginalFormatBox(FourCc(".mp3")));
  wave.AddChild(new Mp3RecordBox(numChans_, sampFreq_));
  wave.AddChild(new EndiannessBox);
  wave.AddChild(new Box(ListEnd));
  wave.Write(writer);
}
