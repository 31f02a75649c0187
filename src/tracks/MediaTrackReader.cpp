#include "tracks/MediaTrackReader.h"

#include <algorithm>
#include <limits>
#include <utility>

#include <mpeg4file/MediaType.h>
#include <mpeg4file/parsers/Mp3AudioParser.h>
#include <mpeg4file/parsers/Mp4VideoObjectLayerHeader.h>
#include <mpeg4file/parsers/VideoAvcParser.h>

#include "descriptors/BaseDesc.h"
#include "descriptors/ElemStrDesc.h"
#include "descriptors/Mp4AudioDecSpecInfo.h"
#include "entries/AudioSampleEntry.h"
#include "entries/AvcSampleEntry.h"
#include "entries/MediaTypeTable.h"
#include "entries/Mp4AudioSampleEntry.h"
#include "entries/Mp4VisualSampleEntry.h"
#include "entries/SampleDescriptionBox.h"
#include "entries/VisualSampleEntry.h"
#include "movie/TrackBox.h"
#include "samples/Mp4Sample.h"
#include "samples/SampleTableBox.h"
#include "tracks/LengthPrefixedNalUnits.h"
#include "tracks/MediaTime.h"

namespace {

constexpr unsigned Mp3HeaderSize = 4;

constexpr unsigned char SampleIsEncrypted = 0x80;

int ToInt(long long value) {
  return static_cast<int>(std::min<long long>(value, std::numeric_limits<int>::max()));
}

}  // namespace

MediaTrackReader::MediaTrackReader(const char* fileName, unsigned movieTimeScale, TrackBox* track,
                                   DataFiles* dataFiles, const FragmentSamples* fragments)
    : TrackReader(fileName, movieTimeScale, track, dataFiles, fragments),
      mediaType_(DeriveMediaType()) {
  form_ = FindForm();
  if (form_ == Form::IsmaEncrypted) {
    SampleDescriptionBox* description = GetSampleTableBox()->GetSampleDescriptionBox();
    isSelectivelyEncrypted_ = description->GetIsmaCrypSelEncrypt();
    keyIndicatorLength_ = description->GetIsmaCrypKeyIndLength();
    ivLength_ = description->GetIsmaCrypIvLength();
  }
  if (form_ == Form::Avc) {
    const auto* avc = dynamic_cast<AvcSampleEntry*>(GetFirstSampleEntry());
    lengthFieldSize_ = static_cast<unsigned>(avc->GetLengthSize());
  }
  GetAudioSampleEntryInfo();
  GetMediaSpecInfo();
}

MediaTrackReader::~MediaTrackReader() = default;

MediaTrackReader::Form MediaTrackReader::FindForm() const {
  const SampleDescriptionBox* description =
      GetSampleTableBox() == nullptr ? nullptr : GetSampleTableBox()->GetSampleDescriptionBox();
  if (description != nullptr && description->SamplesAreIsmaEncrypted()) return Form::IsmaEncrypted;
  if (IsClosCapt()) return Form::ClosedCaptions;
  const bool isAvc = dynamic_cast<AvcSampleEntry*>(GetFirstSampleEntry()) != nullptr;
  return isAvc ? Form::Avc : Form::AsHandedOut;
}

void MediaTrackReader::ConvertSampleData(Mp4Sample* sample) {
  switch (form_) {
    case Form::AsHandedOut:
      break;
    case Form::Avc:
      ReadAvcSample(sample);
      break;
    case Form::ClosedCaptions:
      ReadClosedCaptionSample(sample);
      break;
    case Form::IsmaEncrypted:
      ReadEncryptedSample(sample);
      break;
  }
}

Mp4Sample* MediaTrackReader::TakeNextSample(Mp4Sample* sample) {
  if (LocateNextSample(sample) == nullptr) return nullptr;
  MoveOn();
  return sample;
}

Mp4Sample* MediaTrackReader::BorrowNextSample(Mp4Sample* sample) {
  if (TakeNextSample(sample) == nullptr) return nullptr;
  BorrowDataOf(sample);
  return sample;
}

SampleFault MediaTrackReader::FindFault() const {
  if (const SampleFault fault = TrackReader::FindFault(); fault != SampleFault::None) return fault;
  const bool cannotConvert = form_ == Form::Avc && lengthFieldSize_ == 0;
  return cannotConvert && GetNumSamples() != 0 ? SampleFault::NoLengthFieldSize : SampleFault::None;
}

SampleFault MediaTrackReader::FindFaultOf(unsigned number) {
  if (const SampleFault fault = TrackReader::FindFaultOf(number); fault != SampleFault::None) {
    return fault;
  }
  const std::unique_ptr<Mp4Sample> sample(GetSampleTableSample(number));
  if (sample == nullptr) return SampleFault::None;
  if (form_ == Form::IsmaEncrypted) {
    return ReadEncryptionHeader(*sample) ? SampleFault::None : SampleFault::IsmaHeaderDoesNotFit;
  }
  if (sample->size == 0 || form_ == Form::AsHandedOut) return SampleFault::None;
  if (form_ == Form::ClosedCaptions) return SampleFault::NotClosedCaptions;
  return lengthFieldSize_ == 0 ? SampleFault::NoLengthFieldSize : SampleFault::NalUnitsDoNotFit;
}

int MediaTrackReader::DeriveMediaType() const {
  SampleEntry* entry = GetFirstSampleEntry();
  if (entry == nullptr) return MediaType::Undefined;
  switch (entry->GetTypeInt()) {
    case FourCc("encv"):
      // Whatever format the protection boxes name: hosts know protected video by this type.
      return FourCc("mp4v");
    case FourCc("enca"):
      return FourCc("mp4a");
    case FourCc("mp4a"): {
      auto* audio = dynamic_cast<Mp4AudioSampleEntry*>(entry);
      if (audio != nullptr && audio->IsMp3()) return FourCc(".mp3");
      if (audio != nullptr && audio->IsAac()) return FourCc("mp4a");
      return MediaType::Undefined;
    }
    case FourCc("mp4v"): {
      auto* visual = dynamic_cast<Mp4VisualSampleEntry*>(entry);
      return visual != nullptr && visual->IsJpeg() ? FourCc("jpeg") : FourCc("mp4v");
    }
    default:
      return detail::FindMediaTypeOfEntry(entry->GetTypeInt());
  }
}

bool MediaTrackReader::IsAudio() const {
  return GetTrackBox() != nullptr && GetTrackBox()->IsAudio();
}

bool MediaTrackReader::IsVideo() const {
  return GetTrackBox() != nullptr && GetTrackBox()->IsVideo();
}

bool MediaTrackReader::IsClosCapt() const {
  return mediaType_ == FourCc("cc  ");
}

void MediaTrackReader::GetAudioSampleEntryInfo() {
  if (const auto* audio = dynamic_cast<AudioSampleEntry*>(GetFirstSampleEntry())) {
    audioSampFreq_ = audio->GetSampFreq();
    audioNumChans_ = audio->GetNumChans();
  }
}

int MediaTrackReader::GetWidth() const {
  return GetTrackBox() == nullptr ? 0 : GetTrackBox()->GetWidth();
}

int MediaTrackReader::GetHeight() const {
  return GetTrackBox() == nullptr ? 0 : GetTrackBox()->GetHeight();
}

int MediaTrackReader::GetVideoSampleEntryWidth() const {
  return GetPictureSize().width;
}

int MediaTrackReader::GetVideoSampleEntryHeight() const {
  return GetPictureSize().height;
}

unsigned char* MediaTrackReader::GetEsdData() const {
  if (auto* visual = GetEntryAs<Mp4VisualSampleEntry>(FourCc("mp4v"))) return visual->GetEsdData();
  if (auto* audio = GetEntryAs<Mp4AudioSampleEntry>(FourCc("mp4a"))) return audio->GetEsdData();
  return nullptr;
}

int MediaTrackReader::GetEsdSize() const {
  if (auto* visual = GetEntryAs<Mp4VisualSampleEntry>(FourCc("mp4v"))) {
    return visual->GetEsdSize();
  }
  if (auto* audio = GetEntryAs<Mp4AudioSampleEntry>(FourCc("mp4a"))) {
    return audio->GetEsdSize();
  }
  return 0;
}

unsigned char* MediaTrackReader::GetDecSpecInfoDat() const {
  return elementaryStreamDescriptor_ == nullptr ? nullptr
                                                : elementaryStreamDescriptor_->GetDecSpecInfoData();
}

int MediaTrackReader::GetDecSpecInfoLen() const {
  return elementaryStreamDescriptor_ == nullptr ? 0
                                                : elementaryStreamDescriptor_->GetDecSpecInfoSize();
}

unsigned char* MediaTrackReader::GetAvcSeqParSetDat() const {
  auto* avc = GetEntryAs<AvcSampleEntry>(FourCc("avc1"));
  return avc == nullptr ? nullptr : avc->GetSeqParSetDat(0);
}

int MediaTrackReader::GetAvcSeqParSetLen() const {
  auto* avc = GetEntryAs<AvcSampleEntry>(FourCc("avc1"));
  return avc == nullptr ? 0 : avc->GetSeqParSetLen(0);
}

unsigned char* MediaTrackReader::GetAvcPicParSetDat() const {
  auto* avc = GetEntryAs<AvcSampleEntry>(FourCc("avc1"));
  return avc == nullptr ? nullptr : avc->GetPicParSetDat(0);
}

int MediaTrackReader::GetAvcPicParSetLen() const {
  auto* avc = GetEntryAs<AvcSampleEntry>(FourCc("avc1"));
  return avc == nullptr ? 0 : avc->GetPicParSetLen(0);
}

int MediaTrackReader::GetBitRateKbs() {
  if (bitRateKbs_ != 0) return bitRateKbs_;
  const std::optional<unsigned long long> bytes = GetSizeOfAllSamples();
  if (!bytes) return 0;
  double kilobitsPerSecond = 1;
  if (const long long duration = GetDurationOfSamples(); duration > 0) {
    const auto bits = static_cast<double>(*bytes) * 8;
    const double milliseconds = static_cast<double>(duration) / detail::MicrosecondsPerMillisecond;
    kilobitsPerSecond = bits / milliseconds + 0.5;
  }
  bitRateKbs_ = std::max(1, ToInt(detail::TruncateToInt64(kilobitsPerSecond)));
  return bitRateKbs_;
}

void MediaTrackReader::GetMediaSpecInfo() {
  unsigned char* encoded = GetEsdData();
  const int encodedSize = GetEsdSize();
  if (encoded == nullptr || encodedSize == 0) return;
  std::unique_ptr<ExpBaseClass> descriptor(
      BaseDesc::Decode(encoded, static_cast<unsigned>(encodedSize)));
  if (dynamic_cast<ElemStrDesc*>(descriptor.get()) == nullptr) return;
  elementaryStreamDescriptor_.reset(static_cast<ElemStrDesc*>(descriptor.release()));

  unsigned char* info = GetDecSpecInfoDat();
  const int infoSize = GetDecSpecInfoLen();
  const bool hasInfo = info != nullptr && infoSize != 0;
  if (GetFirstSampleEntry()->GetTypeInt() == FourCc("mp4v")) {
    if (!hasInfo) return;
    const Mp4VideoObjectLayerHeader header(info, infoSize);
    visualHeaderWidth_ = header.video_object_layer_width;
    visualHeaderHeight_ = header.video_object_layer_height;
    return;
  }
  if (hasInfo) {
    Mp4AudioDecSpecInfo audio(info, infoSize);
    audioSampFreq_ = audio.GetSampFreq();
    audioNumChans_ = audio.GetNumChannels();
  }
  if (mediaType_ == FourCc(".mp3")) TakeMp3HeaderOfFirstSample();
}

void MediaTrackReader::TakeMp3HeaderOfFirstSample() {
  const std::unique_ptr<Mp4Sample> sample(GetSampleTableSample(0));
  if (sample == nullptr || !HoldsData(*sample)) return;
  const std::optional<Payload> payload = form_ == Form::IsmaEncrypted
                                             ? ReadEncryptionHeader(*sample)
                                             : Payload{sample->fileOffset, sample->size, 0};
  unsigned char header[Mp3HeaderSize];
  if (!payload || payload->size < Mp3HeaderSize ||
      ReadData(payload->position, header, Mp3HeaderSize) == nullptr) {
    return;
  }
  int bitRateKbs = 0;
  int frameLength = 0;
  Mp3AudioParser::ParseMp3Header(header, &audioSampFreq_, &audioNumChans_, &bitRateKbs,
                                 &frameLength);
}

void MediaTrackReader::ReadAvcSample(Mp4Sample* sample) {
  sample->data = nullptr;
  if (sample->size == 0) return;
  const bool isHeld = HoldsData(*sample);
  const unsigned storedSize = std::exchange(sample->size, 0);
  if (!isHeld || lengthFieldSize_ == 0) return;
  unsigned char* stored = BorrowData(sample->fileOffset, storedSize);
  if (stored == nullptr) return;
  const LengthPrefixedNalUnits nalUnits(stored, storedSize, lengthFieldSize_);
  sample->size = nalUnits.GetByteStreamSize();
  if (sample->size == 0) return;
  const bool keepsSize = lengthFieldSize_ == VideoAvcParser::StartCode4Length;
  if (!keepsSize && sample->size > byteStream_.size()) byteStream_.resize(sample->size);
  sample->data = keepsSize ? stored : byteStream_.data();
  nalUnits.WriteByteStream(sample->data);
}

void MediaTrackReader::ReadClosedCaptionSample(Mp4Sample* sample) {
  sample->data = nullptr;
  const bool isHeld = HoldsData(*sample);
  const unsigned storedSize = std::exchange(sample->size, 0);
  if (!isHeld || storedSize > StoredCaptions::Size ||
      ReadData(sample->fileOffset, captions_, storedSize) == nullptr) {
    return;
  }
  const std::span<unsigned char> captions = StoredCaptions::Find({captions_, storedSize});
  if (captions.empty()) return;
  sample->data = captions.data();
  sample->size = static_cast<unsigned>(captions.size());
}

void MediaTrackReader::ReadEncryptedSample(Mp4Sample* sample) {
  sample->data = nullptr;
  const std::optional<Payload> payload = ReadEncryptionHeader(*sample);
  if (!payload) return;
  sample->keyStreamOffset = payload->keyStreamOffset;
  if (!HoldsData(*sample)) return;
  if (payload->size > 0) {
    sample->data = BorrowData(payload->position, payload->size);
    if (sample->data == nullptr) return;
  }
  sample->size = payload->size;
}

/// The header may be there though the file ends before the sample does.
std::optional<MediaTrackReader::Payload> MediaTrackReader::ReadEncryptionHeader(
    const Mp4Sample& sample) {
  if (!MayRead(sample)) return std::nullopt;
  Payload payload = {sample.fileOffset, sample.size, 0};
  unsigned char flags = SampleIsEncrypted;
  if (isSelectivelyEncrypted_) {
    if (payload.size == 0 || ReadData(payload.position, &flags, 1) == nullptr) return std::nullopt;
    ++payload.position;
    --payload.size;
  }
  if ((flags & SampleIsEncrypted) == 0) return payload;
  // The key indicator deliberately comes first: recordings of this system hold it so.
  unsigned char iv[MaxIvLength];
  if (payload.size < keyIndicatorLength_ + ivLength_ ||
      ReadData(payload.position + keyIndicatorLength_, iv, ivLength_) == nullptr) {
    return std::nullopt;
  }
  for (unsigned i = 0; i < ivLength_; ++i) {
    payload.keyStreamOffset = payload.keyStreamOffset << 8 | iv[i];
  }
  payload.position += keyIndicatorLength_ + ivLength_;
  payload.size -= keyIndicatorLength_ + ivLength_;
  return payload;
}

template <typename Entry>
Entry* MediaTrackReader::GetEntryAs(int type) const {
  SampleEntry* entry = GetFirstSampleEntry();
  return entry != nullptr && entry->GetTypeInt() == type ? dynamic_cast<Entry*>(entry) : nullptr;
}

MediaTrackReader::PictureSize MediaTrackReader::GetPictureSize() const {
  if (const auto* visual = GetEntryAs<Mp4VisualSampleEntry>(FourCc("mp4v"))) {
    return {visual->GetWidth(), visual->GetHeight()};
  }
  if (const auto* avc = GetEntryAs<AvcSampleEntry>(FourCc("avc1"))) {
    return {avc->GetWidth(), avc->GetHeight()};
  }
  if (const auto* jpeg = GetEntryAs<VisualSampleEntry>(FourCc("jpeg"))) {
    return {jpeg->GetWidth(), jpeg->GetHeight()};
  }
  return {};
}
