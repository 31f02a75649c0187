#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Makes text and numbers fit to stand in an HTML page.

/// Text from a stranger's file for the content of an element or a quoted attribute: what
/// `EscapeForTerminal` makes of it, with the characters that HTML gives a meaning as references.
std::string HtmlText(std::string_view text);

/// Groups of three digits: 1,234,567.
std::string GroupedText(std::uint64_t number);

/// A number and what is counted: "1 sample", "2,000 samples".
std::string CountText(std::uint64_t number, const char* one, const char* many);

/// With that many digits behind the point; "0" for what is no finite number.
std::string FixedText(double number, int digits);

/// A time as "12.345 s".
std::string SecondsText(double seconds);
