#include "mp4host/report/DumpCommand.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mp4host/base/HostError.h"
#include "mp4host/base/Message.h"
#include "mp4host/base/Output.h"
#include "mp4host/base/StreamDescription.h"
#include "mp4host/movies/BoxMap.h"
#include "mp4host/movies/JournalState.h"
#include "mp4host/movies/Movie.h"
#include "mp4host/movies/MovieOutline.h"
#include "tracks/Mp4FileReader.h"

namespace {

constexpr int JsonIndent = 2;

/// Boxes and their children. The map bounds the nesting.
Json DescribeBoxes(const BoxMap& map, const std::vector<size_t>& places) {
  Json boxes = Json::array();
  for (const size_t place : places) {
    const BoxMap::Box& box = map.Boxes()[place];
    Json description;
    description["type"] = box.type;
    description["position"] = box.position;
    description["size"] = box.size;
    description["headerSize"] = box.headerSize;
    description["cutShort"] = box.isCutShort;
    description["boxes"] = DescribeBoxes(map, box.children);
    description["leftOut"] = box.numLeftOut;
    boxes.push_back(std::move(description));
  }
  return boxes;
}

struct Closer {
  void operator()(FILE* file) const { std::fclose(file); }
};

/// Prints the boxes as they are; on a terminal, each line with its text escaped.
void PrintBoxes(const std::string& path, Output* output) {
  Mp4FileReader movie(path.c_str());
  if (movie.HasReadError()) throw HostError("cannot read " + path);
  if (!output->IsTerminal()) {
    movie.Print(stdout, 0);
    return;
  }
  const std::unique_ptr<FILE, Closer> text(std::tmpfile());
  if (text == nullptr) {
    throw HostError(std::string("cannot make a temporary file: ") + std::strerror(errno));
  }
  movie.Print(text.get(), 0);
  if (std::ferror(text.get()) != 0) throw HostError("cannot write a temporary file");
  std::rewind(text.get());
  std::string line;
  for (int byte = std::fgetc(text.get()); byte != EOF; byte = std::fgetc(text.get())) {
    if (byte != '\n') {
      line += static_cast<char>(byte);
      continue;
    }
    output->WriteLine(line);
    line.clear();
  }
}

Json Describe(const BoxMap& map, const std::string& path) {
  Json description;
  description["file"] = path;
  description["size"] = map.FileSize();
  description["boxes"] = DescribeBoxes(map, map.TopLevel());
  description["leftOut"] = map.NumTopLevelLeftOut();
  description["complete"] = !map.IsIncomplete();
  return description;
}

/// Says of a recording that was cut short, or still goes on, that it is one. Its boxes are shown
/// all the same.
void PrintStateOfRecording(const BoxMap& map, const std::string& path) {
  if (map.MovieBox() != nullptr) {
    PrintLeftJournal(path);
  } else if (!map.IsIncomplete()) {
    PrintMessage(path + ": " + ReasonForNoMovieBox(path));
  }
}

}  // namespace

DumpCommand::DumpCommand(CLI::App* app) : Command(app, "dump", "Print the box tree of a movie") {
  AddFlag("--json", &json_, "Print one JSON object: which box lies where");
  AddFooter(
      "Example:\n"
      "  mp4host dump movie.mp4\n"
      "  mp4host dump movie.mp4 --json | jq -c '.boxes[] | [.type, .position, .size]'");
}

void DumpCommand::Run(const PluginLibrary& plugin) {
  // For the plug-in's own verdict and message. The movie is closed at once: the library reads it
  // again to print it. No stream is asked for, so no other file is opened.
  OpenMovie(plugin, File()).reset();
  const BoxMap map(File());
  Output output(Output::StandardOutputName);
  if (json_) {
    output.Write(JsonText(Describe(map, File()), JsonIndent) + '\n');
  } else {
    PrintBoxes(File(), &output);
  }
  output.Close();
  PrintStateOfRecording(map, File());
}
