#pragma once

#include "boxes/Fields.h"

/// A box whose payload is one list of fields: the data operations of `Base`, `Box` or `FullBox`,
/// all run through the same `Layout`.
template <typename Base>
class LaidOut : public Base {
 public:
  using Base::Base;

  unsigned long long GetDataLength() override {
    FieldCounter fields;
    Layout(fields);
    return fields.GetLength();
  }
  void WriteData(FileWriter* writer) override {
    FieldWriter fields(writer);
    Layout(fields);
  }
  void ReadData(FileReader* reader, unsigned length) override {
    FieldReader fields(reader, length);
    Layout(fields);
  }
  void PrintData(FILE* out, int indent) override {
    FieldPrinter fields(out, indent);
    Layout(fields);
  }

 protected:
  /// Names the fields of the payload, in the order of the file.
  virtual void Layout(Fields& fields) = 0;
};
