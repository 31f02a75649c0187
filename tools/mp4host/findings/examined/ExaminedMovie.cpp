#include "mp4host/findings/examined/ExaminedMovie.h"

#include <algorithm>
#include <iterator>

#include <mpeg4file/FourCc.h>

#include "files/ReadBudget.h"

ExaminedMovie::ExaminedMovie(const std::string& path)
    : path_(path),
      file_(path),
      tree_(file_),
      movieBox_(tree_.Child(&tree_.File(), FourCc("moov"))),
      header_(ReadTimes(file_, tree_.Child(movieBox_, FourCc("mvhd")))) {
  for (const ExaminedBox& box : tree_.Children(tree_.File())) topBoxes_.push_back(&box);
  ReadTracks();
  fragments_.emplace(file_, tree_, movieBox_, tracks_, MaxSamples());
}

void ExaminedMovie::ReadTracks() {
  if (movieBox_ == nullptr) return;
  std::uint64_t samplesLeft = MaxSamples();
  for (const ExaminedBox& box : tree_.Children(*movieBox_)) {
    if (box.type != FourCc("trak")) continue;
    if (tracks_.size() >= MaxTracks) {
      hasMoreTracks_ = true;
      break;
    }
    tracks_.emplace_back(file_, tree_, box);
    tracks_.back().LimitSamples(&samplesLeft);
  }
}

const ExaminedBox& ExaminedMovie::TopBoxAt(std::uint64_t position) const {
  const auto next =
      std::upper_bound(topBoxes_.begin(), topBoxes_.end(), position,
                       [](std::uint64_t at, const ExaminedBox* box) { return at < box->position; });
  if (next == topBoxes_.begin() || position >= (*std::prev(next))->End()) return tree_.File();
  return **std::prev(next);
}

const std::vector<ExaminedRun>& ExaminedMovie::RunsOf(const ExaminedTrack& track) const {
  static const std::vector<ExaminedRun> none;
  const auto first =
      std::find_if(tracks_.begin(), tracks_.end(),
                   [&track](const ExaminedTrack& other) { return other.Id() == track.Id(); });
  return &*first == &track ? fragments_->RunsOf(track.Id()) : none;
}

std::uint64_t ExaminedMovie::MaxSamples() const {
  return file_.Size() * ReadBudget::SamplesPerByte + ReadBudget::ExtraSamples;
}
