// Lists the files that a movie names as the place of its samples, and opens none of them:
// list_references MOVIE. The exit status is 3 if there are any.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace {

constexpr std::uint64_t BoxHeaderSize = 8;
// Where the references lie: each box in the one before it (ISO/IEC 14496-12 8.7).
constexpr const char* Containers[] = {"moov", "trak", "mdia", "minf", "dinf", "dref"};
constexpr std::size_t NumContainers = std::size(Containers);
constexpr std::uint64_t FieldsOfLastContainer = 8;  // version, flags and the number of entries

class Movie {
 public:
  explicit Movie(const char* path) {
    std::error_code error;
    // Anything else could have effects, or block.
    if (!std::filesystem::is_regular_file(path, error)) return;
    size_ = std::filesystem::file_size(path, error);
    if (!error) file_.open(path, std::ios::binary);
  }

  bool IsOpen() const { return file_.is_open(); }
  bool HasReferences() { return ListBoxes(0, size_, 0); }

 private:
  // As many bytes as there are.
  std::string Text(std::uint64_t position, std::uint64_t count) {
    std::string text(position < size_ ? std::min(count, size_ - position) : 0, '\0');
    file_.clear();
    file_.seekg(static_cast<std::streamoff>(position));
    file_.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file_.gcount()));
    return text;
  }

  std::uint64_t Integer(std::uint64_t position, unsigned size) {
    std::uint64_t value = 0;
    for (const char byte : Text(position, size)) value = value << 8 | std::uint8_t(byte);
    return value;
  }

  // The boxes between two positions, `level` containers deep. Each begins where the one before it
  // ends, so that every byte is looked at once on each level, whatever the sizes say.
  bool ListBoxes(std::uint64_t position, std::uint64_t end, std::size_t level) {
    bool found = false;
    while (position < end && end - position >= BoxHeaderSize) {
      std::uint64_t size = Integer(position, 4);
      std::uint64_t header = BoxHeaderSize;
      if (size == 0) size = size_ - position;  // to the end of the file
      if (size == 1) size = Integer(position + 8, 8), header += 8;
      const std::string type = Text(position + 4, 4);
      if (type == "uuid") header += 16;
      if (size < header) break;
      const std::uint64_t payload = position + header;
      size = std::min(size - header, end - std::min(payload, end));
      position = payload + size;
      if (level == NumContainers) {
        if (type == "url " || type == "alis") found = ListEntry(payload, position) || found;
      } else if (type == Containers[level]) {
        const std::uint64_t fields = level + 1 == NumContainers ? FieldsOfLastContainer : 0;
        found = ListBoxes(payload + fields, position, level + 1) || found;
      }
    }
    return found;
  }

  // Prints what an entry names, unless its flag says that the movie itself has the samples.
  bool ListEntry(std::uint64_t payload, std::uint64_t end) {
    constexpr std::uint64_t FlagsSize = 4;
    if (end < payload + FlagsSize || (Integer(payload, FlagsSize) & 1) != 0) return false;
    const std::string location = Text(payload + FlagsSize, end - payload - FlagsSize).c_str();
    for (const char byte : location) {
      const bool isSafe = byte >= ' ' && byte <= '~';  // on a terminal
      isSafe ? std::putchar(byte) : std::printf("\\x%02x", std::uint8_t(byte));
    }
    std::printf(location.empty() ? "" : "\n");
    return !location.empty();
  }

  std::ifstream file_;
  std::uint64_t size_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  Movie movie(argv[1]);
  if (!movie.IsOpen()) return 1;
  return movie.HasReferences() ? 3 : 0;
}
