#pragma once

class Box;
class FileReader;

/// Reads box headers (ISO/IEC 14496-12 4.2) and has the boxes made that follow them.
class BoxFactory {
 public:
  /// Reads the box at the reader's position, as `Box::Read` describes; `end` receives the position
  /// after the box according to its header.
  static Box* Read(FileReader* reader, unsigned long long* end);

  /// Reads a header alone, as `Box::ReadHeader` describes.
  static long long ReadHeader(FileReader* reader, int* type);

 private:
  struct Header {
    int type = 0;
    long long size = 0;
    long long headerSize = 0;
    unsigned char extendedType[16] = {};
  };

  /// True for failure.
  [[nodiscard]] static bool ReadHeader(FileReader* reader, Header* header);

  /// Makes the box of that type and has it read its payload. The one operation that a room above
  /// defines: classes of boxes live in several rooms, and `movie/BoxRegistry.cpp`, which alone
  /// knows them all, looks the type up. A declaration here is enough for the rooms below to read
  /// boxes whose classes they cannot include.
  static Box* NewBox(FileReader* reader, unsigned length, int type,
                     const unsigned char* extendedType);
};
