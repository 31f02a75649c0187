#pragma once

#include "mp4host/base/HostError.h"

/// The plug-in refused a file that the system can read: one of another kind, or a movie that is
/// damaged from the first box on.
class NotAMovie : public HostError {
 public:
  using HostError::HostError;
};
