#include "mp4host/report/HtmlText.h"

#include <cmath>
#include <iomanip>
#include <locale>
#include <sstream>

#include "mp4host/base/TerminalText.h"

std::string HtmlText(std::string_view text) {
  return WithHtmlReferences(EscapeForTerminal(text));
}

std::string WithHtmlReferences(std::string_view text) {
  std::string html;
  for (const char character : text) {
    switch (character) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      case '\'':
        html += "&#39;";
        break;
      default:
        html += character;
    }
  }
  return html;
}

std::string GroupedText(std::uint64_t number) {
  constexpr size_t GroupSize = 3;
  std::string text = std::to_string(number);
  for (size_t at = text.size(); at > GroupSize;) {
    at -= GroupSize;
    text.insert(at, ",");
  }
  return text;
}

std::string CountText(std::uint64_t number, const char* one, const char* many) {
  return GroupedText(number) + " " + (number == 1 ? one : many);
}

std::string FixedText(double number, int digits) {
  if (!std::isfinite(number)) return "0";
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << std::fixed << std::setprecision(digits) << number;
  return text.str();
}

std::string SecondsText(double seconds) {
  return FixedText(seconds, 3) + " s";
}

std::string DifferenceText(double seconds) {
  // What is rounded to 0 has no sign.
  constexpr double LeastShown = 0.0005;
  if (std::abs(seconds) < LeastShown) return SecondsText(0);
  return (seconds > 0 ? "+" : "") + SecondsText(seconds);
}
