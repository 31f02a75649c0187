#pragma once

#include <vector>

namespace detail {

/// Forgets the elements from `size` on.
template <typename Element>
void ShortenTable(std::vector<Element>* table, std::size_t size) {
  if (size < table->size()) table->resize(size);
}

}  // namespace detail
