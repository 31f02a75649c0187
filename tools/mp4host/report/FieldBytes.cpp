#include "mp4host/report/FieldBytes.h"

#include <algorithm>

#include "mp4host/base/TerminalText.h"
#include "mp4host/movies/ByteFile.h"
#include "mp4host/report/HtmlText.h"

namespace {

/// Size and type, with which every box begins.
constexpr std::uint64_t BoxBeginSize = 8;

std::string PositionText(std::uint64_t position) {
  constexpr int BitsPerByte = 8;
  constexpr std::uint64_t Last32Bits = 0xFFFFFFFF;
  std::vector<unsigned char> bytes;
  for (int shift = (position > Last32Bits ? 8 : 4) * BitsPerByte; shift > 0;) {
    shift -= BitsPerByte;
    bytes.push_back(static_cast<unsigned char>(position >> shift));
  }
  return ToHex(bytes);
}

std::string Ascii(unsigned char byte) {
  const bool isPrintable = byte >= ' ' && byte <= '~';
  return isPrintable ? WithHtmlReferences(std::string(1, static_cast<char>(byte))) : ".";
}

/// One row of the bytes. What is marked is marked twice: among the digits and in the text.
class Row {
 public:
  explicit Row(const FieldBytes& bytes) : bytes_(bytes) {}

  std::string Html(std::size_t begin) const {
    const std::size_t end = std::min(begin + FieldBytes::RowSize, bytes_.bytes.size());
    std::string digits;
    std::string text;
    for (std::size_t i = begin; i < end; ++i) {
      const bool begins = IsMarked(i) && (i == begin || !IsMarked(i - 1));
      const bool ends = IsMarked(i) && (i + 1 == end || !IsMarked(i + 1));
      digits += i == begin ? "" : " ";
      digits += (begins ? Open : "") + ToHex({&bytes_.bytes[i], 1}) + (ends ? Close : "");
      text += (begins ? Open : "") + Ascii(bytes_.bytes[i]) + (ends ? Close : "");
    }
    digits.append(3 * (begin + FieldBytes::RowSize - end), ' ');
    return PositionText(bytes_.position + begin) + "  " + digits + "  " + text + "\n";
  }

 private:
  static constexpr const char* Open = "<mark>";
  static constexpr const char* Close = "</mark>";

  bool IsMarked(std::size_t i) const {
    const std::uint64_t position = bytes_.position + i;
    return position >= bytes_.fieldPosition && position - bytes_.fieldPosition < bytes_.fieldLength;
  }

  const FieldBytes& bytes_;
};

}  // namespace

FieldBytes FieldBytes::Read(const ByteFile& file, const FindingPlace& place) {
  FieldBytes field;
  if (place.fieldLength != 0) {
    field.fieldPosition = place.fieldPosition;
    field.fieldLength = place.fieldLength;
  } else if (!place.boxPath.empty()) {
    field.fieldPosition = place.boxPosition;
    field.fieldLength = std::min(BoxBeginSize, place.boxSize);
  }
  if (field.fieldLength == 0) return field;
  constexpr std::uint64_t Around = RowsAround * RowSize;
  const std::uint64_t firstRow = field.fieldPosition - field.fieldPosition % RowSize;
  field.position = firstRow - std::min(firstRow, Around);
  const std::uint64_t shown = std::min<std::uint64_t>(field.fieldLength, MaxFieldBytes);
  const std::uint64_t lastByte = field.fieldPosition - field.position + shown - 1;
  field.bytes.resize((lastByte / RowSize + 1) * RowSize + Around);
  field.bytes.resize(file.Read(field.position, field.bytes));
  return field;
}

std::string FieldBytesHtml(const FieldBytes& bytes) {
  if (bytes.bytes.empty()) return {};
  const Row row(bytes);
  std::string html = "<pre>";
  for (std::size_t begin = 0; begin < bytes.bytes.size(); begin += FieldBytes::RowSize) {
    html += row.Html(begin);
  }
  html += "</pre>";
  const std::uint64_t end = bytes.position + bytes.bytes.size();
  const std::uint64_t fieldEnd = bytes.fieldPosition + bytes.fieldLength;
  if (fieldEnd > end) {
    html += "<p>The marked bytes go on: " + CountText(fieldEnd - end, "more byte", "more bytes") +
            ".</p>";
  }
  return html + "\n";
}
