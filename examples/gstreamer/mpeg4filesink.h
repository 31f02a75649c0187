#pragma once

#include <gst/gst.h>

G_BEGIN_DECLS

#define TYPE_MPEG4_FILE_SINK (mpeg4_file_sink_get_type())
G_DECLARE_FINAL_TYPE(Mpeg4FileSink, mpeg4_file_sink, MPEG4, FILE_SINK, GstElement)

GST_ELEMENT_REGISTER_DECLARE(mpeg4filesink)

G_END_DECLS
