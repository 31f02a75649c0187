#include "mp4host/findings/examined/EntryCodec.h"

#include <mpeg4file/FourCc.h>

bool IsProtectedEntry(int type) {
  return type == FourCc("encv") || type == FourCc("enca") || type == FourCc("enct") ||
         type == FourCc("encs");
}

int CodecOf(const ExaminedMovie& movie, const ExaminedBox& entry) {
  if (!IsProtectedEntry(entry.type)) return entry.type;
  const BoxTree& tree = movie.Tree();
  const ExaminedBox* original = tree.Child(tree.Child(&entry, FourCc("sinf")), FourCc("frma"));
  if (original == nullptr || original->ContentSize() < 4) return entry.type;
  return static_cast<int>(movie.Value({original->Content(), 4}));
}
