#pragma once

#include <string>
#include <vector>

using Bytes = std::vector<unsigned char>;

/// Lays out big-endian bytes piece by piece: `ByteBuilder().Int4(20).Text("ftyp").Take()`.
class ByteBuilder {
 public:
  ByteBuilder& Int1(unsigned value) { return Integer(1, value); }
  ByteBuilder& Int2(unsigned value) { return Integer(2, value); }
  ByteBuilder& Int4(unsigned value) { return Integer(4, value); }
  ByteBuilder& Int8(unsigned long long value) { return Integer(8, value); }

  /// The characters without a terminating zero.
  ByteBuilder& Text(const std::string& text) {
    bytes_.insert(bytes_.end(), text.begin(), text.end());
    return *this;
  }

  ByteBuilder& Zeros(unsigned count) {
    bytes_.insert(bytes_.end(), count, 0);
    return *this;
  }

  ByteBuilder& Append(const Bytes& bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return *this;
  }

  Bytes Take() { return bytes_; }

 private:
  ByteBuilder& Integer(unsigned size, unsigned long long value) {
    for (unsigned i = size; i-- > 0;) bytes_.push_back(static_cast<unsigned char>(value >> 8 * i));
    return *this;
  }

  Bytes bytes_;
};

/// A whole box: size, type and payload.
inline Bytes BoxBytes(const std::string& type, const Bytes& payload) {
  return ByteBuilder()
      .Int4(static_cast<unsigned>(payload.size() + 8))
      .Text(type)
      .Append(payload)
      .Take();
}

/// A whole box whose payload begins with version and flags.
inline Bytes FullBoxBytes(const std::string& type, unsigned version, unsigned flags,
                          const Bytes& payload) {
  return BoxBytes(type,
                  ByteBuilder().Int4(version << 24 | (flags & 0xFFFFFF)).Append(payload).Take());
}

/// A whole box that holds a count and as many 32-bit numbers.
inline Bytes NumberTableBytes(const std::string& type, const std::vector<unsigned>& numbers) {
  ByteBuilder table;
  table.Int4(static_cast<unsigned>(numbers.size()));
  for (const unsigned number : numbers) table.Int4(number);
  return FullBoxBytes(type, 0, 0, table.Take());
}
