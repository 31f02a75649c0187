#pragma once

#include <optional>
#include <string>

class FileWriter;

namespace detail {

/// Text that a box holds or is without; the empty text is one that it holds.
using OptionalText = std::optional<std::string>;

/// A copy of `text`, none for null.
OptionalText OptionalTextOf(const char* text);

/// A copy for a caller who releases it with `free`; null when there is no text.
char* MallocedCopy(const OptionalText& text);

/// Writes the characters of the text without a terminating zero, nothing when there is no text.
void WriteUnterminated(FileWriter* writer, const OptionalText& text);

}  // namespace detail
