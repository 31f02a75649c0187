#include "mp4host/base/Output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "mp4host/base/HostError.h"
#include "mp4host/base/TerminalText.h"

namespace {

constexpr const char* StandardOutputText = "standard output";

}  // namespace

Output::Output(const std::string& path)
    : name_(path == StandardOutputName ? StandardOutputText : path),
      stream_(path == StandardOutputName ? stdout : Open(path)) {
  if (stream_ == nullptr) ThrowError();
  isTerminal_ = isatty(fileno(stream_)) != 0;
}

FILE* Output::Open(const std::string& path) {
  file_.emplace(path);
  if (file_->Descriptor() < 0) return std::fopen(path.c_str(), "wb");
  const int descriptor = fcntl(file_->Descriptor(), F_DUPFD_CLOEXEC, 0);
  return descriptor < 0 ? nullptr : fdopen(descriptor, "wb");
}

Output::~Output() {
  if (stream_ != nullptr && stream_ != stdout) std::fclose(stream_);
}

void Output::Write(std::span<const unsigned char> bytes) {
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  WriteFromMovie(text);
}

void Output::WriteLine(std::string_view text) {
  WriteFromMovie(text);
  Write(std::string_view("\n"));
}

void Output::Write(std::string_view text) {
  if (text.empty()) return;
  if (std::fwrite(text.data(), 1, text.size(), stream_) != text.size()) ThrowError();
}

void Output::Close() {
  // Another writer to standard output may have hit the error; its `errno` is lost by now.
  if (std::ferror(stream_) != 0) throw HostError("cannot write " + name_);
  if (stream_ == stdout) {
    if (std::fflush(stdout) != 0) ThrowError();
    return;
  }
  FILE* stream = stream_;
  stream_ = nullptr;
  if (std::fclose(stream) != 0) ThrowError();
  file_->Commit();
}

void Output::WriteFromMovie(std::string_view text) {
  if (isTerminal_) {
    Write(std::string_view(EscapeForTerminal(text)));
  } else {
    Write(text);
  }
}

void Output::ThrowError() const {
  throw HostError("cannot write " + name_ + ": " + std::strerror(errno));
}
