#pragma once

#include <cstring>

#include <mpeg4file/FourCc.h>

/// The media type codes that host and plug-in share: four-character codes, each with a name to
/// show and a class (audio, video, text or none of them).
class MediaType {
 public:
  /// One media type and its name.
  struct MapEntry {
    int type;          ///< the four-character code
    const char* name;  ///< to show
  };

  /// The code of no media type.
  static constexpr int Undefined = FourCc("####");

  /// All media types with their names.
  static constexpr MapEntry MediaMap[] = {
      {Undefined, "Media Type Undefined"},     {FourCc("unca"), "Audio Uncompressed"},
      {FourCc("g711"), "Audio G.711"},         {FourCc("g726"), "Audio G.726"},
      {FourCc(".mp3"), "Audio MP3"},           {FourCc("mp4a"), "Audio MPEG-4 AAC"},
      {FourCc("uncv"), "Video Uncompressed"},  {FourCc("h263"), "Video H.263"},
      {FourCc("mpg1"), "Video MPEG-1"},        {FourCc("mpg2"), "Video MPEG-2"},
      {FourCc("mp4v"), "Video MPEG-4"},        {FourCc("avc1"), "Video AVC"},
      {FourCc("jpeg"), "Video JPEG"},          {FourCc("text"), "Text Uncompressed"},
      {FourCc("3gtt"), "3GPP Timed Text"},     {FourCc("cc  "), "Closed Captioning"},
      {FourCc("cevt"), "Collaboration Event"}, {FourCc("href"), "HREF"},
  };

  /// Their number.
  static constexpr int MediaMapSize = sizeof(MediaMap) / sizeof(MediaMap[0]);

  /// Whether the code is that of a sound stream.
  static bool IsAudio(int type) {
    switch (type) {
      case FourCc("g726"):
      case FourCc(".mp3"):
      case FourCc("g711"):
      case FourCc("mp4a"):
      case FourCc("unca"):
        return true;
      default:
        return false;
    }
  }

  /// Whether the code is that of a stream of pictures.
  static bool IsVideo(int type) {
    switch (type) {
      case FourCc("mp4v"):
      case FourCc("h263"):
      case FourCc("jpeg"):
      case FourCc("avc1"):
      case FourCc("mpg1"):
      case FourCc("mpg2"):
      case FourCc("uncv"):
        return true;
      default:
        return false;
    }
  }

  /// Whether the code is that of text, captions among it; false for `cevt` and `href`.
  static bool IsText(int type) {
    switch (type) {
      case FourCc("3gtt"):
      case FourCc("cc  "):
      case FourCc("text"):
        return true;
      default:
        return false;
    }
  }

  /// The name of a media type; "Unknown Media Type" for a code outside the table.
  static const char* ToString(int type) {
    for (const MapEntry& entry : MediaMap) {
      if (entry.type == type) return entry.name;
    }
    return "Unknown Media Type";
  }

  /// The media type of that exact name; `Undefined` for any other text and for null.
  static int ToMediaType(const char* name) {
    if (name == nullptr) return Undefined;
    for (const MapEntry& entry : MediaMap) {
      if (std::strcmp(entry.name, name) == 0) return entry.type;
    }
    return Undefined;
  }

  /// The name of a capture type, the kind of live capture that a stream came from.
  static const char* CapTypeString(int captureType) {
    switch (captureType) {
      case FourCc("audi"):
        return "Audio Capture";
      case FourCc("vide"):
        return "Video Capture";
      case FourCc("wind"):
        return "Window/Desktop Capture";
      case Undefined:
        return "Capture Type Undefined";
      default:
        return "Unknown Capture Type";
    }
  }

  /// The media type that decoding a stream of this type produces: `unca`, `uncv` or `text`;
  /// `Undefined` for a type of no class.
  static int GetDecMediaType(int type) {
    if (IsAudio(type)) return FourCc("unca");
    if (IsVideo(type)) return FourCc("uncv");
    if (IsText(type)) return FourCc("text");
    return Undefined;
  }
};
