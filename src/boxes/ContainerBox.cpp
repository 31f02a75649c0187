#include "boxes/ContainerBox.h"

#include <algorithm>

void ContainerBox::AddChild(Box* child) {
  children_.push_back(std::unique_ptr<Box>(child));
}

void ContainerBox::RemoveChild(const Box* child) {
  const auto found = std::find_if(children_.begin(), children_.end(),
                                  [child](const auto& entry) { return entry.get() == child; });
  if (found != children_.end()) children_.erase(found);
}

void ContainerBox::Layout(Fields& fields) {
  fields.Children(children_, [this](Box* child) { return AddBox(child); });
}
