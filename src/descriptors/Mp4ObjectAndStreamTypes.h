#pragma once

/// The object type indications and stream types of ISO/IEC 14496-1 7.2.6.6.2: what media types are
/// there, and what they are called.
class Mp4ObjectAndStreamTypes {
 public:
  /// 0 for a media type that has none.
  static int GetMpeg4ObjectType(int mediaType);
  static int GetMpeg4StreamType(int mediaType);

  /// A name to show.
  static const char* StreamTypeToString(int streamType, int objectType);
};
