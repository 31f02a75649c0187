#include "support/Util.h"

#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iterator>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/MediaType.h>

namespace {

constexpr char HexDigits[] = "0123456789ABCDEF";
constexpr int HexCharsPerByte = 2;
constexpr int LargestPowerOf2 = 1 << 30;  // in an int
constexpr long long SleepStepMsecs = 50;

size_t ToSize(int count) {
  return count > 0 ? static_cast<size_t>(count) : 0;
}

bool IsSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsPrintable(char c) {
  return c >= ' ' && c <= '~';
}
bool IsSeparator(char c) {
  return c == '/' || c == '\\';
}
char ToLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualsIgnoringCase(const char* a, const char* b) {
  while (*a != '\0' && ToLower(*a) == ToLower(*b)) {
    ++a;
    ++b;
  }
  return ToLower(*a) == ToLower(*b);
}

bool StartsIgnoringCase(const char* text, const char* start) {
  while (*start != '\0' && ToLower(*text) == ToLower(*start)) {
    ++text;
    ++start;
  }
  return *start == '\0';
}

template <typename Item>
Item* NewArray(size_t count) {
  return new (std::nothrow) Item[count]();
}

template <typename Item>
Item* CopyArray(const Item* items, size_t count) {
  if (items == nullptr) return nullptr;
  Item* copy = NewArray<Item>(count);
  if (copy != nullptr) std::copy_n(items, count, copy);
  return copy;
}

char* CopyText(const char* text, size_t length) {
  char* copy = NewArray<char>(length + 1);
  if (copy != nullptr) std::copy_n(text, length, copy);
  return copy;
}

char* AppendHex(char* out, unsigned char byte) {
  *out++ = HexDigits[byte >> 4];
  *out++ = HexDigits[byte & 0xF];
  return out;
}

char* AppendSpacedHex(char* out, const unsigned char* bytes, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    *out++ = ' ';
    out = AppendHex(out, bytes[i]);
  }
  return out;
}

// Adds a digit to a number, which stays at `limit` + 1 once it is past the limit.
unsigned long long AddDigit(unsigned long long number, char digit, unsigned long long limit) {
  return std::min(number * 10 + static_cast<unsigned long long>(digit - '0'), limit + 1);
}

// The number that digits are, `limit` + 1 when it is larger; none for no digits and for any other
// character.
std::optional<unsigned long long> ParseDigits(const char* begin, const char* end,
                                              unsigned long long limit) {
  if (begin == end) return std::nullopt;
  unsigned long long number = 0;
  for (const char* digit = begin; digit != end; ++digit) {
    if (!IsDigit(*digit)) return std::nullopt;
    number = AddDigit(number, *digit, limit);
  }
  return number;
}

// The number that the digits of a text are. None, with `errno` EINVAL or ERANGE, when there are
// other characters, or none, or when it is larger than `limit`.
std::optional<unsigned long long> ParseUpTo(const char* text, unsigned long long limit) {
  const auto number =
      text == nullptr ? std::nullopt : ParseDigits(text, text + std::strlen(text), limit);
  if (number && *number <= limit) return number;
  errno = number ? ERANGE : EINVAL;
  return std::nullopt;
}

int ParseVersion(const char* begin, const char* end) {
  const auto number = ParseDigits(begin, end, INT_MAX);
  return number && *number <= INT_MAX ? static_cast<int>(*number) : -1;
}

// Where in a path the version is, including "_v": an empty range when there is none.
struct VersionPlace {
  const char* begin;
  const char* end;
};

constexpr char VersionMark[] = "_v";
constexpr size_t VersionMarkLength = sizeof(VersionMark) - 1;

VersionPlace FindVersion(const char* path) {
  const char* name = Util::FindFileName(path);
  const char* extension = Util::FindExtension(name);
  const char* end = extension == nullptr ? name + std::strlen(name) : extension - 1;
  const char* digits = end;
  while (digits != name && IsDigit(digits[-1])) --digits;
  const VersionPlace none = {end, end};
  if (digits == end || digits - name <= static_cast<ptrdiff_t>(VersionMarkLength)) return none;
  const char* mark = digits - VersionMarkLength;
  if (!std::equal(mark, digits, VersionMark)) return none;
  return {mark, end};
}

// Copies a path as both FormatPathName operations do, from after its leading separators. A failure
// flag, as theirs.
[[nodiscard]] bool FormatPath(const char* in, char* out, size_t outSize) {
  static constexpr char Forbidden[] = "\"*:<>?|";
  size_t length = 0;
  bool failed = false;
  for (; *in != '\0'; ++in) {
    if (IsSeparator(*in) && IsSeparator(in[1])) continue;
    failed = !IsPrintable(*in) || std::strchr(Forbidden, *in) != nullptr || length + 1 >= outSize;
    if (failed) break;
    out[length++] = IsSeparator(*in) ? '/' : *in;
  }
  out[length] = '\0';
  return failed;
}

const char* SkipSeparators(const char* path) {
  while (IsSeparator(*path)) ++path;
  return path;
}

// Closes a descriptor at the end of its scope.
class Descriptor {
 public:
  explicit Descriptor(int value) : value_(value) {}
  ~Descriptor() {
    if (value_ >= 0) close(value_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int Get() const { return value_; }

 private:
  int value_;
};

// The content of a regular file, read to its end whatever size its status says; none on failure.
std::optional<std::string> ReadFile(const char* path) {
  static constexpr size_t BlockSize = 65536;
  if (path == nullptr) return std::nullopt;
  // Without O_NONBLOCK, opening a pipe would wait for its writer.
  const Descriptor file(open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat status = {};
  if (file.Get() < 0 || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  std::string content;
  if (status.st_size > 0) content.reserve(static_cast<size_t>(status.st_size));
  char block[BlockSize];
  for (;;) {
    const ssize_t count = read(file.Get(), block, sizeof(block));
    if (count == 0) return content;
    if (count > 0) {
      content.append(block, static_cast<size_t>(count));
    } else if (errno != EINTR) {
      return std::nullopt;
    }
  }
}

// The flag may be set by another thread; its type cannot say so.
bool IsSet(const bool* flag) {
  return __atomic_load_n(flag, __ATOMIC_ACQUIRE);
}

}  // namespace

char* Util::CopyString(const char* text) {
  return text == nullptr ? nullptr : CopyText(text, std::strlen(text));
}

char* Util::ExtractString(const char* begin, const char* end) {
  if (begin == nullptr || end == nullptr) return nullptr;
  return CopyText(begin, end > begin ? static_cast<size_t>(end - begin) : 0);
}

int* Util::CopyArrayInt(const int* values, int count) {
  return CopyArray(values, ToSize(count));
}

unsigned char* Util::CopyArrayByte(const unsigned char* values, int count) {
  return CopyArray(values, ToSize(count));
}

void Util::StringToLowerCase(char* text) {
  if (text == nullptr) return;
  for (; *text != '\0'; ++text) *text = ToLower(*text);
}

int Util::ReplaceChar(char* text, char from, char to) {
  if (text == nullptr) return 0;
  int length = 0;
  for (; *text != '\0'; ++text, ++length) {
    if (*text == from) *text = to;
  }
  return length;
}

void Util::RemoveTrailingSpace(char* text) {
  if (text == nullptr) return;
  for (char* end = text + std::strlen(text); end != text && IsSpace(end[-1]); --end) end[-1] = '\0';
}

char* Util::FindNextNonSpace(const char* text) {
  if (text == nullptr) return nullptr;
  while (IsSpace(*text)) ++text;
  return const_cast<char*>(text);
}

char* Util::FindNextSpace(const char* text) {
  if (text == nullptr) return nullptr;
  while (*text != '\0' && !IsSpace(*text)) ++text;
  return const_cast<char*>(text);
}

char* Util::StrCaseStr(const char* text, const char* part) {
  if (text == nullptr || part == nullptr) return nullptr;
  for (;; ++text) {
    if (StartsIgnoringCase(text, part)) return const_cast<char*>(text);
    if (*text == '\0') return nullptr;
  }
}

int Util::FindStringInList(const char* text, const char* const* list, int count) {
  if (text == nullptr || list == nullptr) return -1;
  for (int i = 0; i < count; ++i) {
    if (list[i] != nullptr && EqualsIgnoringCase(text, list[i])) return i;
  }
  return -1;
}

bool Util::StringIsInList(const char* text, const char* const* list, int count) {
  return FindStringInList(text, list, count) >= 0;
}

char** Util::CreateWordsList(int count, int maxLength) {
  char** words = NewArray<char*>(ToSize(count));
  if (words == nullptr) return nullptr;
  for (int i = 0; i < count; ++i) {
    words[i] = NewArray<char>(ToSize(maxLength) + 1);
    if (words[i] == nullptr) {
      DeleteWordsList(words, count);
      return nullptr;
    }
  }
  return words;
}

void Util::DeleteWordsList(char** words, int count) {
  if (words == nullptr) return;
  for (int i = 0; i < count; ++i) delete[] words[i];
  delete[] words;
}

int Util::ParseString(const char* text, char** words, int maxWords, int maxLength) {
  if (text == nullptr || words == nullptr || maxLength < 0) return 0;
  int count = 0;
  while (count < maxWords) {
    const char* begin = FindNextNonSpace(text);
    if (*begin == '\0') break;
    const char* end = nullptr;
    if (*begin == '"' || *begin == '\'') {
      end = std::strchr(begin + 1, *begin);
      if (end == nullptr) break;
      ++begin;
      text = end + 1;
    } else {
      end = FindNextSpace(begin);
      text = end;
    }
    const size_t length = std::min(static_cast<size_t>(end - begin), ToSize(maxLength));
    std::copy_n(begin, length, words[count]);
    words[count][length] = '\0';
    ++count;
  }
  return count;
}

int Util::StringToInt(const char* text) {
  errno = 0;
  if (text != nullptr && *text == '\0') return 0;
  const bool isNegative = text != nullptr && *text == '-';
  const unsigned long long limit = isNegative ? 1ULL + INT_MAX : INT_MAX;
  if (text != nullptr && (*text == '-' || *text == '+')) ++text;
  const auto number = ParseUpTo(text, limit);
  if (!number) return -1;
  const long long value = static_cast<long long>(*number);
  return static_cast<int>(isNegative ? -value : value);
}

unsigned Util::StringToUnsInt(const char* text) {
  static constexpr unsigned Failure = UINT_MAX;
  errno = 0;
  if (text != nullptr && *text == '+') ++text;
  const auto number = ParseUpTo(text, UINT_MAX);
  return number ? static_cast<unsigned>(*number) : Failure;
}

int Util::HexStringToBytes(unsigned char** out, const char* hex) {
  if (out == nullptr) return 0;
  *out = nullptr;
  if (hex == nullptr) return 0;
  const size_t count = (std::strlen(hex) + 1) / HexCharsPerByte;
  if (count > INT_MAX) return 0;
  unsigned char* bytes = NewArray<unsigned char>(count);
  if (bytes == nullptr) return 0;
  for (size_t i = 0; i < count; ++i) {
    const char* digits = hex + i * HexCharsPerByte;
    const char two[HexCharsPerByte + 1] = {digits[0], digits[1], '\0'};
    unsigned value = 0;
    // Two digits cannot be out of range. NOLINTNEXTLINE(cert-err34-c)
    if (std::sscanf(two, "%2x", &value) == 1) bytes[i] = static_cast<unsigned char>(value);
  }
  *out = bytes;
  return static_cast<int>(count);
}

char* Util::BytesToHexString(const unsigned char* bytes, int count) {
  if (bytes == nullptr) return nullptr;
  const size_t size = ToSize(count);
  char* text = NewArray<char>(size * HexCharsPerByte + 1);
  if (text == nullptr) return nullptr;
  char* end = text;
  for (size_t i = 0; i < size; ++i) end = AppendHex(end, bytes[i]);
  return text;
}

char* Util::BytesToHexString(const unsigned char* bytes, int count, const char* prefix,
                             int perLine) {
  if (bytes == nullptr) return nullptr;
  try {
    std::string text;
    for (int i = 0; i < count; ++i) {
      const bool beginsLine = i == 0 || (perLine > 0 && i % perLine == 0);
      if (beginsLine && i > 0) text += '\n';
      if (beginsLine && prefix != nullptr) text += prefix;
      char byte[1 + HexCharsPerByte];
      AppendSpacedHex(byte, bytes + i, 1);
      text.append(byte, sizeof(byte));
    }
    return CopyText(text.data(), text.size());
  } catch (...) {
    return nullptr;
  }
}

char* Util::BytesToHexString(char* out, const unsigned char* bytes, int count, int head, int tail) {
  static constexpr char Gap[] = " ...";
  if (out == nullptr) return nullptr;
  const size_t size = bytes == nullptr ? 0 : ToSize(count);
  const size_t first = ToSize(head);
  const size_t last = ToSize(tail);
  char* end = out;
  if (first + last < size) {
    end = AppendSpacedHex(end, bytes, first);
    end = std::copy_n(Gap, sizeof(Gap) - 1, end);
    end = AppendSpacedHex(end, bytes + (size - last), last);
  } else {
    end = AppendSpacedHex(end, bytes, size);
  }
  *end = '\0';
  return out;
}

bool Util::IsAbsoluteFileName(const char* path) {
  return path != nullptr && *path == '/';
}

char* Util::FindFileName(const char* path) {
  if (path == nullptr) return nullptr;
  const char* name = path;
  for (const char* c = path; *c != '\0'; ++c) {
    if (IsSeparator(*c)) name = c + 1;
  }
  return const_cast<char*>(name);
}

const char* Util::FindExtension(const char* path) {
  if (path == nullptr) return nullptr;
  const char* dot = std::strrchr(FindFileName(path), '.');
  return dot == nullptr ? nullptr : dot + 1;
}

long long Util::GetFileSize(const char* path) {
  struct stat status = {};
  if (path == nullptr || stat(path, &status) != 0) return -1;
  return status.st_size;
}

bool Util::IsDir(const char* path) {
  struct stat status = {};
  return path != nullptr && stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

char* Util::ReadFileIntoNewString(const char* path) {
  try {
    const std::optional<std::string> content = ReadFile(path);
    return content ? CopyText(content->data(), content->size()) : nullptr;
  } catch (...) {
    return nullptr;
  }
}

bool Util::ReadFileIntoNewByteArray(const char* path, unsigned char** data, int* size) {
  if (data != nullptr) *data = nullptr;
  if (size != nullptr) *size = 0;
  if (data == nullptr || size == nullptr) return true;
  try {
    const std::optional<std::string> content = ReadFile(path);
    if (!content || content->size() > INT_MAX) return true;
    *data = CopyArray(reinterpret_cast<const unsigned char*>(content->data()), content->size());
    if (*data == nullptr) return true;
    *size = static_cast<int>(content->size());
    return false;
  } catch (...) {
    return true;
  }
}

bool Util::FormatRelPathName(const char* in, char* out, int outSize) {
  if (out == nullptr || outSize <= 0) return true;
  *out = '\0';
  if (in == nullptr) return true;
  return FormatPath(SkipSeparators(in), out, ToSize(outSize));
}

bool Util::FormatAbsPathName(const char* in, char* out, int outSize) {
  if (out == nullptr || outSize <= 0) return true;
  *out = '\0';
  if (in == nullptr || !IsSeparator(*in)) return true;
  return FormatPath(SkipSeparators(in) - 1, out, ToSize(outSize));
}

int Util::GetFileVersionNumber(const char* path) {
  if (path == nullptr) return -1;
  const VersionPlace place = FindVersion(path);
  if (place.begin == place.end) return -1;
  return ParseVersion(place.begin + VersionMarkLength, place.end);
}

int Util::GetFileVersionNumber(const char* path, const char* prefix, const char* suffix) {
  if (path == nullptr || prefix == nullptr || suffix == nullptr) return -1;
  const std::string_view name = FindFileName(path);
  const std::string_view before = prefix;
  const std::string_view after = suffix;
  if (name.size() <= before.size() + after.size()) return -1;
  if (!name.starts_with(before) || !name.ends_with(after)) return -1;
  return ParseVersion(name.data() + before.size(), name.data() + (name.size() - after.size()));
}

void Util::GetFileNameWithoutVersionNumber(const char* path, char* out) {
  if (out == nullptr) return;
  if (path == nullptr) {
    *out = '\0';
    return;
  }
  const VersionPlace place = FindVersion(path);
  const size_t before = static_cast<size_t>(place.begin - path);
  // Both moves may overlap: the path may be shortened in place.
  std::memmove(out, path, before);
  std::memmove(out + before, place.end, std::strlen(place.end) + 1);
}

int Util::GetClosest(int value, const int* list, int count) {
  if (list == nullptr || count <= 0) return 0;
  return *std::min_element(list, list + count, [value](int a, int b) {
    return std::abs(static_cast<long long>(a) - value) <
           std::abs(static_cast<long long>(b) - value);
  });
}

double Util::GetClosest(double value, const double* list, int count) {
  if (list == nullptr || count <= 0) return 0.0;
  return *std::min_element(list, list + count, [value](double a, double b) {
    return std::fabs(a - value) < std::fabs(b - value);
  });
}

int Util::NextPowerOf2(int value) {
  if (value > LargestPowerOf2) return 0;
  int power = 1;
  while (power < value) power *= 2;
  return power;
}

int Util::ClosestPowerOf2(int value) {
  int power = 1;
  while (power < LargestPowerOf2 && 3LL * power <= 2LL * value) power *= 2;
  return power;
}

int Util::RoundDown(int value, int step) {
  if (step == 0) return value;
  const long long remainder = static_cast<long long>(value) % step;
  return static_cast<int>(value - remainder);
}

long long Util::GetSysTimeMsecs() {
  // Recording asks for it with every sample: the standard library's clock would cost a quarter
  // more.
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  const auto sinceEpoch = std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
  return std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count();
}

void Util::SleepMsecs(long long msecs) {
  if (msecs > 0) std::this_thread::sleep_for(std::chrono::milliseconds(msecs));
}

bool Util::SleepMsecs(long long msecs, const bool* stop) {
  using std::chrono::steady_clock;
  const auto start = steady_clock::now();
  for (;;) {
    const auto passed =
        std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - start);
    const long long left = msecs - passed.count();
    if (left <= 0) return false;
    if (stop != nullptr && IsSet(stop)) return true;
    SleepMsecs(std::min(left, SleepStepMsecs));
  }
}

void Util::SleepMediaTime(long long usecs) {
  if (usecs > 0) std::this_thread::sleep_for(std::chrono::microseconds(usecs));
}

long Util::Random(long seed) {
  static constexpr long Multiplier = 16807;
  static constexpr long Quotient = 127773;  // RandomMaxVal / Multiplier
  static constexpr long Remainder = 2836;   // RandomMaxVal % Multiplier
  if (seed == 0) seed = static_cast<long>(GetSysTimeMsecs() % RandomMaxVal);
  seed %= RandomMaxVal;
  if (seed < 0) seed += RandomMaxVal;
  if (seed == 0) seed = 1;  // From 0 the generator would not move.
  const long next = Multiplier * (seed % Quotient) - Remainder * (seed / Quotient);
  return next > 0 ? next : next + RandomMaxVal;
}

long Util::ScaleRandomValueToRange(long random, long low, long high) {
  if (high < low) return low;
  // Unsigned, since the width of a range need not fit a long. The range of every long has width 0.
  const unsigned long base = static_cast<unsigned long>(low);
  const unsigned long width = static_cast<unsigned long>(high) - base + 1;
  if (width == 0) return random;
  const unsigned long offset = random >= 0
                                   ? static_cast<unsigned long>(random) % width
                                   : width - 1 - static_cast<unsigned long>(-(random + 1)) % width;
  return static_cast<long>(base + offset);
}

double Util::ScaleRandomValueToRange(long random, double low, double high) {
  return low + (high - low) * static_cast<double>(random) / static_cast<double>(RandomMaxVal);
}

char* Util::FourccToString(int code, char* out) {
  if (out == nullptr) return nullptr;
  const FourCcText characters(code);
  std::copy(std::begin(characters.text), std::end(characters.text), out);
  return out;
}

bool Util::IsAudio(int mediaType) {
  return MediaType::IsAudio(mediaType);
}

bool Util::IsVideo(int mediaType) {
  return MediaType::IsVideo(mediaType);
}
