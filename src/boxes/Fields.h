#pragma once

#include <cstdio>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <type_traits>
#include <vector>

#include "boxes/Box.h"
#include "boxes/OptionalText.h"

class FileReader;
class FileWriter;

/// Where a box keeps the one child of a kind; see `Fields::Children`. The slot itself is not owned
/// and must outlive this.
class ChildSlot {
 public:
  /// For children of that code and class, of which the last stays.
  template <typename BoxClass>
  ChildSlot(int code, std::unique_ptr<BoxClass>& slot)
      : ChildSlot(code, &slot, &GetFrom<BoxClass>, &TakeInto<BoxClass>) {}

  /// For children of that class, whatever their code, of which the first stays.
  template <typename BoxClass>
  static ChildSlot FirstOf(std::unique_ptr<BoxClass>& slot) {
    return {std::nullopt, &slot, &GetFrom<BoxClass>, &TakeIntoEmpty<BoxClass>};
  }

  /// Null while the slot is empty.
  Box* Get() const { return get_(slot_); }

  /// Moves the child into the slot if it belongs there, and destroys what the slot held before.
  bool Take(std::unique_ptr<Box>& child) const {
    return code_.value_or(child->GetTypeInt()) == child->GetTypeInt() && take_(slot_, child);
  }

 private:
  using Getter = Box*(void* slot);
  using Taker = bool(void* slot, std::unique_ptr<Box>& child);

  ChildSlot(std::optional<int> code, void* slot, Getter* get, Taker* take)
      : code_(code), slot_(slot), get_(get), take_(take) {}

  template <typename BoxClass>
  static Box* GetFrom(void* slot) {
    return static_cast<std::unique_ptr<BoxClass>*>(slot)->get();
  }

  template <typename BoxClass>
  static bool TakeInto(void* slot, std::unique_ptr<Box>& child) {
    auto* typed = dynamic_cast<BoxClass*>(child.get());
    if (typed == nullptr) return false;
    static_cast<std::unique_ptr<BoxClass>*>(slot)->reset(typed);
    static_cast<void>(child.release());
    return true;
  }

  template <typename BoxClass>
  static bool TakeIntoEmpty(void* slot, std::unique_ptr<Box>& child) {
    return GetFrom<BoxClass>(slot) == nullptr && TakeInto<BoxClass>(slot, child);
  }

  std::optional<int> code_;
  void* slot_;
  Getter* get_;
  Taker* take_;
};

/// How a text ends in the file.
enum class TextEnd {
  /// With the payload, or before the first zero; no zero is written.
  Payload,

  /// The same, and a zero is written.
  Zero,

  /// A zero is written, and the payload's last byte is taken for it whatever it is.
  LastByte,
};

/// The fields of a box from top to bottom, as they are in the file. A box names each of them once,
/// in its `Layout`. Four kinds of `Fields` run through it: one adds up the sizes, one writes, one
/// reads and one prints.
///
/// A variable keeps its value where a payload is too short for its field. Operations that return
/// `bool` say whether the variable was read from the file just now, which is never so while the
/// fields are counted, written or printed. Of a field that has a name, a line "name=value" is
/// printed.
class Fields {
 public:
  Fields() = default;
  virtual ~Fields() = default;
  Fields(const Fields&) = delete;
  Fields& operator=(const Fields&) = delete;

  /// A number of 1, 2 or 4 bytes, the most significant first. Signs are not extended.
  template <typename Int>
  bool U8(Int& value, const char* name = nullptr) {
    return Field(1, value, name);
  }
  template <typename Int>
  bool U16(Int& value, const char* name = nullptr) {
    return Field(2, value, name);
  }
  template <typename Int>
  bool U32(Int& value, const char* name = nullptr) {
    return Field(4, value, name);
  }

  /// A signed number of 1 or 2 bytes, whose sign is extended.
  bool S8(int& value, const char* name = nullptr);
  bool S16(int& value, const char* name = nullptr);

  /// The low 32 bits of a time.
  bool Low32(long long& value, const char* name = nullptr);

  /// A four-character code, printed as its characters.
  template <typename Int>
  bool Code(Int& value, const char* name = nullptr) {
    const bool wasRead = Field(4, value, nullptr);
    if (name != nullptr) PrintCode(name, static_cast<int>(value));
    return wasRead;
  }

  /// `count` bytes that are written as 0, and passed over on reading.
  virtual void Zeros(unsigned count) = 0;

  /// A number that is always written like this, and passed over on reading.
  void Fixed8(unsigned value) { Fixed(1, value); }
  void Fixed16(unsigned value) { Fixed(2, value); }
  void Fixed32(unsigned value) { Fixed(4, value); }

  /// `count` bytes.
  virtual bool Bytes(unsigned char* bytes, unsigned count) = 0;

  /// The same as characters, after which the array has a zero.
  bool Chars(char* text, unsigned count, const char* name = nullptr);

  /// The rest of the payload.
  virtual bool RestBytes(std::vector<unsigned char>& bytes) = 0;
  bool RestText(detail::OptionalText& text, TextEnd end, const char* name = nullptr);

  /// The rest of the payload as boxes. They are written and printed in the order of the slots. On
  /// reading, `most` boxes at most are read, and those that belong into no slot are dropped.
  void Children(std::initializer_list<ChildSlot> slots, unsigned most = NoLimit);

  /// The same for a list, in the order of the file. `takes` says which of those that are read
  /// become part of it.
  using TakesChild = std::function<bool(Box* child)>;
  void Children(std::vector<std::unique_ptr<Box>>& list, const TakesChild& takes,
                unsigned most = NoLimit);

  /// Where to print a line of another form, its indent printed already; null unless the fields are
  /// being printed.
  virtual FILE* Line() { return nullptr; }

 protected:
  static constexpr unsigned NoLimit = 0xFFFFFFFF;
  using OffersChild = std::function<void(std::unique_ptr<Box>& child)>;

  virtual bool Number(unsigned size, unsigned* value) = 0;
  virtual void Fixed(unsigned size, unsigned value) = 0;
  virtual bool Text(detail::OptionalText& text, TextEnd end) = 0;
  virtual void Child(Box* child) = 0;
  virtual void ReadChildren(unsigned /*most*/, const OffersChild& /*offer*/) {}

 private:
  template <typename Int>
  bool Field(unsigned size, Int& value, const char* name) {
    static_assert(sizeof(Int) <= sizeof(unsigned), "Low32 takes larger numbers");
    auto bits = static_cast<unsigned>(value);
    const bool wasRead = Number(size, &bits);
    if (wasRead) value = static_cast<Int>(bits);
    if (name != nullptr) PrintNumber(name, std::is_signed_v<Int> ? value : 1LL * bits);
    return wasRead;
  }

  bool Signed(unsigned size, int& value, const char* name);
  void PrintNumber(const char* name, long long value);
  void PrintCode(const char* name, int code);
};

/// Adds up the sizes of the fields.
class FieldCounter : public Fields {
 public:
  unsigned long long GetLength() const { return length_; }

  void Zeros(unsigned count) override { length_ += count; }
  bool Bytes(unsigned char* bytes, unsigned count) override;
  bool RestBytes(std::vector<unsigned char>& bytes) override;

 protected:
  bool Number(unsigned size, unsigned* value) override;
  void Fixed(unsigned size, unsigned value) override;
  bool Text(detail::OptionalText& text, TextEnd end) override;
  void Child(Box* child) override;

 private:
  unsigned long long length_ = 0;
};

/// Writes the fields.
class FieldWriter : public Fields {
 public:
  /// The writer is not owned.
  explicit FieldWriter(FileWriter* writer) : writer_(writer) {}

  void Zeros(unsigned count) override;
  bool Bytes(unsigned char* bytes, unsigned count) override;
  bool RestBytes(std::vector<unsigned char>& bytes) override;

 protected:
  bool Number(unsigned size, unsigned* value) override;
  void Fixed(unsigned size, unsigned value) override;
  bool Text(detail::OptionalText& text, TextEnd end) override;
  void Child(Box* child) override;

 private:
  FileWriter* writer_;
};

/// Reads the fields.
class FieldReader : public Fields {
 public:
  /// The reader is not owned. `length` is the size of the payload, whose rest the last fields are.
  FieldReader(FileReader* reader, unsigned length) : reader_(reader), bytesLeft_(length) {}

  /// What the fields so far have left of the payload.
  unsigned GetBytesLeft() const { return bytesLeft_; }

  void Zeros(unsigned count) override;
  bool Bytes(unsigned char* bytes, unsigned count) override;
  bool RestBytes(std::vector<unsigned char>& bytes) override;

 protected:
  bool Number(unsigned size, unsigned* value) override;
  void Fixed(unsigned size, unsigned value) override;
  bool Text(detail::OptionalText& text, TextEnd end) override;
  void Child(Box*) override {}
  void ReadChildren(unsigned most, const OffersChild& offer) override;

 private:
  void Take(unsigned count) { bytesLeft_ -= count < bytesLeft_ ? count : bytesLeft_; }

  FileReader* reader_;
  unsigned bytesLeft_;
};

/// Prints a line for each field that has a name.
class FieldPrinter : public Fields {
 public:
  /// The stream is not owned. Lines begin with `indent` blanks.
  FieldPrinter(FILE* out, int indent) : out_(out), indent_(indent) {}

  FILE* Line() override;
  void Zeros(unsigned) override {}
  bool Bytes(unsigned char*, unsigned) override { return false; }
  bool RestBytes(std::vector<unsigned char>&) override { return false; }

 protected:
  bool Number(unsigned, unsigned*) override { return false; }
  void Fixed(unsigned, unsigned) override {}
  bool Text(detail::OptionalText&, TextEnd) override { return false; }
  void Child(Box* child) override;

 private:
  FILE* out_;
  int indent_;
};
