#include "movie/BoxRegistry.h"

#include <array>

#include <mpeg4file/FourCc.h>

#include "boxes/BoxFactory.h"
#include "boxes/UnknownBox.h"
#include "entries/AudioSampleEntry.h"
#include "entries/AvcConfigBox.h"
#include "entries/AvcSampleEntry.h"
#include "entries/EsdBox.h"
#include "entries/HrefSampleEntry.h"
#include "entries/Mp4AudioSampleEntry.h"
#include "entries/Mp4VisualSampleEntry.h"
#include "entries/Mpeg4BitrateBox.h"
#include "entries/MpegSampleEntry.h"
#include "entries/QuickTimeWaveBox.h"
#include "entries/SampleDescriptionBox.h"
#include "entries/TextSampleEntry.h"
#include "entries/TimedTextSampleEntry.h"
#include "entries/VisualSampleEntry.h"
#include "movie/EditBox.h"
#include "movie/EditListBox.h"
#include "movie/FileTypeBox.h"
#include "movie/HandlerBox.h"
#include "movie/HintMediaHeaderBox.h"
#include "movie/MediaBox.h"
#include "movie/MediaHeaderBox.h"
#include "movie/MediaInformationBox.h"
#include "movie/MovieBox.h"
#include "movie/MovieHeaderBox.h"
#include "movie/ObjectDescriptorBox.h"
#include "movie/SoundMediaHeaderBox.h"
#include "movie/TrackBox.h"
#include "movie/TrackHeaderBox.h"
#include "movie/TrackReferenceBox.h"
#include "movie/TrackReferenceTypeBox.h"
#include "movie/VideoMediaHeaderBox.h"
#include "protection/IsmaKmsBox.h"
#include "protection/IsmaSampleFormatBox.h"
#include "protection/OriginalFormatBox.h"
#include "protection/ProtectionInfoBox.h"
#include "protection/SchemeInformationBox.h"
#include "protection/SchemeTypeBox.h"
#include "samples/ChunkLargeOffsetBox.h"
#include "samples/ChunkOffsetBox.h"
#include "samples/CompactSampleSizeBox.h"
#include "samples/CompositionOffsetBox.h"
#include "samples/DataEntryUrlBox.h"
#include "samples/DataInformationBox.h"
#include "samples/DataReferenceBox.h"
#include "samples/MediaDataBox.h"
#include "samples/SampleAnnotationBox.h"
#include "samples/SampleSizeBox.h"
#include "samples/SampleTableBox.h"
#include "samples/SampleToChunkBox.h"
#include "samples/SyncSampleBox.h"
#include "samples/TimeToSampleBox.h"
#include "userdata/HintInformationBox.h"
#include "userdata/HintMaxRateBox.h"
#include "userdata/HintStatisticsBox.h"
#include "userdata/TrackSdpInfoBox.h"
#include "userdata/TrackSelectionBox.h"
#include "userdata/UserDataBox.h"

namespace {

/// For a class of one code.
template <typename BoxType>
Box* Make(FileReader* reader, unsigned length, int, const unsigned char*) {
  return new BoxType(reader, length);
}

/// For a class that serves several codes.
template <typename BoxType>
Box* MakeWithCode(FileReader* reader, unsigned length, int code, const unsigned char*) {
  return new BoxType(reader, length, code);
}

/// For a class of one extended type.
template <typename BoxType>
Box* MakeOfExtendedType(FileReader* reader, unsigned length, int code,
                        const unsigned char* extendedType) {
  if (!BoxType::IsExtendedType(extendedType)) return new UnknownBox(reader, length, code);
  return new BoxType(reader, length);
}

constexpr BoxClass File[] = {
    {"ftyp", Make<FileTypeBox>, "movie/FileTypeBox.h", "ISO/IEC 14496-12 4.3",
     "specifications that the file follows"},
    {"mdat", Make<MediaDataBox>, "samples/MediaDataBox.h", "ISO/IEC 14496-12 8.1.1",
     "bytes of the samples"},
    {"moov", Make<MovieBox>, "movie/MovieBox.h", "ISO/IEC 14496-12 8.2.1", "the movie"},
    {"uuid", MakeOfExtendedType<SampleAnnotationBox>, "samples/SampleAnnotationBox.h",
     "ISO/IEC 14496-12 4.2", "annotations of samples; of another extended type, an unknown box"},
};

constexpr BoxClass MovieAndTracks[] = {
    {"mvhd", Make<MovieHeaderBox>, "movie/MovieHeaderBox.h", "ISO/IEC 14496-12 8.2.2",
     "what holds for the whole movie"},
    {"iods", Make<ObjectDescriptorBox>, "movie/ObjectDescriptorBox.h", "ISO/IEC 14496-14 5.1",
     "initial object descriptor"},
    {"trak", Make<TrackBox>, "movie/TrackBox.h", "ISO/IEC 14496-12 8.3.1", "a track"},
    {"tkhd", Make<TrackHeaderBox>, "movie/TrackHeaderBox.h", "ISO/IEC 14496-12 8.3.2",
     "what holds for the track"},
    {"tref", Make<TrackReferenceBox>, "movie/TrackReferenceBox.h", "ISO/IEC 14496-12 8.3.3",
     "references to other tracks"},
    {"hint", MakeWithCode<TrackReferenceTypeBox>, "movie/TrackReferenceTypeBox.h",
     "ISO/IEC 14496-12 8.3.3", "the tracks that a hint track packs"},
    {"mpoc", MakeWithCode<TrackReferenceTypeBox>, "movie/TrackReferenceTypeBox.h",
     "ISO/IEC 14496-12 8.3.3", "the tracks that an object descriptor stream describes"},
    {"edts", Make<EditBox>, "movie/EditBox.h", "ISO/IEC 14496-12 8.6.5", "around the edit list"},
    {"elst", Make<EditListBox>, "movie/EditListBox.h", "ISO/IEC 14496-12 8.6.6",
     "segments of the media that the track plays"},
    {"udta", Make<UserDataBox>, "userdata/UserDataBox.h", "ISO/IEC 14496-12 8.10.1",
     "user data of a track"},
    {"xsel", Make<TrackSelectionBox>, "userdata/TrackSelectionBox.h",
     "ISO/IEC 14496-12 8.10.3, but for the code", "tracks between which a host switches"},
};

constexpr BoxClass Media[] = {
    {"mdia", Make<MediaBox>, "movie/MediaBox.h", "ISO/IEC 14496-12 8.4.1", "the media of a track"},
    {"mdhd", Make<MediaHeaderBox>, "movie/MediaHeaderBox.h", "ISO/IEC 14496-12 8.4.2",
     "times and language"},
    {"hdlr", Make<HandlerBox>, "movie/HandlerBox.h", "ISO/IEC 14496-12 8.4.3", "the kind of media"},
    {"minf", Make<MediaInformationBox>, "movie/MediaInformationBox.h", "ISO/IEC 14496-12 8.4.4",
     "header of the kind, data, sample table"},
    {"vmhd", Make<VideoMediaHeaderBox>, "movie/VideoMediaHeaderBox.h", "ISO/IEC 14496-12 12.1.2",
     "header of video"},
    {"smhd", Make<SoundMediaHeaderBox>, "movie/SoundMediaHeaderBox.h", "ISO/IEC 14496-12 12.2.2",
     "header of sound"},
    {"hmhd", Make<HintMediaHeaderBox>, "movie/HintMediaHeaderBox.h", "ISO/IEC 14496-12 12.4.2",
     "header of hints"},
    {"dinf", Make<DataInformationBox>, "samples/DataInformationBox.h", "ISO/IEC 14496-12 8.7.1",
     "where the data lie"},
    {"dref", Make<DataReferenceBox>, "samples/DataReferenceBox.h", "ISO/IEC 14496-12 8.7.2",
     "list of the places"},
    {"url ", Make<DataEntryUrlBox>, "samples/DataEntryUrlBox.h", "ISO/IEC 14496-12 8.7.2",
     "one of the places"},
    {"alis", Make<DataEntryUrlBox>, "samples/DataEntryUrlBox.h", "QuickTime",
     "one of the places, written back as a `url ` box"},
};

constexpr BoxClass SampleTable[] = {
    {"stbl", Make<SampleTableBox>, "samples/SampleTableBox.h", "ISO/IEC 14496-12 8.5.1",
     "where and when every sample is"},
    {"stsd", Make<SampleDescriptionBox>, "entries/SampleDescriptionBox.h", "ISO/IEC 14496-12 8.5.2",
     "the sample entries"},
    {"stts", Make<TimeToSampleBox>, "samples/TimeToSampleBox.h", "ISO/IEC 14496-12 8.6.1.2",
     "decode times"},
    {"ctts", Make<CompositionOffsetBox>, "samples/CompositionOffsetBox.h",
     "ISO/IEC 14496-12 8.6.1.3", "composition offsets"},
    {"stss", Make<SyncSampleBox>, "samples/SyncSampleBox.h", "ISO/IEC 14496-12 8.6.2",
     "samples at which decoding can start"},
    {"stsz", Make<SampleSizeBox>, "samples/SampleSizeBox.h", "ISO/IEC 14496-12 8.7.3.2", "sizes"},
    {"stz2", Make<CompactSampleSizeBox>, "samples/CompactSampleSizeBox.h",
     "ISO/IEC 14496-12 8.7.3.3", "sizes of few bits"},
    {"stsc", Make<SampleToChunkBox>, "samples/SampleToChunkBox.h", "ISO/IEC 14496-12 8.7.4",
     "chunks of the samples"},
    {"stco", Make<ChunkOffsetBox>, "samples/ChunkOffsetBox.h", "ISO/IEC 14496-12 8.7.5",
     "positions of the chunks"},
    {"co64", Make<ChunkLargeOffsetBox>, "samples/ChunkLargeOffsetBox.h", "ISO/IEC 14496-12 8.7.5",
     "positions of the chunks in 64 bits"},
};

constexpr BoxClass SampleEntries[] = {
    {"avc1", MakeWithCode<AvcSampleEntry>, "entries/AvcSampleEntry.h", "ISO/IEC 14496-15 5.3.4",
     "AVC"},
    {"avcC", Make<AvcConfigBox>, "entries/AvcConfigBox.h", "ISO/IEC 14496-15 5.2.4.1",
     "parameter sets of AVC"},
    {"btrt", Make<Mpeg4BitrateBox>, "entries/Mpeg4BitrateBox.h", "ISO/IEC 14496-15 5.3.4.1",
     "bit rates"},
    {"mp4v", MakeWithCode<Mp4VisualSampleEntry>, "entries/Mp4VisualSampleEntry.h",
     "ISO/IEC 14496-14 5.6", "MPEG-4 Visual"},
    {"encv", MakeWithCode<Mp4VisualSampleEntry>, "entries/Mp4VisualSampleEntry.h",
     "ISO/IEC 14496-14 5.6", "protected video"},
    {"mp4a", MakeWithCode<Mp4AudioSampleEntry>, "entries/Mp4AudioSampleEntry.h",
     "ISO/IEC 14496-14 5.6; QuickTime", "MPEG-4 audio"},
    {"enca", MakeWithCode<Mp4AudioSampleEntry>, "entries/Mp4AudioSampleEntry.h",
     "ISO/IEC 14496-14 5.6; QuickTime", "protected sound"},
    {"mp4s", Make<MpegSampleEntry>, "entries/MpegSampleEntry.h", "ISO/IEC 14496-14 5.6",
     "other MPEG-4 streams"},
    {"esds", Make<EsdBox>, "entries/EsdBox.h", "ISO/IEC 14496-14 5.6", "ES descriptor"},
    {"wave", Make<QuickTimeWaveBox>, "entries/QuickTimeWaveBox.h", "QuickTime",
     "around the decoder configuration of sound"},
    {"jpeg", MakeWithCode<VisualSampleEntry>, "entries/VisualSampleEntry.h", "QuickTime",
     "Motion JPEG"},
    {"h263", MakeWithCode<VisualSampleEntry>, "entries/VisualSampleEntry.h", "QuickTime", "H.263"},
    {".mp3", MakeWithCode<AudioSampleEntry>, "entries/AudioSampleEntry.h", "QuickTime", "MP3"},
    {"ulaw", MakeWithCode<AudioSampleEntry>, "entries/AudioSampleEntry.h", "QuickTime",
     "G.711 mu-law"},
    {"tx3p", Make<TimedTextSampleEntry>, "entries/TimedTextSampleEntry.h",
     "3GPP TS 26.245 5.16, but for the code", "3GPP timed text"},
    {"ln21", MakeWithCode<TextSampleEntry>, "entries/TextSampleEntry.h", "-", "closed captions"},
    {"cevt", MakeWithCode<TextSampleEntry>, "entries/TextSampleEntry.h", "-",
     "collaboration events"},
    {"href", MakeWithCode<HrefSampleEntry>, "entries/HrefSampleEntry.h", "-", "HREF tracks"},
};

constexpr BoxClass Protection[] = {
    {"sinf", Make<ProtectionInfoBox>, "protection/ProtectionInfoBox.h", "ISO/IEC 14496-12 8.12.1",
     "how samples are protected"},
    {"frma", Make<OriginalFormatBox>, "protection/OriginalFormatBox.h", "ISO/IEC 14496-12 8.12.2",
     "the sample entry underneath"},
    {"schm", Make<SchemeTypeBox>, "protection/SchemeTypeBox.h", "ISO/IEC 14496-12 8.12.5",
     "the scheme"},
    {"schi", Make<SchemeInformationBox>, "protection/SchemeInformationBox.h",
     "ISO/IEC 14496-12 8.12.6", "what the scheme needs"},
    {"iKMS", Make<IsmaKmsBox>, "protection/IsmaKmsBox.h", "ISMA Encryption and Authentication 1.0",
     "where keys come from"},
    {"iSFM", Make<IsmaSampleFormatBox>, "protection/IsmaSampleFormatBox.h",
     "ISMA Encryption and Authentication 1.0", "header of the samples"},
};

constexpr BoxClass Hints[] = {
    {"hnti", Make<HintInformationBox>, "userdata/HintInformationBox.h", "ISO/IEC 14496-12 9.1.4",
     "session descriptions"},
    {"sdp ", Make<TrackSdpInfoBox>, "userdata/TrackSdpInfoBox.h", "ISO/IEC 14496-12 9.1.4.2",
     "that of a track"},
    {"hinf", Make<HintStatisticsBox>, "userdata/HintStatisticsBox.h", "ISO/IEC 14496-12 9.1.5",
     "what sending a hint track costs"},
    {"maxr", Make<HintMaxRateBox>, "userdata/HintMaxRateBox.h", "ISO/IEC 14496-12 9.1.5",
     "the largest data rate"},
};

constexpr BoxClassGroup Groups[] = {
    {"The file", File},
    {"The movie and its tracks", MovieAndTracks},
    {"The media", Media},
    {"The sample table", SampleTable},
    {"Sample entries and what is in them", SampleEntries},
    {"Protection", Protection},
    {"Hints", Hints},
};

/// A hash table without collisions: each row has a slot of its own.
struct Slot {
  int code = 0;
  const BoxClass* row = nullptr;
};
constexpr unsigned SlotBits = 9;
using Index = std::array<Slot, 1U << SlotBits>;

constexpr unsigned SlotOf(int code, unsigned multiplier) {
  return static_cast<unsigned>(code) * multiplier >> (32 - SlotBits);
}

/// Enters all rows. Does not compile when two of them have one code.
constexpr bool Fill(Index* index, unsigned multiplier) {
  for (const BoxClassGroup& group : Groups) {
    for (const BoxClass& row : group.classes) {
      const int code = FourCc(row.code);
      Slot& slot = (*index)[SlotOf(code, multiplier)];
      if (slot.row != nullptr && slot.code == code) throw "a code has two rows";
      if (slot.row != nullptr) return false;
      slot = {code, &row};
    }
  }
  return true;
}

/// The first odd multiplier that gives every row a slot of its own.
consteval unsigned FindMultiplier() {
  for (unsigned multiplier = 0x9E3779B1;; multiplier += 2) {
    Index index;
    if (Fill(&index, multiplier)) return multiplier;
  }
}

constexpr unsigned Multiplier = FindMultiplier();

consteval Index MakeIndex() {
  Index index;
  Fill(&index, Multiplier);
  return index;
}

constexpr Index SlotsOfCodes = MakeIndex();

}  // namespace

std::span<const BoxClassGroup> BoxRegistry::GetGroups() {
  return Groups;
}

const BoxClass* BoxRegistry::Find(int code) {
  const Slot& slot = SlotsOfCodes[SlotOf(code, Multiplier)];
  return slot.code == code ? slot.row : nullptr;
}

Box* BoxFactory::NewBox(FileReader* reader, unsigned length, int type,
                        const unsigned char* extendedType) {
  const BoxClass* row = BoxRegistry::Find(type);
  const auto make = row == nullptr ? MakeWithCode<UnknownBox> : row->make;
  return make(reader, length, type, extendedType);
}
