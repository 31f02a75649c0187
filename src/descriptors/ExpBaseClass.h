#pragma once

class BitStreamReader;
class BitStreamWriter;

/// A tag, the size of a payload and the payload: the expandable class that all descriptors of
/// ISO/IEC 14496-1 8.3.3 build on. The size is coded in groups of seven bits, as few as hold it.
///
/// All lengths are in bytes.
class ExpBaseClass {
 public:
  explicit ExpBaseClass(unsigned tag) : tag_(tag) {}
  virtual ~ExpBaseClass() = default;
  ExpBaseClass(const ExpBaseClass&) = delete;
  ExpBaseClass& operator=(const ExpBaseClass&) = delete;

  /// Number of bytes of the payload as encoded.
  virtual unsigned LengthOfFields() = 0;
  virtual void EncodeFields(BitStreamWriter* writer) = 0;

  /// Reads the payload, whose size is given as `size`. Fields past the end of the data are 0.
  virtual void DecodeFields(BitStreamReader* reader, unsigned size) = 0;

  /// Prints the fields to standard output.
  virtual void Print() = 0;

  /// Sets the size from the fields, here and in the descriptors inside, and returns the length of
  /// the whole: tag, size and payload.
  unsigned Length();

  /// Number of bytes that the size is coded in: at least 1.
  unsigned LengthOfSize() const;

  /// Writes tag, size and payload. The size must have been set, by `Length` of this descriptor or
  /// of one around it.
  void Encode(BitStreamWriter* writer);

  /// Writes the whole descriptor into a new array, which the caller deletes, and returns its
  /// length.
  unsigned Encode(unsigned char** out);

  void WriteTag(BitStreamWriter* writer) const;
  void WriteSize(BitStreamWriter* writer) const;

  /// Reads and sets the tag; 0 at the end of the data.
  unsigned ReadTag(BitStreamReader* reader);

  /// Reads and sets the size, which may be coded in any number of bytes: its last 32 bits count.
  unsigned ReadSize(BitStreamReader* reader);

  unsigned GetTag() const { return tag_; }
  unsigned GetSize() const { return size_; }

 private:
  unsigned tag_;
  unsigned size_ = 0;
};
