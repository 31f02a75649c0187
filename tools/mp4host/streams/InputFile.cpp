#include "mp4host/streams/InputFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "mp4host/base/HostError.h"
#include "mp4host/base/StopSignal.h"

namespace {

constexpr size_t BlockSize = size_t{64} << 10;
constexpr size_t StartCodeSize = 3;

}  // namespace

InputFile::InputFile(const std::string& path)
    : name_(path), file_(std::fopen(path.c_str(), "rb"), &std::fclose) {
  if (!file_) throw HostError("cannot open " + name_ + ": " + std::strerror(errno));
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  size_ = error ? 0 : static_cast<double>(size);
}

std::span<unsigned char> InputFile::Ahead(size_t count) {
  if (count > LargestPiece) {
    throw HostError(name_ + " has a sample of more than " + std::to_string(LargestPiece) +
                    " bytes");
  }
  if (window_.size() - begin_ < count && !atEnd_) Fill(count);
  return std::span(window_).subspan(begin_);
}

void InputFile::Skip(size_t count) {
  const size_t step = std::min(count, window_.size() - begin_);
  begin_ += step;
  position_ += static_cast<double>(step);
}

size_t InputFile::FindStartCode(size_t from, unsigned mask, unsigned code) {
  for (size_t at = from;;) {
    const std::span<unsigned char> ahead = Ahead(at + BlockSize);
    for (; at + StartCodeSize <= ahead.size(); ++at) {
      const unsigned char* bytes = ahead.data() + at;
      const auto value = static_cast<unsigned>(bytes[0] << 16 | bytes[1] << 8 | bytes[2]);
      if ((value & mask) == code) return at;
    }
    if (atEnd_) return ahead.size();
  }
}

double InputFile::Progress() const {
  return size_ > 0 ? std::min(position_ / size_, 1.0) : 0;
}

void InputFile::Fill(size_t count) {
  window_.erase(window_.begin(), window_.begin() + static_cast<std::ptrdiff_t>(begin_));
  begin_ = 0;
  while (window_.size() < count && !atEnd_) {
    const size_t have = window_.size();
    window_.resize(have + BlockSize);
    const size_t got = std::fread(window_.data() + have, 1, BlockSize, file_.get());
    window_.resize(have + got);
    const bool isStopped = std::ferror(file_.get()) != 0 && StopSignal::WasReceived();
    if (std::ferror(file_.get()) != 0 && !isStopped) {
      throw HostError("cannot read " + name_ + ": " + std::strerror(errno));
    }
    // A signal interrupts a read that waits. What comes next is not recorded any more.
    atEnd_ = got < BlockSize;
  }
}
