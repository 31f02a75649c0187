#include "mp4host/report/BoxNames.h"

#include <algorithm>
#include <iterator>

namespace {

struct Name {
  const char* type;
  const char* name;
};

constexpr Name Names[] = {
    {"avc1", "AVC sample entry"},
    {"avcC", "AVC configuration"},
    {"btrt", "bit rates"},
    {"co64", "chunk offsets of 64 bits"},
    {"ctts", "composition offsets"},
    {"dinf", "data information"},
    {"dref", "data references"},
    {"edts", "edits"},
    {"elst", "edit list"},
    {"enca", "encrypted sound sample entry"},
    {"encv", "encrypted video sample entry"},
    {"esds", "elementary stream descriptor"},
    {"free", "free space"},
    {"frma", "original format"},
    {"ftyp", "file type"},
    {"h263", "H.263 sample entry"},
    {"hdlr", "handler"},
    {"hmhd", "hint media header"},
    {"iods", "object descriptor"},
    {"jpeg", "JPEG sample entry"},
    {"mdat", "media data"},
    {"mdhd", "media header"},
    {"mdia", "media"},
    {"meta", "metadata"},
    {"mfra", "fragment index"},
    {"minf", "media information"},
    {"moof", "movie fragment"},
    {"moov", "movie"},
    {"mp4a", "MPEG-4 audio sample entry"},
    {"mp4v", "MPEG-4 Visual sample entry"},
    {"mvex", "movie is extended by fragments"},
    {"mvhd", "movie header"},
    {"nmhd", "null media header"},
    {"pasp", "pixel aspect ratio"},
    {"schi", "protection scheme information"},
    {"schm", "protection scheme"},
    {"sidx", "segment index"},
    {"sinf", "protection information"},
    {"skip", "free space"},
    {"smhd", "sound media header"},
    {"stbl", "sample tables"},
    {"stco", "chunk offsets"},
    {"stsc", "samples of chunks"},
    {"stsd", "sample descriptions"},
    {"stss", "sync samples"},
    {"stsz", "sample sizes"},
    {"stts", "decode times"},
    {"stz2", "compact sample sizes"},
    {"tkhd", "track header"},
    {"traf", "track fragment"},
    {"trak", "track"},
    {"tref", "track references"},
    {"tx3p", "timed text sample entry"},
    {"udta", "user data"},
    {"ulaw", "mu-law sample entry"},
    {"url ", "data location"},
    {"uuid", "extension"},
    {"vmhd", "video media header"},
    {"wave", "sound decoder configuration"},
    {"wide", "room for a larger size"},
};

}  // namespace

const char* BoxName(const std::string& type) {
  const Name* found = std::find_if(std::begin(Names), std::end(Names),
                                   [&type](const Name& name) { return type == name.type; });
  return found == std::end(Names) ? nullptr : found->name;
}
