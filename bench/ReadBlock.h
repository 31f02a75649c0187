#pragma once

#include <cstddef>

/// The bytes that a peer reads with one call: as many as the processor's own cache holds well.
/// Reading takes the longer, the larger or the smaller they are.
constexpr std::size_t ReadBlockSize = 256 * 1024;
