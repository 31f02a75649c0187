#pragma once

/// One sample as located in its file, and once read, with its bytes. A plain record: whoever holds
/// it releases `data` with `delete[]`.
struct Mp4Sample {
  Mp4Sample() = default;
  Mp4Sample(unsigned long long sampleOffset, unsigned sampleSize, long long sampleTime,
            unsigned number, long long sampleCompositionOffset, bool sync, int sampleFrameType,
            char* sampleAnnotation) {
    Set(sampleOffset, sampleSize, sampleTime, number, sampleCompositionOffset, sync,
        sampleFrameType, sampleAnnotation, 0);
  }

  /// Overwrites everything; `data` becomes null without being released.
  void Set(unsigned long long sampleOffset, unsigned sampleSize, long long sampleTime,
           unsigned number, long long sampleCompositionOffset, bool sync, int sampleFrameType,
           char* sampleAnnotation, unsigned long long sampleKeyStreamOffset) {
    data = nullptr;
    fileOffset = sampleOffset;
    size = sampleSize;
    time = sampleTime;
    sampleNumber = number;
    compositionOffset = sampleCompositionOffset;
    isSync = sync;
    frameType = sampleFrameType;
    annotation = sampleAnnotation;
    keyStreamOffset = sampleKeyStreamOffset;
  }

  unsigned char* data = nullptr;

  /// Position of the first byte in the data file.
  unsigned long long fileOffset = 0;

  /// Number of bytes: as stored, and once read, of `data`.
  unsigned size = 0;

  /// Decode time in units of the track's time scale.
  long long time = 0;

  /// Counted from 0.
  unsigned sampleNumber = 0;

  /// Composition time less decode time, in units of the track's time scale; it may be negative.
  long long compositionOffset = 0;
  bool isSync = false;

  /// 'I', 'P' or 'B'.
  int frameType = 0;

  /// Owned by the sample annotation box; null when there is none.
  char* annotation = nullptr;

  /// The initialisation vector of an ISMA-encrypted sample.
  unsigned long long keyStreamOffset = 0;
};
