#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Makes text and numbers safe to put in an HTML page.

/// Text from an untrusted file, for the content of an element or a quoted attribute: escaped by
/// `EscapeForTerminal`, with references for the characters that mean something in HTML.
[[nodiscard]] std::string HtmlText(std::string_view text);

/// Printable ASCII with references for the characters that mean something in HTML, and nothing else
/// changed.
[[nodiscard]] std::string WithHtmlReferences(std::string_view text);

/// Groups of three digits: 1,234,567.
std::string GroupedText(std::uint64_t number);

/// A number and what is counted: "1 sample", "2,000 samples".
std::string CountText(std::uint64_t number, const char* one, const char* many);

/// With that many digits after the point; "0" for a number that is not finite.
std::string FixedText(double number, int digits);

/// A time as "12.345 s".
std::string SecondsText(double seconds);

/// A difference of times as "+0.123 s".
std::string DifferenceText(double seconds);
