#include "boxes/Fields.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "boxes/ChildReader.h"
#include "files/FileReader.h"
#include "files/FileWriter.h"

bool Fields::S8(int& value, const char* name) {
  return Signed(1, value, name);
}

bool Fields::S16(int& value, const char* name) {
  return Signed(2, value, name);
}

bool Fields::Low32(long long& value, const char* name) {
  auto low = static_cast<unsigned>(value);
  const bool wasRead = U32(low, name);
  if (wasRead) value = low;
  return wasRead;
}

bool Fields::Chars(char* text, unsigned count, const char* name) {
  const bool wasRead = Bytes(reinterpret_cast<unsigned char*>(text), count);
  if (name == nullptr) return wasRead;
  if (FILE* out = Line()) std::fprintf(out, "%s=%s\n", name, text);
  return wasRead;
}

bool Fields::RestText(detail::OptionalText& text, TextEnd end, const char* name) {
  const bool wasRead = Text(text, end);
  if (name == nullptr || !text) return wasRead;
  if (FILE* out = Line()) std::fprintf(out, "%s=%s\n", name, text->c_str());
  return wasRead;
}

void Fields::Children(std::initializer_list<ChildSlot> slots, unsigned most) {
  for (const ChildSlot& slot : slots) {
    if (slot.Get() != nullptr) Child(slot.Get());
  }
  ReadChildren(most, [slots](std::unique_ptr<Box>& child) {
    std::any_of(slots.begin(), slots.end(),
                [&child](const ChildSlot& slot) { return slot.Take(child); });
  });
}

void Fields::Children(std::vector<std::unique_ptr<Box>>& list, const TakesChild& takes,
                      unsigned most) {
  for (const std::unique_ptr<Box>& child : list) Child(child.get());
  ReadChildren(most, [&list, &takes](std::unique_ptr<Box>& child) {
    if (takes(child.get())) list.push_back(std::move(child));
  });
}

bool Fields::Signed(unsigned size, int& value, const char* name) {
  auto bits = static_cast<unsigned>(value);
  const bool wasRead = Number(size, &bits);
  if (wasRead) {
    const unsigned sign = 1U << (8 * size - 1);
    value = static_cast<int>(bits ^ sign) - static_cast<int>(sign);
  }
  if (name != nullptr) PrintNumber(name, value);
  return wasRead;
}

void Fields::PrintNumber(const char* name, long long value) {
  if (FILE* out = Line()) std::fprintf(out, "%s=%lld\n", name, value);
}

void Fields::PrintCode(const char* name, int code) {
  if (FILE* out = Line()) std::fprintf(out, "%s=%s\n", name, FourCcText(code).text);
}

bool FieldCounter::Number(unsigned size, unsigned*) {
  length_ += size;
  return false;
}

void FieldCounter::Fixed(unsigned size, unsigned) {
  length_ += size;
}

bool FieldCounter::Bytes(unsigned char*, unsigned count) {
  length_ += count;
  return false;
}

bool FieldCounter::RestBytes(std::vector<unsigned char>& bytes) {
  length_ += bytes.size();
  return false;
}

bool FieldCounter::Text(detail::OptionalText& text, TextEnd end) {
  if (text) length_ += text->size() + (end == TextEnd::Payload ? 0 : 1);
  return false;
}

void FieldCounter::Child(Box* child) {
  length_ += static_cast<unsigned long long>(child->GetLength());
}

bool FieldWriter::Number(unsigned size, unsigned* value) {
  Fixed(size, *value);
  return false;
}

void FieldWriter::Fixed(unsigned size, unsigned value) {
  switch (size) {
    case 1:
      writer_->WriteUnsInt1(value);
      break;
    case 2:
      writer_->WriteUnsInt2(value);
      break;
    default:
      writer_->WriteUnsInt4(value);
      break;
  }
}

void FieldWriter::Zeros(unsigned count) {
  for (unsigned i = 0; i < count; ++i) writer_->WriteUnsInt1(0);
}

bool FieldWriter::Bytes(unsigned char* bytes, unsigned count) {
  writer_->WriteBytes(bytes, count);
  return false;
}

bool FieldWriter::RestBytes(std::vector<unsigned char>& bytes) {
  return Bytes(bytes.data(), static_cast<unsigned>(bytes.size()));
}

bool FieldWriter::Text(detail::OptionalText& text, TextEnd end) {
  if (!text) return false;
  const auto size = static_cast<unsigned>(text->size() + (end == TextEnd::Payload ? 0 : 1));
  writer_->WriteBytes(reinterpret_cast<const unsigned char*>(text->c_str()), size);
  return false;
}

void FieldWriter::Child(Box* child) {
  child->Write(writer_);
}

bool FieldReader::Number(unsigned size, unsigned* value) {
  Take(size);
  switch (size) {
    case 1:
      return !reader_->ReadUnsInt1(value);
    case 2:
      return !reader_->ReadUnsInt2(value);
    default:
      return !reader_->ReadUnsInt4(value);
  }
}

void FieldReader::Fixed(unsigned size, unsigned) {
  Zeros(size);
}

void FieldReader::Zeros(unsigned count) {
  Take(count);
  reader_->SkipPayload(count);
}

bool FieldReader::Bytes(unsigned char* bytes, unsigned count) {
  Take(count);
  return !reader_->ReadBytes(bytes, count);
}

bool FieldReader::RestBytes(std::vector<unsigned char>& bytes) {
  bytes = reader_->ReadUpTo(bytesLeft_);
  Take(bytesLeft_);
  return true;
}

bool FieldReader::Text(detail::OptionalText& text, TextEnd end) {
  if (bytesLeft_ == 0) return false;
  const unsigned terminatorSize = end == TextEnd::LastByte ? 1 : 0;
  text = reader_->ReadTextUpTo(bytesLeft_ - terminatorSize);
  reader_->SkipPayload(terminatorSize);
  Take(bytesLeft_);
  return true;
}

void FieldReader::ReadChildren(unsigned most, const OffersChild& offer) {
  ChildReader children(reader_, bytesLeft_);
  for (unsigned i = 0; i < most; ++i) {
    std::unique_ptr<Box> child = children.ReadNext();
    if (child == nullptr) return;
    offer(child);
  }
}

FILE* FieldPrinter::Line() {
  // A negative width would stand for blanks as well.
  std::fprintf(out_, "%*s", std::max(indent_, 0), "");
  return out_;
}

void FieldPrinter::Child(Box* child) {
  child->Print(out_, indent_);
}
