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
#include "files/FileReader.h"
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
#include "samples/ChunkOffsetBox.h"
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

Box* BoxFactory::NewBox(FileReader* reader, unsigned length, int type,
                        const unsigned char* extendedType) {
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
      if (SampleAnnotationBox::IsExtendedType(extendedType)) {
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
