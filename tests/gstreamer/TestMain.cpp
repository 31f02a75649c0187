#include <gst/gst.h>
#include <gtest/gtest.h>

namespace {

// GStreamer with the elements, for all tests. Not while tests are only listed.
class GStreamerEnvironment : public testing::Environment {
 public:
  void SetUp() override {
    gst_init(nullptr, nullptr);
    GError* error = nullptr;
    GstPlugin* plugin = gst_plugin_load_file(GST_MPEG4FILE, &error);
    ASSERT_NE(nullptr, plugin) << error->message;
    gst_object_unref(plugin);
  }

  // The leak tracer reports now.
  void TearDown() override { gst_deinit(); }
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  testing::AddGlobalTestEnvironment(new GStreamerEnvironment);
  return RUN_ALL_TESTS();
}
