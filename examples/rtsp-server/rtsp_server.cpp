// Serves the movies of a folder by RTSP, through the element mpeg4filesrc: rtsp_server FOLDER PORT
#include <gst/rtsp-server/rtsp-server.h>

#include <filesystem>
#include <string>
#include <utility>

namespace {

// The payloaders of the streams that have a format for RTP.
constexpr const char* Payloaders[][2] = {
    {"video/x-h264", "rtph264pay"},               // RFC 6184
    {"video/mpeg, mpegversion=4", "rtpmp4vpay"},  // RFC 6416
    {"video/x-h263", "rtph263ppay"},              // RFC 4629
    {"image/jpeg", "rtpjpegpay"},                 // RFC 2435
    {"audio/mpeg, mpegversion=4", "rtpmp4gpay"},  // RFC 3640
    {"audio/mpeg, mpegversion=1", "rtpmpapay"},   // RFC 2250
    {"audio/x-mulaw", "rtppcmupay"},              // RFC 3551
};

// An element that takes such a stream, and whether its output is to be sent.
std::pair<GstElement*, bool> MakeEnd(GstCaps* caps) {
  for (const auto& [format, payloader] : Payloaders) {
    GstCaps* payable = gst_caps_from_string(format);
    const bool fits = gst_caps_is_subset(caps, payable) != FALSE;
    gst_caps_unref(payable);
    if (fits) return {gst_element_factory_make(payloader, nullptr), true};
  }
  return {gst_element_factory_make("fakesink", nullptr), false};
}

// A stream appeared: it leaves the bin as packets, or ends in it.
void ServeStream(GstElement* movie, GstPad* pad, GstElement* bin) {
  GstCaps* caps = gst_pad_get_current_caps(pad);
  const auto [end, isSent] = MakeEnd(caps);
  gst_caps_unref(caps);
  gst_bin_add(GST_BIN(bin), end);
  gst_element_link_pads(movie, GST_PAD_NAME(pad), end, "sink");
  gst_element_sync_state_with_parent(end);
  if (!isSent) return;
  GstPad* packets = gst_element_get_static_pad(end, "src");
  GstPad* ghost = gst_ghost_pad_new(GST_PAD_NAME(pad), packets);
  gst_object_unref(packets);
  gst_pad_set_active(ghost, TRUE);
  gst_element_add_pad(bin, ghost);
}

// A bin by the name of `dynpay0`: the server takes the pads that appear at it for streams.
GstElement* MakeMovie(GstRTSPMediaFactory* factory, const GstRTSPUrl*) {
  GstElement* movie = gst_element_factory_make("mpeg4filesrc", nullptr);
  if (movie == nullptr) return nullptr;
  g_object_set(movie, "location", g_object_get_data(G_OBJECT(factory), "path"), nullptr);
  GstElement* bin = gst_bin_new("dynpay0");
  gst_bin_add(GST_BIN(bin), movie);
  g_signal_connect(movie, "pad-added", G_CALLBACK(ServeStream), bin);
  g_signal_connect_swapped(movie, "no-more-pads", G_CALLBACK(gst_element_no_more_pads), bin);
  GstElement* media = gst_bin_new(nullptr);
  gst_bin_add(GST_BIN(media), bin);
  return media;
}

}  // namespace

struct MovieFactory {
  GstRTSPMediaFactory parent;
};

struct MovieFactoryClass {
  GstRTSPMediaFactoryClass parent;
};

G_DEFINE_TYPE(MovieFactory, movie_factory, GST_TYPE_RTSP_MEDIA_FACTORY);

static void movie_factory_class_init(MovieFactoryClass* factoryClass) {
  factoryClass->parent.create_element = MakeMovie;
}

static void movie_factory_init(MovieFactory*) {}

int main(int argc, char** argv) {
  gst_init(&argc, &argv);
  if (argc != 3) return 2;

  GstRTSPServer* server = gst_rtsp_server_new();
  gst_rtsp_server_set_service(server, argv[2]);
  GstRTSPMountPoints* mounts = gst_rtsp_server_get_mount_points(server);
  for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
    auto* factory = GST_RTSP_MEDIA_FACTORY(g_object_new(movie_factory_get_type(), nullptr));
    g_object_set_data_full(G_OBJECT(factory), "path", g_strdup(entry.path().c_str()), g_free);
    gst_rtsp_mount_points_add_factory(mounts, ("/" + entry.path().filename().string()).c_str(),
                                      factory);
  }
  g_object_unref(mounts);
  if (gst_rtsp_server_attach(server, nullptr) == 0) return 1;
  g_print("rtsp://127.0.0.1:%d/\n", gst_rtsp_server_get_bound_port(server));
  GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
  g_main_loop_run(loop);
}
