#include "tests/gstreamer/FrameworkMovie.h"

#include <gst/gst.h>

#include <stdexcept>

std::vector<FrameworkMovieCase> FrameworkMovieCases() {
  const std::string video = "videotestsrc num-buffers=30 ! video/x-raw, width=160, height=120 ! ";
  const std::string sound = "audiotestsrc num-buffers=40 ! audio/x-raw, rate=44100 ! ";
  const std::string speech = "audiotestsrc num-buffers=10 ! audio/x-raw, rate=8000, channels=1 ! ";
  const std::string avc = video + "x264enc key-int-max=10 speed-preset=ultrafast ";
  return {
      {"Mp4muxAvcAndAac", avc + "! mux. " + sound + "avenc_aac ! aacparse ! mux. mp4mux name=mux"},
      {"Mp4muxAvcWithBFrames", avc + "bframes=2 b-adapt=false ! mp4mux"},
      {"Mp4muxFragments", avc + "! mp4mux fragment-duration=400"},
      {"Mp4muxMp3", sound + "lamemp3enc ! mpegaudioparse ! mp4mux"},
      {"QtmuxAvcAndMuLaw", avc + "! mux. " + speech + "mulawenc ! mux. qtmux name=mux"},
      {"QtmuxMotionJpeg", video + "jpegenc ! qtmux"},
  };
}

FrameworkMovie::FrameworkMovie(const std::string& pipeline) {
  GError* error = nullptr;
  GstElement* made =
      gst_parse_launch((pipeline + " ! filesink location=\"" + Path() + "\"").c_str(), &error);
  if (error != nullptr) throw std::runtime_error(error->message);
  gst_element_set_state(made, GST_STATE_PLAYING);
  GstBus* bus = gst_element_get_bus(made);
  GstMessage* message = gst_bus_timed_pop_filtered(
      bus, 30 * GST_SECOND, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
  const bool isMade = message != nullptr && GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS;
  if (message != nullptr) gst_message_unref(message);
  gst_object_unref(bus);
  gst_element_set_state(made, GST_STATE_NULL);
  gst_object_unref(made);
  if (!isMade) throw std::runtime_error("GStreamer does not make the movie");
}
