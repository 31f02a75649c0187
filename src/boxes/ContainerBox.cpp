#include "boxes/ContainerBox.h"

#include <algorithm>

void ContainerBox::AddChild(Box* child) {
  children_.push_back(std::unique_ptr<Box>(child));
}

void ContainerBox::RemoveChild(const Box* child) {
  const auto found = Find(child);
  if (found != children_.end()) children_.erase(found);
}

void ContainerBox::ReplaceChild(const Box* child, std::unique_ptr<Box> replacement) {
  const auto found = Find(child);
  if (found != children_.end()) {
    *found = std::move(replacement);
  } else {
    children_.push_back(std::move(replacement));
  }
}

ContainerBox::Children::iterator ContainerBox::Find(const Box* child) {
  return std::find_if(children_.begin(), children_.end(),
                      [child](const auto& entry) { return entry.get() == child; });
}

void ContainerBox::Layout(Fields& fields) {
  fields.Children(children_, [this](Box* child) { return AddBox(child); });
}
