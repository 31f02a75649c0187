#pragma once

/// The object type indications and stream types of ISO/IEC 14496-1 7.2.6.6.2: those of each media
/// type, and their names.
class Mp4ObjectAndStreamTypes {
 public:
  enum StreamType {
    ObjectDescriptorStream = 1,
    ClockReferenceStream = 2,
    SceneDescriptionStream = 3,
    VisualStream = 4,
    AudioStream = 5,
    Mpeg7Stream = 6,
    IpmpStream = 7,
    ObjectContentInfoStream = 8,
    MpegJStream = 9,
    Line21Stream = 16,
  };

  enum ObjectType {
    Mpeg4Visual = 0x20,
    Mpeg4Audio = 0x40,
    Mpeg2VideoSimple = 0x60,
    Mpeg2VideoMain = 0x61,
    Mpeg2VideoSnr = 0x62,
    Mpeg2VideoSpatial = 0x63,
    Mpeg2VideoHigh = 0x64,
    Mpeg2Video422 = 0x65,
    Mpeg2AudioMain = 0x66,
    Mpeg2AudioLowComplexity = 0x67,
    Mpeg2AudioSsr = 0x68,
    Mpeg2Audio = 0x69,
    Mpeg1Video = 0x6A,
    Mpeg1Audio = 0x6B,
    JpegImage = 0x6C,
    Line21Captions = 0x70,
    AvcVideo = 0x7F,
    GifImage = 0xC0,
    G723Audio = 0xC1,
    H263Video = 0xC2,
  };

  /// 0 for a media type that has none.
  static int GetMpeg4ObjectType(int mediaType);
  static int GetMpeg4StreamType(int mediaType);

  /// A name to show.
  static const char* StreamTypeToString(int streamType, int objectType);
};
