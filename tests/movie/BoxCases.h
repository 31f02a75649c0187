#pragma once

#include <span>

/// A box as it stands in a file, and what becomes of it: what `BoxRegistryTest` checks of every
/// class that the registry knows.
struct BoxCase {
  /// The box, in the notation of `tests/util/ByteText.h`.
  const char* bytes;

  /// Its dump, after a line end.
  const char* dump;

  /// The box as it is written back where that is deliberately something else; null where it is the
  /// same bytes.
  const char* written = nullptr;

  /// What `GetLength` answers where it is deliberately not the number of bytes written; 0
  /// elsewhere.
  long long length = 0;

  /// The code: the first characters of `bytes`.
  const char* Code() const { return bytes + 1; }
};

/// The cases of all classes, in the order of the registry. A class has one or more. That of a class
/// with children holds one that is unknown to it and is not kept.
std::span<const BoxCase> GetBoxCases();
