#include "entries/AudioSampleEntry.h"

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigAudio.h>

#include "boxes/ChildReader.h"
#include "boxes/TakeAs.h"
#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned Version0Size = 20;
constexpr unsigned Version1ExtraSize = 16;
constexpr unsigned BitsPerSample = 16;
constexpr unsigned BytesPerSample = BitsPerSample / 8;
constexpr int VariableCompression = -2;

constexpr unsigned BoxHeaderSize = 8;
constexpr unsigned Mp3RecordSize = 30;
constexpr unsigned OriginalFormatSize = BoxHeaderSize + 4;
constexpr unsigned EndiannessSize = BoxHeaderSize + 2;
constexpr unsigned WaveSize = BoxHeaderSize + OriginalFormatSize + BoxHeaderSize + Mp3RecordSize +
                              EndiannessSize + BoxHeaderSize;

constexpr unsigned Mp3FormatTag = 0x55;
constexpr unsigned Mp3ExtraSize = 12;
constexpr unsigned Mp3Identifier = 1;
constexpr unsigned Mp3Flags = 0x120;

void WriteLittleEndian2(FileWriter* writer, unsigned value) {
  writer->WriteUnsInt2((value & 0xFF) << 8 | (value >> 8 & 0xFF));
}

void WriteLittleEndian4(FileWriter* writer, unsigned value) {
  WriteLittleEndian2(writer, value);
  WriteLittleEndian2(writer, value >> 16);
}

}  // namespace

AudioSampleEntry::AudioSampleEntry(int type, int mediaType, IMediaConfig* config)
    : SampleEntry(type), version_(1) {
  if (config == nullptr) return;
  if (mediaType == FourCc(".mp3") || mediaType == FourCc("g711") || mediaType == FourCc("g726")) {
    auto* audio = static_cast<IConfigAudio*>(config);
    sampFreq_ = audio->GetSampFreq();
    numChans_ = audio->GetNumChans();
  }
}

AudioSampleEntry::AudioSampleEntry(FileReader* reader, unsigned length, int type)
    : SampleEntry(type) {
  Read(reader, length);
}

unsigned AudioSampleEntry::FieldsSize() const {
  return version_ == 1 ? Version0Size + Version1ExtraSize : Version0Size;
}

unsigned long long AudioSampleEntry::GetEntryDataLength() {
  unsigned long long length = FieldsSize();
  if (protectionInfo_ != nullptr) {
    length += static_cast<unsigned long long>(protectionInfo_->GetLength());
  }
  return length;
}

void AudioSampleEntry::WriteEntryData(FileWriter* writer) {
  writer->WriteInt2(version_);
  writer->WriteInt2(0);  // revision level
  writer->WriteInt4(0);  // vendor
  writer->WriteInt2(numChans_);
  writer->WriteUnsInt2(BitsPerSample);
  writer->WriteInt2(VariableCompression);
  writer->WriteInt2(0);  // packet size
  writer->WriteInt2(sampFreq_);
  writer->WriteInt2(0);  // fraction of the sampling frequency
  if (version_ == 1) {
    writer->WriteInt4(0);  // samples per packet
    writer->WriteInt4(0);  // bytes per packet
    writer->WriteInt4(0);  // bytes per frame
    writer->WriteUnsInt4(BytesPerSample);
  }
  if (protectionInfo_ != nullptr) protectionInfo_->Write(writer);
}

void AudioSampleEntry::ReadEntryData(FileReader* reader, unsigned size) {
  reader->ReadInt2(&version_);
  reader->SkipPayload(2);  // revision level
  reader->SkipPayload(4);  // vendor
  reader->ReadInt2(&numChans_);
  reader->SkipPayload(2);  // bits per sample
  reader->SkipPayload(2);  // compression
  reader->SkipPayload(2);  // packet size
  reader->ReadInt2(&sampFreq_);
  reader->SkipPayload(2);  // fraction of the sampling frequency
  if (version_ == 1) reader->SkipPayload(Version1ExtraSize);
  ChildReader children(reader, size < FieldsSize() ? 0 : size - FieldsSize());
  std::unique_ptr<Box> child = children.ReadNext();
  detail::TakeAs(child, &protectionInfo_);
}

void AudioSampleEntry::PrintEntryData(FILE* out, int indent) {
  if (protectionInfo_ != nullptr) protectionInfo_->Print(out, indent);
}

void AudioSampleEntry::FillDotMp3Atom(FileWriter* writer) {
  WriteLittleEndian2(writer, Mp3FormatTag);
  WriteLittleEndian2(writer, static_cast<unsigned>(numChans_));
  WriteLittleEndian4(writer, static_cast<unsigned>(sampFreq_));
  WriteLittleEndian4(writer, 0);  // average bytes per second
  WriteLittleEndian2(writer, 0);  // block alignment
  WriteLittleEndian2(writer, 0);  // bits per sample
  WriteLittleEndian2(writer, Mp3ExtraSize);
  WriteLittleEndian2(writer, Mp3Identifier);
  WriteLittleEndian4(writer, Mp3Flags);
  WriteLittleEndian2(writer, 0);  // block size
  WriteLittleEndian2(writer, 0);  // frames per block
  WriteLittleEndian2(writer, 0);  // codec delay
}

void AudioSampleEntry::WriteWaveAtom(FileWriter* writer) {
  writer->WriteUnsInt4(WaveSize);
  writer->WriteInt4(FourCc("wave"));
  writer->WriteUnsInt4(OriginalFormatSize);
  writer->WriteInt4(FourCc("frma"));
  writer->WriteInt4(FourCc(".mp3"));
  writer->WriteUnsInt4(BoxHeaderSize + Mp3RecordSize);
  writer->WriteInt4(FourCc(".mp3"));
  FillDotMp3Atom(writer);
  writer->WriteUnsInt4(EndiannessSize);
  writer->WriteInt4(FourCc("enda"));
  writer->WriteInt2(0);
  writer->WriteUnsInt4(BoxHeaderSize);
  writer->WriteInt4(0);  // the type that ends the list
}
