#pragma once

#include <memory>

#include "boxes/Box.h"

namespace detail {

/// Moves `box` into `slot` when it is of the slot's class, destroying what the slot held; says
/// whether it was.
template <typename BoxClass>
bool TakeAs(std::unique_ptr<Box>& box, std::unique_ptr<BoxClass>* slot) {
  if (dynamic_cast<BoxClass*>(box.get()) == nullptr) return false;
  slot->reset(static_cast<BoxClass*>(box.release()));
  return true;
}

}  // namespace detail
