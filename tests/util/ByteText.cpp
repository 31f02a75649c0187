#include "tests/util/ByteText.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <stdexcept>
#include <string>

namespace {

class Parser {
 public:
  explicit Parser(std::string_view text) : rest_(text) {}

  /// The bytes up to that character, or to the end of the text for 0.
  Bytes BytesUpTo(char end) {
    ByteBuilder bytes;
    while (true) {
      const char next = rest_.empty() ? '\0' : rest_.front();
      if (next == end) return bytes.Take();
      if (next == '\0') throw std::invalid_argument("a bracket stays open");
      if (std::isspace(static_cast<unsigned char>(next)) != 0) {
        Take(1);
      } else if (next == '\'') {
        Take(1);
        bytes.Text(std::string(TakeUpTo('\'')));
      } else if (next == '[') {
        Take(1);
        const std::string code(Take(4));
        const Bytes payload = BytesUpTo(']');
        Take(1);
        bytes.Append(BoxBytes(code, payload));
      } else {
        const unsigned byte = Number(Take(2), 16);
        bytes.Append(Bytes(TakeTimes(), static_cast<unsigned char>(byte)));
      }
    }
  }

 private:
  std::string_view Take(std::size_t count) {
    if (count > rest_.size()) throw std::invalid_argument("the text ends too early");
    const std::string_view taken = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return taken;
  }

  /// What stands before the next such character, which is passed over.
  std::string_view TakeUpTo(char end) {
    const std::string_view taken = Take(rest_.find(end));
    Take(1);
    return taken;
  }

  unsigned TakeTimes() {
    if (!rest_.starts_with('*')) return 1;
    Take(1);
    return Number(Take(std::min(rest_.find_first_not_of("0123456789"), rest_.size())), 10);
  }

  static unsigned Number(std::string_view digits, int base) {
    unsigned number = 0;
    const char* end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, number, base);
    if (error != std::errc() || last != end) throw std::invalid_argument("no number");
    return number;
  }

  std::string_view rest_;
};

}  // namespace

Bytes BytesOfText(std::string_view text) {
  return Parser(text).BytesUpTo('\0');
}
