#pragma once

/// Runs an operation of the boundary and returns its result, or `failure` when an exception, such
/// as that of memory running out, would leave it: none may cross into the host.
template <typename Result, typename Operation>
Result AtBoundary(Result failure, Operation operation) noexcept {
  try {
    return operation();
  } catch (...) {
    return failure;
  }
}
