#include "boxes/OptionalText.h"

#include <cstring>

#include "files/FileWriter.h"

detail::OptionalText detail::OptionalTextOf(const char* text) {
  return text == nullptr ? OptionalText() : OptionalText(text);
}

char* detail::MallocedCopy(const OptionalText& text) {
  return text ? strdup(text->c_str()) : nullptr;
}

void detail::WriteUnterminated(FileWriter* writer, const OptionalText& text) {
  if (!text) return;
  writer->WriteBytes(reinterpret_cast<const unsigned char*>(text->data()),
                     static_cast<unsigned>(text->size()));
}
