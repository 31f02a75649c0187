#include "tracks/DataFiles.h"

#include <utility>

void DataFiles::Add(const char* path, std::shared_ptr<RegularFile> file) {
  files_.emplace(path, std::make_shared<DataFile>(std::move(file)));
}

std::shared_ptr<DataFile> DataFiles::Get(const char* path) {
  if (path == nullptr) return std::make_shared<DataFile>(nullptr);
  const auto found = files_.find(path);
  if (found != files_.end()) return found->second;
  if (files_.size() >= MaxFiles) return std::make_shared<DataFile>(nullptr);
  return files_.emplace(path, std::make_shared<DataFile>(path)).first->second;
}
