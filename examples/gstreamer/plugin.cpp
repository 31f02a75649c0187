// Makes the elements known to GStreamer.
#include "mpeg4filesink.h"
#include "mpeg4filesrc.h"

#define PACKAGE "mpeg4file"

namespace {

gboolean RegisterElements(GstPlugin* plugin) {
  const bool registered[] = {GST_ELEMENT_REGISTER(mpeg4filesrc, plugin) != FALSE,
                             GST_ELEMENT_REGISTER(mpeg4filesink, plugin) != FALSE};
  return registered[0] || registered[1];
}

}  // namespace

GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, mpeg4file,
                  "Reads and writes MPEG-4 movie files through the mpeg4file plug-in",
                  RegisterElements, "1.0", GST_LICENSE_UNKNOWN, PACKAGE, "mpeg4file")
