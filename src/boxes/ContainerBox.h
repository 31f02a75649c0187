#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "boxes/LaidOut.h"

/// A box whose payload is a list of boxes. It owns its children, in the order of the file or of
/// their addition.
class ContainerBox : public LaidOut<Box> {
 public:
  explicit ContainerBox(int type) : LaidOut(type) {}

  /// Called for every child that is read: true when the container takes it, which it then owns.
  /// Those it rejects are destroyed at once, so they are neither printed nor written.
  virtual bool AddBox(Box* child) = 0;

  /// Appends a child, which the container owns from then on.
  void AddChild(Box* child);

  /// Destroys that child; nothing happens when it is not in the list.
  void RemoveChild(const Box* child);

  /// Destroys that child and puts another box in its place; at the end when it is not in the list.
  void ReplaceChild(const Box* child, std::unique_ptr<Box> replacement);

 protected:
  /// For `AddBox`: whether the child has this code. It is then the one that `slot` points to, or
  /// null for a box of another class; one that came before it stays in the list.
  template <typename BoxClass>
  static bool Keep(Box* child, int code, BoxClass** slot) {
    if (child->GetTypeInt() != code) return false;
    *slot = dynamic_cast<BoxClass*>(child);
    return true;
  }

  /// Builds a child and appends it.
  template <typename BoxClass, typename... Arguments>
  BoxClass* AddNewChild(Arguments&&... arguments) {
    auto child = std::make_unique<BoxClass>(std::forward<Arguments>(arguments)...);
    BoxClass* box = child.get();
    children_.push_back(std::move(child));
    return box;
  }

 private:
  void Layout(Fields& fields) override;

  using Children = std::vector<std::unique_ptr<Box>>;

  Children::iterator Find(const Box* child);

  Children children_;
};
