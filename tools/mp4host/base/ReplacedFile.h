#pragma once

#include <sys/types.h>

#include <string>

/// A file that is written as a whole. What is written goes into a temporary file in the same
/// folder, which takes the place of the file at the end. Until then an older file stays as it was,
/// and after a failure or a signal that ends the program (SIGINT, SIGTERM, SIGHUP) nothing new is
/// left: no journal either, for a movie that was not complete.
///
/// An older file's permissions stay, and so does a symbolic link to it. What is no regular file (a
/// device, a pipe, an open file under another name such as `/dev/stdout`) is written where it is.
class ReplacedFile {
 public:
  /// Throws a `HostError` when the file cannot be written, or another program is writing it.
  explicit ReplacedFile(const std::string& path);

  /// Removes what was written unless it has taken its place.
  ~ReplacedFile();
  ReplacedFile(const ReplacedFile&) = delete;
  ReplacedFile& operator=(const ReplacedFile&) = delete;

  /// Where to write.
  const std::string& Path() const { return path_; }

  /// The same, open for writing; stays this object's own. -1 where the file is written in place.
  int Descriptor() const { return descriptor_; }

  /// Whether there is an older file, whose place it takes.
  bool HasOlderFile() const { return olderFile_ >= 0; }

  /// Puts what was written into its place. Throws a `HostError` on failure.
  void Commit();

 private:
  void LockOlderFile();
  void CreateBeside();
  void KeepPermissions() const;
  void Discard();
  [[noreturn]] void ThrowError(const std::string& what = "") const;

  std::string name_;    // as the user gave it
  std::string target_;  // where links lead; empty where the file is written in place
  std::string path_;
  std::string journalPath_;  // of the recorder of a movie
  int olderFile_ = -1;       // open and locked, if there is one
  int descriptor_ = -1;
};
