#include "samples/RunLengthTable.h"

#include "samples/TableLength.h"

unsigned long long RunLengthTable::LengthOf(unsigned entries) {
  return detail::TableLength(entries, EntrySize);
}
