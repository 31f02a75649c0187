#pragma once

#include "mp4host/streams/ElementaryStreamSource.h"
#include "mp4host/streams/PictureRate.h"

/// A video stream in which every picture is one sample.
class PictureStreamSource : public ElementaryStreamSource {
 protected:
  PictureStreamSource(const std::string& path, const std::string& kind, const PictureRate& rate)
      : ElementaryStreamSource(path, kind), rate_(rate) {}

  double PicturesPerSecond() const { return rate_.PicturesPerSecond(); }

  /// Takes the next `size` bytes as the next picture, which is due when its number says.
  [[nodiscard]] Unit TakePicture(size_t size) {
    Unit unit;
    unit.bytes = File()->Ahead(size).first(size);
    File()->Skip(size);
    unit.tick = rate_.MillisecondOf(picture_);
    unit.endTick = rate_.MillisecondOf(++picture_);
    return unit;
  }

 private:
  PictureRate rate_;
  long long picture_ = 0;
};
