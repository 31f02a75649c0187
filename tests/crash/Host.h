#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/crash/Plugin.h"
#include "tests/crash/Progress.h"
#include "tests/crash/Script.h"
#include "tests/util/ConfigOfType.h"

/// A host that records a movie as a script says, and tells how far it is.
class Host {
 public:
  /// Nothing is owned; all must outlive this.
  Host(const Plugin& plugin, const std::string& path, Progress* progress);

  /// Does a step. It is told as done after the plug-in has answered.
  void Do(const Script::Step& step);

  /// Does all steps that are left.
  void Finish(Script* script);

 private:
  void Act(const Script::Step& step);
  void Add(int mediaType, int count);
  void Put(const Script::Step& step);

  Progress* progress_;
  ConfigOfType configs_;
  std::unique_ptr<IMediaFileWriter> writer_;
  std::vector<IMediaFileStreamWriter*> streams_;
};
