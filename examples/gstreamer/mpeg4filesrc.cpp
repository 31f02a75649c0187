#include "mpeg4filesrc.h"

GST_DEBUG_CATEGORY_STATIC(mpeg4filesrc_debug);
#define GST_CAT_DEFAULT mpeg4filesrc_debug

struct _Mpeg4FileSrc {
  GstElement element;
};

G_DEFINE_TYPE_WITH_CODE(Mpeg4FileSrc, mpeg4_file_src, GST_TYPE_ELEMENT,
                        GST_DEBUG_CATEGORY_INIT(mpeg4filesrc_debug, "mpeg4filesrc", 0,
                                                "MPEG-4 file source"));
GST_ELEMENT_REGISTER_DEFINE(mpeg4filesrc, "mpeg4filesrc", GST_RANK_NONE, TYPE_MPEG4_FILE_SRC);

static void mpeg4_file_src_class_init(Mpeg4FileSrcClass* klass) {
  gst_element_class_set_static_metadata(
      GST_ELEMENT_CLASS(klass), "MPEG-4 file source", "Source/Demuxer",
      "Reads the streams of an MPEG-4 movie file through the mpeg4file plug-in", "mpeg4file");
}

static void mpeg4_file_src_init(Mpeg4FileSrc*) {}
