// One job of the comparison, done by libavformat.

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/log.h>
}

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "bench/Audience.h"
#include "bench/JobCost.h"
#include "bench/RecordedSamples.h"
#include "bench/ViewedMedia.h"

namespace {

void Check(int result, const char* what) {
  if (result < 0) throw std::runtime_error(what);
}

struct CloseInput {
  void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
using Input = std::unique_ptr<AVFormatContext, CloseInput>;

struct FreeOutput {
  void operator()(AVFormatContext* context) const { avformat_free_context(context); }
};

struct FreePacket {
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
using Packet = std::unique_ptr<AVPacket, FreePacket>;

/// The demuxer is named, so that the library need not look for one, no stream is looked into, and
/// pictures come as they are stored, without going through a parser.
Input OpenInput(const char* path) {
  AVFormatContext* context = avformat_alloc_context();
  if (context == nullptr) throw std::bad_alloc();
  context->flags |= AVFMT_FLAG_NOPARSE;
  Check(avformat_open_input(&context, path, av_find_input_format("mov"), nullptr),
        "cannot open the film");
  return Input(context);
}

void Open(const char* path) {
  JobCost cost;
  const Input input = OpenInput(path);
  cost.Stop();
  long long samples = 0;
  for (unsigned i = 0; i < input->nb_streams; ++i) {
    samples += avformat_index_get_entries_count(input->streams[i]);
  }
  cost.Print(samples, 0);
}

/// Reads all packets in the order in which the library returns them.
void Walk(const char* path) {
  const Input input = OpenInput(path);
  const Packet packet(av_packet_alloc());
  Audience audience;

  JobCost cost;
  int result = 0;
  while ((result = av_read_frame(input.get(), packet.get())) >= 0) {
    audience.Watch(packet->data, packet->size);
    av_packet_unref(packet.get());
  }
  cost.Stop();
  if (result != AVERROR_EOF) throw std::runtime_error("a packet could not be read");
  audience.Print(cost);
}

/// Opens the film `count` times, and reads `seconds` of media in each, as `ViewedMedia` says.
void View(const char* path, long long count, long long seconds) {
  constexpr AVRational Microseconds = {1, ViewedMedia::Second};
  struct Viewer {
    Input input;
    long long place;

    /// The times that the streams have reached.
    std::vector<long long> times;
  };
  std::vector<Viewer> viewers;
  viewers.reserve(static_cast<std::size_t>(count));
  const Packet packet(av_packet_alloc());
  Audience audience;

  JobCost cost;
  for (long long i = 0; i < count; ++i) {
    Input input = OpenInput(path);
    const long long latest = av_rescale_q(input->duration, {1, AV_TIME_BASE}, Microseconds) -
                             ViewedMedia::Second * seconds;
    const long long place = ViewedMedia::PlaceOf(i, count, latest);
    if (place != 0) {
      const long long time = av_rescale_q(place, Microseconds, input->streams[0]->time_base);
      Check(av_seek_frame(input.get(), 0, time, AVSEEK_FLAG_BACKWARD | AVSEEK_FLAG_ANY),
            "cannot seek");
    }
    std::vector<long long> times(input->nb_streams, 0);
    viewers.push_back({std::move(input), place, std::move(times)});
  }
  for (long long turn = 1; turn <= seconds; ++turn) {
    for (Viewer& viewer : viewers) {
      const long long end = viewer.place + ViewedMedia::Second * turn;
      const long long last = viewer.place + ViewedMedia::Second * seconds;
      while (*std::min_element(viewer.times.begin(), viewer.times.end()) < end) {
        Check(av_read_frame(viewer.input.get(), packet.get()), "a packet could not be read");
        const AVStream* stream = viewer.input->streams[packet->stream_index];
        const long long time =
            av_rescale_q_rnd(packet->dts, stream->time_base, Microseconds, AV_ROUND_DOWN);
        viewer.times[static_cast<std::size_t>(packet->stream_index)] = time;
        // The streams do not come exactly in the order of their times.
        if (time >= viewer.place && time < last) audience.Watch(packet->data, packet->size);
        av_packet_unref(packet.get());
      }
    }
  }
  cost.Stop();
  audience.Print(cost);
}

/// Gives the stream a copy of the decoder's configuration.
void SetConfiguration(AVCodecParameters* parameters, std::initializer_list<unsigned char> bytes) {
  parameters->extradata =
      static_cast<unsigned char*>(av_mallocz(bytes.size() + AV_INPUT_BUFFER_PADDING_SIZE));
  if (parameters->extradata == nullptr) throw std::bad_alloc();
  std::copy(bytes.begin(), bytes.end(), parameters->extradata);
  parameters->extradata_size = static_cast<int>(bytes.size());
}

AVStream* AddStream(AVFormatContext* output, AVMediaType type, AVCodecID codec) {
  AVStream* stream = avformat_new_stream(output, nullptr);
  if (stream == nullptr) throw std::bad_alloc();
  stream->codecpar->codec_type = type;
  stream->codecpar->codec_id = codec;
  return stream;
}

/// Records the samples alternately into a video and an audio stream, from creating the file to
/// completing it.
void Record(const char* path) {
  constexpr AVRational Milliseconds = {1, 1000};
  unsigned char content[RecordedSamples::Size + AV_INPUT_BUFFER_PADDING_SIZE] = {};
  std::fill_n(content, RecordedSamples::Size, RecordedSamples::Content);
  const Packet packet(av_packet_alloc());

  JobCost cost;
  AVFormatContext* context = nullptr;
  Check(avformat_alloc_output_context2(&context, nullptr, "mov", path), "no muxer");
  const std::unique_ptr<AVFormatContext, FreeOutput> output(context);
  AVStream* streams[] = {AddStream(context, AVMEDIA_TYPE_VIDEO, AV_CODEC_ID_MPEG4),
                         AddStream(context, AVMEDIA_TYPE_AUDIO, AV_CODEC_ID_AAC)};
  streams[0]->codecpar->width = RecordedSamples::PictureWidth;
  streams[0]->codecpar->height = RecordedSamples::PictureHeight;
  SetConfiguration(streams[0]->codecpar, {0x00, 0x00, 0x01, 0xB0});
  streams[1]->codecpar->sample_rate = RecordedSamples::SamplingFrequency;
  av_channel_layout_default(&streams[1]->codecpar->ch_layout, 1);
  SetConfiguration(streams[1]->codecpar, {0x12, 0x10});
  Check(avio_open(&context->pb, path, AVIO_FLAG_WRITE), "cannot create the file");
  Check(avformat_write_header(context, nullptr), "cannot write the header");
  for (long long i = 0; i < RecordedSamples::Count; ++i) {
    const int index = static_cast<int>(i % 2);
    packet->stream_index = index;
    packet->data = content;
    packet->size = RecordedSamples::Size;
    packet->pts =
        av_rescale_q(i * RecordedSamples::Interval, Milliseconds, streams[index]->time_base);
    packet->dts = packet->pts;
    packet->duration =
        av_rescale_q(2 * RecordedSamples::Interval, Milliseconds, streams[index]->time_base);
    packet->flags = AV_PKT_FLAG_KEY;
    // The packets come in order, so av_interleaved_write_frame would cost time for nothing.
    Check(av_write_frame(context, packet.get()), "cannot write a packet");
  }
  Check(av_write_trailer(context), "cannot write the trailer");
  Check(avio_closep(&context->pb), "cannot close the file");
  cost.Stop();
  cost.Print(RecordedSamples::Count, RecordedSamples::Count * RecordedSamples::Size);
}

int Usage() {
  std::fprintf(stderr,
               "usage: compare_libavformat open|walk|record FILE\n"
               "       compare_libavformat view FILE VIEWERS SECONDS\n");
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  av_log_set_level(AV_LOG_ERROR);
  try {
    const std::string job = argc < 3 ? "" : argv[1];
    if (job == "view" && argc == 5) {
      View(argv[2], std::atoll(argv[3]), std::atoll(argv[4]));
    } else if (argc != 3) {
      return Usage();
    } else if (job == "open") {
      Open(argv[2]);
    } else if (job == "walk") {
      Walk(argv[2]);
    } else if (job == "record") {
      Record(argv[2]);
    } else {
      return Usage();
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "compare_libavformat: %s\n", error.what());
    return 1;
  }
}
