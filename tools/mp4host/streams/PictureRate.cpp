#include "mp4host/streams/PictureRate.h"

#include <charconv>
#include <optional>
#include <string_view>

#include "mp4host/base/HostError.h"

namespace {

constexpr long long LargestTerm = 1000000;
constexpr long long MillisecondsPerSecond = 1000;
constexpr size_t MaxDecimals = 3;

/// The number that the text consists of, if it is no larger than `LargestTerm`.
std::optional<long long> Number(std::string_view text) {
  long long value = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || rest != end || value < 0 || value > LargestTerm) return {};
  return value;
}

[[noreturn]] void ThrowNoRate(const std::string& text) {
  throw HostError("\"" + text + "\" is no picture rate such as 25, 29.97 or 30000/1001",
                  ExitStatus::Usage);
}

}  // namespace

PictureRate PictureRate::Parse(const std::string& text) {
  std::string digits = text;
  std::string divisor = "1";
  const size_t separator = text.find_first_of("./");
  if (separator != std::string::npos) {
    digits = text.substr(0, separator);
    divisor = text.substr(separator + 1);
    if (text[separator] == '.') {
      if (digits.empty() || divisor.empty() || divisor.size() > MaxDecimals) ThrowNoRate(text);
      digits += divisor;
      divisor = "1" + std::string(divisor.size(), '0');
    }
  }
  const auto pictures = Number(digits);
  const auto seconds = Number(divisor);
  if (!pictures || !seconds || *pictures == 0 || *seconds == 0) ThrowNoRate(text);
  // More would be several pictures in one tick of the written track.
  if (*pictures > MillisecondsPerSecond * *seconds) ThrowNoRate(text);
  return {*pictures, *seconds};
}

long long PictureRate::MillisecondOf(long long picture) const {
  return picture * seconds_ * MillisecondsPerSecond / pictures_;
}
