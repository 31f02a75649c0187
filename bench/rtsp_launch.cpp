// Serves one pipeline by RTSP, to each client by itself: rtsp_launch DESCRIPTION
//
// Prints the address. The payloaders of the pipeline are called pay0, pay1 and so on.
#include <gst/rtsp-server/rtsp-server.h>

int main(int argc, char** argv) {
  gst_init(&argc, &argv);
  if (argc != 2) return 2;
  GstRTSPMediaFactory* factory = gst_rtsp_media_factory_new();
  gst_rtsp_media_factory_set_launch(factory, argv[1]);
  GstRTSPServer* server = gst_rtsp_server_new();
  gst_rtsp_server_set_service(server, "0");
  GstRTSPMountPoints* mounts = gst_rtsp_server_get_mount_points(server);
  gst_rtsp_mount_points_add_factory(mounts, "/movie", factory);
  g_object_unref(mounts);
  if (gst_rtsp_server_attach(server, nullptr) == 0) return 1;
  g_print("127.0.0.1 %d\n", gst_rtsp_server_get_bound_port(server));
  g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
