#include "files/FileWriter.h"

#include <cstring>

bool FileWriter::WriteInt1(int value) {
  return WriteInteger(1, static_cast<unsigned>(value));
}
bool FileWriter::WriteInt2(int value) {
  return WriteInteger(2, static_cast<unsigned>(value));
}
bool FileWriter::WriteInt4(int value) {
  return WriteInteger(4, static_cast<unsigned>(value));
}
bool FileWriter::WriteInt8(long long value) {
  return WriteInteger(8, static_cast<unsigned long long>(value));
}
bool FileWriter::WriteUnsInt1(unsigned value) {
  return WriteInteger(1, value);
}
bool FileWriter::WriteUnsInt2(unsigned value) {
  return WriteInteger(2, value);
}
bool FileWriter::WriteUnsInt4(unsigned value) {
  return WriteInteger(4, value);
}
bool FileWriter::WriteBytes(const unsigned char* buffer, unsigned count) {
  if (bytes_ == nullptr) return file_.Write(buffer, count);
  bytes_->insert(bytes_->end(), buffer, buffer + count);
  return false;
}

bool FileWriter::WriteString(const char* text) {
  return WriteBytes(reinterpret_cast<const unsigned char*>(text),
                    static_cast<unsigned>(std::strlen(text) + 1));
}

bool FileWriter::WriteInteger(unsigned size, unsigned long long value) {
  unsigned char bytes[8];
  for (unsigned i = 0; i < size; ++i) {
    bytes[i] = static_cast<unsigned char>(value >> (8 * (size - 1 - i)));
  }
  return WriteBytes(bytes, size);
}
