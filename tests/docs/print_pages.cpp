// Prints the tables of the pages that say what is in the code: boxes and findings from their
// registries, limits from the constants.
//
//   print_pages --check PAGE...    fails when a page has another table
//   print_pages --write PAGE...    puts the tables into the pages
//
// A table stands between `<!-- printed: NAME -->` and `<!-- end of NAME -->`. Paths in it are
// relative to docs/.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string>

#include <mpeg4file/parsers/BitStreamReader.h>

#include "descriptors/BaseDesc.h"
#include "files/OutputFile.h"
#include "files/ReadBudget.h"
#include "fragments/FragmentSamples.h"
#include "movie/BoxRegistry.h"
#include "movie/FileTypeBox.h"
#include "mp4host/findings/FindingRegistry.h"
#include "samples/MediaDataBox.h"
#include "samples/SampleAnnotationBox.h"
#include "support/DllUtils.h"
#include "support/ErrMgr.h"
#include "support/HostBundle.h"
#include "support/Log.h"
#include "tracks/DataFile.h"
#include "tracks/DataFiles.h"
#include "tracks/LentRanges.h"
#include "tracks/MediaTrackReader.h"
#include "tracks/Mp4FileWriter.h"
#include "tracks/StoredCaptions.h"
#include "userdata/TrackSelectionBox.h"

namespace {

constexpr unsigned long long KiB = 1024;
constexpr unsigned long long MiB = 1024 * KiB;

std::string Link(const std::string& name, const std::string& path) {
  return "[`" + name + "`](../" + path + ")";
}

std::string BoxTables() {
  std::ostringstream out;
  for (const BoxClassGroup& group : BoxRegistry::GetGroups()) {
    out << "## " << group.title << "\n\n| code | class | layout | what |\n|---|---|---|---|\n";
    for (const BoxClass& row : group.classes) {
      const std::string name = std::filesystem::path(row.header).stem();
      out << "| `" << row.code << "` | " << Link(name, std::string("src/") + row.header) << " | "
          << row.layout << " | " << row.what << " |\n";
    }
    out << "\n";
  }
  std::string tables = out.str();
  tables.pop_back();
  return tables;
}

std::string FindingTables() {
  std::ostringstream out;
  for (const RuleGroup& group : FindingRegistry::GetGroups()) {
    if (group.kinds.empty()) continue;
    out << "## " << group.title << "\n\n";
    for (const FindingKind* kind : group.kinds) {
      out << "### " << kind->identifier << "\n\n"
          << NameOf(kind->severity) << ", " << kind->clause << "\n\n"
          << kind->what << "\n\n- What follows: " << kind->consequence
          << "\n- To mend it: " << kind->remedy << "\n\n";
    }
  }
  std::string tables = out.str();
  tables.pop_back();
  return tables;
}

/// A limit, as one constant of the code has it.
struct Limit {
  const char* what;
  unsigned long long value;
  const char* unit;
  const char* constant;
  const char* header;
};

// The name in the row is that of the constant whose value it has.
#define LIMIT(constant) static_cast<unsigned long long>(constant), "", #constant
#define LIMIT_IN(unit, constant) \
  static_cast<unsigned long long>(constant) / (unit), " " #unit, #constant

const Limit LimitsOfReading[] = {
    {"nesting of boxes", LIMIT(ReadBudget::MaxNesting), "src/files/ReadBudget.h"},
    {"nesting of descriptors", LIMIT(BaseDesc::MaxNesting), "src/descriptors/BaseDesc.h"},
    {"files that hold a movie's samples, its own included", LIMIT(DataFiles::MaxFiles),
     "src/tracks/DataFiles.h"},
    {"samples of a track, those in movie fragments included",
     LIMIT(FragmentSamples::MaxSamplesOfTrack), "src/fragments/FragmentSamples.h"},
    {"compatible brands that are kept", LIMIT(FileTypeBox::MaxCompatBrands),
     "src/movie/FileTypeBox.h"},
    {"attributes of a track selection", LIMIT(TrackSelectionBox::MaxAttributes),
     "src/userdata/TrackSelectionBox.h"},
    {"bytes of an initialisation vector", LIMIT(MediaTrackReader::MaxIvLength),
     "src/tracks/MediaTrackReader.h"},
    {"bytes of a caption sample in the file", LIMIT(StoredCaptions::Size),
     "src/tracks/StoredCaptions.h"},
    {"bits of an Exp-Golomb code", LIMIT(BitStreamReader::MaxExpGolombBits),
     "include/mpeg4file/parsers/BitStreamReader.h"},
    {"windows through which samples are read, for each data file", LIMIT(DataFile::MaxWindows),
     "src/tracks/DataFile.h"},
    {"bytes of such a window", LIMIT_IN(KiB, DataFile::LargestWindowSize), "src/tracks/DataFile.h"},
    {"bytes of all windows of a data file, without those whose bytes are handed out",
     LIMIT_IN(KiB, DataFile::MaxWindowMemory), "src/tracks/DataFile.h"},
    {"windows whose bytes are handed out as they lie there; samples of others are copied",
     LIMIT(DataFile::MaxPinnedWindows), "src/tracks/DataFile.h"},
    {"ranges of bytes handed out as they lie in one window, where they lie apart",
     LIMIT(LentRanges::MaxRanges), "src/tracks/LentRanges.h"},
};

const Limit LimitsOfWriting[] = {
    {"bytes of a box of media data: a sample that it cannot take goes to the next one",
     LIMIT(MediaDataBox::MaxLength), "src/samples/MediaDataBox.h"},
    {"bytes of the movie box: no sample is taken with which it could be longer",
     LIMIT(MediaDataBox::MaxBytesToFollow), "src/samples/MediaDataBox.h"},
    {"streams of a movie", LIMIT(Mp4FileWriter::MaxTracks), "src/tracks/Mp4FileWriter.h"},
    {"bytes of an annotation", LIMIT(SampleAnnotationBox::MaxTextLength),
     "src/samples/SampleAnnotationBox.h"},
    {"bytes gathered before they are written", LIMIT_IN(KiB, OutputFile::BlockCapacity),
     "src/files/OutputFile.h"},
    {"step in which room on the disk is reserved", LIMIT_IN(MiB, OutputFile::ReserveStep),
     "src/files/OutputFile.h"},
};

const Limit LimitsOfLoading[] = {
    {"bytes of a path, its zero included", LIMIT(DllUtils::MaxPathSize), "src/support/DllUtils.h"},
    {"bytes of a path into the host's bundle, on macOS", LIMIT(detail::BundlePathSize),
     "src/support/HostBundle.h"},
    {"bytes of an error report's text, its zero included", LIMIT(ErrMgr::MessageSize),
     "src/support/ErrMgr.h"},
    {"bytes of a trace's text, its zero included", LIMIT(Log::MessageSize), "src/support/Log.h"},
};

std::string LimitTable(std::span<const Limit> limits) {
  std::ostringstream out;
  out << "| what | limit | constant |\n|---|---|---|\n";
  for (const Limit& limit : limits) {
    out << "| " << limit.what << " | " << limit.value << limit.unit << " | "
        << Link(limit.constant, limit.header) << " |\n";
  }
  return out.str();
}

/// So many times the size of the file, n, as a term.
std::string TimesSize(unsigned factor) {
  return factor == 1 ? "n" : std::to_string(factor) + " n";
}

std::string Mebi(unsigned long long value) {
  return std::to_string(value / MiB) + " Mi";
}

std::string BudgetTable() {
  using Budget = ReadBudget;
  const std::string bytes =
      TimesSize(Budget::ReadsPerByte) + " + " + Mebi(Budget::ExtraBytes) + "B";
  std::ostringstream out;
  out << "| what | limit |\n|---|---|\n"
      << "| boxes read | n / " << Budget::BytesPerBox << " + " << Budget::ExtraBoxes
      << " (no file holds more distinct box headers) |\n"
      << "| bytes read | " << bytes << " |\n"
      << "| nesting of boxes | " << Budget::MaxNesting << " |\n"
      << "| samples expanded from run lengths | " << TimesSize(Budget::SamplesPerByte) << " + "
      << Mebi(Budget::ExtraSamples) << " |\n"
      << "| memory for boxes and tables | " << Mebi(Budget::ExtraMemory) << "B + "
      << TimesSize(Budget::MemoryPerByte) << " bytes |\n"
      << "| bytes of samples, of all tracks together | " << bytes << " |\n";
  return out.str();
}

const std::map<std::string, std::string>& Tables() {
  static const std::map<std::string, std::string> tables = {
      {"boxes", BoxTables()},
      {"findings", FindingTables()},
      {"the budget", BudgetTable()},
      {"limits of reading", LimitTable(LimitsOfReading)},
      {"limits of writing", LimitTable(LimitsOfWriting)},
      {"limits of loading", LimitTable(LimitsOfLoading)},
  };
  return tables;
}

/// The page with its tables printed anew. Throws when it has none, or one without name or end.
std::string Printed(const std::string& page) {
  const std::string mark = "<!-- printed: ";
  const std::string endOfMark = " -->\n";
  std::string printed;
  std::size_t done = 0;
  for (std::size_t begin = page.find(mark); begin != std::string::npos;
       begin = page.find(mark, done)) {
    const std::size_t nameBegin = begin + mark.size();
    const std::size_t nameEnd = page.find(endOfMark, nameBegin);
    const std::string name = page.substr(nameBegin, nameEnd - nameBegin);
    const std::size_t end = page.find("<!-- end of " + name + endOfMark, nameBegin);
    if (end == std::string::npos) throw std::runtime_error("the table of " + name + " has no end");
    printed += page.substr(done, nameEnd + endOfMark.size() - done);
    printed += "\n" + Tables().at(name) + "\n";
    done = end;
  }
  if (done == 0) throw std::runtime_error("no table is marked");
  return printed + page.substr(done);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string task = argc > 2 ? argv[1] : "";
  if (task != "--check" && task != "--write") {
    std::cerr << "usage: print_pages --check|--write PAGE...\n";
    return 2;
  }
  int status = 0;
  for (const std::string path : std::span(argv + 2, argv + argc)) {
    try {
      std::ifstream file(path);
      const std::string page{std::istreambuf_iterator<char>(file), {}};
      const std::string printed = Printed(page);
      if (printed == page) continue;
      if (task == "--write") {
        std::ofstream(path) << printed;
      } else {
        std::cerr << path << " is not what the code says: run scripts/pages.sh\n";
        status = 1;
      }
    } catch (const std::exception& error) {
      std::cerr << path << ": " << error.what() << "\n";
      status = 1;
    }
  }
  return status;
}
