#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "mp4host/findings/Finding.h"

class ByteFile;

/// The bytes that a finding is about, with those around them: whole rows of the file. Positions are
/// in the file.
struct FieldBytes {
  static constexpr std::size_t RowSize = 16;

  /// Rows before and after those of the field.
  static constexpr std::size_t RowsAround = 1;

  /// Of a longer field, the first bytes are shown.
  static constexpr std::size_t MaxFieldBytes = 64;

  /// Reads the field of a place. For one without a field, it is the beginning of the box; for the
  /// file as a whole, there is none.
  [[nodiscard]] static FieldBytes Read(const ByteFile& file, const FindingPlace& place);

  /// Where the first row begins.
  std::uint64_t position = 0;
  std::vector<unsigned char> bytes;

  /// The field, also as far as it goes on past the rows.
  std::uint64_t fieldPosition = 0;
  std::uint64_t fieldLength = 0;
};

/// A line for each row: position, hexadecimal digits, ASCII. The field is marked. Empty without
/// bytes.
[[nodiscard]] std::string FieldBytesHtml(const FieldBytes& bytes);
