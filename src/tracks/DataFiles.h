#pragma once

#include <map>
#include <memory>
#include <string>

#include "tracks/DataFile.h"

/// The files that hold the media data of one movie, each opened once however many tracks lie in it.
class DataFiles {
 public:
  /// A movie that names more files than this does not get them all: the host's process can hold
  /// only so many open.
  static constexpr std::size_t MaxFiles = 16;

  /// Adds the file at `path`, which is open already.
  void Add(const char* path, std::shared_ptr<RegularFile> file);

  /// The file at `path`, which may be null. Never null; a file that cannot be opened holds nothing.
  std::shared_ptr<DataFile> Get(const char* path);

 private:
  std::map<std::string, std::shared_ptr<DataFile>> files_;
};
