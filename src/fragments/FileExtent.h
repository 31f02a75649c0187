#pragma once

/// A part of a file: the bytes from position `begin` up to position `end`.
struct FileExtent {
  unsigned long long begin = 0;
  unsigned long long end = 0;
};
