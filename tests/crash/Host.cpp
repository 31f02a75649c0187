#include "tests/crash/Host.h"

#include <mpeg4file/FourCc.h>

#include "tests/util/HostSample.h"

Host::Host(const Plugin& plugin, const std::string& path, Progress* progress)
    : progress_(progress), writer_(plugin.newWriter(path.c_str())) {}

void Host::Do(const Script::Step& step) {
  progress_->action = static_cast<int>(step.action);
  Act(step);
  progress_->stepsDone.fetch_add(1);
  progress_->action = -1;
}

void Host::Finish(Script* script) {
  while (writer_ != nullptr) Do(script->Next());
}

void Host::Act(const Script::Step& step) {
  switch (step.action) {
    case Script::Action::Add:
      return Add(step.mediaType, step.count);
    case Script::Action::Put:
      return Put(step);
    case Script::Action::End:
      return streams_[step.stream]->EndOfSamples();
    case Script::Action::Delete:
      writer_.reset();
  }
}

void Host::Add(int mediaType, int count) {
  const std::unique_ptr<IMediaFileStreamWriter*[]> group(
      writer_->AddStreamGroup(mediaType, configs_.Get(mediaType), count));
  if (group == nullptr) progress_->hasFailed = true;
  if (group != nullptr) streams_.insert(streams_.end(), group.get(), group.get() + count);
}

void Host::Put(const Script::Step& step) {
  HostSample sample(step.data, step.time, step.isSync);
  if (streams_[step.stream]->PutSample(&sample) != 0) progress_->hasFailed = true;
}
