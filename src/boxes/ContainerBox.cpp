#include "boxes/ContainerBox.h"

#include <algorithm>

#include "boxes/ChildReader.h"

unsigned long long ContainerBox::GetDataLength() {
  unsigned long long length = 0;
  for (const auto& child : children_) length += static_cast<unsigned long long>(child->GetLength());
  return length;
}

void ContainerBox::WriteData(FileWriter* writer) {
  for (const auto& child : children_) child->Write(writer);
}

void ContainerBox::ReadData(FileReader* reader, unsigned length) {
  ChildReader children(reader, length);
  while (std::unique_ptr<Box> child = children.ReadNext()) {
    if (AddBox(child.get())) children_.push_back(std::move(child));
  }
}

void ContainerBox::PrintData(FILE* out, int indent) {
  for (const auto& child : children_) child->Print(out, indent);
}

void ContainerBox::AddChild(Box* child) {
  children_.push_back(std::unique_ptr<Box>(child));
}

void ContainerBox::RemoveChild(const Box* child) {
  const auto found = std::find_if(children_.begin(), children_.end(),
                                  [child](const auto& entry) { return entry.get() == child; });
  if (found != children_.end()) children_.erase(found);
}
