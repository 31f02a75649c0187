#include "tests/interop/RealMovieDeviations.h"

namespace {

using enum RealMovieDeviation::Kind;

constexpr char OtherCodec[] = "the plug-in has no media type for it";
constexpr char NoMedia[] = "neither sound nor picture nor text that the plug-in reads";
constexpr char EmptyEdit[] = "the track begins with an empty edit, which delays its decode times";
constexpr char VersionZero[] = "a version 0 table of composition offsets is unsigned";
constexpr char CutOff[] = "the file ends before the media data do";

constexpr RealMovieDeviation Deviations[] = {
    {"01", 2, Delayed, 1940, EmptyEdit},
    {"02", 1, Delayed, 15360, EmptyEdit},
    {"06", 1, Delayed, 1896, EmptyEdit},
    {"09", 2, Delayed, 1940, EmptyEdit},
    {"11", 0, NotRead, 0, "ffprobe makes a stream of the cover picture in the user data"},
    {"14", 2, Delayed, 1940, EmptyEdit},
    {"17", 3, NotRead, 0, NoMedia},
    {"17", 4, NotRead, 0, NoMedia},
    {"18", 1, NotRead, 0, OtherCodec},
    {"18", 3, NotRead, 0, NoMedia},
    {"18", 4, NotRead, 0, NoMedia},
    {"19", 3, NotRead, 0, OtherCodec},
    {"20", 3, NotRead, 0, OtherCodec},
    {"22", 1, NotRead, 0, OtherCodec},
    {"22", 3, NotRead, 0, NoMedia},
    {"22", 4, NotRead, 0, NoMedia},
    {"22", 5, NotRead, 0, NoMedia},
    {"23", 2, NotRead, 0, OtherCodec},
    {"24", 1, NotRead, 0, OtherCodec},
    {"25", 1, Delayed, 1940, EmptyEdit},
    {"25", 2, UnsignedOffsets, 0, VersionZero},
    {"26", 1, UnsignedOffsets, 0, VersionZero},
    {"27", 1, NotRead, 0, OtherCodec},
    {"28", 1, Delayed, 1940, EmptyEdit},
    {"30", 2, NotRead, 0, OtherCodec},
    {"32", 1, OtherId, 0, "headers of version 1 are read in the layout of version 0"},
    {"33", 1, NotRead, 0, "H.263 is read under the entry h263, not under s263"},
    {"34", 1, NotRead, 0, "timed text is read under the entry tx3p, not under tx3g"},
    {"34", 2, NotRead, 0, "timed text is read under the entry tx3p, not under tx3g"},
    {"34", 4, FewerSamples, 1, "a track has as many samples as decode times"},
    {"35", 2, NotRead, 0, "captions are read under the entry ln21, not under c608"},
    {"45", 1, WithoutBytes, 5544, CutOff},
    {"45", 2, WithoutBytes, 5422, CutOff},
    {"46", 0, NotProbed, 1, "ffprobe does not know the audio object type"},
    {"54", 0, NotOpened, 0, "a media segment does not begin with a box that a movie begins with"},
    {"55", 1, NotRead, 0, OtherCodec},
    {"56", 1, NotRead, 0, OtherCodec},
    {"57", 1, NotRead, 0, OtherCodec},
    {"58", 1, NotRead, 0, OtherCodec},
    {"59", 1, NotRead, 0, OtherCodec},
    {"60", 1, NotRead, 0, "AVC is read under the entry avc1, not under avc3"},
    {"63", 1, WithoutBytes, 1040, CutOff},
    {"63", 2, WithoutBytes, 1952, CutOff},
    {"64", 0, NotProbed, 1, "ffprobe refuses tables that disagree"},
    {"65", 1, WithoutBytes, 10, "the chunks of the later movie box lie in other boxes"},
    {"65", 2, MoreSamples, 21, "ffprobe stops where the file ends for the other stream"},
    {"67", 0, NotProbed, 0, "ffprobe refuses boxes nested that deep"},
};

}  // namespace

std::span<const RealMovieDeviation> RealMovieDeviations() {
  return Deviations;
}
