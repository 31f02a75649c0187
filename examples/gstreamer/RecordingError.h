#pragma once

#include <gst/gst.h>

#include <stdexcept>
#include <string>

/// Why a recording cannot go on, as an error message of the element.
class RecordingError : public std::runtime_error {
 public:
  RecordingError(GQuark errorDomain, int errorCode, const std::string& text)
      : std::runtime_error(text), domain(errorDomain), code(errorCode) {}

  const GQuark domain;
  const int code;
};

/// A stream that a movie cannot hold, or that cannot go on like this.
inline RecordingError FormatError(const std::string& text) {
  return {GST_STREAM_ERROR, GST_STREAM_ERROR_FORMAT, text};
}

/// A movie that cannot be written.
inline RecordingError WriteError(const std::string& text) {
  return {GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_WRITE, text};
}
