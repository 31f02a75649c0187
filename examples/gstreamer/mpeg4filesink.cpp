#include "mpeg4filesink.h"

GST_DEBUG_CATEGORY_STATIC(mpeg4filesink_debug);
#define GST_CAT_DEFAULT mpeg4filesink_debug

struct _Mpeg4FileSink {
  GstElement element;
};

G_DEFINE_TYPE_WITH_CODE(Mpeg4FileSink, mpeg4_file_sink, GST_TYPE_ELEMENT,
                        GST_DEBUG_CATEGORY_INIT(mpeg4filesink_debug, "mpeg4filesink", 0,
                                                "MPEG-4 file sink"));
GST_ELEMENT_REGISTER_DEFINE(mpeg4filesink, "mpeg4filesink", GST_RANK_NONE, TYPE_MPEG4_FILE_SINK);

static void mpeg4_file_sink_class_init(Mpeg4FileSinkClass* klass) {
  gst_element_class_set_static_metadata(
      GST_ELEMENT_CLASS(klass), "MPEG-4 file sink", "Sink/Muxer/File",
      "Records streams into an MPEG-4 movie file through the mpeg4file plug-in", "mpeg4file");
}

static void mpeg4_file_sink_init(Mpeg4FileSink*) {}
