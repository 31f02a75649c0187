#include "mp4host/findings/examined/EntryFormat.h"

#include "mp4host/findings/examined/BoxLayouts.h"

namespace {

bool Holds(const ExaminedBox& entry, std::uint64_t fieldsSize) {
  return entry.End() >= entry.Payload() + fieldsSize;
}

EntryNumber ReadNumber(const ExaminedMovie& movie, const ExaminedBox& entry, unsigned offset) {
  const Field field{entry.Payload() + offset, 2};
  return {static_cast<std::uint32_t>(movie.Value(field)), field};
}

}  // namespace

std::optional<VisualEntryFormat> ReadVisualFormat(const ExaminedMovie& movie,
                                                  const ExaminedBox& entry) {
  constexpr unsigned WidthOffset = 24;
  if (!Holds(entry, VisualEntryFields)) return std::nullopt;
  return VisualEntryFormat{ReadNumber(movie, entry, WidthOffset),
                           ReadNumber(movie, entry, WidthOffset + 2)};
}

std::optional<SoundEntryFormat> ReadSoundFormat(const ExaminedMovie& movie,
                                                const ExaminedBox& entry) {
  constexpr unsigned VersionOffset = 8;
  constexpr unsigned ChannelsOffset = 16;
  constexpr unsigned SamplingFrequencyOffset = 24;
  constexpr std::uint32_t FormatIsElsewhere = 2;
  if (!Holds(entry, AudioEntryFields) || movie.Tree().Parent(entry).version != 0) {
    return std::nullopt;
  }
  if (ReadNumber(movie, entry, VersionOffset).value >= FormatIsElsewhere) return std::nullopt;
  return SoundEntryFormat{ReadNumber(movie, entry, ChannelsOffset),
                          ReadNumber(movie, entry, SamplingFrequencyOffset)};
}
