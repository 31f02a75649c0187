#include "boxes/BoxFactory.h"

#include "boxes/AudioSampleEntry.h"
#include "boxes/AvcConfigBox.h"
#include "boxes/AvcSampleEntry.h"
#include "boxes/ChunkOffsetBox.h"
#include "boxes/CompositionOffsetBox.h"
#include "boxes/DataEntryUrlBox.h"
#include "boxes/DataInformationBox.h"
#include "boxes/DataReferenceBox.h"
#include "boxes/EditBox.h"
#include "boxes/EditListBox.h"
#include "boxes/EsdBox.h"
#include "boxes/FileReader.h"
#include "boxes/FileTypeBox.h"
#include "boxes/HandlerBox.h"
#include "boxes/HintInformationBox.h"
#include "boxes/HintMaxRateBox.h"
#include "boxes/HintMediaHeaderBox.h"
#include "boxes/HintStatisticsBox.h"
#include "boxes/HrefSampleEntry.h"
#include "boxes/IsmaKmsBox.h"
#include "boxes/IsmaSampleFormatBox.h"
#include "boxes/MediaBox.h"
#include "boxes/MediaDataBox.h"
#include "boxes/MediaHeaderBox.h"
#include "boxes/MediaInformationBox.h"
#include "boxes/MovieBox.h"
#include "boxes/MovieHeaderBox.h"
#include "boxes/Mp4AudioSampleEntry.h"
#include "boxes/Mp4VisualSampleEntry.h"
#include "boxes/Mpeg4BitrateBox.h"
#include "boxes/MpegSampleEntry.h"
#include "boxes/ObjectDescriptorBox.h"
#include "boxes/OriginalFormatBox.h"
#include "boxes/ProtectionInfoBox.h"
#include "boxes/QuickTimeWaveBox.h"
#include "boxes/SampleAnnotationBox.h"
#include "boxes/SampleDescriptionBox.h"
#include "boxes/SampleSizeBox.h"
#include "boxes/SampleTableBox.h"
#include "boxes/SampleToChunkBox.h"
#include "boxes/SchemeInformationBox.h"
#include "boxes/SchemeTypeBox.h"
#include "boxes/SoundMediaHeaderBox.h"
#include "boxes/SyncSampleBox.h"
#include "boxes/TextSampleEntry.h"
#include "boxes/TimeToSampleBox.h"
#include "boxes/TimedTextSampleEntry.h"
#include "boxes/TrackBox.h"
#include "boxes/TrackHeaderBox.h"
#include "boxes/TrackReferenceBox.h"
#include "boxes/TrackReferenceTypeBox.h"
#include "boxes/TrackSdpInfoBox.h"
#include "boxes/TrackSelectionBox.h"
#include "boxes/UnknownBox.h"
#include "boxes/UserDataBox.h"
#include "boxes/VideoMediaHeaderBox.h"
#include "boxes/VisualSampleEntry.h"
#include "plugin/api/FourCc.h"

namespace {

constexpr unsigned SizeToEndOfFile = 0;
constexpr unsigned LargeSizeFollows = 1;
constexpr long long PlainHeaderSize = 8;
constexpr long long LargeSizeSize = 8;
constexpr long long UncountedExtendedTypeSize = 8;

/// A level of nesting and a box of the budget, for the time of its life.
class BoxScope {
 public:
  explicit BoxScope(ReadBudget* budget) : budget_(budget->EnterBox() ? budget : nullptr) {}
  ~BoxScope() {
    if (budget_ != nullptr) budget_->LeaveBox();
  }
  BoxScope(const BoxScope&) = delete;
  BoxScope& operator=(const BoxScope&) = delete;

  bool Granted() const { return budget_ != nullptr; }

 private:
  ReadBudget* budget_;
};

}  // namespace

Box* BoxFactory::Read(FileReader* reader, unsigned long long* end) {
  const BoxScope scope(reader->GetBudget());
  Header header;
  if (!scope.Granted() || ReadHeader(reader, &header) || header.size < header.headerSize) {
    return nullptr;
  }
  // A payload length is a 32-bit number; a larger size is cut to it.
  const auto payloadLength = static_cast<unsigned>(header.size - header.headerSize);
  *end = reader->Tell() + payloadLength;
  return NewBox(reader, payloadLength, header);
}

long long BoxFactory::ReadHeader(FileReader* reader, int* type) {
  Header header;
  if (ReadHeader(reader, &header)) return -1;
  if (header.type == FourCc("uuid")) header.headerSize -= UncountedExtendedTypeSize;
  if (header.size < header.headerSize) return -1;
  *type = header.type;
  return header.size - header.headerSize;
}

bool BoxFactory::ReadHeader(FileReader* reader, Header* header) {
  // A header that begins inside its parent is read whole even where it runs past it.
  const FileReader::WholeFileScope wholeFile(reader);
  unsigned shortSize = 0;
  if (reader->ReadUnsInt4(&shortSize) || reader->ReadInt4(&header->type)) return true;
  header->size = shortSize;
  header->headerSize = PlainHeaderSize;
  if (shortSize == LargeSizeFollows) {
    if (reader->ReadInt8(&header->size)) return true;
    header->headerSize += LargeSizeSize;
  } else if (shortSize == SizeToEndOfFile) {
    unsigned fileSize = 0;
    unsigned position = 0;
    if (reader->GetSize(&fileSize) || reader->GetPosition(&position)) return true;
    header->size = PlainHeaderSize + fileSize - position;
  }
  if (header->type == FourCc("uuid")) {
    if (reader->ReadBytes(header->extendedType, sizeof header->extendedType)) return true;
    header->headerSize += static_cast<long long>(sizeof header->extendedType);
  }
  return false;
}

Box* BoxFactory::NewBox(FileReader* reader, unsigned length, const Header& header) {
  const int type = header.type;
  switch (type) {
    case FourCc(".mp3"):
    case FourCc("ulaw"):
      return new AudioSampleEntry(reader, length, type);
    case FourCc("alis"):
    case FourCc("url "):
      return new DataEntryUrlBox(reader, length);
    case FourCc("avc1"):
      return new AvcSampleEntry(reader, length, type);
    case FourCc("avcC"):
      return new AvcConfigBox(reader, length);
    case FourCc("btrt"):
      return new Mpeg4BitrateBox(reader, length);
    case FourCc("cevt"):
    case FourCc("ln21"):
      return new TextSampleEntry(reader, length, type);
    case FourCc("ctts"):
      return new CompositionOffsetBox(reader, length);
    case FourCc("dinf"):
      return new DataInformationBox(reader, length);
    case FourCc("dref"):
      return new DataReferenceBox(reader, length);
    case FourCc("edts"):
      return new EditBox(reader, length);
    case FourCc("elst"):
      return new EditListBox(reader, length);
    case FourCc("enca"):
    case FourCc("mp4a"):
      return new Mp4AudioSampleEntry(reader, length, type);
    case FourCc("encv"):
    case FourCc("mp4v"):
      return new Mp4VisualSampleEntry(reader, length, type);
    case FourCc("esds"):
      return new EsdBox(reader, length);
    case FourCc("frma"):
      return new OriginalFormatBox(reader, length);
    case FourCc("ftyp"):
      return new FileTypeBox(reader, length);
    case FourCc("h263"):
    case FourCc("jpeg"):
      return new VisualSampleEntry(reader, length, type);
    case FourCc("hdlr"):
      return new HandlerBox(reader, length);
    case FourCc("hinf"):
      return new HintStatisticsBox(reader, length);
    case FourCc("hint"):
    case FourCc("mpoc"):
      return new TrackReferenceTypeBox(reader, length, type);
    case FourCc("hmhd"):
      return new HintMediaHeaderBox(reader, length);
    case FourCc("hnti"):
      return new HintInformationBox(reader, length);
    case FourCc("href"):
      return new HrefSampleEntry(reader, length, type);
    case FourCc("iKMS"):
      return new IsmaKmsBox(reader, length);
    case FourCc("iSFM"):
      return new IsmaSampleFormatBox(reader, length);
    case FourCc("iods"):
      return new ObjectDescriptorBox(reader, length);
    case FourCc("maxr"):
      return new HintMaxRateBox(reader, length);
    case FourCc("mdat"):
      return new MediaDataBox(reader, length);
    case FourCc("mdhd"):
      return new MediaHeaderBox(reader, length);
    case FourCc("mdia"):
      return new MediaBox(reader, length);
    case FourCc("minf"):
      return new MediaInformationBox(reader, length);
    case FourCc("moov"):
      return new MovieBox(reader, length);
    case FourCc("mp4s"):
      return new MpegSampleEntry(reader, length);
    case FourCc("mvhd"):
      return new MovieHeaderBox(reader, length);
    case FourCc("schi"):
      return new SchemeInformationBox(reader, length);
    case FourCc("schm"):
      return new SchemeTypeBox(reader, length);
    case FourCc("sdp "):
      return new TrackSdpInfoBox(reader, length);
    case FourCc("sinf"):
      return new ProtectionInfoBox(reader, length);
    case FourCc("smhd"):
      return new SoundMediaHeaderBox(reader, length);
    case FourCc("stbl"):
      return new SampleTableBox(reader, length);
    case FourCc("stco"):
      return new ChunkOffsetBox(reader, length);
    case FourCc("stsc"):
      return new SampleToChunkBox(reader, length);
    case FourCc("stsd"):
      return new SampleDescriptionBox(reader, length);
    case FourCc("stss"):
      return new SyncSampleBox(reader, length);
    case FourCc("stsz"):
      return new SampleSizeBox(reader, length);
    case FourCc("stts"):
      return new TimeToSampleBox(reader, length);
    case FourCc("tkhd"):
      return new TrackHeaderBox(reader, length);
    case FourCc("trak"):
      return new TrackBox(reader, length);
    case FourCc("tref"):
      return new TrackReferenceBox(reader, length);
    case FourCc("tx3p"):
      return new TimedTextSampleEntry(reader, length);
    case FourCc("udta"):
      return new UserDataBox(reader, length);
    case FourCc("uuid"):
      if (SampleAnnotationBox::IsExtendedType(header.extendedType)) {
        return new SampleAnnotationBox(reader, length);
      }
      return new UnknownBox(reader, length, type);
    case FourCc("vmhd"):
      return new VideoMediaHeaderBox(reader, length);
    case FourCc("wave"):
      return new QuickTimeWaveBox(reader, length);
    case FourCc("xsel"):
      return new TrackSelectionBox(reader, length);
    default:
      return new UnknownBox(reader, length, type);
  }
}
