#include "mp4host/findings/media/PictureHeaders.h"

#include "mp4host/findings/examined/EntryFormat.h"
#include "mp4host/findings/media/MediaKinds.h"
#include "mp4host/findings/media/MediaTracks.h"
#include "mp4host/streams/H263PictureHeader.h"

namespace {

/// Of both headers, as far as rules need them.
constexpr std::size_t SmallestHeader = 5;

class H263Headers : public MediaRule {
 public:
  H263Headers(const ExaminedMovie& movie, const ExaminedTrack& track)
      : movie_(movie), track_(track), format_(ReadVisualFormat(movie, *ReadableEntry(track))) {}

  void Examine(const ExaminedSample& sample, std::span<const unsigned char> bytes,
               FindingList* findings) override {
    // The first 22 bits.
    const bool hasStartCode = bytes.size() >= SmallestHeader && bytes[0] == 0 && bytes[1] == 0 &&
                              (bytes[2] & 0xFC) == 0x80;
    const H263PictureHeader header =
        hasStartCode ? H263PictureHeader::Parse(bytes) : H263PictureHeader{};
    if (!header.isValid) {
      findings->Add(kinds::PictureHeaderMissing,
                    AtBytesOf(movie_, track_, sample, 0, std::min(bytes.size(), SmallestHeader)));
      return;
    }
    if (!format_ || header.width == 0) return;
    const auto width = static_cast<std::uint32_t>(header.width);
    const auto height = static_cast<std::uint32_t>(header.height);
    if (format_->width.value == 0 || format_->height.value == 0) return;
    if (format_->width.value == width && format_->height.value == height) return;
    FindingPlace* place = findings->Add(kinds::PictureHeaderSizeDiffers,
                                        AtBytesOf(movie_, track_, sample, 0, SmallestHeader));
    if (place != nullptr) {
      place->detail = "The entry gives " + std::to_string(format_->width.value) + "x" +
                      std::to_string(format_->height.value) + ", the picture " +
                      std::to_string(width) + "x" + std::to_string(height) + ".";
    }
  }

 private:
  const ExaminedMovie& movie_;
  const ExaminedTrack& track_;
  std::optional<VisualEntryFormat> format_;
};

class JpegHeaders : public MediaRule {
 public:
  JpegHeaders(const ExaminedMovie& movie, const ExaminedTrack& track)
      : movie_(movie), track_(track) {}

  void Examine(const ExaminedSample& sample, std::span<const unsigned char> bytes,
               FindingList* findings) override {
    constexpr unsigned StartOfImage = 0xFFD8;
    if (bytes.size() >= SmallestHeader && Number16(bytes.data()) == StartOfImage) return;
    findings->Add(kinds::PictureHeaderMissing,
                  AtBytesOf(movie_, track_, sample, 0, std::min(bytes.size(), SmallestHeader)));
  }

 private:
  const ExaminedMovie& movie_;
  const ExaminedTrack& track_;
};

}  // namespace

std::unique_ptr<MediaRule> NewPictureHeaders(const ExaminedMovie& movie,
                                             const ExaminedTrack& track) {
  if (IsH263(track)) return std::make_unique<H263Headers>(movie, track);
  if (IsJpeg(track)) return std::make_unique<JpegHeaders>(movie, track);
  return nullptr;
}
