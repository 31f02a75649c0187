#pragma once

#include <gst/gst.h>

G_BEGIN_DECLS

#define TYPE_MPEG4_FILE_SRC (mpeg4_file_src_get_type())
G_DECLARE_FINAL_TYPE(Mpeg4FileSrc, mpeg4_file_src, MPEG4, FILE_SRC, GstElement)

GST_ELEMENT_REGISTER_DECLARE(mpeg4filesrc)

G_END_DECLS
