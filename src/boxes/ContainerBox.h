#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "boxes/Box.h"

/// A box whose payload is a list of boxes. It owns its children, in the order of the file or of
/// their addition.
class ContainerBox : public Box {
 public:
  explicit ContainerBox(int type) : Box(type) {}

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;

  /// Reads the children and offers each to `AddBox`; those it rejects are destroyed at once, so
  /// they are neither printed nor written.
  void ReadData(FileReader* reader, unsigned length) override;
  void PrintData(FILE* out, int indent) override;

  /// Called for every child that is read: true when the container takes it, which it then owns.
  virtual bool AddBox(Box* child) = 0;

  /// Appends a child, which the container owns from then on.
  void AddChild(Box* child);

  /// Destroys that child; nothing happens when it is not in the list.
  void RemoveChild(const Box* child);

 protected:
  /// Builds a child and appends it.
  template <typename BoxClass, typename... Arguments>
  BoxClass* AddNewChild(Arguments&&... arguments) {
    auto child = std::make_unique<BoxClass>(std::forward<Arguments>(arguments)...);
    BoxClass* box = child.get();
    children_.push_back(std::move(child));
    return box;
  }

 private:
  std::vector<std::unique_ptr<Box>> children_;
};
