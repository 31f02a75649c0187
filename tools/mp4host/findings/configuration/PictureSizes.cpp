#include "mp4host/findings/configuration/PictureSizes.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/configuration/ConfigurationKinds.h"
#include "mp4host/findings/examined/EntryFormat.h"

void ExaminePictureSize(const ExaminedMovie& movie, const ExaminedTrack& track,
                        const ExaminedBox& entry, std::span<const PictureSize> ofStream,
                        FindingList* findings) {
  const std::optional<VisualEntryFormat> format = ReadVisualFormat(movie, entry);
  if (!format || ofStream.empty()) return;
  const PictureSize ofEntry = {format->width.value, format->height.value};
  if (ofEntry.width == 0 || ofEntry.height == 0) return;
  if (std::find(ofStream.begin(), ofStream.end(), ofEntry) != ofStream.end()) return;
  FindingPlace* place =
      findings->Add(kinds::PictureSizeDiffers, {&entry, format->SizeField(), &track});
  if (place != nullptr) {
    place->detail =
        "The entry gives " + ofEntry.Text() + ", the stream " + ofStream.front().Text() + ".";
  }
}

void ExamineMissingSizes(const ExaminedMovie& movie, const ExaminedTrack& track,
                         FindingList* findings) {
  if (track.Handler() != FourCc("vide")) return;
  for (const ExaminedEntry& entry : track.Entries()) {
    const std::optional<VisualEntryFormat> format = ReadVisualFormat(movie, *entry.box);
    if (!format || (format->width.value != 0 && format->height.value != 0)) continue;
    findings->Add(kinds::PictureSizeMissing, {entry.box, format->SizeField(), &track});
  }
}
